#include "plugins/missile/missileflight.h"

#include <algorithm>
#include <cmath>

#include "plugins/common/filterresponse.h"
#include "plugins/common/toolrandom.h"

namespace vuk::rgw::addon {

namespace {

const Vector3 kNose{0, 0, -1};
// The missile has no throttle control: it always burns at full thrust.
constexpr double kThrottle = 1;
// The longest a lead point looks ahead, in seconds at full throttle.
constexpr double kPredictionSpan = 30;

}  // namespace

void MissileFlight::Release(const Pose& now, const Pose& before, double dt) {
  MissileState& s = state_;
  const Vector3 velocity = (now.translation - before.translation) / dt;
  s.dSpeedOffset = settings_.bAddParentSpeed ? velocity.Length() : 0;
  const double top = settings_.dMaximumSpeed / 100;
  s.vInitVel = velocity + now.rotation.Rotate({0, top * settings_.dInitialYSpeed, -top * settings_.dInitialMinusZSpeed});
  // The carrier's turn over the frame, in the world.
  const Quat turn = before.rotation.Conjugate() * now.rotation;
  Check(turn.w, "Math Err qInitIncr.w in initDynamics");
  s.vInitRate = std::fabs(turn.w) < 0.99999999
                    ? Vector3(turn.x, turn.y, turn.z).Normalized() * (2 * std::acos(turn.w) / dt)
                    : Vector3();
  s.pose = {now.translation, now.rotation.Normalized()};
  s.iFrames = 0;
  s.vStep = s.vMomentum = {};
  s.dForwVelocity = 0;
  s.bGuiding = true;
  s.dNearest = 1e6;
  s.dLastDistance = 1e8;
}

void MissileFlight::FeedTurbulence(double raw, double h) {
  filterResponse(state_.dTurbulenceInputStage, raw * settings_.dTurbulenceMaximum, settings_.dTurbulenceResponse, h);
  filterResponse(state_.dTurbulenceInput, state_.dTurbulenceInputStage, settings_.dTurbulenceResponse, h);
}

bool MissileFlight::FlameLit(double h) const {
  return state_.bFired && state_.iFrames * h >= settings_.dIgnitionTime && state_.bGuiding;
}

void MissileFlight::Gust(double h) {
  MissileState& s = state_;
  ToolRandom random(static_cast<std::uint32_t>(s.iRandomState));
  const double strength = settings_.dTurbulenceStrength + s.dTurbulenceInput;
  double gust[3];
  for (double& component : gust) component = (0.5 - random.Next() / 32767.0) * strength;
  s.iRandomState = static_cast<std::int32_t>(random.State());
  filterResponseVector(s.vTurbulenceStage, {gust[0], gust[1], gust[2]}, settings_.dTurbulenceRoughness, h);
  filterResponseVector(s.vTurbulence, s.vTurbulenceStage, settings_.dTurbulenceRoughness, h);
  // A gust turns the body in its own frame.
  s.pose.rotation = (Quat::FromRotationVector(s.vTurbulence) * s.pose.rotation).Normalized();
}

void MissileFlight::Guide(double h, const Vector3& target, const Vector3& targetBefore) {
  MissileState& s = state_;
  const Vector3 position = s.pose.translation;
  const Vector3 forward = s.pose.rotation.Rotate(kNose);
  // First estimate: the nose straight at the target. The target's velocity
  // along it slows the closing; the lead point is where the target will be
  // when the missile gets there, looking no further than the span.
  const Vector3 aimed = (target - position).Normalized();
  const Vector3 targetVelocity = (target - targetBefore) * (settings_.dTargetSpeedCompensation / h);
  const double closing = std::max(s.dForwVelocity - targetVelocity.Dot(aimed), 1e-9);
  const double lead = std::min((target - position).Length() / closing, kPredictionSpan * kThrottle);
  const Vector3 wanted = (target + targetVelocity * lead - position).Normalized();
  const double angle = std::acos(std::clamp(forward.Dot(wanted), -1.0, 1.0));
  const double limit = h * settings_.dGuidanceLimiter;
  const double size = std::clamp(h / kResponseInterval * angle * settings_.dGuidanceStrength, -limit, limit);
  const Vector3 axis = forward.Cross(wanted);
  if (axis.Length() > 0 && size != 0) {
    s.pose.rotation = (s.pose.rotation * Quat::FromAxisAngle(axis, size)).Normalized();
  }
}

void MissileFlight::Fly(double h, const Vector3& target, const Vector3& targetBefore) {
  MissileState& s = state_;
  Gust(h);
  const double v = std::fabs(settings_.dMaximumSpeed) + s.dSpeedOffset;
  const double flown = s.iFrames * h;
  // The carrier's velocity and turn fade out.
  const double fade = settings_.dTimeToEliminateInitialSpeeds / (flown + settings_.dTimeToEliminateInitialSpeeds);
  Vector3 step = s.vInitVel * (fade * h);
  const double rate = s.vInitRate.Length();
  if (rate > 1e-6) s.pose.rotation = (s.pose.rotation * Quat::FromAxisAngle(s.vInitRate, fade * rate * h)).Normalized();
  const double ignitionFrames = settings_.dIgnitionTime / h;
  const bool ignited = s.iFrames >= ignitionFrames;
  if (ignited) {
    // The acceleration is a base over the 0.04 s reference step.
    s.dForwVelocity =
        (1 - std::pow(settings_.dAcceleration, (s.iFrames - ignitionFrames) * (h / -kResponseInterval) / 30)) *
        kThrottle * v;
    Check(s.dForwVelocity, "Math err dForwVelocity");
  } else {
    Check(step.z, "Math err vForwInitVel.z befor ignition");
  }
  const bool guided = settings_.bUseGuidedMissile && s.bGuiding && s.iFrames >= settings_.dUnguidedFlightTime / h;
  if (guided) Guide(h, target, targetBefore);
  // Gravity bites in proportion to the speed that is missing, until the
  // lift has built up to match it after the ignition.
  const double lack = (kThrottle * v - s.dForwVelocity + step.y * fade) / kThrottle / v;
  Check(lack, ignited ? "Math err dLiftForce" : "Math err dLiftForce before ignition");
  const double compensate = settings_.dTimeToCompensateGravity;
  const double lift = compensate > 0 ? std::min(1.0, std::max(0.0, flown - settings_.dIgnitionTime) / compensate) : 1;
  step.y -= kThrottle * std::max(0.0, lack) * (1 - lift) * h * settings_.dGravityStrength;
  step += s.pose.rotation.Rotate(kNose) * (s.dForwVelocity * h);
  s.vMomentum += s.pose.rotation.Rotate({0, 0, 1}) * (kThrottle * -0.05 * s.dForwVelocity * 1.1);
  s.vMomentum *= 1 - (1 - settings_.dMass) * h;
  if (settings_.dMass != 0) step += s.vMomentum * h;
  const double most = kThrottle * h * v;
  if (step.Length() > most) step *= most / step.Length();
  s.vStep = step;
  s.pose.translation += step;
  ++s.iFrames;
  const double distance = (target - s.pose.translation).Length();
  s.dNearest = std::min(s.dNearest, distance);
  if (guided && settings_.bQuitGuidingIfMissed && distance > s.dLastDistance) s.bGuiding = false;
  s.dLastDistance = distance;
}

void MissileFlight::Check(double value, const char* text) const {
  if (std::isnan(value) && onMathError) onMathError(text);
}

}  // namespace vuk::rgw::addon
