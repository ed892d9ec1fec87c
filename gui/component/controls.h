#pragma once
// The kinds a user reads or works: labels, buttons, check boxes, number and
// text fields, progress bars and value curves.

#include <string>
#include <utility>
#include <vector>

#include "gui/componentinterface.h"
#include "gui/stdcomponent.h"
#include "gui/tagfactory.h"

namespace vuk::gui::component {

class Label : public StdComponent, public componentinterface::Label {
 public:
  using Factory = TagFactory<Label>;
  explicit Label(const util::xml::Element& element);
  std::string GetText() const override { return label; }
  void SetText(const std::string& text) override {
    label = text;
    ModelChanged();
  }

  std::string imagePath;
  bool hyperlinks;
  bool wrap;
};

// Images of a button in its states, resolved through the path aliases.
struct ButtonImages {
  std::string normal, hover, pressed, disabled;
  std::string toggledNormal, toggledHover, toggledPressed;
  bool Any() const { return !normal.empty(); }
};

class Button : public StdComponent, public componentinterface::Button {
 public:
  using Factory = TagFactory<Button>;
  explicit Button(const util::xml::Element& element);
  bool IsToggled() const override { return toggled; }
  void SetToggled(bool on) override {
    toggled = on;
    ModelChanged();
  }
  // The user pressed it: a toggle changes state first.
  void Press();

  bool flat;
  std::string flatColorDefault, flatColorHover, flatColorPressed;
  ButtonImages images;
  bool toggle;
  bool toggled = false;
  bool repeat;
  int delay;
};

// A button with a menu of choices that opens on a held press.
class FlmButton : public StdComponent {
 public:
  using Factory = TagFactory<FlmButton>;
  explicit FlmButton(const util::xml::Element& element);
  void Consume(const util::xml::Element& child) override;
  // The user chose an entry: its id is sent.
  void Choose(std::int32_t itemId) { Notify(kButtonPressed, itemId); }

  ButtonImages images;
  int triggerLength;
  struct Entry {
    std::int32_t id;
    std::string label;
  };
  std::vector<Entry> entries;
};

class CheckBox : public StdComponent, public componentinterface::CheckBox {
 public:
  using Factory = TagFactory<CheckBox>;
  explicit CheckBox(const util::xml::Element& element);
  std::int32_t GetState() const override { return state; }
  void SetState(std::int32_t newState) override {
    state = newState;
    ModelChanged();
  }
  void ChangeState(std::int32_t newState);

  std::int32_t state;
  bool tristate;
  int paintGroup;
};

class Spinner : public StdComponent, public componentinterface::Spinner {
 public:
  using Factory = TagFactory<Spinner>;
  explicit Spinner(const util::xml::Element& element);
  double GetValue() const override { return value; }
  void SetValue(double newValue) override {
    value = newValue;
    ModelChanged();
  }
  void ChangeValue(double newValue);

  double minimum, maximum, step;
  int decimals;
  int triggerLength;
  double value;
};

class TextBox : public StdComponent, public componentinterface::TextBox {
 public:
  using Factory = TagFactory<TextBox>;
  explicit TextBox(const util::xml::Element& element);
  std::string GetText() const override { return text; }
  void SetText(const std::string& newText) override {
    text = newText;
    ModelChanged();
  }
  void ChangeText(const std::string& newText);

  std::string text;
  bool editable;
  bool wrap;
};

class ProgressBar : public StdComponent, public componentinterface::ProgressBar {
 public:
  using Factory = TagFactory<ProgressBar>;
  using StdComponent::StdComponent;
  void SetProgress(std::int32_t percent) override {
    progress = percent;
    ModelChanged();
  }
  std::int32_t progress = 0;
};

class Graph : public StdComponent, public componentinterface::Graph {
 public:
  using Factory = TagFactory<Graph>;
  explicit Graph(const util::xml::Element& element);
  void SetCurve(const std::vector<std::pair<double, double>>& newPoints) override {
    points = newPoints;
    ModelChanged();
  }

  std::string curve;
  std::vector<std::pair<double, double>> points;
  double boundaryLeft, boundaryRight, boundaryTop, boundaryBottom;
};

}  // namespace vuk::gui::component
