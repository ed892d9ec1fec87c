#pragma once
// The kinds of a configuration page, one per call of the tool's interface.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <string>
#include <vector>

#include "core/configadaptor/node.h"

namespace vuk::rgw::core::configadaptor::element {

class Root : public Node {
 public:
  Root() : Node(-1, "", "", nullptr) {}
  std::string GetTypeName() const override { return "Root"; }
  util::xml::Element BuildLayout() override;
  // "configprofile", version "2.0", with the given name.
  util::xml::Element WriteNamedProfile(const std::string& name);
  // Reads a profile of any age; answers whether it had to be converted.
  bool ReadAnyProfile(const util::xml::Element& profile);
};

class Group : public Node {
 public:
  using Node::Node;
  std::string GetTypeName() const override { return "Group"; }
  void WriteProfile(util::xml::Element& profile) override;
  util::xml::Element BuildLayout() override;
};

class Spinner : public Node {
 public:
  Spinner(std::int32_t id, std::string label, std::string tooltip, CInterface::Callback* callback, double* bound,
          double min, double max, double stepSize, std::int32_t trigger)
      : Node(id, std::move(label), std::move(tooltip), callback), variable(bound), minimum(min), maximum(max),
        step(stepSize), triggerLength(trigger) {}
  std::string GetTypeName() const override { return "Spinner"; }
  void WriteProfile(util::xml::Element& profile) override;
  void ReadProfile(const util::xml::Element& profile) override;
  double GetValue() override { return *variable; }
  // Held within the range, as the field would hold it: a channel that drives
  // a spinner must not take a tool's parameter where the tool can't follow.
  void SetValue(double value) override {
    if (!std::isnan(value)) *variable = std::min(std::max(value, minimum), maximum);
  }
  util::xml::Element BuildLayout() override;

  double* variable;
  double minimum, maximum, step;
  std::int32_t triggerLength;

 protected:
  bool TakeFromControl(gui::Component& control) override;
  void SendToControl(gui::Component& control) override;
};

class Spinner_Int : public Node {
 public:
  Spinner_Int(std::int32_t id, std::string label, std::string tooltip, CInterface::Callback* callback,
              std::int32_t* bound, std::int32_t min, std::int32_t max, std::int32_t stepSize, std::int32_t trigger)
      : Node(id, std::move(label), std::move(tooltip), callback), variable(bound), minimum(min), maximum(max),
        step(stepSize), triggerLength(trigger) {}
  std::string GetTypeName() const override { return "Spinner_Int"; }
  void WriteProfile(util::xml::Element& profile) override;
  void ReadProfile(const util::xml::Element& profile) override;
  double GetValue() override { return *variable; }
  void SetValue(double value) override {
    if (!std::isnan(value)) *variable = static_cast<std::int32_t>(std::min<double>(std::max<double>(value, minimum), maximum));
  }
  util::xml::Element BuildLayout() override;

  std::int32_t* variable;
  std::int32_t minimum, maximum, step;
  std::int32_t triggerLength;

 protected:
  bool TakeFromControl(gui::Component& control) override;
  void SendToControl(gui::Component& control) override;
};

class CheckBox : public Node {
 public:
  CheckBox(std::int32_t id, std::string label, std::string tooltip, CInterface::Callback* callback, bool* bound)
      : Node(id, std::move(label), std::move(tooltip), callback), variable(bound) {}
  std::string GetTypeName() const override { return "CheckBox"; }
  void WriteProfile(util::xml::Element& profile) override;
  void ReadProfile(const util::xml::Element& profile) override;
  double GetValue() override { return *variable ? 1.0 : 0.0; }
  void SetValue(double value) override { *variable = value != 0.0; }
  util::xml::Element BuildLayout() override;

  bool* variable;

 protected:
  bool TakeFromControl(gui::Component& control) override;
  void SendToControl(gui::Component& control) override;
};

class TextBox : public Node {
 public:
  TextBox(std::int32_t id, std::string label, std::string tooltip, CInterface::Callback* callback, std::string* bound)
      : Node(id, std::move(label), std::move(tooltip), callback), variable(bound) {}
  std::string GetTypeName() const override { return "TextBox"; }
  void WriteProfile(util::xml::Element& profile) override;
  void ReadProfile(const util::xml::Element& profile) override;
  util::xml::Element BuildLayout() override;

  std::string* variable;

 protected:
  bool TakeFromControl(gui::Component& control) override;
  void SendToControl(gui::Component& control) override;
};

class ComboBox : public Node {
 public:
  ComboBox(std::int32_t id, std::string label, std::string tooltip, CInterface::Callback* callback,
           std::int32_t* bound, std::vector<std::string> choices)
      : Node(id, std::move(label), std::move(tooltip), callback), variable(bound), items(std::move(choices)) {}
  std::string GetTypeName() const override { return "ComboBox"; }
  void WriteProfile(util::xml::Element& profile) override;
  void ReadProfile(const util::xml::Element& profile) override;
  double GetValue() override { return *variable; }
  void SetValue(double value) override {
    if (value >= -2147483648.0 && value <= 2147483647.0) *variable = static_cast<std::int32_t>(value);
  }
  util::xml::Element BuildLayout() override;
  // New choices, in the model and in every open view.
  void SetItems(std::vector<std::string> choices);

  std::int32_t* variable;
  std::vector<std::string> items;

 protected:
  bool TakeFromControl(gui::Component& control) override;
  void SendToControl(gui::Component& control) override;
};

class Button : public Node {
 public:
  using Node::Node;
  std::string GetTypeName() const override { return "Button"; }
  util::xml::Element BuildLayout() override;
};

class Label : public Node {
 public:
  Label(std::int32_t id, std::string text, std::int32_t labelFlags)
      : Node(id, std::move(text), "", nullptr), flags(labelFlags) {}
  std::string GetTypeName() const override { return "Label"; }
  util::xml::Element BuildLayout() override;
  // Labels count their ids apart from the controls and hold no value: a
  // control's id must not stop at a label that shares it.
  bool GetValueById(std::int32_t, double&) override { return false; }
  bool SetValueById(std::int32_t, double) override { return false; }

  std::int32_t flags;
};

}  // namespace vuk::rgw::core::configadaptor::element
