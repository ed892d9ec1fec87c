#pragma once
// Scene time in integer ticks, 4800 per second, as animation hosts keep it:
// times that differ only by rounding land on one tick and so on one key.

#include <cstdint>

namespace vuk::rgw::adaptor::standalone {

using Tick = std::int64_t;
constexpr Tick kTicksPerSecond = 4800;

// Truncated toward zero, after a millionth of a tick of slack: a frame time
// such as 11/30 s comes out of double arithmetic a hair below its whole tick
// (1759.9999999999998), and must still land on that tick.
constexpr double kTickSlack = 1e-6;
inline Tick TruncateTicks(double ticks) {
  return static_cast<Tick>(ticks >= 0 ? ticks + kTickSlack : ticks - kTickSlack);
}
inline Tick TicksFromSeconds(double seconds) { return TruncateTicks(seconds * kTicksPerSecond); }
inline double SecondsFromTicks(Tick ticks) { return static_cast<double>(ticks) / kTicksPerSecond; }

}  // namespace vuk::rgw::adaptor::standalone
