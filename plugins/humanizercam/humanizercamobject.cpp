#include "plugins/humanizercam/humanizercamobject.h"

#include "plugins/common/hideswitch.h"
#include "plugins/common/toolhistory.h"
#include "util/bytes.h"

namespace vuk::rgw::addon {

const ToolInfo CHumanizerCamObject::kInfo = {
    "HumanizerCam",
    "humanizercam",
    "Quoll HumanizerCam",
    "Camera",
    "Quoll HumanizerCam adds irregularities onto a camera's movement. Quoll HumanizerCam is aligned and attached to a "
    "previously animated camera to add the irregularities to the shot.",
    "HumanizerCam: a hand-held shake on any camera.",
    {},
};

const SavedData CHumanizerCamObject::kSavedData{"HumanizerCamDataChunk", 104};

namespace {

constexpr char kReinitialize[] = "Re-Initialize";
constexpr char kSettingsKey[] = "sDataChunkSaveStruct";
constexpr char kFirstTimeKey[] = "bFirstTime";
constexpr char kBaseKey[] = "cHumanizerCamNodemInit";
// The three visibility bytes and five spare, two spare doubles (per-frame
// values once, which an undo would not bring back), "Allow Roll" and seven
// spare, the channel's response factor
// and maximum, then the seven parameters.
constexpr std::size_t kSettingsSize = 104;
constexpr std::size_t kMatrixSize = 16 * sizeof(double);

}  // namespace

template <typename Self, typename Visit>
void HumanizerHistory::ForEach(Self& self, Visit visit) {
  visit("ancHumanizerCamvRotShakeAdderMem", self.stage_);
  visit("ancHumanizerCamvRotShakeAdder", self.output_);
  // Beyond the shake's two stages: what a run from a middle frame also needs.
  visit("ancHumanizerCamShakerAmplitude", self.amplitude_);
  visit("ancHumanizerCamRandomState", self.randomState_);
}

void HumanizerHistory::Record(double t, const HumanizerCamSim& sim) {
  stage_.Set(t, sim.stage);
  output_.Set(t, sim.output);
  amplitude_.Set(t, sim.channel.output);
  randomState_.Set(t, static_cast<int>(sim.random.State()));
}

void HumanizerHistory::RewindTo(double t, double dt, std::uint32_t seed, HumanizerCamSim& sim, CInterface& tool) {
  ForEach(*this, [t, &tool](const char*, auto& history) { CutHistoryAfter(t, history, tool); });
  if (stage_.records.empty()) {
    sim.Resume({}, {}, 0, seed, dt);
    return;
  }
  sim.Resume(stage_.records.back().value, output_.records.back().value, amplitude_.records.back().value,
             static_cast<std::uint32_t>(randomState_.records.back().value), dt);
}

void HumanizerHistory::SaveTo(util::DataChunk& chunk) const {
  ForEach(*this, [&chunk](const char* key, const auto& history) { SaveHistoryEntry(chunk, key, history); });
}

bool HumanizerHistory::LoadFrom(const util::DataChunk& chunk) {
  HumanizerHistory loaded;
  bool complete = true;
  ForEach(loaded,
          [&](const char* key, auto& history) { complete = complete && LoadHistoryEntry(chunk, key, history); });
  const std::size_t frames = loaded.stage_.records.size();
  ForEach(loaded, [&](const char*, auto& history) { complete = complete && history.records.size() == frames; });
  if (complete) *this = std::move(loaded);
  return complete;
}

void CHumanizerCamObject::CHumanizerCamNode::Create() {
  CreateCamera();
  if (const TransformSnapshot snapshot = Transform(owner->iface->GetTime())) {
    snapshot->SetLocalTransform(util::Matrix<double>());
  }
}

void CHumanizerCamObject::CHumanizerCamNode::Update(double time) {
  // The shake has no translation: the product keeps the base's position.
  if (const TransformSnapshot snapshot = Transform(time)) snapshot->SetLocalTransform(mInit * ring.CurrentMatrix());
}

void CHumanizerCamObject::Start(double time) {
  if (bFirstTime) {
    cameraNode.mInit = cameraNode.Local(time);
    bFirstTime = false;
  }
  history.RewindTo(time, iface->GetFrameDuration(), kSeed, sim, *iface);
}

void CHumanizerCamObject::Step(double time) {
  sim.channel.Read();
  sim.Step(iface->GetFrameDuration());
  cameraNode.Update(time);
  history.Record(time, sim);
}

void CHumanizerCamObject::TimeChanged(double) { iface->UpdateConfig(); }

std::int32_t CHumanizerCamObject::BuildConfig() {
  InputChannel& channel = sim.channel;
  channel.Create(iface);
  // Small deflections shake little, full ones fully.
  if (channel.control) channel.control->exponent = 1.3;
  iface->BeginConfig();
  iface->BeginGroup("Camera Parameters", "");
  iface->AddButton(kReinitialize, "Re-initializes the camera position and orientation.", this);
  for (SpinnerParameter& parameter : sim.parameters) {
    iface->AddSpinner(parameter.name, parameter.name, &parameter.value, parameter.minimum, parameter.maximum,
                      parameter.step, 1, true, 0, nullptr);
  }
  iface->EndGroup();
  iface->BeginGroup("Input Property Parameters", "");
  const std::string responseFactor = channel.name + " Response Factor";
  const std::string maximum = channel.name + " Maximum";
  iface->AddSpinner(responseFactor, responseFactor, &channel.responseFactor, 0, 1, 0.001, 1, true, 0, nullptr);
  iface->AddSpinner(maximum, maximum, &channel.maximum, 0, 1e16, 0.001, 1, true, 0, nullptr);
  iface->EndGroup();
  iface->EndConfig();
  return 0;
}

std::int32_t CHumanizerCamObject::Create() {
  cameraNode.Create();
  if (cameraNode.handle) cameraNode.handle->Select();
  iface->UpdateConfig();
  return 0;
}

std::int32_t CHumanizerCamObject::Load() {
  if (!cameraNode.Find()) return 1;
  util::DataChunk chunk;
  if (!kSavedData.Read(iface, chunk)) return 1;
  const util::Bytes* settings = SavedData::Child(chunk, kSettingsKey, kSettingsSize);
  const util::Bytes* firstTime = SavedData::Child(chunk, kFirstTimeKey, 1);
  const util::Bytes* base = SavedData::Child(chunk, kBaseKey, kMatrixSize);
  // The histories go last: they are taken only when whole, and nothing
  // after them can fail.
  if (!settings || !firstTime || !base || !history.LoadFrom(chunk)) return 1;
  util::ByteReader in(*settings);
  std::uint8_t flags[3] = {};
  std::uint8_t allowRoll = 0;
  in.GetBytes(flags, sizeof flags);
  in.Skip(5 + 2 * sizeof(double));
  in.Get(allowRoll);
  in.Skip(7);
  in.Get(sim.channel.responseFactor);
  in.Get(sim.channel.maximum);
  for (SpinnerParameter& parameter : sim.parameters) in.Get(parameter.value);
  for (std::size_t i = 0; i < hideFlags.size(); ++i) hideFlags[i] = flags[i] != 0;
  sim.allowRoll = allowRoll != 0;
  bFirstTime = firstTime->front() != 0;
  util::ByteReader matrix(*base);
  for (double& element : cameraNode.mInit.m) matrix.Get(element);
  return 0;
}

std::int32_t CHumanizerCamObject::Save() {
  util::DataChunk chunk = kSavedData.Begin();
  util::Bytes settings;
  util::ByteWriter out(settings);
  for (bool flag : hideFlags) out.Put(static_cast<std::uint8_t>(flag));
  out.PutZeros(5 + 2 * sizeof(double));
  out.Put(static_cast<std::uint8_t>(sim.allowRoll));
  out.PutZeros(7);
  out.Put(sim.channel.responseFactor);
  out.Put(sim.channel.maximum);
  for (const SpinnerParameter& parameter : sim.parameters) out.Put(parameter.value);
  chunk.AddChild(kSettingsKey, std::move(settings));
  chunk.AddChild(kFirstTimeKey, util::Bytes{static_cast<std::uint8_t>(bFirstTime)});
  util::Bytes base;
  util::ByteWriter matrix(base);
  for (double element : cameraNode.mInit.m) matrix.Put(element);
  chunk.AddChild(kBaseKey, std::move(base));
  history.SaveTo(chunk);
  SavedData::Store(iface, chunk);
  return 0;
}

void CHumanizerCamObject::Changed(std::string label) {
  const ConfigChange change(std::move(label));
  // The next run takes the camera's pose then as its new base.
  if (!change.IsReplay() && change.label == kReinitialize) bFirstTime = true;
}

}  // namespace vuk::rgw::addon
