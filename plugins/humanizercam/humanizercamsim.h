#pragma once
// The hand-held shake: random impulses about the camera's own axes, low-passed
// twice, give a small angular velocity; one frame of it is the rotation the
// camera is turned by. Shakes don't accumulate: each frame's rotation
// replaces the last, so the camera wobbles about its base pose and never
// drifts away from it.

#include <array>
#include <cstdint>

#include "plugins/common/inputchannel.h"
#include "plugins/common/posering.h"
#include "plugins/common/toolrandom.h"
#include "util/vector3.h"

namespace vuk::rgw::addon {

// A number on the configuration page with its range.
struct SpinnerParameter {
  const char* name;
  double minimum;
  double maximum;
  double step;
  double value;
};

class HumanizerCamSim {
 public:
  enum Parameter {
    kShakeMultiplier,
    kYawShake,
    kPitchShake,
    kRollShake,
    kDampingFactor,
    kIrregularity,
    kShakerThreshold,
    kParameterCount
  };

  // One frame of dt: the channel's filter, then the shake. The ring's current
  // record is then the frame's shake.
  void Step(double dt);
  // Takes up a run from the state a frame of dt left: the shake's two filter
  // stages, the channel's output and the generator. The ring is filled with
  // the rotation that frame wrote, whose axes the next impulses follow.
  void Resume(const util::Vector3<double>& stageMemory, const util::Vector3<double>& shakeOutput, double channelOutput,
              std::uint32_t randomState, double dt);

  double Value(Parameter parameter) const { return parameters[parameter].value; }
  // The shake rotation of an angular velocity held for dt.
  static util::Quat<double> ShakeRotation(const util::Vector3<double>& angularVelocity, double dt);

  InputChannel channel{"Shaker Amplitude", 1.0, 4.0};
  std::array<SpinnerParameter, kParameterCount> parameters{{
      {"Shake Multiplier", 0, 1e16, 0.01, 10},
      {"Yaw Shake", 0, 1e16, 0.1, 500},
      {"Pitch Shake", 0, 1e16, 0.1, 200},
      {"Roll Shake", 0, 1e16, 0.1, 100},
      {"Damping Factor", 1e-08, 1, 0.0001, 0.03},
      {"Irregularity", 0.1, 1000, 0.01, 20},
      {"Shaker Threshold", 0, 100, 0.1, 10},
  }};
  // Kept and saved for the scenes that carry it; no shake reads it.
  bool allowRoll = false;

  PoseRing ring;
  // The impulses' strength of the last frame: channel and multiplier, in hundredths.
  double shakeSum = 0;
  util::Vector3<double> stage;
  // Angular velocity, radians per second.
  util::Vector3<double> output;
  ToolRandom random;

 private:
  // Impulses about the three axes of the present shake, each drawn apart.
  util::Vector3<double> DrawImpulse();
};

}  // namespace vuk::rgw::addon
