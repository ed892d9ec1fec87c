#pragma once
// The 4-Wheeler's nine input channels as plain records. The tool fills
// `raw` from its devices each frame; the core turns raw x maximum into
// `value` through its response factor and may rewrite `raw` on the way
// (rate limits, offsets), as the next frame reads the device again.

#include <array>
#include <cstddef>

namespace vuk::rgw::addon {

enum CarInput : std::size_t {
  pcInput_GAS_PEDAL,       // "Gas Pedal (Forw/Backw)": value in L per second
  pcInput_STEERING_WHEEL,  // "Steering Wheel (Right/Left)": wheel angle, radians
  pcInput_BOOSTER,         // "Booster"
  pcInput_ABS_BRAKE,       // "ABS Brake"
  pcInput_SKIDDING,        // "Skidding"
  pcInput_SKID_BRAKE,      // "Skid Brake"
  pcInput_GRAVEL_SHAKE,    // "Gravel Shake Amplitude"
  pcInput_BURNOUT,         // "Burnout"
  pcInput_EXTERNAL_FORCE,  // "External Force"
  kCarInputCount
};

struct CarChannel {
  double raw = 0;
  double value = 0;
  double responseFactor = 0;
  double maximum = 0;
};

using CarInputs = std::array<CarChannel, kCarInputCount>;

// Response factor and maximum of each channel, in channel order.
constexpr CarInputs DefaultCarInputs() {
  return {{{0, 0, 0.01, 3.0},
           {0, 0, 0.1, 0.7},
           {0, 0, 0.02, 6.0},
           {0, 0, 1.0, 0.03},
           {0, 0, 0.1, 0.9},
           {0, 0, 0.1, 1.0},
           {0, 0, 1.0, 0.05},
           {0, 0, 0.03, 3.0},
           {0, 0, 1.0, 100.0}}};
}

}  // namespace vuk::rgw::addon
