#pragma once
// A part that turns by more than a key's largest turn in one frame (a wheel,
// a rotor, a propeller) would seem to spin backwards on playback, since the
// host interpolates the short way round. Such a frame gets extra keys inside
// it: one for each largest turn, at its proportional time. The tool writes
// them before the frame's own key, interpolating whatever else moves by the
// same fraction.

#include <array>

namespace vuk::rgw::addon {

// 178.2 degrees.
constexpr double kLargestTurnPerKey = 3.110487775831478;

struct SpinKey {
  double fraction;  // of the frame, 0 to 1
  double turn;      // signed, from the frame's start
};

struct SpinKeys {
  // A turn beyond this many largest turns in one frame is not split further.
  static constexpr int kCapacity = 100;
  std::array<SpinKey, kCapacity> keys;
  int count = 0;
};

// The extra keys of a frame in which a part turns by `turn`, at most
// `largestTurn` between neighbouring keys.
SpinKeys spinKeys(double turn, double largestTurn = kLargestTurnPerKey);

}  // namespace vuk::rgw::addon
