#include "plugins/carextended/carextendedobject.h"

#include <cmath>

#include "plugins/common/hideswitch.h"
#include "sdk/cvariablemodundo.h"
#include "util/bytes.h"

namespace vuk::rgw::addon {

const ToolInfo CCarCamObject::kInfo = {
    "4WheelerExt",
    "carextended",
    "Quoll 4-Wheeler Extended",
    "Vehicle",
    "Quoll 4-Wheeler Extended is a real-time four wheeler simulator. Parent/link the GravityDirectionMesh to a "
    "surface to use it as ground. For multiple surfaces parent/link the surfaces to the GravityDirectionMesh. For "
    "automatic following of objects attach the TargetMesh to an animated object and check the 'autonomous mode' in "
    "the Configure dialog.",
    "4-Wheeler Extended: a car driven live over the scene's surfaces.",
    {"CarExtended"},
};

const SavedData CCarCamObject::kSavedData{"CarCamDataChunk", 100};

namespace {

using Vector = CCarCamObject::Vector;

constexpr char kSettingsKey[] = "sDataChunkSaveStruct";
constexpr char kUseStaticMeshKey[] = "bUseStaticMesh";
constexpr char kStoredMeshKey[] = "cMesh_storedGroundMesh";
constexpr char kBulletMeshKey[] = "mBulletGroundMesh";
constexpr char kStoreMeshKey[] = "bStoreGroundMeshData";
constexpr char kWarning[] = "Warning";
constexpr char kError[] = "Error";
constexpr char kTargetUnderBody[] =
    "The TargetMesh is parented to the CarBodyMesh.\nThis will mess up the autonomous mode making the car spin.";
// Each channel's value is shaped with this exponent before its maximum.
constexpr double kChannelExponent = 1.3;
constexpr std::array<const char*, CCarCamObject::kGaugeCount> kGaugeNames = {
    "Velocity",           "Velocity (Percent of Max)", "Steering Angle",          "WheelMesh_FL in the air",
    "WheelMesh_FR in the air", "WheelMesh_BL in the air", "WheelMesh_BR in the air"};
// Just short of a right angle, as the core clamps the steering.
constexpr double kLargestSteering = 1.5707649108683606;

// Calls visit(field) on every saved setting: the flags first, then the
// whole numbers, then the doubles. The order is the saved order.
template <typename Car, typename Visit>
void ForEachSetting(Car& car, Visit visit) {
  auto& s = car.settings;
  auto& p = car.cCarCam.params;
  for (bool* flag : {&s.helpers.hide, &s.helpers.hideDuringRecording, &s.bHideFollowCam, &s.bHideDriverCam,
                     &s.bHideTopViewCam, &s.bEnableSeamlessTransitions, &s.bKeyframeOnlyEssentialObjects,
                     &s.bFixateWheelCenterNodes, &s.bMoveWheelCenterToHitPoint, &s.bAlignWheelCenterToIncline,
                     &s.bEnableWheelGroundRelease, &s.bCastRaysAtWheelEdges, &s.bUseFastRayCast, &p.bAutonomousMode,
                     &p.bUseReverseAsAbsBrake, &p.bGravityOn}) {
    visit(*flag);
  }
  visit(s.iRayMultiplier);
  visit(p.iRandomSeedAdder);
  for (double* value :
       {&s.gauges.dInitialVelocityPercent, &s.gauges.dMultiplier, &s.dFollowAccelerationMult, &s.dFollowAccRespFact,
        &s.dAutoSteeringValueRespFact, &s.dReverseMaxVelMult, &s.dIgnoreSphereRadius, &s.dSteeringWheelRotMult,
        &s.fSurfaceEdgeResponseFactor, &s.dMaxWheelExtensionVelRel, &s.dDegreesPerRay,
        &p.dVelRelMaxSteeringChangeVel, &p.dSpeedDependentTurnRadiusReduction, &p.dSteeringNoise,
        &p.dTurnBaseBackWheelRel, &p.cSuspension.dFrontStiffness, &p.cSuspension.dFrontDamping,
        &p.cSuspension.dBackStiffness, &p.cSuspension.dBackDamping, &p.dMaxForwardTiltAngle, &p.dMaxSideTiltAngle,
        &p.dBoosterStiffnessMult, &p.dMassMult, &p.dSkiddingOffsetValue, &p.dSkiddingReleaseValue,
        &p.dSkiddingReleaseResponseFactor, &p.dGravelShakeOffsetValue, &p.dGravelRoughness,
        &p.dExternalForceOffsetValue, &p.dSkidBrakeStopFactor, &p.dSkidBrakeRotBrakeMult, &p.dBurnoutShake,
        &p.dBurnoutTiltingForce, &p.dBurnoutFadeoutFactor, &p.dWorldAvoidanceSphere, &p.dWheelRadiusMult,
        &p.dGravity, &p.dSuspensionLengthRel, &p.dAcceleration, &p.dJumpGravity, &p.dScaleRelMaxJumpVelocity,
        &p.dLandingNeutralizer, &p.dHorizontalRestoringFactor, &p.dLandingSkiddingFactor, &car.cCarCam.dLength,
        &car.cCarCam.dRideHeight, &car.dStartTime}) {
    visit(*value);
  }
  for (CarChannel& channel : car.cCarCam.inputs) {
    visit(channel.responseFactor);
    visit(channel.maximum);
  }
  for (CarWheel& wheel : car.cCarCam.wheels) {
    visit(wheel.radius);
    visit(wheel.x);
    visit(wheel.z);
  }
}

void PutSetting(util::ByteWriter& out, bool flag) { out.Put(static_cast<std::uint8_t>(flag)); }
template <typename T>
void PutSetting(util::ByteWriter& out, T value) {
  out.Put(value);
}
void GetSetting(util::ByteReader& in, bool& flag) {
  std::uint8_t byte = 0;
  in.Get(byte);
  flag = byte != 0;
}
template <typename T>
void GetSetting(util::ByteReader& in, T& value) {
  in.Get(value);
}

util::Bytes FlagByte(bool flag) { return {static_cast<std::uint8_t>(flag)}; }

}  // namespace

std::vector<ToolNode*> CCarCamObject::NodesInOrder() {
  std::vector<ToolNode*> nodes = {&body, &base, &chassisRelocator};
  for (std::size_t i = 0; i < kWheels; ++i) {
    nodes.insert(nodes.end(), {&wheelRelocators[i], &wheels[i], &wheelCenters[i], &wheelSuspensions[i]});
  }
  nodes.insert(nodes.end(),
               {&steeringWheel, &target, &gravity, &externalForce, &turnBase, &driverCam, &followCam, &topViewCam});
  return nodes;
}

std::vector<ToolNode*> CCarCamObject::Helpers() {
  std::vector<ToolNode*> helpers = {&base, &chassisRelocator, &target, &gravity, &externalForce, &turnBase};
  for (std::size_t i = 0; i < kWheels; ++i) {
    helpers.insert(helpers.end(), {&wheelRelocators[i], &wheelCenters[i], &wheelSuspensions[i]});
  }
  return helpers;
}

std::vector<ToolNode*> CCarCamObject::SwitchedNodes(const std::string& label, bool*& flag) {
  if (label == HelperSwitches::kHide) {
    flag = &settings.helpers.hide;
    return Helpers();
  }
  const std::pair<const char*, std::pair<bool*, ToolNode*>> cameras[] = {
      {carpage::kHideFollowCamera, {&settings.bHideFollowCam, &followCam}},
      {carpage::kHideDriverCamera, {&settings.bHideDriverCam, &driverCam}},
      {carpage::kHideTopViewCamera, {&settings.bHideTopViewCam, &topViewCam}},
  };
  for (const auto& [name, switched] : cameras) {
    if (label == name) {
      flag = switched.first;
      return {switched.second};
    }
  }
  return {};
}

void CCarCamObject::ApplyHideStates() {
  for (const char* label :
       {HelperSwitches::kHide, carpage::kHideFollowCamera, carpage::kHideDriverCamera, carpage::kHideTopViewCamera}) {
    bool* flag = nullptr;
    for (ToolNode* node : SwitchedNodes(label, flag)) SetHidden(node->handle, *flag);
  }
}

void CCarCamObject::Start(double time) {
  bRecording = true;
  bFreshRun = !(dStartTime < time) || history.IsEmpty();
  const bool keepHistories = settings.bEnableSeamlessTransitions || settings.bKeyframeOnlyEssentialObjects;
  if (bFreshRun) {
    if (keepHistories) iface->PushUndo(new CVariableModUndo<double>(&dStartTime));
    dStartTime = time;
    StartFresh(time);
    turnBase.Update(time);
  } else {
    cCarCam.Start();
    history.Restore(time, *this);
    for (std::size_t i = 0; i < kWheels; ++i) {
      cCarCam.wheels[i].hitPointFormer = cCarCam.wheels[i].ground.hitPoint;
      wheels[i].formerYaw = cCarCam.wheels[i].yaw;
      wheels[i].KeepDrop();
    }
  }
  if (cCarCam.params.bAutonomousMode && target.handle && target.handle->IsSameOrBelow(body.handle)) {
    iface->MessageBox(kTargetUnderBody, kWarning, box::kWarning);
  }
  for (std::size_t i = 0; i < kCarInputCount; ++i) responseFactors[i] = cCarCam.inputs[i].responseFactor;
  ground.Start(time, cCarCam.dLength, cCarCam.params.dGravity, settings.bUseFastRayCast, settings.iRayMultiplier);
  steeringWheel.Measure(dStartTime);
  if (settings.helpers.hide || settings.helpers.hideDuringRecording) {
    for (ToolNode* node : Helpers()) SetHidden(node->handle, true);
  }
  history.CutAfter(time, keepHistories ? iface : nullptr);
  UpdateGauges();
}

void CCarCamObject::StartFresh(double time) {
  ResetCore();
  MeasureRig(time);
  cCarCam.Start();
  const double velocity = StartVelocity(time);
  CarChannel& gas = cCarCam.inputs[pcInput_GAS_PEDAL];
  gas.value = velocity;
  const double h = CCarCam::SubStepsFor(iface->GetFrameDuration()).length;
  cCarCam.vTransCarAbsIncr = cCarCam.rotation.Rotate({0, 0, -1}) * (h * velocity * cCarCam.dLength);
  for (CWheelNode& wheel : wheels) wheel.Reset();
  followCam.Settle();
}

void CCarCamObject::Stop(double) {
  ground.Stop();
  cCarCam.Stop();
  // A burnout makes the steering heavy for as long as it lasts, which a run
  // may stop within.
  for (std::size_t i = 0; i < kCarInputCount; ++i) cCarCam.inputs[i].responseFactor = responseFactors[i];
  bRecording = false;
  if (settings.helpers.hideDuringRecording && !settings.helpers.hide) {
    for (ToolNode* node : Helpers()) SetHidden(node->handle, false);
  }
}

void CCarCamObject::ReadInputs() {
  for (std::size_t i = 0; i < kCarInputCount; ++i) {
    cCarCam.inputs[i].raw = inputControls[i] ? inputControls[i]->Evaluate() : 0.0;
  }
}

void CCarCamObject::Step(double time) {
  CCarCam& core = cCarCam;
  const bool essentialOnly = settings.bKeyframeOnlyEssentialObjects;
  const double dt = iface->GetFrameDuration();
  ReadInputs();
  if (core.params.bAutonomousMode) {
    // One frame back the target's pose is final, whatever order the host
    // evaluates the scene in.
    core.vAutonomousTarget = target.World(time - dt).GetTranslation();
    core.dBodyScale = body.World(time - dt).Axis(2).Length();
  }
  gravity.Read(time);
  if (core.inputs[pcInput_EXTERNAL_FORCE].raw != 0) externalForce.Update(time);
  core.StepA(dt);
  body.Update(time);
  base.Update(time);
  ground.BeginFrame(time, dt / (CCarCam::SubStepsFor(dt).rounds + 1));
  for (std::size_t i = 0; i < kWheels; ++i) {
    wheels[i].Update(time);
    if (essentialOnly) continue;
    wheelCenters[i].Update(time);
    wheelSuspensions[i].Update(time);
  }
  ground.EndFrame();
  core.StepB();
  for (CWheelNode& wheel : wheels) wheel.WriteTurn(time);
  LayBaseOnGround();
  gravity.Update(time);
  if (!essentialOnly) {
    steeringWheel.Update(time);
    followCam.Update(time);
    topViewCam.Update(time);
  }
  if (settings.bEnableSeamlessTransitions || essentialOnly) history.Record(time, *this);
  UpdateGauges();
  gauges.WriteAll(*this);
  bFreshRun = false;
}

void CCarCamObject::TimeChanged(double time) {
  // The speed the car had then, as its run kept it.
  if (!history.IsEmpty()) UpdateGauges(history.GasValueAt(time));
  iface->UpdateConfig();
}

void CCarCamObject::UpdateGauges() { UpdateGauges(cCarCam.inputs[pcInput_GAS_PEDAL].value); }

void CCarCamObject::UpdateGauges(double velocity) {
  CarGauges& g = settings.gauges;
  const CCarCam& core = cCarCam;
  const CarChannel& gas = core.inputs[pcInput_GAS_PEDAL];
  const double length = core.dLength;
  g.dMaxVelocity = length * g.dMultiplier * gas.maximum;
  const double acceleration = core.params.dAcceleration;
  g.dSecondsTo100 = ((100 / g.dMultiplier) / acceleration) / length;
  g.dSecondsTo60 = ((60 / g.dMultiplier) / acceleration) / length;
  g.dCurrentVelocity = std::fabs(velocity) < 0.0001 ? 0.0 : length * g.dMultiplier * velocity;
  const double percent = velocity * 100 / gas.maximum;
  g.dCurrentVelocityPercent = std::fabs(percent) < 0.01 ? 0.0 : percent;
}

double CCarCamObject::GaugeValue(std::size_t gauge) const {
  switch (gauge) {
    case kVelocity:
      return settings.gauges.dCurrentVelocity;
    case kVelocityPercent:
      return settings.gauges.dCurrentVelocityPercent / 100;
    case kSteeringAngle:
      return std::fmax(-kLargestSteering,
                       std::fmin(kLargestSteering, cCarCam.inputs[pcInput_STEERING_WHEEL].value));
    default:
      return cCarCam.wheels[gauge - kFirstWheelInTheAir].ground.inTheAir ? 1.0 : 0.0;
  }
}

std::intptr_t CCarCamObject::Extension(std::int32_t id, void* data) {
  gauges.Write(id, data, [this](std::size_t gauge) { return GaugeValue(gauge); });
  return 0;
}

std::vector<std::int32_t> CCarCamObject::ExtensionIds() { return {extension::kWriteGauge}; }

std::int32_t CCarCamObject::BuildConfig() {
  for (std::size_t i = 0; i < kCarInputCount; ++i) {
    inputControls[i] = iface->AddInput(kCarChannelTexts[i].name, input::kContinuous);
    if (inputControls[i]) inputControls[i]->exponent = kChannelExponent;
  }
  BuildCarPage(iface, this, cCarCam.params, cCarCam.inputs, settings);
  gauges.Make(iface, kGaugeNames);
  return 0;
}

std::int32_t CCarCamObject::Create() {
  for (ToolNode* node : NodesInOrder()) node->Create();
  ApplyHideStates();
  UpdateGauges();
  iface->UpdateConfig();
  iface->Redraw();
  return 0;
}

std::int32_t CCarCamObject::Load() {
  for (ToolNode* node : NodesInOrder()) {
    if (!node->Find()) return 1;
  }
  for (ToolNode* node : NodesInOrder()) node->RefreshHelper();
  util::DataChunk chunk;
  if (!kSavedData.Read(iface, chunk)) return 1;
  util::Bytes expected;
  util::ByteWriter sizing(expected);
  ForEachSetting(*this, [&sizing](auto& field) { PutSetting(sizing, field); });
  const util::Bytes* saved = SavedData::Child(chunk, kSettingsKey, expected.size());
  const util::Bytes* storeMesh = SavedData::Child(chunk, kStoreMeshKey, 1);
  const util::Bytes* useStaticMesh = SavedData::Child(chunk, kUseStaticMeshKey, 1);
  const util::DataChunk* storedMesh = chunk.FindChild(kStoredMeshKey);
  const util::DataChunk* storedPose = chunk.FindChild(kBulletMeshKey);
  if (!saved || !storeMesh || !useStaticMesh || !storedMesh || !storedPose) return 1;
  util::CMesh mesh;
  Matrix pose;
  if (!CarGround::ReadStored(storedMesh->data, storedPose->data, mesh, pose) ||
      ((*useStaticMesh)[0] != 0) == mesh.faces.empty()) {
    return 1;
  }
  if (!history.LoadFrom(chunk)) return 1;
  util::ByteReader in(*saved);
  ForEachSetting(*this, [&in](auto& field) { GetSetting(in, field); });
  settings.bStoreGroundMeshData = (*storeMesh)[0] != 0;
  ground.SetStored(std::move(mesh), pose);
  UpdateGauges();
  return 0;
}

std::int32_t CCarCamObject::Save() {
  util::DataChunk chunk = kSavedData.Begin();
  util::Bytes saved;
  util::ByteWriter out(saved);
  ForEachSetting(*this, [&out](auto& field) { PutSetting(out, field); });
  chunk.AddChild(kSettingsKey, std::move(saved));
  history.SaveTo(chunk);
  chunk.AddChild(kUseStaticMeshKey, FlagByte(ground.HasStoredMesh()));
  chunk.AddChild(kStoredMeshKey, ground.SavedMesh());
  chunk.AddChild(kBulletMeshKey, ground.SavedPose());
  chunk.AddChild(kStoreMeshKey, FlagByte(settings.bStoreGroundMeshData));
  SavedData::Store(iface, chunk);
  return 0;
}

void CCarCamObject::Changed(std::string label) {
  const ConfigChange change(std::move(label));
  bool* flag = nullptr;
  const std::vector<ToolNode*> switched = SwitchedNodes(change.label, flag);
  if (!switched.empty()) {
    // One undo record for the switch; it replays onto every node.
    ApplyHideSwitch(iface, this, change, switched.front()->handle, *flag);
    for (std::size_t i = 1; i < switched.size(); ++i) SetHidden(switched[i]->handle, change.undo ? !*flag : *flag);
    return;
  }
  if (change.IsReplay()) return;
  const std::string gasMaximum = std::string(kCarChannelTexts[pcInput_GAS_PEDAL].name) + carpage::kMaximumSuffix;
  if (change.label == carpage::kUseFastRayCast || change.label == carpage::kStoreGroundMeshData) {
    ChangeGroundOption(change.label);
    return;
  }
  if (change.label == carpage::kTurnBase) {
    turnBase.Update(iface->GetTime());
  } else if (change.label == carpage::kReinitialize) {
    MeasureRig(iface->GetTime());
  } else if (change.label != gasMaximum && change.label != carpage::kMultiplier &&
             change.label != carpage::kAcceleration) {
    return;
  }
  UpdateGauges();
  iface->UpdateConfig();
  iface->Redraw();
}

void CCarCamObject::ChangeGroundOption(const std::string& label) {
  if (label == carpage::kUseFastRayCast) {
    // Off, it takes the stored mesh along.
    if (!settings.bUseFastRayCast) settings.bStoreGroundMeshData = false;
  } else if (settings.bStoreGroundMeshData) {
    if (const char* failure = ground.StoreMesh(iface->GetTime(), settings.bUseFastRayCast)) {
      iface->MessageBox(failure, kError, box::kCritical);
      settings.bStoreGroundMeshData = false;
    }
  }
  if (!settings.bStoreGroundMeshData) ground.ClearStoredMesh();
  iface->UpdateConfig();
}

}  // namespace vuk::rgw::addon
