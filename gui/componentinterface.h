#pragma once
// The typed operations of each component kind, as code sees them. Set
// operations are code's changes and send nothing; the back-end reports the
// user's changes through the component, which then tells its listeners.

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace vuk::gui::componentinterface {

class Dialog {
 public:
  virtual std::string GetTitle() const = 0;
  virtual void SetTitle(const std::string& title) = 0;

 protected:
  ~Dialog() = default;
};

class Label {
 public:
  virtual std::string GetText() const = 0;
  virtual void SetText(const std::string& text) = 0;

 protected:
  ~Label() = default;
};

class Button {
 public:
  virtual bool IsToggled() const = 0;
  virtual void SetToggled(bool toggled) = 0;

 protected:
  ~Button() = default;
};

class CheckBox {
 public:
  enum State : std::int32_t { kOff = 0, kOn = 1, kMixed = 2 };
  virtual std::int32_t GetState() const = 0;
  virtual void SetState(std::int32_t state) = 0;

 protected:
  ~CheckBox() = default;
};

class Spinner {
 public:
  virtual double GetValue() const = 0;
  virtual void SetValue(double value) = 0;

 protected:
  ~Spinner() = default;
};

class TextBox {
 public:
  virtual std::string GetText() const = 0;
  virtual void SetText(const std::string& text) = 0;

 protected:
  ~TextBox() = default;
};

class ComboBox {
 public:
  virtual std::int32_t GetSelected() const = 0;
  virtual void SetSelected(std::int32_t index) = 0;
  virtual void SetItems(const std::vector<std::string>& items) = 0;

 protected:
  ~ComboBox() = default;
};

class ListBox {
 public:
  virtual std::int32_t GetSelected() const = 0;
  virtual void SetSelected(std::int32_t index) = 0;
  virtual void SetItems(const std::vector<std::string>& items) = 0;

 protected:
  ~ListBox() = default;
};

class ProgressBar {
 public:
  virtual void SetProgress(std::int32_t percent) = 0;

 protected:
  ~ProgressBar() = default;
};

class Graph {
 public:
  virtual void SetCurve(const std::vector<std::pair<double, double>>& points) = 0;

 protected:
  ~Graph() = default;
};

class Tree {
 public:
  // An item of the tree, kept by the code that fills the tree.
  class Node {
   public:
    virtual ~Node() = default;
    virtual std::string GetLabel() const = 0;
    virtual std::size_t GetNodeCount() const = 0;
    virtual Node* GetNode(std::size_t index) const = 0;
    // 0 false, 1 true, 2 undetermined, per flag column.
    virtual std::int32_t GetFlag(std::size_t column) const = 0;
    virtual void SetFlag(std::size_t column, std::int32_t state) = 0;
  };

  virtual void SetRoot(Node* root) = 0;
  virtual Node* GetSelected() const = 0;
  // The items changed: show them again.
  virtual void Refresh() = 0;

 protected:
  ~Tree() = default;
};

}  // namespace vuk::gui::componentinterface
