#include "plugins/helicopter/helicopterobject.h"

#include "util/bytes.h"

namespace vuk::rgw::addon {

const ToolInfo CHeliCamObject::kInfo = {
    "Helicopter",
    "helicopter",
    "Quoll Helicopter",
    "Camera",
    "Quoll Helicopter is a highly accurate helicopter simulator which uses an advanced control system to aid the "
    "pilot while flying making it easy to learn.",
    "Helicopter: a body under a regulator, flown live.",
    {},
};

const SavedData CHeliCamObject::kSavedData{"HeliCamDataChunk", 100};

namespace {

constexpr char kSettingsKey[] = "sDataChunkSaveStruct";
constexpr char kFirstTimeKey[] = "bFirstTime";
constexpr char kInitialize[] = "Initialize";
constexpr char kHideCockpitCamera[] = "Hide Cockpit Camera";
constexpr char kHideFollowCamera[] = "Hide Follow Camera";
constexpr char kFollowAllDirections[] = "FollowCam w all directions";
// Five check boxes and three spare bytes, "Relative Scale", then each
// channel's response factor and maximum.
constexpr std::size_t kSettingsSize = 8 + 8 + HelicopterPlant::kChannelCount * 16;
constexpr std::array<const char*, CHeliCamObject::kGaugeCount> kGaugeNames = {"Velocity", "Velocity (Percent of Max)",
                                                                              "Height"};

// The settings saved one double each, under their keys.
template <typename Heli, typename Visit>
void ForEachValue(Heli& heli, Visit visit) {
  visit("cHeliCam.dAirResistanceForceMult", heli.plant.airResistance);
  visit("cHeliCamdMainRotorSpeed", heli.dMainRotorSpeed);
  visit("cHeliCamdTailRotorSpeed", heli.dTailRotorSpeed);
  visit("cHeliCamdTurbulenceIrregularity", heli.dTurbulenceIrregularity);
  visit("cHeliCamdTurbulenceOffset", heli.dTurbulenceOffset);
}

util::Bytes DoubleBytes(double value) {
  util::Bytes bytes;
  util::ByteWriter(bytes).Put(value);
  return bytes;
}

}  // namespace

std::vector<ToolNode*> CHeliCamObject::SwitchedNodes(const std::string& label, bool*& flag) {
  if (label == HelperSwitches::kHide) {
    flag = &helpers.hide;
    return Helpers();
  }
  if (label == kHideCockpitCamera) {
    flag = &bHideCockpitCam;
    return {&cockpitCam};
  }
  if (label == kHideFollowCamera) {
    flag = &bHideFollowCam;
    return {&followCam};
  }
  return {};
}

void CHeliCamObject::ApplyHideStates() {
  for (const char* label : {HelperSwitches::kHide, kHideCockpitCamera, kHideFollowCamera}) {
    bool* flag = nullptr;
    for (ToolNode* node : SwitchedNodes(label, flag)) SetHidden(node->handle, *flag);
  }
}

void CHeliCamObject::SetHelpersHidden(bool hidden) {
  for (ToolNode* node : Helpers()) SetHidden(node->handle, hidden);
}

void CHeliCamObject::Start(double time) {
  history.CutAfter(time, *iface);
  const bool fresh = bFirstTime || history.IsEmpty();
  const double dt = iface->GetFrameDuration();
  plant.clearInputs();
  // A fresh regulator: one that has run before solves its first model in a
  // single round, and a take would not resimulate to the same keys.
  plant.regulator.initialise(0, 0, 0);
  // The regulator integrates the heading by its interval a step: it is the
  // plant's step, or the heading drifts from the wanted one.
  plant.regulator.parameters.interval = dt / HelicopterPlant::subStepCount(dt);
  plant.setScale(dRelativeScale);
  plant.windIrregularity = dTurbulenceIrregularity;
  const PoseRecord now = body.Read(time);
  PlantInputRecord record;
  if (fresh) {
    // At rest where the body stands: the wanted height is its height.
    record.heightReference = now.position.y / plant.scale();
  } else {
    record = history.InputRecordAt(time);
  }
  plant.reset(now, body.Read(time - dt), body.Read(time - 2 * dt), record, dt);
  followCam.Prepare(time, fresh);
  if (helpers.hide || helpers.hideDuringRecording) SetHelpersHidden(true);
}

void CHeliCamObject::Stop(double) {
  if (helpers.hideDuringRecording && !helpers.hide) SetHelpersHidden(false);
}

void CHeliCamObject::ReadInputs() {
  for (int i = 0; i < HelicopterPlant::kChannelCount; ++i) {
    plant.channels[i].raw = inputControls[i] ? inputControls[i]->Evaluate() : 0.0;
  }
  plant.channels[HelicopterPlant::kWind].raw += dTurbulenceOffset;
}

void CHeliCamObject::Step(double time) {
  ReadInputs();
  plant.advance(iface->GetFrameDuration());
  body.Update(time);
  mainRotor.Update(time);
  tailRotor.Update(time);
  followCam.Update(time);
  history.Record(time, plant, followCam.firstStage);
  gauges.Write(*this);
  bFirstTime = false;
}

void CHeliCamObject::TimeChanged(double) { iface->UpdateConfig(); }

double CHeliCamObject::GaugeValue(std::size_t gauge) const {
  switch (gauge) {
    case kVelocity:
      return plant.velocity().Length() * plant.scale();
    case kVelocityPercent: {
      const PlantChannel& forward = plant.channels[HelicopterPlant::kForward];
      return forward.maximum != 0 ? forward.value / forward.maximum : 0.0;
    }
    default:
      return plant.position().y;
  }
}

std::intptr_t CHeliCamObject::Extension(std::int32_t id, void* data) {
  if (id == extension::kWriteGauge && data) gauges.Update(data, [this](std::size_t gauge) { return GaugeValue(gauge); });
  return 0;
}

std::vector<std::int32_t> CHeliCamObject::ExtensionIds() { return {extension::kWriteGauge}; }

std::int32_t CHeliCamObject::BuildConfig() {
  for (int i = 0; i < HelicopterPlant::kChannelCount; ++i) {
    inputControls[i] = iface->AddInput(plant.channels[i].name, input::kContinuous);
  }
  iface->BeginConfig();
  iface->BeginGroup("General Modes", "");
  iface->AddButton(kInitialize, "Resets the helicopter: the next recording starts at rest from the body's pose.", this);
  helpers.AddTo(iface, this);
  iface->AddCheckBox(kHideCockpitCamera, kHideCockpitCamera, &bHideCockpitCam, this);
  iface->AddCheckBox(kHideFollowCamera, kHideFollowCamera, &bHideFollowCam, this);
  iface->EndGroup();
  iface->BeginGroup("Camera Modes", "");
  iface->AddCheckBox(kFollowAllDirections, "The FollowCam will follow all orientations of the helicopter",
                     &bFollowAllDirections, nullptr);
  iface->EndGroup();
  iface->BeginGroup("General Parameters", "");
  iface->AddSpinner("Wind Turbulence Offset Value",
                    "This value is added to the input device value for 'Wind Turbulence Strength' as an offset.",
                    &dTurbulenceOffset, -1e16, 1e16, 0.01, 1, false, 0, nullptr);
  iface->AddSpinner("Wind Turbulence Irregularity", "The larger this value is the more gusty is the wind turbulence.",
                    &dTurbulenceIrregularity, 0.1, 1000, 0.01, 1, false, 0, nullptr);
  iface->EndGroup();
  iface->BeginGroup("Input Property Parameters", "");
  for (PlantChannel& channel : plant.channels) {
    const std::string name = channel.name;
    iface->AddSpinner(name + ": Response Factor", "How quickly the channel follows its input.", &channel.responseFactor,
                      0, 1, 0.001, 1, false, 0, nullptr);
    iface->AddSpinner(name + ": Maximum", "The value a full input asks for.", &channel.maximum, -1e16, 1e16, 0.001, 1,
                      false, 0, nullptr);
  }
  iface->EndGroup();
  iface->BeginGroup("Rotor Parameters", "");
  iface->AddSpinner("Main Rotor Rotation Speed", "Sets how fast the Main Rotor rotates (degrees/frame)",
                    &dMainRotorSpeed, -1e16, 1e16, 0.1, 1, false, 0, nullptr);
  iface->AddSpinner("Tail Rotor Rotation Speed", "Sets how fast the Tail Rotor rotates (degrees/frame)",
                    &dTailRotorSpeed, -1e16, 1e16, 0.1, 1, false, 0, nullptr);
  iface->EndGroup();
  iface->EndConfig();
  gauges.Make(iface, kGaugeNames);
  return 0;
}

std::int32_t CHeliCamObject::Create() {
  for (ToolNode* node : NodesInOrder()) node->Create();
  if (body.handle) body.handle->Select();
  ApplyHideStates();
  iface->UpdateConfig();
  iface->Redraw();
  return 0;
}

std::int32_t CHeliCamObject::Load() {
  for (ToolNode* node : NodesInOrder()) {
    if (!node->Find()) return 1;
  }
  for (ToolNode* node : Helpers()) node->RefreshHelper();
  util::DataChunk chunk;
  if (!kSavedData.Read(iface, chunk)) return 1;
  const util::Bytes* settings = SavedData::Child(chunk, kSettingsKey, kSettingsSize);
  const util::Bytes* firstTime = SavedData::Child(chunk, kFirstTimeKey, 1);
  bool complete = settings && firstTime;
  ForEachValue(*this, [&](const char* key, double&) { complete = complete && SavedData::Child(chunk, key, 8); });
  // The history goes last: it is taken only when whole, and then so is the rest.
  if (!complete || !history.LoadFrom(chunk)) return 1;
  util::ByteReader in(*settings);
  std::uint8_t flags[5] = {};
  in.GetBytes(flags, sizeof flags);
  in.Skip(3);
  helpers.hide = flags[0] != 0;
  helpers.hideDuringRecording = flags[1] != 0;
  bHideCockpitCam = flags[2] != 0;
  bHideFollowCam = flags[3] != 0;
  bFollowAllDirections = flags[4] != 0;
  in.Get(dRelativeScale);
  for (PlantChannel& channel : plant.channels) {
    in.Get(channel.responseFactor);
    in.Get(channel.maximum);
  }
  bFirstTime = (*firstTime)[0] != 0;
  ForEachValue(*this,
               [&](const char* key, double& value) { util::ByteReader(*SavedData::Child(chunk, key, 8)).Get(value); });
  return 0;
}

std::int32_t CHeliCamObject::Save() {
  util::DataChunk chunk = kSavedData.Begin();
  util::Bytes settings;
  util::ByteWriter out(settings);
  for (bool flag : {helpers.hide, helpers.hideDuringRecording, bHideCockpitCam, bHideFollowCam, bFollowAllDirections}) {
    out.Put(static_cast<std::uint8_t>(flag));
  }
  out.PutZeros(3);
  out.Put(dRelativeScale);
  for (const PlantChannel& channel : plant.channels) {
    out.Put(channel.responseFactor);
    out.Put(channel.maximum);
  }
  chunk.AddChild(kSettingsKey, std::move(settings));
  chunk.AddChild(kFirstTimeKey, util::Bytes{static_cast<std::uint8_t>(bFirstTime)});
  ForEachValue(*this, [&chunk](const char* key, double value) { chunk.AddChild(key, DoubleBytes(value)); });
  history.SaveTo(chunk);
  SavedData::Store(iface, chunk);
  return 0;
}

void CHeliCamObject::Changed(std::string label) {
  const ConfigChange change(std::move(label));
  bool* flag = nullptr;
  const std::vector<ToolNode*> switched = SwitchedNodes(change.label, flag);
  if (!switched.empty()) {
    // One undo record for the switch; it replays onto every node.
    ApplyHideSwitch(iface, this, change, switched.front()->handle, *flag);
    for (std::size_t i = 1; i < switched.size(); ++i) SetHidden(switched[i]->handle, change.undo ? !*flag : *flag);
    return;
  }
  if (!change.IsReplay() && change.label == kInitialize) bFirstTime = true;
}

}  // namespace vuk::rgw::addon
