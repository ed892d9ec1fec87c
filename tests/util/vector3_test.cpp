#include "util/vector3.h"

#include <gtest/gtest.h>

#include "util/safedivide.h"

namespace vuk::util {
namespace {

using V = Vector3<double>;

TEST(Vector3, NormalizeOfZeroIsUp) {
  V zero;
  zero.Normalize();
  EXPECT_EQ(zero, V(0, 1, 0));
  EXPECT_EQ(V(3, 0, 4).Normalized(), V(0.6, 0, 0.8));
}

TEST(Vector3, CrossIsRightHanded) {
  EXPECT_EQ(V(1, 0, 0).Cross(V(0, 1, 0)), V(0, 0, 1));
  EXPECT_EQ(V(0, 1, 0).Cross(V(0, 0, 1)), V(1, 0, 0));
  EXPECT_EQ(V(0, 0, 1).Cross(V(1, 0, 0)), V(0, 1, 0));
}

struct Division {
  double denominator;
  double used;
};

class SafeDivision : public testing::TestWithParam<Division> {};

TEST_P(SafeDivision, ReplacesVanishingDenominators) {
  EXPECT_EQ(SafeDenominator(GetParam().denominator), GetParam().used);
  EXPECT_EQ(SafeDivide(1.0, GetParam().denominator), 1.0 / GetParam().used);
}

INSTANTIATE_TEST_SUITE_P(Table, SafeDivision,
                         testing::Values(Division{0.0, 1e-12}, Division{-0.0, 1e-12}, Division{5e-13, 1e-12},
                                         Division{-5e-13, -1e-12}, Division{1e-12, 1e-12},
                                         Division{-1e-12, -1e-12}, Division{2.5, 2.5}, Division{-3.0, -3.0}));

}  // namespace
}  // namespace vuk::util
