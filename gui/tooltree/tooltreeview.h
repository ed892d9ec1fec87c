#pragma once
// The core's tool tree as the GUI's tree component shows it. The core keeps
// its tree free of the toolkit; this mirrors it with one view node per tool,
// which reads and writes the tool's label and check states.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "core/instancereference.h"
#include "gui/componentinterface.h"

namespace vuk::gui::tooltree {

class ToolTreeNode final : public componentinterface::Tree::Node {
 public:
  // Mirrors the item and everything below it as it is now.
  explicit ToolTreeNode(rgw::core::InstanceReference& item);

  std::string GetLabel() const override { return item_.GetLabel(); }
  std::size_t GetNodeCount() const override { return children_.size(); }
  Node* GetNode(std::size_t index) const override;
  // The columns are the item's check state and its two visibility states.
  std::int32_t GetFlag(std::size_t column) const override;
  void SetFlag(std::size_t column, std::int32_t state) override;

  // The tool item behind this node or one below it; null when it is none of them.
  rgw::core::InstanceReference* Find(const Node* node) const;
  // The node of that tool item, this one or one below it; null when none is.
  ToolTreeNode* NodeOf(const rgw::core::InstanceReference* item);

 private:
  rgw::core::InstanceReference& item_;
  std::vector<std::unique_ptr<ToolTreeNode>> children_;
};

// Shows a tool tree in a tree component. The mirror is made again on each
// Show, so that it follows tools made, moved and deleted since.
class ToolTreeView {
 public:
  explicit ToolTreeView(rgw::core::InstanceReference& root) : root_(root) {}

  void Show(componentinterface::Tree& tree);

  // The tool item behind a node the component handed out; null for none,
  // and for a node of a mirror shown before, which is gone.
  rgw::core::InstanceReference* ItemOf(const componentinterface::Tree::Node* node) const;
  // The node shown for a tool item; null when the mirror has none.
  componentinterface::Tree::Node* NodeOf(const rgw::core::InstanceReference* item) const;

 private:
  rgw::core::InstanceReference& root_;
  std::unique_ptr<ToolTreeNode> shown_;
};

}  // namespace vuk::gui::tooltree
