#include "core/polyvisibility.h"

#include <algorithm>

#include "core/instance.h"
#include "core/instancereference.h"

namespace vuk::rgw::core {

namespace {

// A node of no tool: its handle names no owner.
bool IsUserObject(CNode& node) {
  const auto* core = dynamic_cast<CoreNode*>(&node);
  return core && !core->owner;
}

// The user's objects below `node`, at any depth; below another tool's node
// the objects are that tool's.
void ForEachUserObjectBelow(CNode& node, const std::function<void(CNode&)>& visit) {
  for (std::int32_t i = 0; i < node.GetSceneChildCount(); ++i) {
    CNode* child = node.GetSceneChild(i);
    if (!child) continue;
    if (IsUserObject(*child)) {
      visit(*child);
      ForEachUserObjectBelow(*child, visit);
    }
    node.ReleaseWrapper(child);
  }
}

}  // namespace

void ModelSet::ForEach(AdaptorInterface& adaptor, InstanceHandle tool, const std::function<void(CNode&)>& visit) const {
  NodeVector own;
  adaptor.GetInstanceNodes(tool, own);
  for (CoreNode* node : own.nodes) {
    if (kind_ == Kind::kLowPoly) {
      visit(*node);
    } else {
      ForEachUserObjectBelow(*node, visit);
    }
  }
}

void ModelSet::Hide(AdaptorInterface& adaptor, InstanceHandle tool) {
  ForEach(adaptor, tool, [this](CNode& object) {
    if (!object.IsVisible()) return;
    hidden_.push_back(object.GetDescription());
    object.Hide();
  });
}

void ModelSet::ShowBack(AdaptorInterface& adaptor, InstanceHandle tool) {
  ForEach(adaptor, tool, [this](CNode& object) {
    if (std::find(hidden_.begin(), hidden_.end(), object.GetDescription()) != hidden_.end()) object.Show();
  });
  hidden_.clear();
}

void LowPolyTake::Begin(const std::vector<Instance*>& tools) {
  before_.clear();
  for (Instance* tool : tools) {
    InstanceReference* item = tool->GetReference();
    if (!item) continue;
    before_.emplace_back(item, item->states);
    item->SetState(TreeItem::kHighPoly, 0);
    item->SetState(TreeItem::kLowPoly, 1);
  }
}

void LowPolyTake::End() {
  for (const auto& [item, states] : before_) {
    item->SetState(TreeItem::kHighPoly, states[TreeItem::kHighPoly]);
    item->SetState(TreeItem::kLowPoly, states[TreeItem::kLowPoly]);
  }
  before_.clear();
}

}  // namespace vuk::rgw::core
