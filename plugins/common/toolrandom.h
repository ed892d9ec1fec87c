#pragma once
// Each tool's own random numbers. The tools' noise formulas expect values
// from 0 to 32767; one generator per tool, seeded at the start of a run and
// kept with its histories, makes a take resimulate bit for bit, which one
// process-wide generator could not.

#include <cstdint>

namespace vuk::rgw::addon {

class ToolRandom {
 public:
  static constexpr int kMax = 32767;

  explicit ToolRandom(std::uint32_t seed = 1) : state_(seed) {}

  void Seed(std::uint32_t seed) { state_ = seed; }
  // The whole state: saving it and seeding with it again continues the
  // sequence where it was.
  std::uint32_t State() const { return state_; }

  // 0 to kMax, uniform: a linear congruential step, of which the high bits
  // are kept as the low ones repeat with short periods.
  int Next() {
    state_ = state_ * 1103515245u + 12345u;
    return static_cast<int>((state_ >> 16) & kMax);
  }

 private:
  std::uint32_t state_;
};

}  // namespace vuk::rgw::addon
