#include "plugins/lookatcam/lookatcamobject.h"

#include "plugins/common/hideswitch.h"

namespace vuk::rgw::addon {

const ToolInfo CLookAtCamObject::kInfo = {
    "LookAtCam",
    "utility/lookatcam",
    "Quoll LookAtCam",
    "Camera",
    "Quoll LookAtCam works exactly as an ordinary camera with a target. It also has its target distance set to the "
    "distance to the target.",
    "LookAtCam: a camera that keeps its target in view.",
    {},
};

namespace {

constexpr char kHideCamera[] = "Hide Camera";
constexpr char kInitialize[] = "Initialize";
constexpr std::int32_t kSavedSize = 3;

}  // namespace

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
  CreateHelper(CMesh_TargetMesh());
  const double now = owner->iface->GetTime();
  if (const TransformSnapshot snapshot = Transform(now)) snapshot->SetLocalTransform(util::Matrix<double>());
  // Solid, so that it reads as a thing to look at and not as a cage.
  if (const HelperSnapshot helper = Helper(now)) {
    helper->SetBackfaceCull(true);
    helper->SetWireframe(false);
  }
}

void CLookAtCamObject::CLookAtCamNode::Create() {
  CreateCamera();
  const double now = owner->iface->GetTime();
  if (const TransformSnapshot snapshot = Transform(now)) {
    util::Matrix<double> local;
    local.SetTranslation({0, 0, 10});
    snapshot->SetLocalTransform(local);
  }
  WriteTargetDistance(now, (World(now).GetTranslation() - target.World(now).GetTranslation()).Length());
}

void CLookAtCamObject::CLookAtCamNode::WriteTargetDistance(double time, double distance) const {
  if (const LensSnapshot lens = Lens(time)) lens->SetTargetDistance(distance);
}

void CLookAtCamObject::CLookAtCamNode::Measure(double time) {
  const util::Matrix<double> camera = World(time);
  scale = {camera.Axis(0).Length(), camera.Axis(1).Length(), camera.Axis(2).Length()};
  WriteTargetDistance(time, (camera.GetTranslation() - target.World(time).GetTranslation()).Length());
}

void CLookAtCamObject::CLookAtCamNode::Update(double time) {
  const util::Matrix<double> targetWorld = target.World(time);
  util::Matrix<double> camera = World(time);
  util::Vector3<double> d = camera.GetTranslation() - targetWorld.GetTranslation();
  WriteTargetDistance(time, d.Length());
  // The camera looks down its local minus Z: its Z row points away from the
  // target. No zero vector is special: the rows collapse and the write goes on.
  d.Normalize();
  const util::Vector3<double> r = util::Vector3<double>(0, 1, 0).Cross(d).Normalized();
  const util::Vector3<double> u = d.Cross(r).Normalized();
  const util::Vector3<double> rows[3] = {r, u, d};
  const double lengths[3] = {scale.x, scale.y, scale.z};
  for (int axis = 0; axis < 3; ++axis) camera.SetAxis(axis, rows[axis] * (lengths[axis] / rows[axis].Length()));
  if (const TransformSnapshot snapshot = Transform(time)) snapshot->SetWorldTransform(camera);
}

void CLookAtCamObject::Start(double time) {
  cameraNode.Measure(time);
  helpers.Start(targetNode.handle);
}

void CLookAtCamObject::Stop(double) { helpers.Stop(targetNode.handle); }

void CLookAtCamObject::Step(double time) {
  // Helpers first, the node written last comes last.
  targetNode.Update(time);
  cameraNode.Update(time);
}

void CLookAtCamObject::TimeChanged(double) { iface->UpdateConfig(); }

std::int32_t CLookAtCamObject::BuildConfig() {
  iface->BeginConfig();
  iface->AddButton(kInitialize, "Snaps camera to correct orientation and sets correct target distance.", this);
  iface->BeginGroup("General Modes", "");
  helpers.AddTo(iface, this);
  iface->AddCheckBox(kHideCamera, kHideCamera, &hideCamera, this);
  iface->EndGroup();
  iface->EndConfig();
  return 0;
}

std::int32_t CLookAtCamObject::Create() {
  // The camera's create step reads the target's position.
  CreateNodes(iface, {&targetNode, &cameraNode});
  return 0;
}

std::int32_t CLookAtCamObject::Load() {
  if (!FindNodes({&cameraNode, &targetNode})) return 1;
  targetNode.RefreshHelper();
  const std::uint8_t* bytes = SavedBytes(iface, kSavedSize);
  if (!bytes) return 1;
  const std::uint8_t saved[kSavedSize] = {bytes[0], bytes[1], bytes[2]};
  helpers.hideDuringRecording = saved[0] != 0;
  helpers.hide = saved[1] != 0;
  hideCamera = saved[2] != 0;
  iface->SetSaveData(saved, kSavedSize);
  return 0;
}

std::int32_t CLookAtCamObject::Save() {
  const std::uint8_t saved[kSavedSize] = {helpers.hideDuringRecording, helpers.hide, hideCamera};
  iface->SetSaveData(saved, kSavedSize);
  return 0;
}

const ToolNode* CLookAtCamObject::SwitchedNode(const std::string& label, bool*& flag) {
  if (label == HelperSwitches::kHide) {
    flag = &helpers.hide;
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
  if (const ToolNode* node = SwitchedNode(change.label, flag)) {
    ApplyHideSwitch(iface, this, change, node->handle, *flag);
    return;
  }
  // The button measures at time 0, not at the scene's current time.
  if (!change.IsReplay() && change.label == kInitialize) {
    cameraNode.Measure(0.0);
    cameraNode.Update(0.0);
    iface->Redraw();
  }
}

}  // namespace vuk::rgw::addon
