#include "util/quat.h"

#include <gtest/gtest.h>

#include <cmath>

#include "util/matrix.h"

namespace vuk::util {
namespace {

using V = Vector3<double>;
using Q = Quat<double>;
constexpr double kHalfPi = 1.5707963267948966;

void ExpectNear(const V& a, const V& b, double tolerance = 1e-12) {
  EXPECT_NEAR(a.x, b.x, tolerance);
  EXPECT_NEAR(a.y, b.y, tolerance);
  EXPECT_NEAR(a.z, b.z, tolerance);
}

// A right-handed quarter turn about each axis, worked out by hand.
struct QuarterTurn {
  V axis;
  V from;
  V to;
};

class QuatQuarterTurns : public testing::TestWithParam<QuarterTurn> {};

TEST_P(QuatQuarterTurns, RotateLikeTheRightHand) {
  const Q q = Q::FromAxisAngle(GetParam().axis, kHalfPi);
  ExpectNear(q.Rotate(GetParam().from), GetParam().to);
  ExpectNear(Matrix<double>::FromQuat(q).TransformPoint(GetParam().from), GetParam().to);
}

INSTANTIATE_TEST_SUITE_P(Axes, QuatQuarterTurns,
                         testing::Values(QuarterTurn{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}},
                                         QuarterTurn{{0, 1, 0}, {0, 0, 1}, {1, 0, 0}},
                                         QuarterTurn{{0, 0, 1}, {1, 0, 0}, {0, 1, 0}}));

TEST(Quat, ProductAppliesTheLeftOperandFirst) {
  const Q aboutZ = Q::FromAxisAngle({0, 0, 1}, kHalfPi);
  const Q aboutX = Q::FromAxisAngle({1, 0, 0}, kHalfPi);
  // Z first takes X to Y, then X takes Y to Z.
  ExpectNear((aboutZ * aboutX).Rotate({1, 0, 0}), {0, 0, 1});
  // The other order leaves X where Z then takes it: to Y.
  ExpectNear((aboutX * aboutZ).Rotate({1, 0, 0}), {0, 1, 0});
}

TEST(Quat, ProductFormulaComponentByComponent) {
  const Q a{1, 2, 3, 4}, b{5, 6, 7, 8};
  // The Hamilton product b (x) a written out.
  const Q expected{b.w * a.x + b.x * a.w + b.y * a.z - b.z * a.y, b.w * a.y - b.x * a.z + b.y * a.w + b.z * a.x,
                   b.w * a.z + b.x * a.y - b.y * a.x + b.z * a.w, b.w * a.w - b.x * a.x - b.y * a.y - b.z * a.z};
  EXPECT_EQ(a * b, expected);
}

TEST(Quat, NormalizeOfZeroIsIdentity) {
  Q zero{0, 0, 0, 0};
  EXPECT_EQ(zero.Normalize(), Q());
  EXPECT_EQ(Q(0, 0, 0, 2).Normalized(), Q());
}

TEST(Quat, RotationVectorExponential) {
  const Q q = Q::FromRotationVector({0, 0, kHalfPi});
  EXPECT_NEAR(q.z, std::sin(kHalfPi / 2), 1e-15);
  EXPECT_NEAR(q.w, std::cos(kHalfPi / 2), 1e-15);
  // Components summing to exactly 0 keep the unnormalised vector.
  const Q odd = Q::FromRotationVector({1, -1, 0});
  const double h = std::sqrt(2.0) / 2;
  EXPECT_EQ(odd.x, std::sin(h));
  EXPECT_EQ(odd.y, -std::sin(h));
  EXPECT_EQ(odd.w, std::cos(h));
  EXPECT_GT(std::fabs(odd.Norm() - 1.0), 0.1);
  EXPECT_EQ(Q::FromRotationVector({0, 0, 0}), Q());
}

TEST(Quat, SlerpHalfwayOfAQuarterTurnIsAnEighth) {
  const Q a;
  const Q b = Q::FromAxisAngle({0, 1, 0}, kHalfPi);
  const Q half = Q::Slerp(a, b, 0.5);
  const Q expected = Q::FromAxisAngle({0, 1, 0}, kHalfPi / 2);
  EXPECT_NEAR(half.y, expected.y, 1e-15);
  EXPECT_NEAR(half.w, expected.w, 1e-15);
  // The shorter arc even when the end is given with the other sign.
  const Q viaNegative = Q::Slerp(a, -b, 0.5);
  EXPECT_NEAR(std::fabs(viaNegative.Dot(expected)), 1.0, 1e-15);
}

}  // namespace
}  // namespace vuk::util
