#pragma once
// A node of a window as its layout describes it, independent of the widget
// toolkit that shows it. Components own their children and report what the
// user does as messages.

#include <cstdint>
#include <functional>
#include <map>
#include <string>

#include "util/compositedynamic.h"
#include "util/dynamicobject.h"
#include "util/messagenode.h"
#include "util/xml/element.h"

namespace vuk::gui {

// Message ids of components; the message's value is the element id.
constexpr std::int32_t kMessageFirst = 16384;
constexpr std::int32_t kMessageLast = 17280;
constexpr std::int32_t kButtonPressed = 16706;
constexpr std::int32_t kValueChanged = 16960;
constexpr std::int32_t kItemDropped = 16961;

class Component : public util::DynamicObject, public util::Composite_Dynamic<Component>, public util::MessageNode {
 public:
  explicit Component(const std::string& nodeName = "component") : util::MessageNode(nodeName) {}

  // The component with that id, this one or below it, depth first; null if none.
  Component* FindComponentById(std::int32_t wanted);
  // Adds a built child and makes this its parent.
  void Adopt(Component* child);
  Component* GetParentComponent() const { return parent_; }
  Component* GetRoot();

  // A child element that is not a component of its own ("item", "tooltip",
  // "background", "flag"): the kind takes what it knows.
  virtual void Consume(const util::xml::Element& child) { (void)child; }

  // Path aliases such as "[images]", looked up from this component to the root.
  void SetAlias(const std::string& token, const std::string& path) { aliases_[token] = path; }
  std::string ResolvePath(const std::string& path) const;

  // Tells listeners: the user pressed (kButtonPressed), changed a value
  // (kValueChanged) or dropped an item (kItemDropped); `value` is the id of
  // what was used.
  void Notify(std::int32_t messageId, std::int32_t value);

  // Set by the back-end that shows the component: called when code changes
  // the model, so that the widget follows.
  std::function<void()> onModelChanged;
  void ModelChanged() {
    if (onModelChanged) onModelChanged();
  }

  std::int32_t id = -1;

 private:
  Component* parent_ = nullptr;
  std::map<std::string, std::string> aliases_;
};

}  // namespace vuk::gui
