#pragma once
// Division by a length that may vanish: a denominator closer to zero than
// 1e-12 is replaced by 1e-12 with its sign, so results stay finite. The
// airplane's regulator normalises its yaw-only rotation with this guard.

#include <cmath>

namespace vuk::util {

constexpr double kSafeDenominator = 1e-12;

inline double SafeDenominator(double d) {
  if (std::fabs(d) >= kSafeDenominator) return d;
  return d < 0 ? -kSafeDenominator : kSafeDenominator;
}

inline double SafeDivide(double numerator, double denominator) { return numerator / SafeDenominator(denominator); }

}  // namespace vuk::util
