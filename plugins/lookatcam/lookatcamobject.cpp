#include "plugins/lookatcam/lookatcamobject.h"

#include <cmath>

#include "plugins/common/hideswitch.h"

namespace vuk::rgw::addon {

namespace {

constexpr double kPi = 3.141592653589793;
constexpr char kHideHelpers[] = "Hide Helpers";
constexpr char kHideHelpersDuringRecording[] = "Hide Helpers During Recording";
constexpr char kHideCamera[] = "Hide Camera";
constexpr char kInitialize[] = "Initialize";

util::Matrix<double> WorldAt(CInterface* iface, CNode* node, double time) {
  util::Matrix<double> world;
  if (CSnapshot* snapshot = iface->GetTransformSnapshot(node, time)) {
    world = snapshot->GetWorldTransform();
    iface->ReleaseTransformSnapshot(snapshot);
  }
  return world;
}

}  // namespace

void CLookAtCamObject::SceneNode::Destroy() {
  owner->iface->DeleteNode(handle);
  handle = nullptr;
}

CLookAtCamObject::CTargetNode::CMesh_TargetMesh::CMesh_TargetMesh() {
  // Three crossed bars, each a thin box: a target that reads the same from any side.
  const double arm = 0.5, thick = 0.04;
  const util::Vector3<double> sizes[3] = {{2 * arm, thick, thick}, {thick, 2 * arm, thick}, {thick, thick, 2 * arm}};
  for (const util::Vector3<double>& size : sizes) {
    const util::CMesh_Box bar(size.x, size.y, size.z);
    const auto base = static_cast<std::int32_t>(vertices.size());
    vertices.insert(vertices.end(), bar.vertices.begin(), bar.vertices.end());
    for (std::int32_t index : bar.faces) faces.push_back(base + index);
    textureFaces.insert(textureFaces.end(), bar.textureFaces.begin(), bar.textureFaces.end());
  }
  textureVertices = util::CMesh_Box(1, 1, 1).textureVertices;
}

void CLookAtCamObject::CTargetNode::Create() {
  CInterface* iface = owner->iface;
  handle = iface->CreateMeshNode(name, nullptr, CMesh_TargetMesh(), nullptr);
  if (!handle) return;
  handle->Extension(extension::kNodeRefresh, nullptr);
  if (CSnapshot* snapshot = iface->GetTransformSnapshot(handle, iface->GetTime())) {
    snapshot->SetLocalTransform(util::Matrix<double>());
    iface->ReleaseTransformSnapshot(snapshot);
  }
  if (CSnapshot_Helper* helper = iface->GetHelperSnapshot(handle, iface->GetTime())) {
    helper->SetBackfaceCull(true);
    helper->SetWireframe(false);
    iface->ReleaseHelperSnapshot(helper);
  }
}

void CLookAtCamObject::CLookAtCamNode::Create() {
  CInterface* iface = owner->iface;
  handle = iface->CreateCameraNode(name, nullptr, nullptr);
  if (!handle) return;
  const double now = iface->GetTime();
  if (CSnapshot* snapshot = iface->GetTransformSnapshot(handle, now)) {
    util::Matrix<double> local;
    local.SetTranslation({0, 0, 10});
    snapshot->SetLocalTransform(local);
    iface->ReleaseTransformSnapshot(snapshot);
  }
  const util::Vector3<double> camera = WorldAt(iface, handle, now).GetTranslation();
  const util::Vector3<double> target = WorldAt(iface, owner->targetNode.handle, now).GetTranslation();
  baseTargetDistance = targetDistance = (camera - target).Length();
  WriteTargetDistance(now);
  previousTargetDistance = targetDistance;
}

void CLookAtCamObject::CLookAtCamNode::WriteTargetDistance(double time) {
  CInterface* iface = owner->iface;
  if (CSnapshot_Lens* lens = iface->GetLensSnapshot(handle, time)) {
    lens->SetTargetDistance(targetDistance);
    iface->ReleaseLensSnapshot(lens);
  }
}

void CLookAtCamObject::CLookAtCamNode::Measure(double time) {
  CInterface* iface = owner->iface;
  const util::Matrix<double> camera = WorldAt(iface, handle, time);
  scale = {camera.Axis(0).Length(), camera.Axis(1).Length(), camera.Axis(2).Length()};
  const util::Matrix<double> target = WorldAt(iface, owner->targetNode.handle, time);
  baseTargetDistance = targetDistance = (camera.GetTranslation() - target.GetTranslation()).Length();
  WriteTargetDistance(time);
  previousTargetDistance = targetDistance;
  halfWidthAtTarget = std::tan((fieldOfView * 0.5 / 180) * kPi) * baseTargetDistance;
}

void CLookAtCamObject::CLookAtCamNode::Update(double time) {
  CInterface* iface = owner->iface;
  const util::Matrix<double> target = WorldAt(iface, owner->targetNode.handle, time);
  util::Matrix<double> camera = WorldAt(iface, handle, time);
  util::Vector3<double> d = camera.GetTranslation() - target.GetTranslation();
  targetDistance = d.Length();
  WriteTargetDistance(time);
  previousTargetDistance = targetDistance;
  // The camera looks down its local minus Z: its Z row points away from the target.
  d.Normalize();
  const util::Vector3<double> r = util::Vector3<double>(0, 1, 0).Cross(d).Normalized();
  const util::Vector3<double> u = d.Cross(r).Normalized();
  const util::Vector3<double> rows[3] = {r, u, d};
  const double lengths[3] = {scale.x, scale.y, scale.z};
  for (int axis = 0; axis < 3; ++axis) camera.SetAxis(axis, rows[axis] * (lengths[axis] / rows[axis].Length()));
  if (CSnapshot* snapshot = iface->GetTransformSnapshot(handle, time)) {
    snapshot->SetWorldTransform(camera);
    iface->ReleaseTransformSnapshot(snapshot);
  }
}

CLookAtCamObject::CLookAtCamObject(const CreateParam& param)
    : CCamera(param), targetNode(this), cameraNode(this), targetOwner(this), cameraOwner(this) {}

void CLookAtCamObject::Start(double time) {
  cameraNode.Measure(time);
  if (hideHelpersDuringRecording || hideHelpers) SetHidden(targetNode.handle, true);
}

void CLookAtCamObject::Stop(double) {
  // A helper the user hid for good stays hidden.
  if (hideHelpersDuringRecording && !hideHelpers) SetHidden(targetNode.handle, false);
}

void CLookAtCamObject::Step(double time) {
  targetNode.Update(time);
  cameraNode.Update(time);
}

void CLookAtCamObject::TimeChanged(double) { iface->UpdateConfig(); }

std::int32_t CLookAtCamObject::BuildConfig() {
  iface->BeginConfig();
  iface->AddButton(kInitialize, "Snaps camera to correct orientation and sets correct target distance.", this);
  iface->BeginGroup("General Modes", "");
  iface->AddCheckBox(kHideHelpers, kHideHelpers, &hideHelpers, this);
  iface->AddCheckBox(kHideHelpersDuringRecording, kHideHelpersDuringRecording, &hideHelpersDuringRecording, nullptr);
  iface->AddCheckBox(kHideCamera, kHideCamera, &hideCamera, this);
  iface->EndGroup();
  iface->EndConfig();
  return 0;
}

std::int32_t CLookAtCamObject::Create() {
  targetNode.Create();
  cameraNode.Create();
  if (cameraNode.handle) cameraNode.handle->Select();
  iface->UpdateConfig();
  return 0;
}

std::int32_t CLookAtCamObject::Load() {
  cameraNode.handle = iface->FindNode(cameraNode.name);
  targetNode.handle = iface->FindNode(targetNode.name);
  if (!cameraNode.handle || !targetNode.handle) return 1;
  targetNode.handle->Extension(extension::kNodeRefresh, nullptr);
  std::int32_t length = 0;
  const std::uint8_t* bytes = iface->GetSaveData(&length);
  if (!bytes || length != 3) return 1;
  hideHelpersDuringRecording = bytes[0] != 0;
  hideHelpers = bytes[1] != 0;
  hideCamera = bytes[2] != 0;
  const std::uint8_t copy[3] = {bytes[0], bytes[1], bytes[2]};
  iface->SetSaveData(copy, 3);
  return 0;
}

std::int32_t CLookAtCamObject::Save() {
  saveBuffer[0] = hideHelpersDuringRecording;
  saveBuffer[1] = hideHelpers;
  saveBuffer[2] = hideCamera;
  iface->SetSaveData(saveBuffer, 3);
  return 0;
}

const CLookAtCamObject::SceneNode* CLookAtCamObject::SwitchedNode(const std::string& label, bool*& flag) {
  if (label == kHideHelpers) {
    flag = &hideHelpers;
    return &targetNode;
  }
  if (label == kHideCamera) {
    flag = &hideCamera;
    return &cameraNode;
  }
  return nullptr;
}

void CLookAtCamObject::Changed(std::string label) {
  const ConfigChange change(std::move(label));
  bool* flag = nullptr;
  if (const SceneNode* node = SwitchedNode(change.label, flag)) {
    ApplyHideSwitch(iface, this, change, node->handle, *flag);
    return;
  }
  if (!change.IsReplay() && change.label == kInitialize) {
    cameraNode.Measure(0.0);
    cameraNode.Update(0.0);
    iface->Redraw();
  }
}

}  // namespace vuk::rgw::addon
