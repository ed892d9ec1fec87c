// The 4-Wheeler core's frame-level stages before the integrator: the
// autonomous mode's choice of gas and steering, skid brake, input channels,
// booster, ABS and gravel.

#include <algorithm>
#include <cmath>

#include "plugins/common/filterresponse.h"
#include "plugins/common/vehicle/carcam.h"
#include "plugins/common/vehicle/carnoise.h"

namespace vuk::rgw::addon {

namespace {

// sign(0) counts as +1 throughout the car.
double Sign(double v) { return v < 0 ? -1.0 : 1.0; }

// Moves from `former` towards `wanted` by at most `largest`; within reach
// it is `wanted` itself, not former plus the difference, which may round.
double StepTowards(double former, double wanted, double largest) {
  if (std::fabs(wanted - former) <= largest) return wanted;
  return former + Sign(wanted - former) * largest;
}

// In autonomous mode a channel integrates: the memory follows raw x maximum
// and the value grows by it; raw becomes what the value stands for.
void IntegrateAutonomous(bool autonomous, CarChannel& channel, double& memory, double dt) {
  if (!autonomous) {
    memory = 0;
    return;
  }
  filterResponse(memory, channel.raw * channel.maximum, channel.responseFactor, dt);
  channel.value += memory;
  channel.raw = channel.value / channel.maximum;
}

}  // namespace

void CCarCam::FollowTarget(double dt) {
  CarChannel& gas = inputs[pcInput_GAS_PEDAL];
  CarChannel& steering = inputs[pcInput_STEERING_WHEEL];
  // The target as the body sees it from its front point, on the body's plane.
  const CarRotation body = ChassisRotation();
  const CarVector front = ChassisPosition() + body.Rotate({0, 0, -0.5 * dLength});
  const CarVector local = body.Conjugate().Rotate(vAutonomousTarget - front);
  CarVector lag{local.x, 0, local.z};
  // The lag is a distance and a wanted speed at once: the farther behind,
  // the faster, up to the top speed.
  const double farthest = dBodyScale * gas.maximum;
  if (lag.Length() > farthest) lag *= farthest / lag.Length();
  const double distance = lag.Length();
  // A target at the front point has no direction: (0, 1, 0) then gives
  // neither speed nor steering.
  const CarVector direction = lag.Normalized();
  const double sphere = params.dIgnoreSphereRadius * dLength;
  const bool outside = distance >= sphere;
  if (!outside) inputs[pcInput_ABS_BRAKE].raw = 1.0;
  const double excess = outside ? distance - sphere : 0.0;

  double wanted = -direction.z * params.dFollowAccelerationMult * excess / dLength * 3.5;
  if (wanted < 0) wanted *= params.dReverseMaxVelMult;
  wanted = std::clamp(wanted, -gas.maximum, gas.maximum);
  filterResponse(dFollowAccMem, wanted, params.dFollowAccRespFact, dt);
  gas.value = dFollowAccMem;

  // Reversing turns the other way; half the speed reduction applies here.
  double steer = Sign(wanted) * direction.x * steering.maximum /
                 (std::fabs(dFollowAccMem) * params.dSpeedDependentTurnRadiusReduction * 0.5 + 1.0);
  steer = StepTowards(dAutoSteeringWantedFormer, steer, dt * params.dVelRelMaxSteeringChangeVel);
  dAutoSteeringWantedFormer = steer;
  filterResponse(dAutoSteeringValueMem, steer, params.dAutoSteeringValueRespFact, dt);
  // Inside the sphere the wheels stay as they are while the car brakes.
  if (outside) steering.value = dAutoSteeringValueMem;
}

void CCarCam::UpdateSkidBrake(double h, double dt) {
  if (bCarInTheAir || bJustLanded) return;
  CarChannel& brake = inputs[pcInput_SKID_BRAKE];
  CarChannel& gas = inputs[pcInput_GAS_PEDAL];
  if (brake.raw > 0) {
    if (bSkidFirstTime) {
      bSkidFirstTime = false;
      bSkidBreakingOn = bSkidBreakingOnDisableFeatures = true;
      vSkidBrakeSpeed = vTransCarAbsIncr / dt;
      // The rotation increment is a pure yaw of fCarLocalYawIncr.
      dSkidBrakeYawSpeed = std::fabs(fCarLocalYawIncr) / dt;
      dSkidBrakeSigns = Sign(Speed()) * Sign(-inputs[pcInput_STEERING_WHEEL].value);
      vSkidBrakePosIncr = vSkidBrakeSpeed * dt;
      dSkidBrakeLocalYawIncr = dSkidBrakeYawSpeed * dSkidBrakeSigns * dt;
    }
    StopDriving();
  } else if (!bSkidFirstTime) {
    // Released: the car slides back into motion at the speed it still has.
    if (vSkidBrakePosIncr != CarVector()) {
      dVelocityFollowFactor = 0;
      inputs[pcInput_SKIDDING].value = 1.0;
      const double forward = -rotation.Conjugate().Rotate(vTransCarAbsIncr / h).z;
      double pedal = Sign(gas.raw) == Sign(forward) ? std::fabs(gas.raw) : 0.0;
      if (inputs[pcInput_BOOSTER].raw != 0 && forward > 0) pedal = 1.0;
      gas.value = pedal * forward / dLength;
      fCarLocalYawIncr = dSkidBrakeLocalYawIncr;
    }
    bSkidBreakingOn = bSkidBreakingOnDisableFeatures = false;
    bSkidFirstTime = true;
  }
  const bool held = brake.value / brake.maximum > 0.0001;
  const double loss = 0.001 * brake.value * dt * 30.0;
  if (bSkidBreakingOn) {
    vSkidBrakePosIncr -= vSkidBrakeSpeed * loss;
    DecaySkidYaw(loss);
    if (vSkidBrakePosIncr.Dot(vSkidBrakeSpeed) < 0) {
      vSkidBrakePosIncr = {};
      dSkidBrakeLocalYawIncr = 0;
      brake.raw = 0;
      StopDriving();
    }
  } else if (held) {
    DecaySkidYaw(loss);
  } else {
    dSkidBrakeLocalYawIncr = 0;
  }
}

void CCarCam::StopDriving() {
  inputs[pcInput_GAS_PEDAL].value = 0;
  inputs[pcInput_SKIDDING].value = 0;
  inputs[pcInput_BURNOUT].value = 0;
  inputs[pcInput_BOOSTER].value = 0;
  dVelocityFollowFactor = 1.0;
}

void CCarCam::DecaySkidYaw(double loss) {
  const double before = dSkidBrakeLocalYawIncr;
  dSkidBrakeLocalYawIncr -= std::fabs(dSkidBrakeYawSpeed) * dSkidBrakeSigns * params.dSkidBrakeRotBrakeMult * loss;
  if (before * dSkidBrakeLocalYawIncr <= 0) dSkidBrakeLocalYawIncr = 0;
}

void CCarCam::UpdateSkiddingFlag() {
  if (bCarInTheAir || bSkidBreakingOn) return;
  const CarChannel& skid = inputs[pcInput_SKIDDING];
  bSkiddingOn = skid.value / skid.maximum > 0.05 || skid.raw != 0;
}

void CCarCam::RunInputStage(double dt) {
  RunGasInput(dt);
  RunSteeringInput(dt);
  RunSkiddingInput(dt);
  inputs[pcInput_GRAVEL_SHAKE].raw += params.dGravelShakeOffsetValue;
  inputs[pcInput_EXTERNAL_FORCE].raw += params.dExternalForceOffsetValue;
  for (CarChannel& channel : inputs) {
    filterResponseClamped(channel.value, channel.raw * channel.maximum, channel.responseFactor, dt);
  }
}

void CCarCam::RunGasInput(double dt) {
  CarChannel& gas = inputs[pcInput_GAS_PEDAL];
  IntegrateAutonomous(params.bAutonomousMode, gas, dGasPedalInputFilterMem, dt);
  double x = gas.raw;
  if (!params.bUseReverseAsAbsBrake) x += dLength * params.dGravity * BackAxis().y;
  if (x != 0 && bAbsIdle && !bBoosterOn) {
    // The value may not gain speed faster than the acceleration allows.
    const double wanted = gas.maximum * x;
    const double step = dt * params.dAcceleration / gas.maximum;
    if (wanted > gas.value && x - dGasRawFormer > step) {
      x = dGasRawFormer + step;
    } else if (gas.value > wanted && dGasRawFormer - x > step) {
      x = dGasRawFormer - step;
    }
  }
  gas.raw = x;
  dGasRawFormer = x;
}

void CCarCam::RunSteeringInput(double dt) {
  CarChannel& steering = inputs[pcInput_STEERING_WHEEL];
  double raw = steering.raw /
               (std::fabs(inputs[pcInput_GAS_PEDAL].value) * params.dSpeedDependentTurnRadiusReduction + 1);
  const double distance = position.Length();
  if (!params.bAutonomousMode && params.dWorldAvoidanceSphere > 0 &&
      distance > params.dWorldAvoidanceSphere * dLength) {
    const CarVector away = position / distance;
    const double heading = -BackAxis().Dot(away);
    if (heading > 0) raw -= 2 * heading * Sign(rotation.Rotate({1, 0, 0}).Dot(away));
  }
  // Back to the centre twice as fast as away from it.
  const double rate = params.dVelRelMaxSteeringChangeVel * (raw == 0 ? 2.0 : 1.0);
  raw = StepTowards(dSteeringRawFormer, raw, rate * dt);
  if (params.dSteeringNoise > 0) {
    raw += std::sqrt(std::fabs(Speed())) * (noise01(randomValue_steeringNoise) - 0.5) * params.dSteeringNoise;
  }
  steering.raw = raw;
  dSteeringRawFormer = raw;
  IntegrateAutonomous(params.bAutonomousMode, steering, dInputFilterMem, dt);
}

void CCarCam::RunSkiddingInput(double dt) {
  CarChannel& skid = inputs[pcInput_SKIDDING];
  if (skid.raw == 1.0) return;
  const double before = skid.raw;
  skid.raw += params.dSkiddingOffsetValue;
  // A hard turn starts a skid by itself; the top speed is the divisor, which
  // ties the threshold to it.
  const double lateral = std::fabs(vLocalAcceleration.x) * dt / dLength / inputs[pcInput_GAS_PEDAL].maximum;
  if (lateral > params.dSkiddingReleaseValue) skid.raw = before + 1.0;
}

void CCarCam::RunBooster(double dt) {
  const CarChannel& booster = inputs[pcInput_BOOSTER];
  CarChannel& gas = inputs[pcInput_GAS_PEDAL];
  bBoosterOn = booster.raw != 0 && !bSkidBreakingOnDisableFeatures;
  if (bBoosterOn) filterResponse(gas.value, booster.maximum * gas.maximum, booster.responseFactor, dt);
  const double excess = gas.value - gas.maximum;
  if (bBoosterOn && excess > 0.001 * gas.maximum) {
    params.cSuspension = cSuspensionRecording * (excess * params.dBoosterStiffnessMult + 1);
    bSuspensionBoosted = true;
  } else if (bSuspensionBoosted) {
    params.cSuspension = cSuspensionRecording;
    bSuspensionBoosted = false;
  }
}

void CCarCam::RunAbs(double dt) {
  const CarChannel& abs = inputs[pcInput_ABS_BRAKE];
  CarChannel& gas = inputs[pcInput_GAS_PEDAL];
  // Brakes the value the last frame left, by a share of the gas value the
  // braking started at, down to 0 and no further. Braking from this frame's
  // filtered value instead would let a lively pedal carry the car through 0,
  // and the brake would then drive it backwards beyond the gas maximum.
  // A car at rest still reverses: the state below sees the filtered value,
  // which the raw has already pulled to its own side.
  const auto brake = [&](double strength) {
    if (bAbsIdle) {
      dAbsReference = gas.value;
      bAbsIdle = false;
    }
    const double braked = dAbsFormerGasValue - std::fabs(strength) * (dAbsReference * dt * 30.0);
    gas.value = Sign(braked) == Sign(dAbsFormerGasValue) ? braked : 0.0;
  };
  if (abs.raw > 0) {
    brake(abs.raw * abs.maximum);
  } else if (params.bUseReverseAsAbsBrake) {
    const double raw = gas.raw;
    if (!bIsReverseVelAbsBraking && Sign(gas.value) != Sign(raw) && raw != 0) {
      bIsReverseVelAbsBraking = true;
    } else if (bIsReverseVelAbsBraking && Sign(raw) != Sign(dAbsFormerGasRaw)) {
      bIsReverseVelAbsBraking = false;
    }
    if (raw == 0) bIsReverseVelAbsBraking = false;
    if (bIsReverseVelAbsBraking) {
      brake(abs.maximum * raw);
    } else {
      bAbsIdle = true;
    }
  } else {
    bAbsIdle = true;
  }
  dAbsFormerGasRaw = gas.raw;
  dAbsFormerGasValue = gas.value;
}

void CCarCam::RunGravel(double dt) {
  const double amplitude = std::fabs(inputs[pcInput_GRAVEL_SHAKE].value);
  const double speed = std::sqrt(std::fabs(Speed()));
  for (CarWheel& wheel : wheels) {
    wheel.gravelTarget = 0;
    if (amplitude > 1e-05) {
      const double g = speed * (noise01(randomValue_gravelShake) - 0.5) * amplitude;
      wheel.gravelTarget = std::copysign(g * g, g);
    }
    filterResponse(wheel.gravelMemory, wheel.gravelTarget, params.dGravelRoughness, dt);
  }
}

}  // namespace vuk::rgw::addon
