#include "plugins/airplaneextended/airplaneextendedobject.h"

#include <cmath>

#include "plugins/common/filterresponse.h"
#include "plugins/common/hideswitch.h"
#include "plugins/common/spinkeys.h"
#include "sdk/cvariablemodundo.h"

namespace vuk::rgw::addon {

const ToolInfo CAeroCamObject::kInfo = {
    "AirplaneExt",
    "airplaneextended",
    "Quoll Airplane Extended",
    "Camera",
    "Quoll Airplane Extended simulates any type of airplane. A control system aids the pilot in steering Quoll "
    "Airplane in real time with high precision. 'Autonomous Mode' allows for the airplane to automatically follow a "
    "spline (or another airplane). An input device can be used to alter the automatic path in real time.",
    "Airplane Extended: an airplane flown live or after a target.",
    {},
};

namespace {

constexpr double kPi = 3.141592653589793;
constexpr std::array<const char*, CAeroCamObject::kGaugeCount> kGaugeNames = {"Current Velocity",
                                                                             "Current Velocity (% of max)"};
// The largest turns of the two propellers between two keys: the first's a
// hair below the shared one, so that two propellers side by side don't
// strobe alike.
constexpr double kFirstPropellerKeyTurn = 3.1101767270538954;
constexpr double kSecondPropellerKeyTurn = kLargestTurnPerKey;

double Divided(double value, double by) { return by != 0 ? value / by : 0.0; }

}  // namespace

CAeroCamObject::CAeroCamObject(const CreateParam& param)
    : CCamera(param),
      surfaces{{{kRudder, kPi, &settings.dRudderAngleMult, 0},
                {kElevator, -kPi, &settings.dElevatorAngleMult, 0},
                {kAileron, kPi, &settings.dLeftAileronAngleMult, 0},
                {kAileron, -kPi, &settings.dRightAileronAngleMult, 0}}} {}

std::vector<ToolNode*> CAeroCamObject::NodesInOrder() {
  return {&body,         &relocator,  &target,        &propeller,     &propeller2,  &rudder,     &rudder2,
          &elevator,     &elevator2,  &aileronRight,  &aileronRight2, &aileronLeft, &aileronLeft2, &cockpitCam,
          &followCam};
}

std::vector<ToolNode*> CAeroCamObject::Helpers() {
  std::vector<ToolNode*> nodes = NodesInOrder();
  nodes.resize(nodes.size() - 2);  // all but the two cameras
  return nodes;
}

std::vector<ToolNode*> CAeroCamObject::SwitchedNodes(const std::string& label, bool*& flag) {
  if (label == HelperSwitches::kHide) {
    flag = &settings.helpers.hide;
    return Helpers();
  }
  if (label == aeropage::kHideCockpitCamera) {
    flag = &settings.bHideCockpitCam;
    return {&cockpitCam};
  }
  if (label == aeropage::kHideFollowCamera) {
    flag = &settings.bHideFollowCam;
    return {&followCam};
  }
  return {};
}

void CAeroCamObject::ApplyHideStates() {
  for (const char* label : {HelperSwitches::kHide, aeropage::kHideCockpitCamera, aeropage::kHideFollowCamera}) {
    bool* flag = nullptr;
    for (ToolNode* node : SwitchedNodes(label, flag)) SetHidden(node->handle, *flag);
  }
}

void CAeroCamObject::ReadControls() {
  for (InputChannel& channel : cAeroCam.channels) channel.Read();
}

void CAeroCamObject::Start(double time) {
  CAeroCam& core = cAeroCam;
  const bool resume = dStartTime < time && !history.IsEmpty();
  // Undoing the run takes back what it changed of the saved state.
  iface->PushUndo(new CVariableModUndo<double>(&dStartTime));
  iface->PushUndo(new CVariableModUndo<double>(&dInitialVelocity));
  iface->PushUndo(new CVariableModUndo<bool>(&bStartWithNonzeroInitialVelocity));
  iface->PushUndo(new CVariableModUndo<bool>(&bFirstTime));
  if (!resume) dStartTime = time;
  history.CutAfter(time, *iface);
  // The inputs as they stand before the run: a slight push gives a start speed.
  for (InputChannel& channel : core.channels) channel.raw = channel.control ? channel.control->Evaluate() : 0.0;
  core.params.dRelativeScale = std::fmax(1e-08, relocator.Local(time).Axis(0).Length());
  double times[3];
  PoseRecord now = relocator.Read(time, times[0]);
  const PoseRecord before = relocator.Read(time - CAeroCam::kSubStep, times[1]);
  const PoseRecord earlier = relocator.Read(time - 2 * CAeroCam::kSubStep, times[2]);
  followCam.Settle(time);
  if (resume) {
    now = history.PoseAt(time);
  } else {
    core.vMomentum = {};
    for (InputChannel& channel : core.channels) channel.output = channel.stage = 0;
    core.autonomousMem.fill(0);
    core.dFollowMem = core.dYawMem = core.dPitchMem = core.dRollMem = 0;
    core.vShakeFiltered = {};
    core.qRegulatorMem = now.rotation;
    core.bAfterBurnerOn = false;
    for (Surface& surface : surfaces) surface.angle = 0;
    dPropellerAngle = dPropellerSpin = 0;
    // Only a new run takes a start speed: a resumed one flies on as it was.
    dInitialVelocity = StartSpeed(now, before, times[0] - times[1]);
    bStartWithNonzeroInitialVelocity = dInitialVelocity != 0;
  }
  core.bRegulatorActive = false;
  core.iTurbulenceCounter = 0;
  core.iWindRandom = core.iShakeRandom = 1;
  core.dTurbulenceMem = core.dShakeMem = 0;
  core.Reset(now, before, earlier, resume ? 0.0 : dInitialVelocity);
  if (resume) history.Restore(time, *this);
  if (bFirstTime) core.mRelativeFrame = Matrix::FromPose({now.position, now.rotation});
  MeasureParts(time);
  for (ToolNode* node : Helpers()) settings.helpers.Start(node->handle);
  UpdateGauges();
}

double CAeroCamObject::StartSpeed(const PoseRecord& now, const PoseRecord& before, double dt) const {
  const CAeroCam& core = cAeroCam;
  if (core.params.bRelativeVelocityMode) return 0;
  const InputChannel& forward = core.channels[kForward];
  const InputChannel& burner = core.channels[kAfterBurner];
  if (burner.raw != 0) return burner.maximum * forward.maximum;
  if (std::fabs(forward.raw) > 0.01) return forward.raw * forward.maximum;
  // The speed the body's keys give it along its nose.
  const double measured = Divided(-(now.position - before.position).Dot(now.rotation.Rotate({0, 0, 1})), dt) /
                          core.params.dRelativeScale;
  if (settings.dInitialVelocityPercent <= 0 && measured > 0.01) return measured;
  return settings.dInitialVelocityPercent / 100 * forward.maximum;
}

std::array<std::pair<CAeroCamObject::CTurningNode*, const CAeroCamObject::Surface*>, 8>
CAeroCamObject::SurfaceNodes() {
  return {{{&rudder, &surfaces[0]},
           {&elevator, &surfaces[1]},
           {&aileronLeft, &surfaces[2]},
           {&aileronRight, &surfaces[3]},
           {&rudder2, &surfaces[0]},
           {&elevator2, &surfaces[1]},
           {&aileronLeft2, &surfaces[2]},
           {&aileronRight2, &surfaces[3]}}};
}

void CAeroCamObject::MeasureParts(double time) {
  propeller.Measure(time, settings.bReverseFirstPropeller ? -dPropellerAngle : dPropellerAngle);
  propeller2.Measure(time, dPropellerAngle);
  for (const auto& [node, surface] : SurfaceNodes()) node->Measure(time, surface->angle);
}

void CAeroCamObject::Stop(double) {
  for (ToolNode* node : Helpers()) settings.helpers.Stop(node->handle);
}

void CAeroCamObject::Step(double time) {
  CAeroCam& core = cAeroCam;
  const double dt = iface->GetFrameDuration();
  ReadControls();
  const bool autonomous = core.params.bAutonomousMode;
  if (autonomous) {
    double answered = time;
    const PoseRecord aimedFrom = relocator.Read(time, answered);
    Matrix aimedAt = target.World(time);
    for (int axis = 0; axis < 3; ++axis) aimedAt.SetAxis(axis, aimedAt.Axis(axis).Normalized());
    core.Steer(Matrix::FromPose({aimedFrom.position, aimedFrom.rotation}), aimedAt, dt);
  }
  core.Fly(dt);
  body.Update(time);
  if (autonomous) {
    // The surfaces show what the steering asks on top of the pilot.
    ReadControls();
    const AeroSteering steering = core.Steering();
    const AeroParameters& p = core.params;
    auto& c = core.channels;
    c[kForward].raw += steering.follow;
    if (!p.bRealisticControl) c[kRudder].raw += Divided(steering.yaw * p.dYawStrength, c[kRudder].maximum);
    c[kAileron].raw += Divided(steering.roll * p.dRollStrength, c[kAileron].maximum);
    c[kElevator].raw += Divided(steering.pitch * p.dPitchStrength, c[kElevator].maximum);
  }
  UpdatePropellers(time, dt);
  UpdateSurfaces(time, dt);
  followCam.Update(time);
  history.Record(time, *this);
  UpdateGauges();
  gauges.Write(*this);
  bFirstTime = false;
}

void CAeroCamObject::UpdateSurfaces(double time, double dt) {
  for (Surface& surface : surfaces) {
    const double wanted = cAeroCam.channels[surface.channel].raw * *surface.multiplier * surface.sign * 0.25;
    filterResponse(surface.angle, wanted, 0.3, dt);
  }
  for (const auto& [node, surface] : SurfaceNodes()) node->Turn(time, surface->angle);
}

void CAeroCamObject::UpdatePropellers(double time, double dt) {
  const double perFrame = settings.dPropellerSpeed * kPi / 180;
  const bool steady = settings.bConstantPropellerSpeed || cAeroCam.params.bRelativeVelocityMode;
  const double wanted = steady ? -perFrame / 1.22 : perFrame * cAeroCam.channels[kForward].output / -1.22;
  filterResponse(dPropellerSpin, wanted, 0.7, dt);
  const double former = dPropellerAngle;
  dPropellerAngle += dPropellerSpin;
  const double first = settings.bReverseFirstPropeller ? -1.0 : 1.0;
  propeller.Spin(time, dt, first * former, first * dPropellerAngle, kFirstPropellerKeyTurn);
  propeller2.Spin(time, dt, former, dPropellerAngle, kSecondPropellerKeyTurn);
}

void CAeroCamObject::TimeChanged(double) { iface->UpdateConfig(); }

void CAeroCamObject::UpdateGauges() {
  const CAeroCam& core = cAeroCam;
  const double speed = core.vVelocity.Length();
  settings.dCurrentVelocity =
      speed < 0.0001 ? 0.0 : settings.dMultiplier * core.params.dRelativeScale * speed;
  const InputChannel& forward = core.channels[kForward];
  const double percent = Divided(forward.output * 100, forward.maximum);
  settings.dCurrentVelocityPercent = std::fabs(percent) < 0.01 ? 0.0 : percent;
}

double CAeroCamObject::GaugeValue(std::size_t gauge) const {
  return gauge == kVelocity ? settings.dCurrentVelocity : settings.dCurrentVelocityPercent / 100;
}

std::intptr_t CAeroCamObject::Extension(std::int32_t id, void* data) {
  if (id == extension::kWriteGauge && data) gauges.Update(data, [this](std::size_t i) { return GaugeValue(i); });
  return 0;
}

std::vector<std::int32_t> CAeroCamObject::ExtensionIds() { return {extension::kWriteGauge}; }

std::int32_t CAeroCamObject::BuildConfig() {
  for (InputChannel& channel : cAeroCam.channels) channel.Create(iface);
  BuildAeroPage(iface, this, cAeroCam, settings);
  gauges.Make(iface, kGaugeNames);
  return 0;
}

std::int32_t CAeroCamObject::Create() {
  for (ToolNode* node : NodesInOrder()) node->Create();
  if (body.handle) body.handle->Select();
  ApplyHideStates();
  UpdateGauges();
  iface->UpdateConfig();
  iface->Redraw();
  return 0;
}

void CAeroCamObject::Changed(std::string label) {
  const ConfigChange change(std::move(label));
  bool* flag = nullptr;
  const std::vector<ToolNode*> switched = SwitchedNodes(change.label, flag);
  if (!switched.empty()) {
    ApplyHideSwitchToAll(iface, this, change, switched, *flag);
    return;
  }
  if (change.IsReplay()) return;
  if (change.label == aeropage::kInitialize) {
    bFirstTime = true;
    // The next start reads the forward input anew and begins afresh.
    dStartTime = 1e300;
  } else if (change.label != aeropage::kMultiplier) {
    return;
  }
  UpdateGauges();
  iface->UpdateConfig();
}

}  // namespace vuk::rgw::addon
