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

}  // namespace vuk::rgw::addon
