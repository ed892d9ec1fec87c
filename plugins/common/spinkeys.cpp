#include "plugins/common/spinkeys.h"

#include <cmath>

namespace vuk::rgw::addon {

SpinKeys spinKeys(double turn, double largestTurn) {
  SpinKeys result;
  const double size = std::fabs(turn);
  for (int k = 1; k * largestTurn < size && result.count < SpinKeys::kCapacity; ++k) {
    const double fraction = k * largestTurn / size;
    result.keys[result.count++] = {fraction, fraction * turn};
  }
  return result;
}

}  // namespace vuk::rgw::addon
