#pragma once
// A wheel that turns by more than a key's largest turn in one frame would
// seem to spin backwards on playback. Such a frame gets extra keys inside
// it: one for each largest turn, at the proportional time, with pitch and
// yaw interpolated by that proportion. The tool writes them, interpolating
// the wheel's position and steering by the same fraction, before the
// frame's own key.

#include <array>

namespace vuk::rgw::addon {

// 178.2 degrees.
constexpr double kLargestWheelTurnPerKey = 3.110487775831478;

struct WheelKey {
  double fraction;  // of the frame, 0 to 1
  double pitch;
  double yaw;
};

struct ExtraWheelKeys {
  // A turn beyond this many largest turns in one frame is not split further.
  static constexpr int kCapacity = 100;
  std::array<WheelKey, kCapacity> keys;
  int count = 0;
};

// The keys within a frame in which the pitch turns by `pitchTurn` from
// `formerPitch` (unwrapped) while the yaw goes from `formerYaw` to `yaw`.
ExtraWheelKeys extraWheelKeys(double formerPitch, double pitchTurn, double formerYaw, double yaw);

}  // namespace vuk::rgw::addon
