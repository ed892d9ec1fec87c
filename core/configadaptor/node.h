#pragma once
// A configuration page of a tool as a model: a tree of nodes, each bound to
// a variable of the tool. It writes its layout on demand, reads and writes
// profile items, and turns control changes into variable writes and the
// tool's Changed call.

#include <cstdint>
#include <string>
#include <vector>

#include "gui/component.h"
#include "sdk/cinterface.h"
#include "util/compositedynamic.h"
#include "util/dynamicobject.h"
#include "util/messagenode.h"
#include "util/xml/element.h"

namespace vuk::rgw::core::configadaptor {

class Node : public util::DynamicObject, public util::Composite_Dynamic<Node>, public util::MessageNode {
 public:
  Node(std::int32_t elementId, std::string text, std::string tip, CInterface::Callback* changed);

  // Sends the variable's value to the control of this id in every open view.
  virtual void UpdateViews();
  // Appends this node's item (or group) to a "configprofile" element.
  virtual void WriteProfile(util::xml::Element& profile);
  // Takes this node's value from the item of its id, when the profile has one.
  virtual void ReadProfile(const util::xml::Element& profile);
  virtual util::xml::Element GetExtra(const util::xml::Element& element);
  // The node of that id in this tree; false when there is none.
  virtual bool GetValueById(std::int32_t wanted, double& value);
  virtual bool SetValueById(std::int32_t wanted, double value);
  // The bound variable as a double; kinds without a variable read 0.
  virtual double GetValue() { return 0.0; }
  virtual void SetValue(double value) { (void)value; }
  virtual util::xml::Element BuildLayout() = 0;

  // A window shows this page: its controls report to the nodes.
  virtual void AttachView(gui::Component* view);
  void DetachView(gui::Component* view);
  // A control of a view changed: the variable takes its value, then the tool hears.
  void Receive(util::Message& message, bool fromBroadcast) override;
  Node* Add(Node* child);
  // The node that holds `child` in this tree, or null.
  Node* FindParentOf(const Node* child);
  // This node's control in a view, or null.
  gui::Component* FindControl(gui::Component& view) const;
  // The control of an id in a view: the group layout's inner list shares id 1
  // with a control, and the control is the one that isn't a box list.
  static gui::Component* FindControlIn(gui::Component& component, std::int32_t wanted);

  CInterface::Callback* callback;
  std::int32_t id;
  std::string label;
  std::string tooltip;
  std::vector<gui::Component*> views;

 protected:
  // The control's value into the variable; false when there is nothing to take.
  virtual bool TakeFromControl(gui::Component& control) {
    (void)control;
    return false;
  }
  // The variable's value into the control.
  virtual void SendToControl(gui::Component& control) { (void)control; }
  // The row every control sits in: a horizontal list with a label.
  util::xml::Element Row(util::xml::Element control) const;
};

}  // namespace vuk::rgw::core::configadaptor
