#include "plugins/horrorcam/horrorcamobject.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "plugins/common/filterresponse.h"
#include "sdk/cvariablemodundo.h"
#include "util/bytes.h"

namespace vuk::rgw::addon {

const ToolInfo CHorrorCamObject::kInfo = {
    "AutoZoomCam",
    "AutoZoomCam",
    "Quoll AutoZoomCam",
    "Camera",
    "Quoll AutoZoomCam automatically changes the perspective (or FOV) of the camera to keep the size of the object "
    "constant when it moves towards or away from the camera. It can also create a contracting horror effect typically "
    "seen in many horror films. The camera then moves away from the object while zooming yielding the illusion that "
    "the environment around the object is contracting.",
    "AutoZoomCam: a dolly zoom that keeps its target's size.",
    {},
};

namespace {

constexpr char kHideCamera[] = "Hide Camera";
constexpr double kPi = 3.141592653589793;
// 2 atan in degrees: 2 x 180 / pi, as recorded takes were zoomed with.
constexpr double kTwiceDegreesPerRadian = 114.59155902616465;
// The longest input filter step, in seconds.
constexpr double kSubStep = 0.003;
// Three flags, five spare bytes, then the response factor and the maximum.
constexpr std::int32_t kSavedSize = 24;

}  // namespace

void CHorrorCamObject::CHorrorCamNode::Create() {
  CreateCamera();
  const double now = owner->iface->GetTime();
  if (const TransformSnapshot snapshot = Transform(now)) {
    snapshot->SetLocalTransform(util::Matrix<double>::FromPose({{0, 0, 10}, {}}));
  }
  Measure(now);
}

double CHorrorCamObject::CHorrorCamNode::DistanceToTarget(double time) const {
  return (target.World(time).GetTranslation() - World(time).GetTranslation()).Length();
}

void CHorrorCamObject::CHorrorCamNode::Measure(double time) {
  targetDistance = baseTargetDistance = DistanceToTarget(time);
  if (const LensSnapshot lens = Lens(time)) {
    lens->SetTargetDistance(targetDistance);
    fov = lens->GetFOV();
    // Keyed on the start frame as well, so that a later run from this frame
    // reads the very lens this one read.
    lens->SetFOV(fov);
  }
  halfWidth = std::tan(fov * 0.5 / 180 * kPi) * baseTargetDistance;
}

void CHorrorCamObject::CHorrorCamNode::Update(double time) {
  targetDistance = DistanceToTarget(time);
  // Never below a tiny share of the start distance: with the target on the
  // camera the zoom saturates just short of 180 degrees.
  const double distance = std::max(targetDistance, baseTargetDistance * 1e-16);
  // A run that began on the target frames nothing: the lens keeps its angle
  // rather than collapsing to 0.
  if (halfWidth != 0) fov = std::atan(halfWidth / distance) * kTwiceDegreesPerRadian;
  // Every frame is keyed, so that no frame keeps the lens of an earlier take.
  if (const LensSnapshot lens = Lens(time)) {
    lens->SetTargetDistance(targetDistance);
    lens->SetFOV(fov);
  }
  // A fiftieth of the distance per frame and unit of output, forwards (down
  // minus Z) for a positive one.
  MoveAhead(time, (distance / -50) * channel.output);
}

void CHorrorCamObject::CHorrorCamNode::MoveAhead(double time, double step) {
  const util::Matrix<double> local = Local(time);
  const util::Quat<double> rotation = local.ToQuat();
  const util::Vector3<double> position =
      local.GetTranslation() + util::Matrix<double>::FromQuat(rotation).Axis(2) * step;
  if (const TransformSnapshot snapshot = Transform(time + owner->iface->GetFrameDuration())) {
    snapshot->SetLocalTransform(util::Matrix<double>::FromPose({position, rotation}));
  }
}

void CHorrorCamObject::History::Record(double t, const InputChannel& channel, const CHorrorCamNode& camera) {
  stage_.Set(t, channel.stage);
  output_.Set(t, channel.output);
  halfWidth_.Set(t, camera.halfWidth);
  baseTargetDistance_.Set(t, camera.baseTargetDistance);
}

bool CHorrorCamObject::History::RewindTo(double t, InputChannel& channel, CHorrorCamNode& camera, CInterface& tool) {
  const double after = std::nextafter(t, std::numeric_limits<double>::infinity());
  for (util::AVar_Nearest<double>* history : {&stage_, &output_, &halfWidth_, &baseTargetDistance_}) {
    tool.PushUndo(new CVariableModUndo<util::AVar_Nearest<double>>(history));
    history->RemoveFrom(after);
  }
  if (output_.records.empty() || output_.records.back().time != t) return false;
  channel.stage = stage_.records.back().value;
  channel.output = output_.records.back().value;
  camera.halfWidth = halfWidth_.records.back().value;
  camera.baseTargetDistance = baseTargetDistance_.records.back().value;
  return true;
}

void CHorrorCamObject::Start(double time) {
  // A run from a frame that was stepped goes on from that frame's state and
  // writes the keys the first run wrote; any other run frames the target as
  // it stands, with the channel at rest.
  if (!history.RewindTo(time, channel, cameraNode, *iface)) {
    cameraNode.Measure(time);
    channel.stage = channel.output = 0;
    // The start frame isn't stepped: its pose goes one frame ahead as a step
    // at rest would write it, so that the first step reads a keyed pose.
    cameraNode.MoveAhead(time, 0);
  }
  helpers.Start(targetNode.handle);
}

void CHorrorCamObject::Stop(double) { helpers.Stop(targetNode.handle); }

void CHorrorCamObject::FeedChannel(double dt) {
  const double steps = std::max(1.0, std::trunc(dt / kSubStep));
  const double h = dt / steps;
  for (double i = 0; i < steps; ++i) {
    filterResponse(channel.stage, channel.raw * channel.maximum, channel.responseFactor, h);
    filterResponse(channel.output, channel.stage, channel.responseFactor, h);
  }
}

void CHorrorCamObject::Step(double time) {
  channel.Read();
  FeedChannel(iface->GetFrameDuration());
  // Helpers first, the node written last comes last.
  targetNode.Update(time);
  cameraNode.Update(time);
  history.Record(time, channel, cameraNode);
}

void CHorrorCamObject::TimeChanged(double) { iface->UpdateConfig(); }

std::int32_t CHorrorCamObject::BuildConfig() {
  channel.Create(iface);
  if (channel.control) channel.control->exponent = 1.0;
  iface->BeginConfig();
  iface->BeginGroup("General Modes", "");
  helpers.AddTo(iface, this);
  iface->AddCheckBox(kHideCamera, kHideCamera, &hideCamera, this);
  iface->EndGroup();
  iface->BeginGroup("Input Property Parameters", "");
  // The factor's range goes down to -1e16, as this tool's pages always had it.
  const std::string responseFactor = channel.name + " Response Factor";
  const std::string maximum = channel.name + " Maximum";
  iface->AddSpinner(responseFactor, responseFactor, &channel.responseFactor, -1e16, 1, 0.001, 1, true, 0, nullptr);
  iface->AddSpinner(maximum, maximum, &channel.maximum, -1e16, 1e16, 0.001, 1, true, 0, nullptr);
  iface->EndGroup();
  iface->EndConfig();
  return 0;
}

std::int32_t CHorrorCamObject::Create() {
  // The camera's create step reads the target's position.
  CreateNodes(iface, {&targetNode, &cameraNode});
  return 0;
}

std::int32_t CHorrorCamObject::Load() {
  // The camera first, then its target.
  if (!FindNodes({&cameraNode, &targetNode})) return 1;
  targetNode.RefreshHelper();
  const std::uint8_t* bytes = SavedBytes(iface, kSavedSize);
  if (!bytes) return 1;
  const util::Bytes saved(bytes, bytes + kSavedSize);
  util::ByteReader in(saved);
  std::uint8_t flags[3] = {};
  in.GetBytes(flags, sizeof flags);
  in.Skip(5);
  in.Get(channel.responseFactor);
  in.Get(channel.maximum);
  helpers.hideDuringRecording = flags[0] != 0;
  helpers.hide = flags[1] != 0;
  hideCamera = flags[2] != 0;
  iface->SetSaveData(saved.data(), kSavedSize);
  return 0;
}

std::int32_t CHorrorCamObject::Save() {
  util::Bytes saved;
  util::ByteWriter out(saved);
  for (bool flag : {helpers.hideDuringRecording, helpers.hide, hideCamera}) out.Put(static_cast<std::uint8_t>(flag));
  out.PutZeros(5);
  out.Put(channel.responseFactor);
  out.Put(channel.maximum);
  iface->SetSaveData(saved.data(), kSavedSize);
  return 0;
}

void CHorrorCamObject::Changed(std::string label) {
  const ConfigChange change(std::move(label));
  if (change.label == HelperSwitches::kHide) ApplyHideSwitch(iface, this, change, targetNode.handle, helpers.hide);
  if (change.label == kHideCamera) ApplyHideSwitch(iface, this, change, cameraNode.handle, hideCamera);
}

}  // namespace vuk::rgw::addon
