#pragma once
// A tree of items with flag columns: the tool tree of the main window.

#include <string>
#include <vector>

#include "gui/componentinterface.h"
#include "gui/stdcomponent.h"
#include "gui/tagfactory.h"

namespace vuk::gui::component {

class Tree : public StdComponent, public componentinterface::Tree {
 public:
  using Factory = TagFactory<Tree>;
  struct Flag {
    std::string trueIcon, falseIcon, undeterminedIcon;
    std::int32_t defaultState = 0;
  };

  explicit Tree(const util::xml::Element& element)
      : StdComponent(element), dragDrop(attribute::YesNo(element, "dragdrop", false)) {}
  void Consume(const util::xml::Element& child) override;

  void SetRoot(Node* newRoot) override {
    root = newRoot;
    ModelChanged();
  }
  Node* GetSelected() const override { return selected; }
  void Refresh() override { ModelChanged(); }
  // The user selected an item, or set a flag of one.
  void ChangeSelected(Node* node);
  void ChangeFlag(Node* node, std::size_t column, std::int32_t state);
  // The user dragged an item onto another (null: onto the top level). The
  // tree is left as it was: the code that owns the items moves them.
  void Drop(Node* node, Node* target);

  bool dragDrop;
  std::vector<Flag> flags;
  Node* root = nullptr;
  Node* selected = nullptr;
  // The last drop, for the listeners of kItemDropped.
  Node* dropped = nullptr;
  Node* dropTarget = nullptr;
};

}  // namespace vuk::gui::component
