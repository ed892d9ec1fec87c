#include "plugins/common/filterresponse.h"

#include <gtest/gtest.h>

#include <cmath>

namespace vuk::rgw::addon {
namespace {

using Filter = void (*)(double&, double, double, double);

struct FilterCase {
  const char* what;
  Filter filter;
  double k;
  double dt;
  double expected;  // the memory after one call from 0 towards 1
};

class OneStep : public testing::TestWithParam<FilterCase> {};

TEST_P(OneStep, FromZeroTowardsOne) {
  double memory = 0;
  GetParam().filter(memory, 1.0, GetParam().k, GetParam().dt);
  EXPECT_NEAR(memory, GetParam().expected, 1e-15) << GetParam().what;
}

// Worked out by hand: n = 1 + trunc(dt / 0.04) slices of s = dt / 0.04 / n,
// each closing the fraction s x k of the error, leave (1 - s k)^n of it.
INSTANTIATE_TEST_SUITE_P(
    FilterResponse, OneStep,
    testing::Values(FilterCase{"half a slice", &filterResponse, 0.5, 0.02, 0.25},
                    FilterCase{"a whole interval is two half slices", &filterResponse, 0.5, 0.04, 1 - 0.75 * 0.75},
                    FilterCase{"2.5 intervals are three slices", &filterResponse, 0.2, 0.1,
                               1 - std::pow(1 - 0.1 / 0.04 / 3 * 0.2, 3)},
                    FilterCase{"factor 1 passes through", &filterResponse, 1.0, 0.001, 1.0},
                    FilterCase{"factor 0 passes through, it does not freeze", &filterResponse, 0.0, 0.02, 1.0},
                    FilterCase{"a large factor overshoots", &filterResponse, 3.0, 0.02, 1.5},
                    FilterCase{"clamped: a large factor sets the value", &filterResponseClamped, 3.0, 0.02, 1.0},
                    FilterCase{"clamped: s k of exactly 1 sets it", &filterResponseClamped, 2.0, 0.02, 1.0},
                    FilterCase{"clamped: factor 1 is filtered", &filterResponseClamped, 1.0, 0.02, 0.5},
                    FilterCase{"clamped: factor 0 passes through", &filterResponseClamped, 0.0, 0.02, 1.0},
                    FilterCase{"no slice in a step of -0.05 s", &filterResponse, 0.5, -0.05, 0.0},
                    FilterCase{"clamped: no slice in -0.05 s either", &filterResponseClamped, 0.5, -0.05, 0.0}));

// One second at 25, 50 and 100 frames per second ends close to the same value.
TEST(FilterResponse, HardlyDependsOnTheFrameRate) {
  double ends[3];
  const int rates[3] = {25, 50, 100};
  for (int i = 0; i < 3; ++i) {
    double memory = 0;
    for (int frame = 0; frame < rates[i]; ++frame) filterResponse(memory, 1.0, 0.2, 1.0 / rates[i]);
    ends[i] = memory;
  }
  EXPECT_NEAR(ends[0], ends[2], 0.01);
  EXPECT_NEAR(ends[1], ends[2], 0.01);
  EXPECT_GT(ends[2], 0.9);
}

}  // namespace
}  // namespace vuk::rgw::addon
