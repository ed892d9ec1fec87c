#pragma once
// The airplane's numerical core: not an aerodynamic solver but a velocity
// command in the body's frame on top of a persistent momentum, with a lift
// that grows with the commanded speed, gravity scaled by a virtual mass and
// a drag that sheds the body's vertical momentum fastest. It runs in fixed
// sub-steps of about 0.003 s, so a long frame stays stable. The nose points
// along local minus Z.

#include <array>
#include <cstddef>
#include <cstdint>

#include "plugins/common/inputchannel.h"
#include "plugins/common/posering.h"
#include "util/matrix.h"
#include "util/quat.h"
#include "util/vector3.h"

namespace vuk::rgw::addon {

enum AeroChannel : std::size_t {
  kForward,
  kSideways,
  kUpDown,
  kRudder,
  kElevator,
  kAileron,
  kRegulator,
  kTurbulence,
  kShaker,
  kBrakeAll,
  kAfterBurner,
  kAeroChannelCount
};

// The channels that autonomous steering corrects, in the order of their memories.
enum AutonomousMemory : std::size_t { kAutoRudder, kAutoElevator, kAutoAileron, kAutoForward, kAutoMemoryCount };

// A channel's name (its input's name, and the start of its two page labels)
// and its help; empty where it has none.
struct AeroChannelText {
  const char* name;
  const char* help;
};

extern const std::array<AeroChannelText, kAeroChannelCount> kAeroChannelTexts;

struct AeroParameters {
  double dRelativeScale = 1;  // "Relative Scale": taken from the body at every start
  double dVirtualMass = 15;
  double dShakerFadeOut = 0.1;
  double dTurbulenceFadeOut = 0.1;
  double dTurbulenceFrequency = 40;  // Hz
  double dShakerRoughness = 0.5;
  bool bRealisticControl = false;     // "Realistic Airplane Control"
  bool bRelativeVelocityMode = false;  // "Use relative forward velocity"
  bool bAutonomousMode = false;
  double dShakeOffset = 0;
  double dTurbulenceOffset = 0;
  double dWindStrength = 0;
  double dFollowStrength = 1;
  double dFollowResponse = 0.3;
  double dIgnoreSphereRadius = 0.2;  // times the scale
  double dYawStrength = 2;
  double dPitchStrength = 2;
  double dRollStrength = 3;
  double dSteeringResponse = 0.5;
  bool bRollWithTarget = false;
};

// What autonomous steering asks of the channels this frame.
struct AeroSteering {
  double follow = 0;
  double yaw = 0;
  double pitch = 0;
  double roll = 0;
};

class CAeroCam {
 public:
  using Vector = util::Vector3<double>;
  using Quat = util::Quat<double>;
  using Matrix = util::Matrix<double>;

  // The longest sub-step.
  static constexpr double kSubStep = 0.003;

  CAeroCam();

  // A run begins at `now`, with the poses a sub-step and two sub-steps
  // before; the channels, momentum and memories are those the caller set.
  // A non-zero speed becomes the forward channel's value and stage.
  void Reset(const PoseRecord& now, const PoseRecord& before, const PoseRecord& earlier, double speed);
  // The input stage and the sub-steps of one frame of length dt.
  void Fly(double dt);
  // Aims at the target from the body's pose (both with rows normalised):
  // sets the steered channels' values and keeps the steering memories.
  void Steer(const Matrix& body, const Matrix& target, double dt);
  // What the steering of the frame asks of the channels.
  AeroSteering Steering() const;

  // Goes on from a frame of an earlier run, whose last sub-step began at
  // `previousRotation`, instead of from a standstill.
  void ResumeAfter(const Quat& previousRotation) {
    qPreviousRotation = previousRotation;
    bFirstFrame = false;
  }
  const Quat& PreviousRotation() const { return qPreviousRotation; }
  double GravityStep() const { return params.dVirtualMass / 9.81 * 0.02; }
  const PoseRecord& Pose() const { return ring.Current(); }

  AeroParameters params;
  std::array<InputChannel, kAeroChannelCount> channels;
  PoseRing ring;
  Matrix mRelativeFrame;  // the body's frame when the airplane was first started

  Vector vMomentum;  // world: the only persistent linear state
  Vector vVelocity, vAngularVelocity;  // world, of the last sub-step
  Quat qRegulatorMem;
  bool bRegulatorActive = false;
  bool bAfterBurnerOn = false;
  bool bFirstFrame = true;
  std::uint32_t iTurbulenceCounter = 0;
  double dTurbulenceMem = 0;
  double dShakeMem = 0;
  Vector vShakeFiltered;
  // The states of the tool's own generators for the wind and the shake.
  std::uint32_t iWindRandom = 1;
  std::uint32_t iShakeRandom = 1;
  std::array<double, kAutoMemoryCount> autonomousMem{};
  // Steering memories.
  double dFollowMem = 0, dYawMem = 0, dPitchMem = 0, dRollMem = 0;

 private:
  void InputStage(double dt);
  void SubStep(double h);
  void Forces(double h);
  void Regulate(double h);
  void Shake(double h);
  // The body's frame rows.
  Vector Row(int axis) const { return mFrame.Axis(axis); }
  // A vector given in the body's frame, in the world.
  Vector FromLocal(const Vector& local) const;

  Vector vPosition;
  Quat qRotation;
  Quat qPreviousRotation;  // of the sub-step before
  Matrix mFrame;
  Vector vLocalVelocityCommand, vLocalRotationCommand;
};

}  // namespace vuk::rgw::addon
