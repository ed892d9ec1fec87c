#include "plugins/common/toolnode.h"

#include "sdk/cinterface.h"

namespace vuk::rgw::addon {

ToolNode::ToolNode(CCamera* object, std::string nodeName, std::vector<std::string> formerNodeNames)
    : owner(object), name(std::move(nodeName)), formerNames(std::move(formerNodeNames)) {}

void ToolNode::Destroy() {
  owner->iface->DeleteNode(handle);
  handle = nullptr;
}

bool ToolNode::Find() {
  handle = owner->iface->FindNode(name);
  for (auto former = formerNames.begin(); !handle && former != formerNames.end(); ++former) {
    handle = owner->iface->FindNode(*former);
  }
  return handle != nullptr;
}

util::Matrix<double> ToolNode::World(double time) const {
  const TransformSnapshot snapshot = Transform(time);
  return snapshot ? snapshot->GetWorldTransform() : util::Matrix<double>();
}

util::Matrix<double> ToolNode::Local(double time) const {
  const TransformSnapshot snapshot = Transform(time);
  return snapshot ? snapshot->GetLocalTransform() : util::Matrix<double>();
}

void ToolNode::CreateCamera(CNode* parent) { handle = owner->iface->CreateCameraNode(name, parent, nullptr); }

void ToolNode::CreateHelper(const util::CMesh& mesh, CNode* parent) {
  handle = owner->iface->CreateMeshNode(name, parent, mesh, nullptr);
  RefreshHelper();
}

void ToolNode::RefreshHelper() {
  if (handle) handle->Extension(extension::kNodeRefresh, nullptr);
}

void CreateNodes(CInterface* iface, std::initializer_list<ToolNode*> nodes) {
  CNode* last = nullptr;
  for (ToolNode* node : nodes) {
    node->Create();
    last = node->handle;
  }
  if (last) last->Select();
  iface->UpdateConfig();
}

bool FindNodes(std::initializer_list<ToolNode*> nodes) {
  bool all = true;
  for (ToolNode* node : nodes) all = node->Find() && all;
  return all;
}

const std::uint8_t* SavedBytes(CInterface* iface, std::int32_t size) {
  std::int32_t length = 0;
  const std::uint8_t* bytes = iface->GetSaveData(&length);
  return bytes && length == size ? bytes : nullptr;
}

}  // namespace vuk::rgw::addon
