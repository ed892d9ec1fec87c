// The airplane's saved data: a chunk with the version first, the settings
// structure, the settings that came later under keys of their own, then
// the histories. The oldest scenes hold the bare structure alone.

#include "plugins/airplaneextended/airplaneextendedobject.h"
#include "plugins/common/saveddata.h"
#include "util/bytes.h"

namespace vuk::rgw::addon {

namespace {

constexpr char kStructureKey[] = "sDataChunkSaveStruct";
// Sixteen flag bytes, the channels' response factors and maxima, then seven
// parameters.
constexpr std::size_t kStructureSize = 248;
constexpr std::size_t kFlagBytes = 16;

// What saved data sets: the object's own fields, or a scratch copy that a
// load fills before anything of the object changes.
struct AeroSaved {
  CAeroCam cAeroCam;
  AeroSettings settings;
  bool bFirstTime = true;
  double dStartTime = 1e300;
  double dInitialVelocity = 0;
  bool bStartWithNonzeroInitialVelocity = false;
};

// Calls flag(bool&) and number(double&) over the structure in its order.
template <typename Plane, typename Flag, typename Number>
void ForEachInStructure(Plane& plane, Flag flag, Number number) {
  AeroSettings& s = plane.settings;
  AeroParameters& p = plane.cAeroCam.params;
  for (bool* value : {&s.helpers.hideDuringRecording, &s.helpers.hide, &s.bHideCockpitCam, &s.bHideFollowCam,
                      &s.bFollowCamAllDirections, &p.bRealisticControl}) {
    flag(*value);
  }
  for (InputChannel& channel : plane.cAeroCam.channels) {
    number(channel.responseFactor);
    number(channel.maximum);
  }
  for (double* value : {&p.dRelativeScale, &p.dVirtualMass, &p.dShakerFadeOut, &p.dTurbulenceFadeOut,
                        &p.dTurbulenceFrequency, &p.dTurbulenceOffset, &s.dInitialVelocityPercent}) {
    number(*value);
  }
}

// Calls visit(key, version that brought it, field) for every setting saved
// under a key of its own.
template <typename Plane, typename Visit>
void ForEachKeyed(Plane& plane, Visit visit) {
  using namespace aeroversion;
  AeroSettings& s = plane.settings;
  AeroParameters& p = plane.cAeroCam.params;
  visit("bFirstTime", kNewerKeys, plane.bFirstTime);
  visit("bStartWithNonzeroInitialVelocity", kNewerKeys, plane.bStartWithNonzeroInitialVelocity);
  visit("dInitialVelocity", kNewerKeys, plane.dInitialVelocity);
  visit("dStartTime", kNewerKeys, plane.dStartTime);
  visit("dVelocityConversionMult", kNewerKeys, s.dMultiplier);
  visit("cAeroCam.dShakerAmplitudeRespFact", kNewerKeys, p.dShakerRoughness);
  visit("cAeroCamdPropRotSpeed", kNewerKeys, s.dPropellerSpeed);
  visit("cAeroCamdShakeOffset", kNewerKeys, p.dShakeOffset);
  visit("cAeroCamdWindStrength", kNewerKeys, p.dWindStrength);
  visit("cPropellerNode.bReverseDirection", kNewerKeys, s.bReverseFirstPropeller);
  visit("cRudderNodedAngleMult", kNewerKeys, s.dRudderAngleMult);
  visit("cElevatorNodedAngleMult", kNewerKeys, s.dElevatorAngleMult);
  visit("cAileronRightNodedAngleMult", kNewerKeys, s.dRightAileronAngleMult);
  visit("cAileronLeftNodedAngleMult", kNewerKeys, s.dLeftAileronAngleMult);
  visit("cAeroCambConstantPropellerRotSpeed", kPropellerAndRelativeMode, s.bConstantPropellerSpeed);
  visit("cAeroCambRelativeVelocityMode", kPropellerAndRelativeMode, p.bRelativeVelocityMode);
  visit("bAutonomousMode", kFollow, p.bAutonomousMode);
  visit("bRollWithTarget", kFollow, p.bRollWithTarget);
  visit("dFollowAccelerationMult", kFollow, p.dFollowStrength);
  visit("dFollowAccRespFact", kFollow, p.dFollowResponse);
  visit("dAutoSteeringValueRespFact", kFollow, p.dSteeringResponse);
  visit("dIgnoreSphereRadius", kFollow, p.dIgnoreSphereRadius);
  visit("dYawMultiplier", kFollow, p.dYawStrength);
  visit("dPitchMultiplier", kFollow, p.dPitchStrength);
  visit("dRollMultiplier", kFollow, p.dRollStrength);
}

void Put(util::ByteWriter& out, bool flag) { out.Put(static_cast<std::uint8_t>(flag)); }
void Put(util::ByteWriter& out, double value) { out.Put(value); }
bool Get(util::ByteReader& in, bool& flag) {
  std::uint8_t byte = 0;
  const bool read = in.Get(byte);
  flag = byte != 0;
  return read;
}
bool Get(util::ByteReader& in, double& value) { return in.Get(value); }

util::Bytes Structure(CAeroCamObject& plane) {
  util::Bytes bytes, numbers;
  util::ByteWriter flags(bytes), rest(numbers);
  ForEachInStructure(
      plane, [&flags](bool& flag) { Put(flags, flag); }, [&rest](double& value) { Put(rest, value); });
  flags.PutZeros(kFlagBytes - bytes.size());
  bytes.insert(bytes.end(), numbers.begin(), numbers.end());
  return bytes;
}

void ReadStructure(const std::uint8_t* bytes, AeroSaved& saved) {
  util::ByteReader flags(bytes, kFlagBytes);
  util::ByteReader numbers(bytes + kFlagBytes, kStructureSize - kFlagBytes);
  ForEachInStructure(
      saved, [&flags](bool& flag) { Get(flags, flag); }, [&numbers](double& value) { Get(numbers, value); });
}

// The version of a chunk of the airplane's, or 0.
std::int32_t VersionOf(const util::DataChunk& chunk) {
  const util::Bytes* entry = SavedData::Child(chunk, SavedData::kVersionKey, sizeof(std::int32_t));
  std::int32_t version = 0;
  if (!entry || !util::ByteReader(*entry).Get(version)) return 0;
  return version;
}

}  // namespace

std::int32_t CAeroCamObject::Save() {
  util::DataChunk chunk = SavedData(kChunkName, kVersion).Begin();
  chunk.AddChild(kStructureKey, Structure(*this));
  ForEachKeyed(*this, [&chunk](const char* key, std::int32_t, auto& field) {
    util::Bytes bytes;
    util::ByteWriter out(bytes);
    Put(out, field);
    chunk.AddChild(key, std::move(bytes));
  });
  history.SaveTo(chunk);
  SavedData::Store(iface, chunk);
  return 0;
}

std::int32_t CAeroCamObject::Load() {
  for (ToolNode* node : NodesInOrder()) {
    if (!node->Find()) return 1;
  }
  for (ToolNode* node : NodesInOrder()) node->RefreshHelper();
  std::int32_t length = 0;
  const std::uint8_t* bytes = iface->GetSaveData(&length);
  if (!bytes || length <= 0) return 1;
  AeroSaved saved;
  AeroHistory loadedHistory;
  if (static_cast<std::size_t>(length) == kStructureSize) {
    ReadStructure(bytes, saved);
  } else {
    util::DataChunk chunk;
    if (!chunk.Read(bytes, static_cast<std::size_t>(length)) || chunk.name != kChunkName) return 1;
    const std::int32_t version = VersionOf(chunk);
    const util::Bytes* structure = SavedData::Child(chunk, kStructureKey, kStructureSize);
    if (version < aeroversion::kFirst || version > kVersion || !structure) return 1;
    ReadStructure(structure->data(), saved);
    bool complete = true;
    ForEachKeyed(saved, [&](const char* key, std::int32_t since, auto& field) {
      if (version < since) return;
      const util::Bytes* entry = SavedData::Child(chunk, key, sizeof field);
      if (!entry) {
        complete = false;
        return;
      }
      util::ByteReader in(*entry);
      complete = Get(in, field) && complete;
    });
    if (!complete || !loadedHistory.LoadFrom(chunk, version)) return 1;
  }
  cAeroCam.params = saved.cAeroCam.params;
  for (std::size_t i = 0; i < kAeroChannelCount; ++i) {
    cAeroCam.channels[i].responseFactor = saved.cAeroCam.channels[i].responseFactor;
    cAeroCam.channels[i].maximum = saved.cAeroCam.channels[i].maximum;
  }
  settings = saved.settings;
  bFirstTime = saved.bFirstTime;
  dStartTime = saved.dStartTime;
  dInitialVelocity = saved.dInitialVelocity;
  bStartWithNonzeroInitialVelocity = saved.bStartWithNonzeroInitialVelocity;
  history = std::move(loadedHistory);
  UpdateGauges();
  return 0;
}

}  // namespace vuk::rgw::addon
