#include "util/quat.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <random>

#include "util/matrix.h"
#include "tests/util/geometryexpect.h"

namespace vuk::util {
namespace {

using testing_support::ExpectNear;
using testing_support::RandomRotation;

using V = Vector3<double>;
using Q = Quat<double>;
using M = Matrix<double>;
constexpr double kHalfPi = 1.5707963267948966;
constexpr double kPi = 3.141592653589793;
const double kRootHalf = std::sqrt(0.5);
// Quaternion products of exact inputs are off by a few ulps at most.
constexpr double kTight = 1e-15;

TEST(Quat, DefaultIsIdentityAndLayoutIsXYZW) {
  const Q identity;
  EXPECT_EQ(identity.x, 0.0);
  EXPECT_EQ(identity.y, 0.0);
  EXPECT_EQ(identity.z, 0.0);
  EXPECT_EQ(identity.w, 1.0);
  EXPECT_EQ(offsetof(Q, x), 0u);
  EXPECT_EQ(offsetof(Q, w), 24u);
  const Q q{1, 2, 3, 4};
  EXPECT_EQ(q * identity, q);
  EXPECT_EQ(identity * q, q);
}

// A right-handed quarter turn about each axis, the images of the three unit
// axes worked out by hand.
struct QuarterTurn {
  V axis;
  Q quat;
  V imageOfX, imageOfY, imageOfZ;
};

class QuatQuarterTurns : public testing::TestWithParam<QuarterTurn> {};

TEST_P(QuatQuarterTurns, RotateLikeTheRightHand) {
  const QuarterTurn& turn = GetParam();
  const Q q = Q::FromAxisAngle(turn.axis, kHalfPi);
  ExpectNear(q, turn.quat, kTight);
  ExpectNear(q.Rotate({1, 0, 0}), turn.imageOfX, kTight);
  ExpectNear(q.Rotate({0, 1, 0}), turn.imageOfY, kTight);
  ExpectNear(q.Rotate({0, 0, 1}), turn.imageOfZ, kTight);
  // The matrix of the quaternion agrees: its axis columns are the images.
  const M m = M::FromQuat(q);
  ExpectNear(m.Axis(0), turn.imageOfX, kTight);
  ExpectNear(m.Axis(1), turn.imageOfY, kTight);
  ExpectNear(m.Axis(2), turn.imageOfZ, kTight);
  // The inverse turns back.
  ExpectNear(q.Inverse().Rotate(turn.imageOfX), {1, 0, 0}, kTight);
  ExpectNear(q.Conjugate().Rotate(turn.imageOfZ), {0, 0, 1}, kTight);
}

INSTANTIATE_TEST_SUITE_P(
    Quat, QuatQuarterTurns,
    testing::Values(QuarterTurn{{1, 0, 0}, {kRootHalf, 0, 0, kRootHalf}, {1, 0, 0}, {0, 0, 1}, {0, -1, 0}},
                    QuarterTurn{{0, 1, 0}, {0, kRootHalf, 0, kRootHalf}, {0, 0, -1}, {0, 1, 0}, {1, 0, 0}},
                    QuarterTurn{{0, 0, 1}, {0, 0, kRootHalf, kRootHalf}, {0, 1, 0}, {-1, 0, 0}, {0, 0, 1}},
                    // An axis of any length is normalised first.
                    QuarterTurn{{0, 0, 5}, {0, 0, kRootHalf, kRootHalf}, {0, 1, 0}, {-1, 0, 0}, {0, 0, 1}},
                    QuarterTurn{{0, -1, 0}, {0, -kRootHalf, 0, kRootHalf}, {0, 0, 1}, {0, 1, 0}, {-1, 0, 0}}));

// Products of (1, 2, 3, 4) and (5, 6, 7, 8), worked out by hand as Hamilton
// products with the right operand on the left.
struct Product {
  Q a, b, expected;
};

class QuatProducts : public testing::TestWithParam<Product> {};

TEST_P(QuatProducts, AreTheReversedHamiltonProduct) {
  EXPECT_EQ(GetParam().a * GetParam().b, GetParam().expected);
  Q inPlace = GetParam().a;
  inPlace *= GetParam().b;
  EXPECT_EQ(inPlace, GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Quat, QuatProducts,
                         testing::Values(Product{{1, 2, 3, 4}, {5, 6, 7, 8}, {32, 32, 56, -6}},
                                         Product{{5, 6, 7, 8}, {1, 2, 3, 4}, {24, 48, 48, -6}},
                                         // Pure axes: i * j is j (x) i = -k.
                                         Product{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, -1, 0}},
                                         Product{{0, 1, 0, 0}, {1, 0, 0, 0}, {0, 0, 1, 0}}));

TEST(Quat, ProductAppliesTheLeftOperandFirst) {
  const Q aboutZ = Q::FromAxisAngle({0, 0, 1}, kHalfPi);
  const Q aboutX = Q::FromAxisAngle({1, 0, 0}, kHalfPi);
  // Z first takes X to Y, then X takes Y to Z.
  ExpectNear((aboutZ * aboutX).Rotate({1, 0, 0}), {0, 0, 1}, kTight);
  // X first leaves X where it is, then Z takes it to Y.
  ExpectNear((aboutX * aboutZ).Rotate({1, 0, 0}), {0, 1, 0}, kTight);
  // Applying one after the other by hand gives the same.
  ExpectNear(aboutX.Rotate(aboutZ.Rotate({0.3, -0.2, 0.7})), (aboutZ * aboutX).Rotate({0.3, -0.2, 0.7}), kTight);
}

TEST(Quat, RotateAgreesWithTheMatrixOverRandomRotations) {
  std::mt19937 random(17);
  std::uniform_real_distribution<double> uniform(-5, 5);
  for (int round = 0; round < 500; ++round) {
    const Q q = RandomRotation(random);
    const V p{uniform(random), uniform(random), uniform(random)};
    ExpectNear(q.Rotate(p), M::FromQuat(q).TransformPoint(p), 1e-13);
    ExpectNear(q.Inverse().Rotate(q.Rotate(p)), p, 1e-13);
  }
}

TEST(Quat, InverseOfANonUnitQuaternion) {
  const Q q{1, -2, 0.5, 3};
  ExpectNear(q * q.Inverse(), Q(), kTight);
  ExpectNear(q.Inverse() * q, Q(), kTight);
  EXPECT_EQ(q.Conjugate(), Q(-1, 2, -0.5, 3));
  EXPECT_EQ(Q(0, 0, 0, 0).Inverse(), Q());
}

TEST(Quat, Normalize) {
  Q zero{0, 0, 0, 0};
  Q& same = zero.Normalize();
  EXPECT_EQ(&same, &zero);
  EXPECT_EQ(zero, Q());
  EXPECT_EQ(Q(0, 0, 0, 2).Normalized(), Q());
  EXPECT_EQ(Q(0, 3, 0, -4).Normalized(), Q(0, 0.6, 0, -0.8));  // no change of sign
  EXPECT_EQ(Q(1, 1, 1, 1).Normalized(), Q(0.5, 0.5, 0.5, 0.5));
}

// The exponential of a rotation vector. Where the components sum to exactly
// 0 the vector is used unnormalised.
struct Exponential {
  V v;
  bool unnormalised;
};

class QuatExponential : public testing::TestWithParam<Exponential> {};

TEST_P(QuatExponential, HalfAngleAndAxis) {
  const V v = GetParam().v;
  const Q q = Q::FromRotationVector(v);
  const double h = std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z) / 2;
  EXPECT_EQ(q.w, std::cos(h));
  if (GetParam().unnormalised) {
    EXPECT_EQ(q.x, std::sin(h) * v.x);
    EXPECT_EQ(q.y, std::sin(h) * v.y);
    EXPECT_EQ(q.z, std::sin(h) * v.z);
  } else {
    EXPECT_NEAR(q.Norm(), 1.0, 1e-15);
    ExpectNear(q, Q::FromAxisAngle(v, 2 * h), kTight);
  }
}

INSTANTIATE_TEST_SUITE_P(Quat, QuatExponential,
                         testing::Values(Exponential{{0, 0, kHalfPi}, false}, Exponential{{-kPi, 0, 0}, false},
                                         Exponential{{1, 1, 0}, false}, Exponential{{0.3, -0.1, -0.1}, false},
                                         Exponential{{1, -1, 0}, true}, Exponential{{2, -1, -1}, true},
                                         Exponential{{0, 0, 0}, true}));

TEST(QuatExponential, OfOneMinusOneZeroIsNotAUnitQuaternion) {
  const Q q = Q::FromRotationVector({1, -1, 0});
  const double h = std::sqrt(2.0) / 2;
  // Norm squared is 2 sin^2 h + cos^2 h = 1 + sin^2 h.
  EXPECT_NEAR(q.Dot(q), 1 + std::sin(h) * std::sin(h), 1e-15);
  EXPECT_GT(q.Norm(), 1.1);
  EXPECT_EQ(Q::FromRotationVector({0, 0, 0}), Q());
  // A quarter turn about Z, as a rotation vector.
  ExpectNear(Q::FromRotationVector({0, 0, kHalfPi}), {0, 0, kRootHalf, kRootHalf}, kTight);
}

TEST(Quat, SlerpHalfwayOfAQuarterTurnIsAnEighth) {
  const Q a;
  const Q b = Q::FromAxisAngle({0, 1, 0}, kHalfPi);
  const Q expected{0, std::sin(kPi / 8), 0, std::cos(kPi / 8)};
  ExpectNear(Q::Slerp(a, b, 0.5), expected, kTight);
  ExpectNear(Q::Slerp(a, b, 0.0), a, kTight);
  ExpectNear(Q::Slerp(a, b, 1.0), b, kTight);
  // The shorter arc even when the end is given with the other sign.
  EXPECT_NEAR(std::fabs(Q::Slerp(a, -b, 0.5).Dot(expected)), 1.0, 1e-15);
}

}  // namespace
}  // namespace vuk::util
