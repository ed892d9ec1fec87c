#include "plugins/1dpositioner/1dpositionerobject.h"

#include "plugins/common/hideswitch.h"
#include "util/bytes.h"

namespace vuk::rgw::addon {

const ToolInfo C1DPositionerObject::kInfo = {
    "1DPositioner",
    "utility/1dpositioner",
    "Quoll 1DPositioner",
    "Accessory",
    "Quoll 1DPositioner outputs a movement or velocity from all supported input devices directly to a dummy in real "
    "time. Its main use is for controlling and animating objects in the scene in real time by parenting/linking your "
    "object to the dummy",
    "1DPositioner: an input channel that moves a dummy.",
    {},
};

const SavedData C1DPositionerObject::kSavedData{"1DPositionerDataChunk", 100};

namespace {

constexpr char kSettingsKey[] = "sDataChunkSaveStruct";
// Four flags and four spare bytes, then the response factor, maximum and
// change limit.
constexpr std::size_t kSettingsSize = 32;

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
  CreateHelper(CMesh_Cage());
  if (const HelperSnapshot helper = Helper(owner->iface->GetTime())) helper->SetWireframe(true);
}

PoseRecord C1DPositionerObject::CRelativeCageNode::Read(double time) {
  util::Matrix<double> local = Local(time);
  scale = {local.Axis(0).Length(), local.Axis(1).Length(), local.Axis(2).Length()};
  for (int axis = 0; axis < 3; ++axis) local.SetAxis(axis, local.Axis(axis).Normalized());
  return {local.GetTranslation(), local.ToQuat()};
}

void C1DPositionerObject::CRelativeCageNode::Update(double time) {
  util::Matrix<double> local = ring.CurrentMatrix();
  const double lengths[3] = {scale.x, scale.y, scale.z};
  for (int axis = 0; axis < 3; ++axis) local.SetAxis(axis, local.Axis(axis) * lengths[axis]);
  if (const TransformSnapshot snapshot = Transform(time)) snapshot->SetLocalTransform(local);
}

void C1DPositionerObject::Start(double time) {
  // A run never steps its start frame again: that frame's state and the
  // cage's key there are where the run goes on from.
  history.RewindTo(time, channel, *iface);
  ring.Fill(cageNode.Read(time));
  helpers.Start(cageNode.handle);
}

void C1DPositionerObject::Stop(double) { helpers.Stop(cageNode.handle); }

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
  helpers.AddTo(iface, this);
  iface->EndGroup();
  iface->BeginGroup("Input Property Parameters", "");
  iface->AddSpinner(channel.name + " Response Factor", "How quickly the to respond to input value changes.",
                    &channel.responseFactor, 0, 1, 0.001, 1, true, 0, nullptr);
  iface->AddSpinner(channel.name + " Maximum", "The maximum/minimum value of the input.", &channel.maximum, -1e16, 1e16,
                    0.001, 1, true, 0, nullptr);
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
  if (!cageNode.Find()) return 1;
  cageNode.RefreshHelper();
  util::DataChunk chunk;
  if (!kSavedData.Read(iface, chunk)) return 1;
  const util::Bytes* settings = SavedData::Child(chunk, kSettingsKey, kSettingsSize);
  if (!settings) return 1;
  util::ByteReader in(*settings);
  std::uint8_t flags[4] = {};
  double responseFactor = 0, maximum = 0, changeLimit = 0;
  in.GetBytes(flags, sizeof flags);
  in.Skip(4);
  in.Get(responseFactor);
  in.Get(maximum);
  in.Get(changeLimit);
  helpers.hideDuringRecording = flags[0] != 0;
  helpers.hide = flags[1] != 0;
  channel.keepState = flags[2] != 0;
  channel.integrate = flags[3] != 0;
  channel.responseFactor = responseFactor;
  channel.maximum = maximum;
  channel.changeLimit = changeLimit;
  // Settings without a usable history still load: the next run starts at rest.
  history.LoadFrom(chunk);
  return 0;
}

std::int32_t C1DPositionerObject::Save() {
  util::DataChunk chunk = kSavedData.Begin();
  util::Bytes settings;
  util::ByteWriter out(settings);
  for (bool flag : {helpers.hideDuringRecording, helpers.hide, channel.keepState, channel.integrate}) {
    out.Put(static_cast<std::uint8_t>(flag));
  }
  out.PutZeros(4);
  out.Put(channel.responseFactor);
  out.Put(channel.maximum);
  out.Put(channel.changeLimit);
  chunk.AddChild(kSettingsKey, std::move(settings));
  history.SaveTo(chunk);
  SavedData::Store(iface, chunk);
  return 0;
}

void C1DPositionerObject::Changed(std::string label) {
  const ConfigChange change(std::move(label));
  if (change.label == HelperSwitches::kHide) ApplyHideSwitch(iface, this, change, cageNode.handle, helpers.hide);
}

}  // namespace vuk::rgw::addon
