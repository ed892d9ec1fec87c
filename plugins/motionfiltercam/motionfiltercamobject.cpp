#include "plugins/motionfiltercam/motionfiltercamobject.h"

#include "plugins/common/filterspring.h"
#include "plugins/common/saveddata.h"

namespace vuk::rgw::addon {

const ToolInfo CMotionFilterCamObject::kInfo = {
    "MotionFilterCam",
    "motionfiltercam",
    "Quoll MotionFilterCam",
    "Camera",
    "Quoll MotionFilterCam consists of two cameras. The AttachedCam is attached to an animated object/camera and the "
    "FollowCam will follow the AttachedCam in a smooth or bouncy fashion by filtering out any sudden or turbulent "
    "movements. It is used for both smooth motion as well as bouncy action.",
    "MotionFilterCam: a camera on a spring behind another one.",
    {"MotionFilterCam"},
};

const BuildChunk CMotionFilterCamObject::kSavedData{"MotionFilterCamDataChunk"};

namespace {

// Builds up to this one saved no entries worth reading; the velocity limits
// came with kMaxVelocityBuild.
constexpr std::int32_t kLastBuildWithoutEntries = 8100;
constexpr std::int32_t kMaxVelocityBuild = 8102;
constexpr char kSmoothingTooltip[] = "This factor determines how much the camera will smooth out rebounces at a stop";

}  // namespace

void CMotionFilterCamObject::CMotionFilterCamNode::Reset(double time, bool firstTime) {
  if (firstTime) {
    velocity = {};
    return;
  }
  const util::QTransform<double> state = tool.memory.Get(time);
  velocity = state.translation;
  angularVelocity = {state.rotation.x, state.rotation.y, state.rotation.z};
  spare = state.rotation.w;
}

void CMotionFilterCamObject::CMotionFilterCamNode::Follow(util::QTransform<double>& pose,
                                                          const util::QTransform<double>& target, double dt) {
  if (fixateTranslations) {
    pose.translation = target.translation;
  } else {
    filterSpringVector(pose.translation, velocity, target.translation, translationResponseFactor,
                       translationSmoothingFactor, translationMaxVelocity, dt);
  }
  if (fixateRotations) {
    pose.rotation = target.rotation;
  } else {
    filterSpringQuat(pose.rotation, angularVelocity, target.rotation, rotationResponseFactor, rotationSmoothingFactor,
                     rotationMaxVelocity, dt);
  }
}

std::int32_t CMotionFilterCamObject::BuildConfig() {
  CMotionFilterCamNode& node = followNode;
  iface->BeginConfig();
  iface->BeginGroup("Motion Filter Parameters", "");
  iface->AddCheckBox("Fixate Translations", "Fixates the camera's translations, ie no filtering",
                     &node.fixateTranslations, this);
  iface->AddSpinner(kTranslationFactor, kTranslationFactorTooltip, &node.translationResponseFactor, 0, 1e18, 0.01, 1,
                    true, 0, nullptr);
  iface->AddSpinner("Translation Smoothing Factor", kSmoothingTooltip, &node.translationSmoothingFactor, 0, 1e18, 0.01,
                    1, true, 0, nullptr);
  iface->AddSpinner("Translation Max Velocity", "This factor determines the maximum translation velocity of the camera",
                    &node.translationMaxVelocity, 0, 1e18, 0.01, 1, true, 0, nullptr);
  iface->AddCheckBox("Fixate Rotations", "Fixates the camera's rotations, ie no filtering", &node.fixateRotations,
                     this);
  iface->AddSpinner(kRotationFactor, kRotationFactorTooltip, &node.rotationResponseFactor, 0, 1e18, 0.01, 1, true, 0,
                    nullptr);
  iface->AddSpinner("Rotation Smoothing Factor", kSmoothingTooltip, &node.rotationSmoothingFactor, 0, 1e18, 0.01, 1,
                    true, 0, nullptr);
  iface->AddSpinner("Rotation Max Velocity", "This factor determines the maximum rotation velocity of the camera",
                    &node.rotationMaxVelocity, 0, 1e18, 0.01, 1, true, 0, nullptr);
  iface->EndGroup();
  iface->EndConfig();
  return 0;
}

ChunkFields CMotionFilterCamObject::Fields(std::int32_t build) {
  CMotionFilterCamNode& node = followNode;
  ChunkFields fields;
  if (build <= kLastBuildWithoutEntries) return fields;
  fields.Flag("bFirstTime", bFirstTime)
      .Memory("ancMotionFilterCamNodeqTransMem", memory)
      .Double("cMotionFilterCamNode.translationalResponseFactor", node.translationResponseFactor)
      .Double("cMotionFilterCamNode.rotationalResponseFactor", node.rotationResponseFactor)
      .Double("cMotionFilterCamNode.translationalSmoothingFactor", node.translationSmoothingFactor)
      .Double("cMotionFilterCamNode.rotationalSmoothingFactor", node.rotationSmoothingFactor);
  if (build >= kMaxVelocityBuild) {
    fields.Double("cMotionFilterCamNode.translationalMaxVel", node.translationMaxVelocity)
        .Double("cMotionFilterCamNode.rotationalMaxVel", node.rotationMaxVelocity);
  }
  fields.Flag("cMotionFilterCamNode.bFixateTranslations", node.fixateTranslations)
      .Flag("cMotionFilterCamNode.bFixateRotations", node.fixateRotations);
  return fields;
}

std::int32_t CMotionFilterCamObject::Load() {
  if (!FindNodes()) return 1;
  util::DataChunk chunk;
  std::int32_t build = 0;
  if (!kSavedData.Read(iface, chunk, build) || !Fields(build).LoadFrom(chunk)) return 1;
  // Older builds had no limits.
  if (build < kMaxVelocityBuild) followNode.translationMaxVelocity = followNode.rotationMaxVelocity = 0;
  return 0;
}

std::int32_t CMotionFilterCamObject::Save() {
  util::DataChunk chunk = kSavedData.Begin();
  Fields(BuildChunk::kBuild).SaveTo(chunk);
  SavedData::Store(iface, chunk);
  return 0;
}

}  // namespace vuk::rgw::addon
