#include "gui/component/controls.h"

#include "gui/component/choices.h"

namespace vuk::gui::component {

namespace {

ButtonImages ReadImages(const util::xml::Element& element) {
  return {element.GetAttribute("img_default"),        element.GetAttribute("img_hover"),
          element.GetAttribute("img_pressed"),        element.GetAttribute("img_disabled"),
          element.GetAttribute("img_toggle_default"), element.GetAttribute("img_toggle_hover"),
          element.GetAttribute("img_toggle_pressed")};
}

}  // namespace

Label::Label(const util::xml::Element& element)
    : StdComponent(element),
      imagePath(element.GetAttribute("imagepath")),
      hyperlinks(attribute::YesNo(element, "hyperlinks", false)),
      wrap(attribute::YesNo(element, "wrap", false)) {}

Button::Button(const util::xml::Element& element)
    : StdComponent(element),
      flat(attribute::YesNo(element, "flat", false)),
      flatColorDefault(element.GetAttribute("flatcolor_default")),
      flatColorHover(element.GetAttribute("flatcolor_hover")),
      flatColorPressed(element.GetAttribute("flatcolor_pressed")),
      images(ReadImages(element)),
      toggle(attribute::YesNo(element, "toggle", false)),
      repeat(attribute::YesNo(element, "repeat", false)),
      delay(attribute::Int(element, "delay", 0)) {}

void Button::Press() {
  if (toggle) toggled = !toggled;
  Notify(kButtonPressed, id);
}

FlmButton::FlmButton(const util::xml::Element& element)
    : StdComponent(element), images(ReadImages(element)), triggerLength(attribute::Int(element, "triggerlength", 0)) {}

void FlmButton::Consume(const util::xml::Element& child) {
  if (child.name == "item") {
    const Item item = Item::Read(child);
    entries.push_back({item.id, item.label});
  }
  StdComponent::Consume(child);
}

CheckBox::CheckBox(const util::xml::Element& element)
    : StdComponent(element),
      state(attribute::YesNo(element, "defaultstate", false, true) ? kOn : kOff),
      tristate(attribute::YesNo(element, "tristate", false)),
      paintGroup(attribute::Int(element, "paintgroup", 0)) {}

void CheckBox::ChangeState(std::int32_t newState) {
  state = newState;
  Notify(kValueChanged, id);
}

Spinner::Spinner(const util::xml::Element& element)
    : StdComponent(element),
      minimum(attribute::Double(element, "min", 0.0)),
      maximum(attribute::Double(element, "max", 100.0)),
      step(attribute::Double(element, "step", 1.0)),
      decimals(attribute::Int(element, "decimals", 3)),
      triggerLength(attribute::Int(element, "triggerlength", 0)),
      value(attribute::Double(element, "defaultvalue", 0.0)) {}

void Spinner::ChangeValue(double newValue) {
  value = newValue;
  Notify(kValueChanged, id);
}

TextBox::TextBox(const util::xml::Element& element)
    : StdComponent(element),
      text(element.GetAttribute("defaulttext")),
      editable(attribute::YesNo(element, "editable", true)),
      wrap(attribute::YesNo(element, "wrap", false)) {}

void TextBox::ChangeText(const std::string& newText) {
  text = newText;
  Notify(kValueChanged, id);
}

Graph::Graph(const util::xml::Element& element)
    : StdComponent(element),
      curve(element.GetAttribute("curve")),
      boundaryLeft(attribute::Double(element, "boundary_left", 0.0)),
      boundaryRight(attribute::Double(element, "boundary_right", 1.0)),
      boundaryTop(attribute::Double(element, "boundary_top", 1.0)),
      boundaryBottom(attribute::Double(element, "boundary_bottom", 0.0)) {}

}  // namespace vuk::gui::component
