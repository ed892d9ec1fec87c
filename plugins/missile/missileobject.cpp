#include "plugins/missile/missileobject.h"

#include <cmath>

#include "plugins/common/buttonpress.h"
#include "plugins/common/hideswitch.h"
#include "plugins/common/meshparts.h"
#include "util/bytes.h"

namespace vuk::rgw::addon {

const ToolInfo CMissileObject::kInfo = {
    "Missile",
    "utility/missile",
    "Quoll Missile",
    "Accessory;Weapon",
    "Quoll Missile is a target seeking missile simulator for any type of missile. It can be launched from static or a "
    "moving object.",
    "Missile: a target seeking missile.",
    {},
};

const SavedData CMissileObject::kSavedData{"MissileDataChunk", 100};

namespace {

using Entry = PageEntry<MissileSettings>;
using S = MissileSettings;

constexpr char kSettingsKey[] = "sDataChunkSaveStruct";
constexpr char kHideRearCamera[] = "Hide Rear Camera";
constexpr char kCaption[] = "Float Outp";
// The flame's rows when it is out: too small to see, never singular.
constexpr double kFlameOut = 0.0001;
constexpr double kTwoPi = 6.283185307179586;

// A pose from a matrix whose rows may be scaled.
Pose PoseOf(util::Matrix<double> matrix) {
  for (int axis = 0; axis < 3; ++axis) matrix.SetAxis(axis, matrix.Axis(axis).Normalized());
  return matrix.ToPose();
}

// A node's pose at t with the time its snapshot reports.
struct Sample {
  Pose pose;
  double time;
};
Sample SampleOf(const ToolNode& node, double time) {
  const TransformSnapshot snapshot = node.Transform(time);
  if (!snapshot) return {Pose(), time};
  return {PoseOf(snapshot->GetWorldTransform()), snapshot->GetTime()};
}

}  // namespace

const PageTable<MissileSettings> CMissileObject::kPage = {
    Entry::Group("General Modes"),
    Entry::Helpers(&S::helpers),
    Entry::Check(kHideRearCamera, kHideRearCamera, &S::bHideRearCamera),
    Entry::EndGroup(),
    Entry::Group("Missile Modes"),
    Entry::Check("Use Guided Missile", "When checked the missile will try to hit the TargetMesh.",
                 &S::bUseGuidedMissile),
    Entry::Check("Quit Guiding if Target is Missed", "Quit follow Target when the missile miss it the first time",
                 &S::bQuitGuidingIfMissed),
    Entry::Check("Add Parent's Initial Speed to Maximum Speed", "Add Parent's Initial Speed to Maximum Speed",
                 &S::bAddParentSpeed),
    Entry::Check("Fire Missile at Current Frame", "Fire Missile at Current Frame", &S::bFireAtCurrentFrame),
    Entry::Whole("Fire Nth time", "Fire Nth time", &S::iFireNth, 0, 1000),
    Entry::EndGroup(),
    Entry::Group("Guided Missile Parameters"),
    Entry::ReadOut("Units per second", &S::dUnitsPerSecond, -1e7, 1e7, 0.001),
    Entry::ReadOut("Distance To Target", &S::dDistanceToTarget, -1e7, 1e7, 0.001),
    Entry::Number("Guidance Strength (%/sec)", "Guidance Strength (%/sec)", &S::dGuidanceStrength, 0, 100, 0.001),
    Entry::Number("Guidance Limiter (rads/sec)", "Limits the force of the correction strength (radians per second).",
                  &S::dGuidanceLimiter, 0, 100, 0.01),
    Entry::Number("Target Speed Compensation", "Target Speed Compensation", &S::dTargetSpeedCompensation, 0, 1000,
                  0.001),
    Entry::Number("Unguided Flight Time", "Unguided Flight Time", &S::dUnguidedFlightTime, 0, 1000, 0.001),
    Entry::EndGroup(),
    Entry::Group("Physical Parameters"),
    Entry::Number("Maximum Speed", "Maximum Speed", &S::dMaximumSpeed, 0, 10000, 0.1),
    Entry::Number("Acceleration", "Acceleration", &S::dAcceleration, 0, 10000, 0.1),
    Entry::Number("Ignition Time", "How long time (in seconds) after the missile has been fired it ignites.",
                  &S::dIgnitionTime, 0, 100, 0.001),
    Entry::Number("Mass",
                  "The closer this value is to one the larger the overshoot during turns will be (it adds inertia).",
                  &S::dMass, 0, 1, 0.001),
    Entry::Number("Gravity Strength", "Gravity strength (scale relative)", &S::dGravityStrength, 0, 10000, 0.01),
    Entry::Number("Time to Compensate for Gravity",
                  "Time in seconds before the missile has a lift force that is equal to gravity and then stops "
                  "falling downwards.",
                  &S::dTimeToCompensateGravity, 0, 10000, 0.001),
    Entry::Number("Time to Eliminate Initial Speeds",
                  "Time in seconds for the missile to eliminate the influence of the initial velocities that come "
                  "from the object it is attached to at the release frame.",
                  &S::dTimeToEliminateInitialSpeeds, 0.0001, 10000, 0.001),
    Entry::Number("Initial -z Speed (%)", "Initial -z Speed (%)", &S::dInitialMinusZSpeed, -100, 100, 0.01),
    Entry::Number("Initial y Speed (%)", "Initial y Speed (%)", &S::dInitialYSpeed, -100, 100, 0.01),
    Entry::Number("Turbulence Strength", "How strong the gusts of wind are.", &S::dTurbulenceStrength, 0, 100, 0.001),
    Entry::Number("Turbulence Roughness", "Turbulence Roughness", &S::dTurbulenceRoughness, 0, 1, 0.001),
    Entry::Number("Turbulence Response Factor", "How quickly the turbulence input takes effect.",
                  &S::dTurbulenceResponse, 0, 1, 0.001),
    Entry::Number("Turbulence Maximum", "The turbulence strength the full turbulence input adds.",
                  &S::dTurbulenceMaximum, -1e16, 1e16, 0.001),
    Entry::EndGroup(),
    Entry::Group("Propulsion Flame Parameters"),
    Entry::Number("Propulsion Flame Spin", "Propulsion Flame Spin", &S::dFlameSpin, 0, 100, 0.001),
    Entry::Number("Propulsion Flame Scale", "Propulsion Flame Scale", &S::dFlameScale, 0.0001, 10000, 0.01),
    Entry::EndGroup(),
};

CMissileObject::CMissileObject(const CreateParam& param) : CCamera(param) {
  history.Add("abFired", &MissileState::bFired)
      .Add("abLatched", &MissileState::bLatched)
      .Add("aiTriggerCount", &MissileState::iTriggerCount)
      .Add("aiFrames", &MissileState::iFrames)
      .Add("abGuiding", &MissileState::bGuiding)
      .Add("aqPose", &MissileState::pose)
      .Add("avStep", &MissileState::vStep)
      .Add("avMomentum", &MissileState::vMomentum)
      .Add("avInitVel", &MissileState::vInitVel)
      .Add("avInitRate", &MissileState::vInitRate)
      .Add("adSpeedOffset", &MissileState::dSpeedOffset)
      .Add("adForwVelocity", &MissileState::dForwVelocity)
      .Add("adNearest", &MissileState::dNearest)
      .Add("adLastDistance", &MissileState::dLastDistance)
      .Add("avTurbulenceStage", &MissileState::vTurbulenceStage)
      .Add("avTurbulence", &MissileState::vTurbulence)
      .Add("adTurbulenceInputStage", &MissileState::dTurbulenceInputStage)
      .Add("adTurbulenceInput", &MissileState::dTurbulenceInput)
      .Add("aiRandomState", &MissileState::iRandomState);
  flight.onMathError = [this](const char* text) { iface->MessageBox(text, kCaption, box::kWarning); };
}

CMissileObject::CMissileNode::CMesh_missileMesh::CMesh_missileMesh() {
  AppendPart(*this, util::CMesh_Box(0.16, 0.16, 1.6), Placed({0, 0, 0}));
  AppendPart(*this, util::CMesh_Box(0.5, 0.02, 0.25), Placed({0, 0, 0.65}));
  AppendPart(*this, util::CMesh_Box(0.02, 0.5, 0.25), Placed({0, 0, 0.65}));
}

CMissileObject::CBodyRelocatorNode::CMesh_RelocatorMesh::CMesh_RelocatorMesh() {
  AppendPart(*this, util::CMesh_Box(0.3, 0.1, 1.8), Placed({0, 0.15, 0}));
}

CMissileObject::CTargetNode::CMesh_HitSphereMesh::CMesh_HitSphereMesh() {
  AppendPart(*this, CMesh_Diamond(0.5), Placed({0, 0, 0}));
}

CMissileObject::CPropellerNode::CMesh_PropellerMesh::CMesh_PropellerMesh() {
  // A cone of flame trailing behind, flat enough that its spin shows.
  AppendPart(*this, CMesh_Diamond(0.12), Placed({0, 0, 0.35}, {1, 0.5, 3}));
}

void CMissileObject::CMissileNode::Create() { CreateHelper(CMesh_missileMesh()); }

void CMissileObject::CMissileNode::Measure(double time) {
  const util::Matrix<double> world = World(time);
  scale = {world.Axis(0).Length(), world.Axis(1).Length(), world.Axis(2).Length()};
}

void CMissileObject::CMissileNode::Write(double time, const Pose& pose) const {
  util::Matrix<double> world = util::Matrix<double>::FromPose(pose);
  const double lengths[3] = {scale.x, scale.y, scale.z};
  for (int axis = 0; axis < 3; ++axis) world.SetAxis(axis, world.Axis(axis) * lengths[axis]);
  if (const TransformSnapshot snapshot = Transform(time)) snapshot->SetWorldTransform(world);
}

void CMissileObject::CBodyRelocatorNode::Create() {
  CreateHelper(CMesh_RelocatorMesh());
  if (const HelperSnapshot helper = Helper(owner->iface->GetTime())) helper->SetWireframe(true);
}

void CMissileObject::CTargetNode::Create() {
  CreateHelper(CMesh_HitSphereMesh());
  // Where a new missile flies to: ahead of it.
  if (const TransformSnapshot snapshot = Transform(owner->iface->GetTime())) {
    snapshot->SetLocalTransform(Placed({0, 0, -50}));
  }
}

void CMissileObject::CPropellerNode::Create() {
  CreateHelper(CMesh_PropellerMesh(), missile.handle);
  Write(owner->iface->GetTime(), false, 1, 0);
}

void CMissileObject::CPropellerNode::Write(double time, bool lit, double scale, double turns) const {
  const double size = lit ? scale : kFlameOut;
  util::Matrix<double> local = util::Matrix<double>::FromQuat(Quat::FromAxisAngle({0, 0, 1}, turns * kTwoPi));
  for (int axis = 0; axis < 3; ++axis) local.SetAxis(axis, local.Axis(axis) * size);
  local.SetTranslation({0, 0, 0.8});
  if (const TransformSnapshot snapshot = Transform(time)) snapshot->SetLocalTransform(local);
}

void CMissileObject::CRearCamNode::Create() {
  CreateCamera(missile.handle);
  if (const TransformSnapshot snapshot = Transform(owner->iface->GetTime())) {
    snapshot->SetLocalTransform(Placed({0, 0.6, 4}));
  }
}

void CMissileObject::Start(double time) {
  state = MissileState();
  history.RewindTo(time, state, *iface);
  missileNode.Measure(time);
  settings.helpers.Start(relocatorNode.handle);
  settings.helpers.Start(targetNode.handle);
}

void CMissileObject::Stop(double) {
  settings.helpers.Stop(relocatorNode.handle);
  settings.helpers.Stop(targetNode.handle);
}

void CMissileObject::Step(double time) {
  const double h = iface->GetFrameDuration();
  if (NewPress(ButtonValue(fireControl), state.bLatched)) ++state.iTriggerCount;
  flight.FeedTurbulence(ButtonValue(turbulenceControl), h);
  const Sample carrier = SampleOf(relocatorNode, time);
  if (!state.bFired && (state.iTriggerCount == settings.iFireNth || settings.bFireAtCurrentFrame)) {
    state.bFired = true;
    const Sample before = SampleOf(relocatorNode, time - h);
    flight.Release(carrier.pose, before.pose, carrier.time - before.time);
  }
  const util::Vector3<double> target = targetNode.World(time).GetTranslation();
  if (state.bFired) {
    flight.Fly(h, target, targetNode.World(time - h).GetTranslation());
    missileNode.Write(time, state.pose);
  } else {
    missileNode.Write(time, carrier.pose);
  }
  propellerNode.Write(time, flight.FlameLit(h), settings.dFlameScale, settings.dFlameSpin * state.iFrames * h);
  settings.dUnitsPerSecond = state.vStep.Length() / h;
  settings.dDistanceToTarget = (target - missileNode.World(time).GetTranslation()).Length();
  history.Record(time, state);
}

void CMissileObject::TimeChanged(double) { iface->UpdateConfig(); }

std::int32_t CMissileObject::BuildConfig() {
  fireControl = iface->AddInput("Fire Missile", input::kSwitch);
  turbulenceControl = iface->AddInput("Turbulence", input::kContinuous);
  BuildPage(iface, this, settings, kPage, false);
  return 0;
}

std::int32_t CMissileObject::Create() {
  relocatorNode.Create();
  targetNode.Create();
  missileNode.Create();
  propellerNode.Create();
  rearCamNode.Create();
  if (missileNode.handle) missileNode.handle->Select();
  iface->UpdateConfig();
  return 0;
}

std::int32_t CMissileObject::Load() {
  for (ToolNode* node : std::initializer_list<ToolNode*>{&missileNode, &relocatorNode, &targetNode, &propellerNode,
                                                          &rearCamNode}) {
    if (!node->Find()) return 1;
    node->RefreshHelper();
  }
  util::DataChunk chunk;
  if (!kSavedData.Read(iface, chunk)) return 1;
  const util::DataChunk* saved = chunk.FindChild(kSettingsKey);
  MissileSettings read = settings;
  if (!saved || !ReadSettings(kPage, saved->data, read) || !history.LoadFrom(chunk)) return 1;
  settings = read;
  return 0;
}

std::int32_t CMissileObject::Save() {
  util::DataChunk chunk = kSavedData.Begin();
  chunk.AddChild(kSettingsKey, SaveSettings(kPage, settings));
  history.SaveTo(chunk);
  SavedData::Store(iface, chunk);
  return 0;
}

void CMissileObject::Changed(std::string label) {
  const ConfigChange change(std::move(label));
  if (change.label == HelperSwitches::kHide) {
    // One record switches both helpers.
    ApplyHideSwitch(iface, this, change, relocatorNode.handle, settings.helpers.hide);
    SetHidden(targetNode.handle, change.undo ? !settings.helpers.hide : settings.helpers.hide);
  } else if (change.label == kHideRearCamera) {
    ApplyHideSwitch(iface, this, change, rearCamNode.handle, settings.bHideRearCamera);
  }
}

}  // namespace vuk::rgw::addon
