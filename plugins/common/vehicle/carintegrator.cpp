// One integrator round of the 4-Wheeler core: the base along its arc, the
// wheels' steering, and the sprung body by velocity Verlet.

#include <algorithm>
#include <cmath>

#include "plugins/common/filterresponse.h"
#include "plugins/common/vehicle/carcam.h"
#include "plugins/common/vehicle/carnoise.h"

namespace vuk::rgw::addon {

namespace {

constexpr double kPi = 3.141592653589793;
// Just short of a right angle, where the turn radius would vanish.
constexpr double kLargestSteering = 1.5707649108683606;

// Moves f towards 1 once it is above `from`, and snaps it there near 1.
void NudgeTowardsOne(double& f, double from, double h) {
  if (f > from) filterResponse(f, 1.0, 0.2, h);
  if (f > 0.99) f = 1.0;
}

// One velocity Verlet step of a sprung axis within +-limit; at the limit the
// axis stops. `acceleration` gives the new acceleration at the new place.
template <typename Acceleration>
void VerletStep(double& pos, double& vel, double& acc, double limit, double h, Acceleration acceleration) {
  pos += h * vel + h * (acc * 0.5 * h);
  const bool atLimit = std::fabs(pos) >= limit;
  if (atLimit) pos = std::copysign(limit, pos);
  const double next = acceleration();
  vel += (next + acc) * 0.5 * h;
  acc = next;
  if (atLimit) vel = 0;
}

// In the air the body settles back to neutral.
void Neutralize(double& pos, double& vel, double factor) {
  pos *= factor;
  vel *= 0.5;
}

}  // namespace

void CCarCam::Round(double h, double dt) {
  CarChannel& gas = inputs[pcInput_GAS_PEDAL];
  // Never exactly 0: the arc divides by the speed's effect.
  if (std::fabs(gas.value) < 1e-08) gas.value = gas.value < 0 ? -1e-08 : 1e-08;
  const double speed = Speed();
  const double steering = std::clamp(inputs[pcInput_STEERING_WHEEL].value, -kLargestSteering, kLargestSteering);
  const double radius = TurnRadius(steering);
  const CarVector formerIncrement = vTransCarAbsIncr;
  if (!(bCarInTheAir && params.bGravityOn)) MoveOnArc(h, dt, speed, steering, radius);

  const CarVector acceleration = (vTransCarAbsIncr - formerIncrement) / h / h;
  vLocalAcceleration = rotation.Conjugate().Rotate(acceleration);
  position += vTransCarAbsIncr;

  UpdateWheelYaws(h, speed, radius);
  UpdateBody(h);
  UpdateMounts();
  for (std::size_t i = 0; i < wheels.size(); ++i) {
    wheels[i].compressionFormer = wheels[i].compression;
    wheels[i].compression = CompressionAt(i, wheels[i].ground.hitPoint);
  }
}

void CCarCam::MoveOnArc(double h, double dt, double speed, double steering, double radius) {
  const double burnout = inputs[pcInput_BURNOUT].value;
  const double burnoutYaw = -(steering * burnout * h);
  const double arcYaw = h * speed / radius + burnoutYaw;
  const double wantedYaw = bSkidBreakingOn ? dSkidBrakeLocalYawIncr : arcYaw + dSkidBrakeLocalYawIncr;

  double grip = 1 - inputs[pcInput_SKIDDING].value;
  NudgeTowardsOne(grip, 0.7, h);
  filterResponse(fCarLocalYawIncr, wantedYaw, grip, h);

  RunBurnout(h, dt);

  const CarVector up{0, 1, 0};
  qRotCarAbsIncr = CarRotation::FromAxisAngle(up, fCarLocalYawIncr);
  const double turnBase = TurnBaseZ();
  vWantedIncr = bSkidBreakingOn ? vSkidBrakePosIncr
                                : rotation.Rotate({-std::tan(fCarLocalYawIncr) * turnBase, 0, -h * speed});
  // A burnout swings the car about its front axle.
  const CarVector ahead{0, 0, -1};
  const double frontAxle = wheels[kFrontLeft].z + wheels[kFrontRight].z;
  vWantedIncr += rotation.Rotate((CarRotation::FromAxisAngle(up, burnoutYaw).Rotate(ahead) - ahead) * frontAxle);

  const bool skidding = inputs[pcInput_SKIDDING].raw != 0;
  if (!skidding || bSkidBreakingOn) {
    const bool held = inputs[pcInput_SKID_BRAKE].value / inputs[pcInput_SKID_BRAKE].maximum > 0.0001;
    const double release = params.dSkiddingReleaseResponseFactor * (held ? params.dSkidBrakeStopFactor : 1.0);
    filterResponse(dVelocityFollowFactor, grip, release, h);
    NudgeTowardsOne(dVelocityFollowFactor, 0.5, h);
    if (!bCarInTheAir) filterResponseVector(vTransCarAbsIncr, vWantedIncr, dVelocityFollowFactor, h);
  } else {
    if (!bCarInTheAir) filterResponseVector(vTransCarAbsIncr, vWantedIncr, grip, h);
    dVelocityFollowFactor = grip;
  }
  rotation = (qRotCarAbsIncr * rotation).Normalized();
}

void CCarCam::RunBurnout(double h, double dt) {
  CarChannel& burnout = inputs[pcInput_BURNOUT];
  CarChannel& steering = inputs[pcInput_STEERING_WHEEL];
  if (burnout.value <= 0.001) {
    if (bBurnoutOn) steering.responseFactor = dBurnoutSavedSteeringResponse;
    bBurnoutOn = false;
    dBurnoutTorque = 0;
    return;
  }
  if (!bBurnoutOn) dBurnoutSavedSteeringResponse = steering.responseFactor;
  bBurnoutOn = true;
  if (burnout.raw == 0) {
    burnout.value *= params.dBurnoutFadeoutFactor;
  } else {
    // The steering grows heavy while the back wheels spin.
    filterResponse(steering.responseFactor, 0.05, 0.1, h);
  }
  // 0.49 keeps a spinning wheel below half a turn per step.
  for (CarWheel& wheel : wheels) {
    if (!wheel.front) wheel.pitchIncrement += burnout.value * (-kPi) * 0.49 * h / dt;
  }
  const double q = 20 * noise01(randomValue_burnout);
  dBurnoutTorque = (1 + params.dBurnoutShake * std::pow(q, 5)) * params.dBurnoutTiltingForce * burnout.value *
                   dLength * dLength / 46875.0;
}

void CCarCam::UpdateWheelYaws(double h, double speed, double radius) {
  const double turnBase = TurnBaseZ();
  const double travel = h * speed;
  const double fraction = travel / std::fabs(radius) * (radius < 0 ? -1 : 1);
  // The arc's chord turns the radius slightly; a straight arc keeps 1e16.
  const double corrected = fraction == 0 ? 1e16 : travel * 0.5 / std::tan(fraction * 0.5);
  const double sign = corrected < 0 ? -1.0 : 1.0;
  for (CarWheel& wheel : wheels) {
    if (wheel.z == turnBase) continue;
    wheel.yawFormer = wheel.yaw;
    // Ackermann: each wheel points across its own line to the turn centre.
    wheel.yaw = std::atan2((turnBase - wheel.z) * sign, (corrected + wheel.x) * sign);
  }
}

void CCarCam::UpdateBody(double h) {
  const double mass = params.dMassMult * 25;
  const double gravity = params.dGravity * 10;
  const double L = dLength;
  const double inertia = (mass / 12 + mass / 12) * L * L;
  double total = 0, pitchTorque = dBurnoutTorque, rollTorque = 0, radii = 0;
  for (CarWheel& wheel : wheels) {
    const CarSuspension& s = params.cSuspension;
    const double stiffness = wheel.front ? s.dFrontStiffness : s.dBackStiffness;
    const double damping = wheel.front ? s.dFrontDamping : s.dBackDamping;
    // The damper sees the compression's change over the previous sub-step.
    // Positive force lifts the chassis: a compressed spring pushes it up,
    // which keeps the car at rest and its tilt bounded.
    wheel.springForce = wheel.compression * stiffness + (wheel.compression - wheel.compressionFormer) / h * damping;
    total += wheel.springForce;
    pitchTorque += wheel.springForce * wheel.z;
    rollTorque += wheel.springForce * wheel.x;
    radii += wheel.radius;
  }
  const double meanRadius = radii / static_cast<double>(wheels.size());
  const double force = inputs[pcInput_EXTERNAL_FORCE].value;
  const CarVector& d = vExternalForceDirection;
  const CarVector& p = vExternalForcePoint;
  const CarWheel& frontLeft = wheels[kFrontLeft];
  CarBody& body = cCarBody;

  if (bCarInTheAir) {
    Neutralize(body.fRelYPos, body.fRelYVel, params.dLandingNeutralizer);
    Neutralize(body.fRelXAng, body.fRelXAngVel, params.dLandingNeutralizer);
    Neutralize(body.fRelZAng, body.fRelZAngVel, params.dLandingNeutralizer);
    return;
  }
  const double heaveLimit = 0.9 * frontLeft.radius * params.dSuspensionLengthRel * params.dWheelRadiusMult;
  VerletStep(body.fRelYPos, body.fRelYVel, body.fRelYAcc, heaveLimit, h,
             [&] { return (L * force * d.y + total + mass * vLocalAcceleration.y) / mass; });
  const CarVector g = ChassisRotation().Conjugate().Rotate(vGravityDirection);
  const double lever = (L / 3 * 0.5 + body.fRelYPos + dRideHeight) - meanRadius;
  VerletStep(body.fRelXAng, body.fRelXAngVel, body.fRelXAngAcc, params.dMaxForwardTiltAngle, h, [&] {
    const double inertial = mass * vLocalAcceleration.z * lever;
    const double weight = mass * gravity * L * 0.25 * lever * g.z;
    const double external = L * L * force * (p.z * d.y - p.y * d.z);
    return (weight - inertial - pitchTorque - external) / inertia;
  });
  VerletStep(body.fRelZAng, body.fRelZAngVel, body.fRelZAngAcc, params.dMaxSideTiltAngle, h, [&] {
    return (rollTorque - L * L * force * (p.y * d.x - p.x * d.y) + mass * vLocalAcceleration.x * lever -
            mass * gravity * L * 0.25 * lever * g.x) /
           inertia;
  });
}

void CCarCam::UpdateMounts() {
  const CarRotation tilt = Tilt();
  vChassisOffset = tilt.Rotate({0, cCarBody.fRelYPos + dRideHeight, 0});
  const double splay = std::fabs(std::sin(cCarBody.fRelZAng)) / 6;
  for (CarWheel& wheel : wheels) {
    wheel.mountFormer = wheel.mount;
    // The mount is fixed to the chassis where the rig puts it at rest (r
    // above the wheel plane, less the ride height); it heaves and tilts with
    // the chassis, so that the springs see pitch and roll. As the body rolls
    // the wheels splay out by a sixth of their offset.
    const CarVector rest{wheel.x * (1 + splay), WheelRadius(wheel) - 2 * dRideHeight, wheel.z};
    wheel.mount = vChassisOffset + tilt.Rotate(rest);
  }
}

}  // namespace vuk::rgw::addon
