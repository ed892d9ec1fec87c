#include "gui/component/tree.h"

namespace vuk::gui::component {

namespace {

std::int32_t FlagState(const std::string& text) {
  if (text == "true") return 1;
  if (text == "undetermined") return 2;
  return 0;
}

}  // namespace

void Tree::Consume(const util::xml::Element& child) {
  if (child.name == "flag") {
    flags.push_back({child.GetAttribute("trueicon"), child.GetAttribute("falseicon"),
                     child.GetAttribute("undeterminedicon"), FlagState(child.GetAttribute("defaultstate"))});
  }
  StdComponent::Consume(child);
}

void Tree::ChangeSelected(Node* node) {
  selected = node;
  Notify(kValueChanged, id);
}

void Tree::ChangeFlag(Node* node, std::size_t column, std::int32_t state) {
  if (!node) return;
  node->SetFlag(column, state);
  selected = node;
  Notify(kValueChanged, id);
}

void Tree::Drop(Node* node, Node* target) {
  if (!node || node == target) return;
  dropped = node;
  dropTarget = target;
  Notify(kItemDropped, id);
}

}  // namespace vuk::gui::component
