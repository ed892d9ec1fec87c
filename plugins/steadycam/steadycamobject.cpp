#include "plugins/steadycam/steadycamobject.h"

#include <algorithm>
#include <array>

#include "plugins/common/filterresponse.h"
#include "plugins/common/hideswitch.h"
#include "plugins/common/saveddata.h"

namespace vuk::rgw::addon {

const ToolInfo CSteadyCamObject::kInfo = {
    "SoftMotionCam",
    "steadycam",
    "Quoll SoftMotionCam",
    "Camera",
    "Quoll SoftMotionCam consists of two cameras. The AttachedCam is attached to an animated object/camera and the "
    "FollowCam will follow the AttachedCam in a smooth fashion by filtering out any sudden or turbulent movements. "
    "Therefore it can be used as a smooth follow camera or smooth out spline controlled cameras.",
    "SoftMotionCam: a camera that trails another one smoothly.",
    {"SteadyCam"},
};

const BuildChunk CSteadyCamObject::kSavedData{"SteadyCamDataChunk"};

namespace {

constexpr char kHideAttached[] = "Hide AttachedCam";
constexpr char kHideFollow[] = "Hide FollowCam";
constexpr char kSaveStructKey[] = "sDataChunkSaveStruct";
// The two hide bytes, then zeros. Saved data of exactly this size is the
// oldest form: the structure alone.
constexpr std::size_t kSaveStructSize = 24;
// Other bytes of that size are another tool's: refused, not taken for flags.
bool IsBareSaveStruct(const std::uint8_t* bytes, std::int32_t length) {
  return length == static_cast<std::int32_t>(kSaveStructSize) && bytes[0] <= 1 && bytes[1] <= 1 &&
         std::all_of(bytes + 2, bytes + kSaveStructSize, [](std::uint8_t byte) { return byte == 0; });
}

// Builds before this one saved no entries worth reading.
constexpr std::int32_t kFirstEntriesBuild = 102;

}  // namespace

void CSteadyCamObject::CSteadyCamNode::Reset(double time, bool firstTime) {
  const util::QTransform<double> state = firstTime ? World(time).ToPose() : tool.memory.Get(time);
  filteredPosition = state.translation;
  filteredRotation = state.rotation;
}

void CSteadyCamObject::CSteadyCamNode::Follow(util::QTransform<double>& pose, const util::QTransform<double>& target,
                                              double dt) {
  // The rotation filters take the shorter arc between their operands
  // themselves: q and -q need no sorting out here.
  filterResponseVectorClamped(filteredPosition, target.translation, translationResponseFactor, dt);
  filterResponseVectorClamped(pose.translation, filteredPosition, translationResponseFactor, dt);
  filterResponseQuatClamped(filteredRotation, target.rotation, rotationResponseFactor, dt);
  filterResponseQuatClamped(pose.rotation, filteredRotation, rotationResponseFactor, dt);
}

std::int32_t CSteadyCamObject::BuildConfig() {
  iface->BeginConfig();
  iface->BeginGroup("General Modes", "");
  iface->AddButton(kReInitialize, "Re-initializes the camera position and orientation.", this);
  iface->AddCheckBox(kHideAttached, kHideAttached, &hideAttached, this);
  iface->AddCheckBox(kHideFollow, kHideFollow, &hideFollow, this);
  iface->EndGroup();
  iface->BeginGroup("Camera Parameters", "");
  iface->AddSpinner(kTranslationFactor, kTranslationFactorTooltip, &followNode.translationResponseFactor, 1e-08, 100,
                    0.001, 1, true, 0, nullptr);
  iface->AddSpinner(kRotationFactor, kRotationFactorTooltip, &followNode.rotationResponseFactor, 1e-08, 100, 0.001, 1,
                    true, 0, nullptr);
  iface->EndGroup();
  iface->EndConfig();
  return 0;
}

ChunkFields CSteadyCamObject::Fields() {
  ChunkFields fields;
  fields.Double("cSteadyCamNodetranslationalResponseFactor", followNode.translationResponseFactor)
      .Double("cSteadyCamNoderotationalResponseFactor", followNode.rotationResponseFactor)
      .Flag("bFirstTime", bFirstTime)
      .Memory("ancSteadyCamNodeqTransMem", memory);
  return fields;
}

std::int32_t CSteadyCamObject::Load() {
  if (!FindNodes()) return 1;
  std::int32_t length = 0;
  const std::uint8_t* bytes = iface->GetSaveData(&length);
  if (bytes && IsBareSaveStruct(bytes, length)) {
    hideAttached = bytes[0] != 0;
    hideFollow = bytes[1] != 0;
    bFirstTime = true;
    return 0;
  }
  util::DataChunk chunk;
  std::int32_t build = 0;
  if (!kSavedData.Read(iface, chunk, build)) return 1;
  if (build < kFirstEntriesBuild) {
    bFirstTime = true;
    return 0;
  }
  if (!Fields().LoadFrom(chunk)) return 1;
  if (const util::DataChunk* saved = chunk.FindChild(kSaveStructKey); saved && saved->data.size() == kSaveStructSize) {
    hideAttached = saved->data[0] != 0;
    hideFollow = saved->data[1] != 0;
  }
  return 0;
}

std::int32_t CSteadyCamObject::Save() {
  util::DataChunk chunk = kSavedData.Begin();
  std::array<std::uint8_t, kSaveStructSize> saved{};
  saved[0] = hideAttached;
  saved[1] = hideFollow;
  chunk.AddChild(kSaveStructKey, saved.data(), saved.size());
  Fields().SaveTo(chunk);
  SavedData::Store(iface, chunk);
  return 0;
}

void CSteadyCamObject::Changed(std::string label) {
  const ConfigChange change(label);
  if (change.label == kHideAttached) {
    ApplyHideSwitch(iface, this, change, attachedNode.handle, hideAttached);
  } else if (change.label == kHideFollow) {
    ApplyHideSwitch(iface, this, change, followNode.handle, hideFollow);
  } else {
    FollowCamObject::Changed(std::move(label));
  }
}

}  // namespace vuk::rgw::addon
