#include "util/matrix.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace vuk::util {
namespace {

using M = Matrix<double>;
using V = Vector3<double>;
using Q = Quat<double>;
constexpr double kPi = 3.141592653589793;

void ExpectNear(const M& a, const M& b, double tolerance) {
  for (int i = 0; i < 16; ++i) EXPECT_NEAR(a[i], b[i], tolerance) << "element " << i;
}

Q RandomRotation(std::mt19937& random) {
  std::normal_distribution<double> normal;
  return Q{normal(random), normal(random), normal(random), normal(random)}.Normalize();
}

TEST(Matrix, ProductAppliesTheRightOperandFirst) {
  const M aboutZ = M::FromQuat(Q::FromAxisAngle({0, 0, 1}, kPi / 2));
  const M aboutX = M::FromQuat(Q::FromAxisAngle({1, 0, 0}, kPi / 2));
  M result;
  aboutX.Multiply(result, aboutZ);  // Z first, then X
  const V image = result.TransformPoint({1, 0, 0});
  EXPECT_NEAR(image.x, 0, 1e-15);
  EXPECT_NEAR(image.y, 0, 1e-15);
  EXPECT_NEAR(image.z, 1, 1e-15);
  // The same composition in quaternions is written the other way round.
  ExpectNear(result, M::FromQuat(Q::FromAxisAngle({0, 0, 1}, kPi / 2) * Q::FromAxisAngle({1, 0, 0}, kPi / 2)),
             1e-15);
}

TEST(Matrix, ProductIndexFormula) {
  M a, b;
  for (int i = 0; i < 16; ++i) {
    a[i] = i + 1;
    b[i] = 2 * i - 7;
  }
  M result;
  a.Multiply(result, b);
  for (int j = 0; j < 4; ++j) {
    for (int i = 0; i < 4; ++i) {
      double sum = 0;
      for (int k = 0; k < 4; ++k) sum += a[4 * k + i] * b[4 * j + k];
      EXPECT_EQ(result[4 * j + i], sum);
    }
  }
}

TEST(Matrix, PointTransformDividesByWOnlyWhenNotZero) {
  M projective;
  projective[15] = 2;
  projective[12] = 4;
  EXPECT_EQ(projective.TransformPoint({2, 4, 6}), V(3, 2, 3));
  M flat;
  flat[15] = 0;
  flat[12] = 1;
  EXPECT_EQ(flat.TransformPoint({2, 4, 6}), V(3, 4, 6));
}

TEST(Matrix, SingularInvertsToZeros) {
  M singular;
  singular[5] = 0;  // the Y axis vanishes
  EXPECT_EQ(singular.Inverse(), M::Zero());
  EXPECT_EQ(M::Zero().Inverse(), M::Zero());
}

TEST(Matrix, InverseOfRandomAffineMatrices) {
  std::mt19937 random(5);
  std::uniform_real_distribution<double> uniform(-3, 3);
  for (int round = 0; round < 200; ++round) {
    M m = M::FromQuat(RandomRotation(random));
    for (int axis = 0; axis < 3; ++axis) m.SetAxis(axis, m.Axis(axis) * (0.5 + std::fabs(uniform(random))));
    m.SetTranslation({uniform(random), uniform(random), uniform(random)});
    ExpectNear(m.Inverse() * m, M(), 1e-12);
    ExpectNear(m * m.Inverse(), M(), 1e-12);
  }
}

TEST(Matrix, QuaternionToMatrixToQuaternionOverRandomRotations) {
  std::mt19937 random(9);
  for (int round = 0; round < 2000; ++round) {
    Q q = RandomRotation(random);
    const Q back = M::FromQuat(q).ToQuat();
    if (q.w < 0) q = -q;
    EXPECT_GE(back.w, 0.0);
    EXPECT_NEAR(back.x, q.x, 1e-12);
    EXPECT_NEAR(back.y, q.y, 1e-12);
    EXPECT_NEAR(back.z, q.z, 1e-12);
    EXPECT_NEAR(back.w, q.w, 1e-12);
    ExpectNear(M::FromQuat(back), M::FromQuat(q), 1e-12);
  }
}

// Half turns land in case X, Y or Z with w exactly 0 and are not negated.
struct HalfTurn {
  V axis;
  Q expected;
};

class MatrixHalfTurns : public testing::TestWithParam<HalfTurn> {};

TEST_P(MatrixHalfTurns, GiveWZero) {
  M m = M::Zero();
  // The exact matrix of a half turn: 2 a a^T - I.
  const V a = GetParam().axis.Normalized();
  const double axis[3] = {a.x, a.y, a.z};
  for (int c = 0; c < 3; ++c) {
    for (int r = 0; r < 3; ++r) m[4 * c + r] = 2 * axis[r] * axis[c] - (r == c ? 1 : 0);
  }
  m[15] = 1;
  const Q q = m.ToQuat();
  EXPECT_EQ(q.w, 0.0);
  EXPECT_NEAR(q.x, GetParam().expected.x, 1e-15);
  EXPECT_NEAR(q.y, GetParam().expected.y, 1e-15);
  EXPECT_NEAR(q.z, GetParam().expected.z, 1e-15);
}

INSTANTIATE_TEST_SUITE_P(Axes, MatrixHalfTurns,
                         testing::Values(HalfTurn{{1, 0, 0}, {1, 0, 0, 0}}, HalfTurn{{0, 1, 0}, {0, 1, 0, 0}},
                                         HalfTurn{{0, 0, 1}, {0, 0, 1, 0}}));

TEST(Matrix, NegatedQuaternionGivesTheSameMatrixAndComesBackPositive) {
  const Q q = Q::FromAxisAngle({1, 2, 3}, 2.5);
  const Q negative = -q;
  ExpectNear(M::FromQuat(q), M::FromQuat(negative), 0);
  const Q back = M::FromQuat(negative).ToQuat();
  EXPECT_GE(back.w, 0.0);
  EXPECT_NEAR(back.Dot(q.w >= 0 ? q : negative), 1.0, 1e-12);
}

TEST(Matrix, ScaleAndZeroAxesAreNormalisedAway) {
  M scaled = M::FromQuat(Q::FromAxisAngle({0, 1, 0}, 0.7));
  for (int axis = 0; axis < 3; ++axis) scaled.SetAxis(axis, scaled.Axis(axis) * 0.0254);
  const Q expected = Q::FromAxisAngle({0, 1, 0}, 0.7);
  EXPECT_NEAR(scaled.ToQuat().Dot(expected), 1.0, 1e-12);

  // A zero Y axis reads as (0, 1, 0): with X and Z untouched that is the identity.
  M flat;
  flat.SetAxis(1, {0, 0, 0});
  EXPECT_EQ(flat.ToQuat(), Q());
}

TEST(Matrix, PoseRoundTripLosesOnlyScale) {
  const QTransform<double> pose{{1, -2, 3}, Q::FromAxisAngle({1, 1, 0}, 1.2)};
  M m = M::FromPose(pose);
  EXPECT_EQ(m.GetTranslation(), pose.translation);
  m.SetAxis(0, m.Axis(0) * 3);
  const QTransform<double> back = m.ToPose();
  EXPECT_EQ(back.translation, pose.translation);
  EXPECT_NEAR(back.rotation.Dot(pose.rotation), 1.0, 1e-12);
}

}  // namespace
}  // namespace vuk::util
