#pragma once
// The missile's flight, without a scene: released with the poses of what
// carries it, it falls, ignites, speeds up towards its maximum speed and,
// when guided, turns towards a lead point ahead of its target within a
// limited turn rate. Momentum that fades with the mass gives the overshoot
// in turns; gusts of wind turn it by a small random rotation.

#include <cstdint>
#include <functional>

#include "plugins/common/hideswitch.h"
#include "util/qtransform.h"
#include "util/quat.h"
#include "util/vector3.h"

namespace vuk::rgw::addon {

using Vector3 = util::Vector3<double>;
using Quat = util::Quat<double>;
using Pose = util::QTransform<double>;

// Everything the page sets, with the values of a new missile.
struct MissileSettings {
  double dUnitsPerSecond = 0;    // read-out: the speed of the last frame
  double dDistanceToTarget = 0;  // read-out
  double dGuidanceStrength = 0.15;
  double dGuidanceLimiter = 1;  // radians per second
  double dTargetSpeedCompensation = 0;
  double dUnguidedFlightTime = 0;
  double dMaximumSpeed = 25;
  double dAcceleration = 10;
  double dIgnitionTime = 0.2;
  double dMass = 0.8;
  double dGravityStrength = 3;
  double dTimeToCompensateGravity = 0.4;
  double dTimeToEliminateInitialSpeeds = 0.5;
  double dInitialMinusZSpeed = 0;  // percent of the maximum speed
  double dInitialYSpeed = 0;       // percent of the maximum speed
  double dTurbulenceStrength = 0.05;
  double dTurbulenceRoughness = 0.01;
  // The turbulence channel's: its filtered value adds to the strength.
  double dTurbulenceResponse = 0.2;
  double dTurbulenceMaximum = 0.5;
  // Revolutions per second and a scale of the flame's rows.
  double dFlameSpin = 4;
  double dFlameScale = 1;

  HelperSwitches helpers;
  bool bHideRearCamera = false;
  bool bUseGuidedMissile = true;
  bool bQuitGuidingIfMissed = false;
  bool bAddParentSpeed = false;
  bool bFireAtCurrentFrame = false;
  std::int32_t iFireNth = 1;
};

// The flight's state after a frame; the missile's histories keep it field by field.
struct MissileState {
  bool bFired = false;
  bool bLatched = false;  // the fire button is held since its last press
  std::int32_t iTriggerCount = 0;
  std::int32_t iFrames = 0;  // frames flown since the release
  bool bGuiding = true;      // false once a miss ended the guidance
  Pose pose;
  Vector3 vStep;      // the last frame's move
  Vector3 vMomentum;  // in the world
  Vector3 vInitVel;   // the velocity at the release
  Vector3 vInitRate;  // the turn at the release: axis times radians per second
  double dSpeedOffset = 0;
  double dForwVelocity = 0;
  double dNearest = 1e6;
  double dLastDistance = 1e8;
  Vector3 vTurbulenceStage;
  Vector3 vTurbulence;
  double dTurbulenceInputStage = 0;
  double dTurbulenceInput = 0;
  std::int32_t iRandomState = 1;
};

class MissileFlight {
 public:
  MissileFlight(const MissileSettings& settings, MissileState& state) : settings_(settings), state_(state) {}

  // The release: the carrier's pose now and dt before. The missile starts
  // from the pose now, with the carrier's velocity and turn.
  void Release(const Pose& now, const Pose& before, double dt);
  // The turbulence channel's raw value, through its two stages over h.
  void FeedTurbulence(double raw, double h);
  // One frame of flight of length h towards the target, which stood at
  // `targetBefore` one frame earlier.
  void Fly(double h, const Vector3& target, const Vector3& targetBefore);
  // Whether the flame burns: after the ignition, while no miss ended the guidance.
  bool FlameLit(double h) const;

  // Told of a NaN on the way, with the message's text; the flight goes on.
  std::function<void(const char*)> onMathError;

 private:
  void Gust(double h);
  void Guide(double h, const Vector3& target, const Vector3& targetBefore);
  void Check(double value, const char* text) const;

  const MissileSettings& settings_;
  MissileState& state_;
};

}  // namespace vuk::rgw::addon
