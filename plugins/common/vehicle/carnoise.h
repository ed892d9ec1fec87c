#pragma once
// Cheap reproducible noise from a counter: each purpose keeps its own
// counter, so a resumed run continues the same sequence. The integer hash
// runs in unsigned 32-bit arithmetic, where its overflow is defined.

#include <cstdint>

namespace vuk::rgw::addon {

// Advances the counter and answers a value in [0, 1).
inline double noise01(std::uint32_t& counter) {
  ++counter;
  const std::uint32_t n = (counter << 13) ^ counter;
  const std::uint32_t hashed = (n * n * 15731u + 789221u) * n - 771171059u;
  return (hashed & 0x7fffffffu) * 0.5 * 9.313225746154785e-10;
}

}  // namespace vuk::rgw::addon
