#include "gui/tooltree/tooltreeview.h"

namespace vuk::gui::tooltree {

using rgw::core::InstanceReference;

ToolTreeNode::ToolTreeNode(InstanceReference& item) : item_(item) {
  children_.reserve(item.GetChildCount());
  for (std::size_t i = 0; i < item.GetChildCount(); ++i) {
    children_.push_back(std::make_unique<ToolTreeNode>(static_cast<InstanceReference&>(*item.GetChild(i))));
  }
}

componentinterface::Tree::Node* ToolTreeNode::GetNode(std::size_t index) const {
  return index < children_.size() ? children_[index].get() : nullptr;
}

std::int32_t ToolTreeNode::GetFlag(std::size_t column) const {
  return column < item_.states.size() ? item_.states[column] : 0;
}

void ToolTreeNode::SetFlag(std::size_t column, std::int32_t state) {
  if (column < item_.states.size()) item_.SetState(static_cast<InstanceReference::Slot>(column), state);
}

InstanceReference* ToolTreeNode::Find(const Node* node) const {
  if (node == this) return &item_;
  for (const auto& child : children_) {
    if (InstanceReference* found = child->Find(node)) return found;
  }
  return nullptr;
}

ToolTreeNode* ToolTreeNode::NodeOf(const InstanceReference* item) {
  if (item == &item_) return this;
  for (const auto& child : children_) {
    if (ToolTreeNode* found = child->NodeOf(item)) return found;
  }
  return nullptr;
}

void ToolTreeView::Show(componentinterface::Tree& tree) {
  // The old mirror goes only once the component holds the new one.
  auto next = std::make_unique<ToolTreeNode>(root_);
  tree.SetRoot(next.get());
  shown_ = std::move(next);
}

componentinterface::Tree::Node* ToolTreeView::NodeOf(const InstanceReference* item) const {
  return shown_ && item ? shown_->NodeOf(item) : nullptr;
}

InstanceReference* ToolTreeView::ItemOf(const componentinterface::Tree::Node* node) const {
  return shown_ && node ? shown_->Find(node) : nullptr;
}

}  // namespace vuk::gui::tooltree
