#include "tests/adaptor/standalone/testtoolinterface.h"

#include "util/xml/tag.h"

namespace vuk::rgw::testing_support {

TestToolInterface::TestToolInterface(core::AdaptorInterface* adaptor, const std::string& instanceName)
    : util::MessageNode(instanceName), adaptor_(adaptor) {}

void TestToolInterface::BeginConfig() {
  page_ = util::xml::Tag("config");
  groupPath_.clear();
}

void TestToolInterface::BeginGroup(std::string label, std::string tooltip) {
  AddControl("group", label, tooltip);
  util::xml::Element* group = &page_;
  for (std::size_t index : groupPath_) group = group->children[index].get();
  groupPath_.push_back(group->children.size() - 1);
}

void TestToolInterface::EndGroup() {
  if (!groupPath_.empty()) groupPath_.pop_back();
}

void TestToolInterface::AddControl(const std::string& kind, const std::string& label, const std::string& tooltip) {
  util::xml::Element* group = &page_;
  for (std::size_t index : groupPath_) group = group->children[index].get();
  util::xml::Tag control(kind);
  control.SetAttribute("label") = label;
  control.SetAttribute("tooltip") = tooltip;
  group->AddChild(control);
}

void TestToolInterface::SetSaveData(const void* bytes, std::int32_t length) {
  const auto* begin = static_cast<const std::uint8_t*>(bytes);
  saveData_.assign(begin, begin + (length > 0 ? length : 0));
  hasSaveData_ = true;
}

const std::uint8_t* TestToolInterface::GetSaveData(std::int32_t* length) {
  if (length) *length = static_cast<std::int32_t>(saveData_.size());
  // An empty block is still a block: valid, of length 0.
  static const std::uint8_t kEmptyBlock = 0;
  if (!hasSaveData_) return nullptr;
  return saveData_.empty() ? &kEmptyBlock : saveData_.data();
}

std::int32_t TestToolInterface::ClearSaveData() {
  saveData_.clear();
  hasSaveData_ = false;
  return 0;
}

void TestToolInterface::DeleteNode(CNode* node) {
  if (node) Core(node)->Delete(true);
}

CNode* TestToolInterface::CreateCameraNode(std::string name, CNode* parent, Callback* callback) {
  return adaptor_->CreateCameraNode(this, name, Core(parent), reinterpret_cast<std::intptr_t>(callback));
}

CNode* TestToolInterface::CreateMeshNode(std::string name, CNode* parent, const util::CMesh& mesh,
                                         Callback* callback) {
  return adaptor_->CreateMeshNode(this, name, Core(parent), mesh, reinterpret_cast<std::intptr_t>(callback));
}

CSnapshot* TestToolInterface::GetTransformSnapshot(CNode* node, double time) {
  return node ? Core(node)->GetSnapshot(time) : nullptr;
}

CSnapshot_Helper* TestToolInterface::GetHelperSnapshot(CNode* node, double time) {
  return node ? Core(node)->GetHelperSnapshot(time) : nullptr;
}

CSnapshot_Mesh* TestToolInterface::GetMeshSnapshot(CNode* node, double time) {
  CSnapshot_Mesh* snapshot = node ? Core(node)->GetMeshSnapshot(time) : nullptr;
  return snapshot ? new core::CoreNode::Snapshot_Mesh_Proxy(snapshot) : nullptr;
}

CSnapshot_Lens* TestToolInterface::GetLensSnapshot(CNode* node, double time) {
  return node ? Core(node)->GetLensSnapshot(time) : nullptr;
}

void TestToolInterface::ReleaseNode(CNode* node) {
  if (auto* wrapper = static_cast<core::CoreNode*>(node); wrapper && wrapper->origin) {
    wrapper->origin->ReleaseWrapper(wrapper);
  }
}

// A snapshot goes back to the node that gave it; the pools of the other
// nodes ignore what isn't theirs.
void TestToolInterface::ForEachNode(const std::function<void(core::CoreNode*)>& act) {
  core::NodeVector nodes;
  adaptor_->GetInstanceNodes(this, nodes);
  for (core::CoreNode* node : nodes.nodes) act(node);
}

void TestToolInterface::ReleaseLensSnapshot(CSnapshot_Lens* snapshot) {
  ForEachNode([&](core::CoreNode* node) { node->ReleaseLensSnapshot(snapshot); });
}

void TestToolInterface::ReleaseMeshSnapshot(CSnapshot_Mesh* snapshot) {
  auto* proxy = static_cast<core::CoreNode::Snapshot_Mesh_Proxy*>(snapshot);
  if (!proxy) return;
  ForEachNode([&](core::CoreNode* node) { node->ReleaseMeshSnapshot(proxy->snapshot); });
  delete proxy;
}

void TestToolInterface::ReleaseHelperSnapshot(CSnapshot_Helper* snapshot) {
  ForEachNode([&](core::CoreNode* node) { node->ReleaseHelperSnapshot(snapshot); });
}

void TestToolInterface::ReleaseTransformSnapshot(CSnapshot* snapshot) {
  ForEachNode([&](core::CoreNode* node) { node->ReleaseSnapshot(snapshot); });
}

}  // namespace vuk::rgw::testing_support
