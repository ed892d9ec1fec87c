#pragma once
// The factory of a component kind: it accepts the elements of its tag.

#include "gui/component.h"
#include "util/factory.h"

namespace vuk::gui {

template <typename Kind>
class TagFactory : public util::Factory<Component> {
 public:
  explicit TagFactory(const char* tag) : tag_(tag) {}
  bool CanCreate(const util::xml::Element& element) const override {
    return element.kind == util::xml::Element::kTag && element.name == tag_;
  }
  Component* Create(const util::xml::Element& element) const override { return new Kind(element); }

 private:
  const char* tag_;
};

}  // namespace vuk::gui
