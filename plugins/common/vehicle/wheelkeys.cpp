#include "plugins/common/vehicle/wheelkeys.h"

#include <cmath>

namespace vuk::rgw::addon {

ExtraWheelKeys extraWheelKeys(double formerPitch, double pitchTurn, double formerYaw, double yaw) {
  ExtraWheelKeys result;
  const double turn = std::fabs(pitchTurn);
  for (int k = 1; k * kLargestWheelTurnPerKey < turn && result.count < ExtraWheelKeys::kCapacity; ++k) {
    const double fraction = k * kLargestWheelTurnPerKey / turn;
    result.keys[result.count++] = {fraction, formerPitch + fraction * pitchTurn,
                                   formerYaw + fraction * (yaw - formerYaw)};
  }
  return result;
}

}  // namespace vuk::rgw::addon
