#pragma once
// The gun's settings, its state frame by frame, and its bullets: each bullet
// a scene node of the tool's own with the path it flew.

#include <cstdint>
#include <string>

#include "plugins/common/hideswitch.h"
#include "sdk/cnode.h"
#include "util/avar.h"
#include "util/datachunk.h"
#include "util/quat.h"
#include "util/vector3.h"

namespace vuk::rgw::addon {

using Vector3 = util::Vector3<double>;
using Quat = util::Quat<double>;

// Everything the page sets, with the values of a new gun: a machine gun.
struct FirepowerSettings {
  HelperSwitches helpers;
  bool bHideCamera = false;
  bool bHideCameraDuringRecording = false;
  double dMuzzleVelocity = 300;  // m/s
  double dSpreadAngle = 0;       // degrees: the cone's half angle
  double dGravity = 10;          // m/s^2, down the world's Y
  double dRotation = 10;         // revolutions per second
  double dLifetime = 5;          // seconds
  std::int32_t iRateOfFire = 10;  // rounds per second; 0 is one discharge a press
  std::int32_t iBulletsPerDischarge = 1;
  std::int32_t iFireFirstOnNth = 1;
  std::int32_t iFireNth = 0;  // 0 fires while the button is held
  bool bPitchBullet = false;
  double dRandomizeRotationSpeed = 0;  // revolutions per second, at most
  double dRandomizeRotationAxis = 0;   // 0 to 1: how far the axis may turn towards a random one
  bool bTimeDelay = false;
  std::int32_t iTimeDelayFrames = 0;
  double dElasticity = 0;  // percent of the speed a bounce keeps
  double dCorrection = 0.2;  // centimetres a hit bullet is set off the surface
  double dAirResistance = 0;  // quadratic drag: deceleration per (m/s)^2
  double dBullets = 0;        // read-out "nrBullets"
  double dRecoilResponse = 1;
  std::int32_t iRecoilBackward = 1;  // frames
  std::int32_t iRecoilForward = 1;   // frames
  double dDepth = 40;  // percent of the recoil offset
};

// The gun between frames; its history keeps it field by field.
struct GunState {
  double dSinceLastRound = 1;
  bool bLatched = false;
  bool bTriggered = false;  // the press that fired is held
  std::int32_t iCountdown = 1;  // presses still to come before the gun fires
  double dPendingPress = -1;    // time of a press that waits out the delay; -1 for none
  std::int32_t iNextBullet = 1;
  std::int32_t iRandomState = 1;
  std::int32_t iRecoilFrame = 1 << 20;  // frames since the last discharge
  double dRecoil = 0;                   // percent into the gun, filtered
};

struct Bullet {
  std::string name;
  CNode* node = nullptr;
  util::AVar_Linear<Vector3> positions;
  util::AVar_Nearest<Vector3> velocities;
  double birth = 0;
  bool collided = false;
  Vector3 spinAxis{0, 0, 1};  // in the bullet's frame
  double spin = 0;            // revolutions per second
  Quat rotation;              // at its birth

  // The bullet's settings and both histories, under its name.
  util::DataChunk Save() const;
  // False, and the bullet unchanged, for a damaged chunk.
  bool Load(const util::DataChunk& chunk);
};

}  // namespace vuk::rgw::addon

namespace vuk::rgw::addon {

// One step of free flight under gravity and air resistance: the
// acceleration at the step's start held over it, which is exact without drag.
void FlyFreely(Vector3& position, Vector3& velocity, double dt, double gravity, double airResistance);

// A direction in the cone of that half angle (radians) about minus Z, from
// two draws of 0 to 1: even over the cone's cap.
Vector3 SpreadDirection(double halfAngle, double u, double v);

}  // namespace vuk::rgw::addon
