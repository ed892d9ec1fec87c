#include "core/configadaptor/node.h"

#include <algorithm>

#include "gui/component/containers.h"
#include "util/xml/tag.h"

namespace vuk::rgw::core::configadaptor {

Node::Node(std::int32_t elementId, std::string text, std::string tip, CInterface::Callback* changed)
    : util::MessageNode("configadaptor"), callback(changed), id(elementId), label(std::move(text)),
      tooltip(std::move(tip)) {}

gui::Component* Node::FindControl(gui::Component& view) const {
  return id >= 0 ? FindControlIn(view, id) : nullptr;
}

gui::Component* Node::FindControlIn(gui::Component& component, std::int32_t wanted) {
  if (component.id == wanted && !dynamic_cast<gui::component::List*>(&component)) return &component;
  for (std::size_t i = 0; i < component.GetChildCount(); ++i) {
    if (gui::Component* found = FindControlIn(*component.GetChild(i), wanted)) return found;
  }
  return nullptr;
}

Node* Node::FindParentOf(const Node* child) {
  for (std::size_t i = 0; i < GetChildCount(); ++i) {
    if (GetChild(i) == child) return this;
    if (Node* found = GetChild(i)->FindParentOf(child)) return found;
  }
  return nullptr;
}

Node* Node::Add(Node* child) {
  AddChild(child);
  return child;
}

void Node::UpdateViews() {
  for (gui::Component* view : views) {
    if (gui::Component* control = FindControl(*view)) SendToControl(*control);
  }
  for (std::size_t i = 0; i < GetChildCount(); ++i) GetChild(i)->UpdateViews();
}

void Node::WriteProfile(util::xml::Element& profile) {
  for (std::size_t i = 0; i < GetChildCount(); ++i) GetChild(i)->WriteProfile(profile);
}

void Node::ReadProfile(const util::xml::Element& profile) {
  for (std::size_t i = 0; i < GetChildCount(); ++i) GetChild(i)->ReadProfile(profile);
}

util::xml::Element Node::GetExtra(const util::xml::Element&) { return util::xml::Element(); }

bool Node::GetValueById(std::int32_t wanted, double& value) {
  if (id == wanted) {
    value = GetValue();
    return true;
  }
  for (std::size_t i = 0; i < GetChildCount(); ++i) {
    if (GetChild(i)->GetValueById(wanted, value)) return true;
  }
  return false;
}

bool Node::SetValueById(std::int32_t wanted, double value) {
  if (id == wanted) {
    SetValue(value);
    return true;
  }
  for (std::size_t i = 0; i < GetChildCount(); ++i) {
    if (GetChild(i)->SetValueById(wanted, value)) return true;
  }
  return false;
}

void Node::AttachView(gui::Component* view) {
  if (std::find(views.begin(), views.end(), view) == views.end()) views.push_back(view);
  if (gui::Component* control = FindControl(*view)) {
    Connect(control);
    SendToControl(*control);
  }
  for (std::size_t i = 0; i < GetChildCount(); ++i) GetChild(i)->AttachView(view);
}

void Node::DetachView(gui::Component* view) {
  views.erase(std::remove(views.begin(), views.end(), view), views.end());
  if (gui::Component* control = FindControl(*view)) Disconnect(control);
  for (std::size_t i = 0; i < GetChildCount(); ++i) GetChild(i)->DetachView(view);
}

void Node::Receive(util::Message& message, bool fromBroadcast) {
  util::MessageNode::Receive(message, fromBroadcast);
  if (message.id != gui::kValueChanged && message.id != gui::kButtonPressed) return;
  auto* control = dynamic_cast<gui::Component*>(message.sender);
  if (!control || message.value != id) return;
  // The variable first, then the tool: nothing may run between the two.
  if (!TakeFromControl(*control) && message.id != gui::kButtonPressed) return;
  if (callback) callback->Changed(label);
}

util::xml::Element Node::Row(util::xml::Element control) const {
  util::xml::Tag row("list");
  row.SetAttribute("type") = "horizontal";
  util::xml::Tag text("label");
  text.SetAttribute("label") = label;
  text.SetAttribute("minheight") = "20";
  text.SetAttribute("tooltip") = tooltip;
  row.AddChild(text);
  row.AddChild(control);
  return std::move(row);
}

}  // namespace vuk::rgw::core::configadaptor
