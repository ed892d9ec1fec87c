#include "plugins/common/vehicle/carcam.h"

#include <algorithm>
#include <cmath>

#include "plugins/common/filterresponse.h"

namespace vuk::rgw::addon {

namespace {

constexpr double kTwoPi = 6.283185307179586;

// Sum of absolute component differences: 2 or more means the two stand on
// opposite sides of the double cover.
double CoverDistance(const CarRotation& a, const CarRotation& b) {
  return std::fabs(a.x - b.x) + std::fabs(a.y - b.y) + std::fabs(a.z - b.z) + std::fabs(a.w - b.w);
}

}  // namespace

CCarCam::SubSteps CCarCam::SubStepsFor(double dt) {
  const double count = std::max(1.0, std::trunc(dt / kLongestSubStep));
  const double length = dt / count;
  // Counted again from the division: rounding may give one round fewer.
  return {static_cast<int>(std::max(1.0, std::trunc(dt / length))), length};
}

CCarCam::CCarCam() {
  wheels.resize(4);
  const double sides[] = {-0.64, 0.64, -0.64, 0.64};
  const double lengths[] = {-1.05, -1.05, 1.044, 1.044};
  for (std::size_t i = 0; i < wheels.size(); ++i) {
    wheels[i].x = sides[i];
    wheels[i].z = lengths[i];
    wheels[i].front = i < kBackLeft;
  }
}

void CCarCam::Start() {
  const auto adder = static_cast<std::uint32_t>(params.iRandomSeedAdder);
  randomValue_gravelShake = 1000 + adder;
  randomValue_burnout = 10000 + adder;
  randomValue_steeringNoise = 100000 + adder;
  cSuspensionRecording = params.cSuspension;
  vChassisOffset = {0, dRideHeight, 0};
  UpdateMounts();
}

void CCarCam::Stop() { params.cSuspension = cSuspensionRecording; }

void CCarCam::StepA(double dt) {
  if (params.bAutonomousMode) FollowTarget(dt);
  for (CarWheel& wheel : wheels) {
    wheel.pitchIncrement = 0;
    wheel.compression = wheel.ground.compression;
  }
  const SubSteps steps = SubStepsFor(dt);
  UpdateAirState(steps.length, dt);
  UpdateSkidBrake(steps.length, dt);
  UpdateSkiddingFlag();
  RunInputStage(dt);
  RunBooster(dt);
  RunAbs(dt);
  RunGravel(dt);
  vTransCarAbsIncrFormer = vTransCarAbsIncr;
  qRotCarAbsIncrFormer = qRotCarAbsIncr;
  for (int round = 0; round < steps.rounds; ++round) Round(steps.length, dt);
}

void CCarCam::UpdateAirState(double h, double dt) {
  bool allInTheAir = !wheels.empty();
  for (const CarWheel& wheel : wheels) allInTheAir = allInTheAir && wheel.ground.inTheAir;
  if (!allInTheAir) {
    bJustLanded = bCarInTheAir;
    bCarInTheAir = false;
    return;
  }
  if (!bCarInTheAir) qAttitudeMem = rotation;
  bCarInTheAir = true;
  bJustLanded = false;
  // The increment belongs to a sub-step of this frame's length h: added once
  // a frame, L g h dt / 4 raises the speed by L g dt / 4 at any frame rate.
  const double gravity = params.bGravityOn ? 1.0 : 0.0;
  vTransCarAbsIncr += vGravityDirection * (dLength * gravity * params.dJumpGravity * h * dt * 0.25);
  // The air speed limit is in L per second, so the sub-step's increment is
  // held to limit x L x h.
  const double longest = params.dScaleRelMaxJumpVelocity * dLength * h;
  const double length = vTransCarAbsIncr.Length();
  if (length > longest) vTransCarAbsIncr *= longest / length;

  CarRotation wanted = qGravityAttitude;
  if (wanted.w < 0) wanted = -wanted;
  if (CoverDistance(qAttitudeMem, wanted) >= 2.0) qAttitudeMem = -qAttitudeMem;
  if (CoverDistance(rotation, qAttitudeMem) >= 2.0) rotation = -rotation;
  filterResponseQuat(qAttitudeMem, wanted, params.dHorizontalRestoringFactor, dt);
  filterResponseQuat(rotation, qAttitudeMem, params.dHorizontalRestoringFactor, dt);

  if (inputs[pcInput_SKIDDING].raw + params.dSkiddingOffsetValue < params.dLandingSkiddingFactor) {
    dVelocityFollowFactor = params.dLandingSkiddingFactor;
  }
}

void CCarCam::StepB() {
  const double speed = Speed();
  const double turnBase = TurnBaseZ();
  const CarVector back = BackAxis();
  const double rolling = std::fabs(speed) < 0.001 * dLength ? 0.0 : 1.0;
  for (CarWheel& wheel : wheels) {
    const double driven = wheel.ground.distanceDriven;
    double signedDistance;
    if (std::fabs(wheel.z - turnBase) > 0.001 * dLength) {
      signedDistance = speed < 0 ? -driven : driven;
    } else {
      // A wheel on the turn base line takes its direction from its own
      // motion: forward (against the back axis) rolls it as positive speed.
      const double along = (wheel.ground.hitPoint - wheel.hitPointFormer).Dot(back);
      signedDistance = along < 0 ? driven : -driven;
    }
    wheel.pitchIncrement -= signedDistance * rolling / WheelRadius(wheel);
    wheel.hitPointFormer = wheel.ground.hitPoint;
    wheel.totalPitchFormer = wheel.totalPitch;
    // A skid brake locks the wheels.
    wheel.pitchTurn = bSkidBreakingOn ? 0.0 : wheel.pitchIncrement;
    wheel.totalPitch = std::fmod(wheel.totalPitch + wheel.pitchTurn, kTwoPi);
  }
}

double CCarCam::CompressionAt(std::size_t wheel, const CarVector& hitPoint) const {
  const CarWheel& w = wheels[wheel];
  const CarVector up = ChassisRotation().Rotate({0, 1, 0});
  return (hitPoint - WheelMountWorld(wheel)).Dot(up) - (dRideHeight - WheelRadius(w));
}

CarVector CCarCam::WheelMountWorld(std::size_t wheel) const {
  return position + rotation.Rotate(wheels[wheel].mount);
}

CarRotation CCarCam::Tilt() const {
  return CarRotation::FromAxisAngle({1, 0, 0}, cCarBody.fRelXAng) *
         CarRotation::FromAxisAngle({0, 0, 1}, cCarBody.fRelZAng);
}

CarRotation CCarCam::ChassisRotation() const { return Tilt() * rotation; }

CarVector CCarCam::ChassisPosition() const { return position + rotation.Rotate(vChassisOffset); }

CarRotation CCarCam::WheelRotation(std::size_t wheel) const {
  const CarWheel& w = wheels[wheel];
  // Spin about the axle first, then steer, then ride with the chassis.
  return CarRotation::FromAxisAngle({1, 0, 0}, w.totalPitch) * CarRotation::FromAxisAngle({0, 1, 0}, w.yaw) *
         ChassisRotation();
}

double CCarCam::TurnBaseZ() const {
  const double b = params.dTurnBaseBackWheelRel - wheels[kBackLeft].z / (dLength * 0.5);
  return b * (-dLength / 2);
}

double CCarCam::TurnRadius(double steering) const {
  const double tangent = std::tan(steering);
  const double b = TurnBaseZ() / (-dLength / 2);
  double radius = tangent == 0 ? -1e45 : (1 - b) * (-dLength / 2) / tangent;
  const double magnitude = std::min(1e45, std::max(0.01 * dLength, std::fabs(radius)));
  return std::copysign(magnitude, radius);
}

// The text's "forward axis" is the base's third axis, which points to the
// back: with it a slope pulls the car downhill, the avoidance sphere turns a
// car that heads away, and wheels roll forward when the car does.
CarVector CCarCam::BackAxis() const { return rotation.Rotate({0, 0, 1}); }

}  // namespace vuk::rgw::addon
