#include "gui/stdcomponent.h"

namespace vuk::gui {

namespace {

// "margin-left" and its kin refine the four-number form.
Box Sides(const util::xml::Element& element, const std::string& name) {
  Box box = attribute::FourInts(element, name.c_str());
  box.left = attribute::Int(element, (name + "-left").c_str(), box.left);
  box.top = attribute::Int(element, (name + "-top").c_str(), box.top);
  box.right = attribute::Int(element, (name + "-right").c_str(), box.right);
  box.bottom = attribute::Int(element, (name + "-bottom").c_str(), box.bottom);
  return box;
}

}  // namespace

StdComponent::StdComponent(const util::xml::Element& element)
    : Component(element.name),
      tag(element.name),
      left(attribute::Int(element, "left", 0)),
      top(attribute::Int(element, "top", 0)),
      width(attribute::Int(element, "width", -1)),
      height(attribute::Int(element, "height", -1)),
      desiredWidth(attribute::Int(element, "desiredwidth", -1)),
      desiredHeight(attribute::Int(element, "desiredheight", -1)),
      minWidth(attribute::Int(element, "minwidth", 0)),
      minHeight(attribute::Int(element, "minheight", 0)),
      maxWidth(attribute::Int(element, "maxwidth", kNoLimit)),
      maxHeight(attribute::Int(element, "maxheight", kNoLimit)),
      fixed(attribute::FixedDirection(element)),
      visible(attribute::YesNo(element, "visible", true, true)),
      enabled(attribute::YesNo(element, "enabled", true, true)),
      label(element.GetAttribute("label")),
      tooltip(element.GetAttribute("tooltip")),
      tooltipId(attribute::Int(element, "tooltipid", -1)),
      tabStop(attribute::YesNo(element, "tabstop", true)),
      focusMarkerColor(element.GetAttribute("focusmarkercolor")),
      padding(Sides(element, "padding")),
      margin(Sides(element, "margin")),
      halign(attribute::HorizontalAlign(element)),
      valign(attribute::VerticalAlign(element)) {
  id = attribute::Int(element, "id", -1);
}

void StdComponent::Consume(const util::xml::Element& child) {
  if (child.name == "tooltip") tooltip = child.GetText();
  if (child.name == "background") background.reset(Background::Create(child));
}

}  // namespace vuk::gui
