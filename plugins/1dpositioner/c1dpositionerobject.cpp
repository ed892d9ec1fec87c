#include "plugins/1dpositioner/c1dpositionerobject.h"

#include "plugins/common/hideswitch.h"
#include "util/bytes.h"

namespace vuk::rgw::addon {

namespace {

constexpr char kHideHelpers[] = "Hide Helpers";
constexpr char kHideHelpersDuringRecording[] = "Hide Helpers During Recording";
constexpr char kVersionKey[] = "iVersion";
constexpr char kSaveStructKey[] = "sDataChunkSaveStruct";

}  // namespace

C1DPositionerObject::CRelativeCageNode::CMesh_Cage::CMesh_Cage() {
  const util::CMesh_Box box(1, 1, 1);
  vertices = box.vertices;
  faces = box.faces;
  textureVertices = box.textureVertices;
  textureFaces = box.textureFaces;
  // The arrow: a flat triangle from the box's front face along minus Z.
  const auto tip = static_cast<std::int32_t>(vertices.size());
  vertices.push_back({0, 0, -1.2});
  vertices.push_back({-0.25, 0, -0.5});
  vertices.push_back({0.25, 0, -0.5});
  for (std::int32_t corner : {tip, tip + 1, tip + 2}) faces.push_back(corner);
  for (std::int32_t corner : {0, 1, 2}) textureFaces.push_back(corner);
}

void C1DPositionerObject::CRelativeCageNode::Create() {
  CInterface* iface = owner->iface;
  handle = iface->CreateMeshNode(name, nullptr, CMesh_Cage(), nullptr);
  if (!handle) return;
  handle->Extension(extension::kNodeRefresh, nullptr);
  if (CSnapshot_Helper* helper = iface->GetHelperSnapshot(handle, iface->GetTime())) {
    helper->SetWireframe(true);
    iface->ReleaseHelperSnapshot(helper);
  }
}

PoseRecord C1DPositionerObject::CRelativeCageNode::Read(double time) {
  CInterface* iface = owner->iface;
  util::Matrix<double> local;
  if (CSnapshot* snapshot = iface->GetTransformSnapshot(handle, time)) {
    local = snapshot->GetLocalTransform();
    iface->ReleaseTransformSnapshot(snapshot);
  }
  scale = {local.Axis(0).Length(), local.Axis(1).Length(), local.Axis(2).Length()};
  for (int axis = 0; axis < 3; ++axis) local.SetAxis(axis, local.Axis(axis).Normalized());
  return {local.GetTranslation(), local.ToQuat()};
}

void C1DPositionerObject::CRelativeCageNode::Update(double time) {
  CInterface* iface = owner->iface;
  util::Matrix<double> local = owner->ring.CurrentMatrix();
  const double lengths[3] = {scale.x, scale.y, scale.z};
  for (int axis = 0; axis < 3; ++axis) local.SetAxis(axis, local.Axis(axis) * lengths[axis]);
  if (CSnapshot* snapshot = iface->GetTransformSnapshot(handle, time)) {
    snapshot->SetLocalTransform(local);
    iface->ReleaseTransformSnapshot(snapshot);
  }
}

C1DPositionerObject::C1DPositionerObject(const CreateParam& param) : CCamera(param) {}

void C1DPositionerObject::Start(double time) {
  // A run never steps its start frame again: that frame's state and the
  // cage's key there are where the run goes on from. Half a frame keeps the
  // start frame's record however the times were summed.
  history.RewindTo(time + 0.5 * iface->GetFrameDuration(), channel);
  ring.Fill(cageNode.Read(time));
  if (hideHelpersDuringRecording || hideHelpers) SetHidden(cageNode.handle, true);
}

void C1DPositionerObject::Stop(double) {
  // A helper the user hid for good stays hidden.
  if (hideHelpersDuringRecording && !hideHelpers) SetHidden(cageNode.handle, false);
}

void C1DPositionerObject::Step(double time) {
  channel.Read();
  const double dt = iface->GetFrameDuration();
  channel.Feed(dt);
  // The negated output is the cage's velocity along its local Z.
  const PoseRecord& now = ring.Current();
  PoseRecord& next = ring.Next();
  next.rotation = now.rotation;
  next.position = now.position + now.rotation.Rotate({0, 0, -channel.output}) * dt;
  ring.Advance();
  cageNode.Update(time);
  history.Record(time, channel);
}

void C1DPositionerObject::TimeChanged(double) { iface->UpdateConfig(); }

std::int32_t C1DPositionerObject::BuildConfig() {
  channel.Create(iface);
  iface->BeginConfig();
  iface->BeginGroup("General Modes", "");
  iface->AddCheckBox(kHideHelpers, kHideHelpers, &hideHelpers, this);
  iface->AddCheckBox(kHideHelpersDuringRecording, kHideHelpersDuringRecording, &hideHelpersDuringRecording, nullptr);
  iface->EndGroup();
  iface->BeginGroup("Input Property Parameters", "");
  iface->AddSpinner(channel.name + " Response Factor", "How quickly the to respond to input value changes.",
                    &channel.responseFactor, 0, 1, 0.001, 1, true, 0, nullptr);
  iface->AddSpinner(channel.name + " Maximum", "The maximum/minimum value of the input.", &channel.maximum, -1e16,
                    1e16, 0.001, 1, true, 0, nullptr);
  iface->AddSpinner(channel.name + " Change Limit",
                    "This parameter limits the rate of change (the velocity) of the input.", &channel.changeLimit, 0,
                    1e16, 0.001, 1, true, 0, nullptr);
  iface->AddCheckBox(channel.name + " Keep Trinary State",
                     "A press latches the input's direction and a second press releases it.", &channel.keepState,
                     nullptr);
  iface->AddCheckBox(channel.name + " Integrate", "The input sets how fast the value changes, not the value.",
                     &channel.integrate, nullptr);
  iface->EndGroup();
  iface->EndConfig();
  return 0;
}

std::int32_t C1DPositionerObject::Create() {
  cageNode.Create();
  if (cageNode.handle) cageNode.handle->Select();
  iface->UpdateConfig();
  return 0;
}

std::int32_t C1DPositionerObject::Load() {
  cageNode.handle = iface->FindNode(cageNode.name);
  if (!cageNode.handle) return 1;
  cageNode.handle->Extension(extension::kNodeRefresh, nullptr);
  std::int32_t length = 0;
  const std::uint8_t* bytes = iface->GetSaveData(&length);
  util::DataChunk chunk;
  if (!bytes || length <= 0 || !chunk.Read(bytes, static_cast<std::size_t>(length)) || chunk.name != kChunkName) {
    return 1;
  }
  const util::DataChunk* version = chunk.FindChild(kVersionKey);
  const util::DataChunk* saved = chunk.FindChild(kSaveStructKey);
  if (!version || !saved || saved->data.size() != kSaveStructSize) return 1;
  util::ByteReader in(saved->data);
  std::uint8_t flags[4] = {};
  in.GetBytes(flags, sizeof flags);
  in.Skip(4);
  in.Get(channel.responseFactor);
  in.Get(channel.maximum);
  in.Get(channel.changeLimit);
  hideHelpersDuringRecording = flags[0] != 0;
  hideHelpers = flags[1] != 0;
  channel.keepState = flags[2] != 0;
  channel.integrate = flags[3] != 0;
  // Settings without a usable history still load: the next run starts at rest.
  history.LoadFrom(chunk);
  return 0;
}

std::int32_t C1DPositionerObject::Save() {
  util::DataChunk chunk(kChunkName, {});
  util::Bytes version;
  util::ByteWriter(version).Put(kVersion);
  chunk.AddChild(kVersionKey, std::move(version));
  util::Bytes saved;
  util::ByteWriter out(saved);
  for (bool flag : {hideHelpersDuringRecording, hideHelpers, channel.keepState, channel.integrate}) {
    out.Put(static_cast<std::uint8_t>(flag));
  }
  out.PutZeros(4);
  out.Put(channel.responseFactor);
  out.Put(channel.maximum);
  out.Put(channel.changeLimit);
  chunk.AddChild(kSaveStructKey, std::move(saved));
  history.SaveTo(chunk);
  const util::Bytes flat = chunk.Flatten();
  iface->SetSaveData(flat.data(), static_cast<std::int32_t>(flat.size()));
  return 0;
}

void C1DPositionerObject::Changed(std::string label) {
  const ConfigChange change(std::move(label));
  if (change.label == kHideHelpers) ApplyHideSwitch(iface, this, change, cageNode.handle, hideHelpers);
}

}  // namespace vuk::rgw::addon
