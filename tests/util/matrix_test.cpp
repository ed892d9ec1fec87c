#include "util/matrix.h"
#include "tests/util/geometryexpect.h"

#include <gtest/gtest.h>

#include <cmath>
#include <initializer_list>
#include <random>

namespace vuk::util {
namespace {

using testing_support::ExpectNear;
using testing_support::RandomRotation;

using M = Matrix<double>;
using V = Vector3<double>;
using Q = Quat<double>;
constexpr double kPi = 3.141592653589793;
const double kRootHalf = std::sqrt(0.5);

// Builds a matrix from its three axis images and its translation.
M FromAxes(const V& x, const V& y, const V& z, const V& t = {}) {
  M m;
  m.SetAxis(0, x);
  m.SetAxis(1, y);
  m.SetAxis(2, z);
  m.SetTranslation(t);
  return m;
}

M FromElements(std::initializer_list<double> elements) {
  M m;
  int i = 0;
  for (double e : elements) m[i++] = e;
  return m;
}

TEST(Matrix, DefaultIsIdentityWithTranslationAtTwelve) {
  const M identity;
  for (int i = 0; i < 16; ++i) EXPECT_EQ(identity[i], i % 5 == 0 ? 1.0 : 0.0) << i;
  for (int i = 0; i < 16; ++i) EXPECT_EQ(M::Zero()[i], 0.0);
  M moved;
  moved.SetTranslation({4, 5, 6});
  EXPECT_EQ(moved[12], 4.0);
  EXPECT_EQ(moved[13], 5.0);
  EXPECT_EQ(moved[14], 6.0);
  EXPECT_EQ(moved.GetTranslation(), V(4, 5, 6));
}

// The quaternion table against matrices written by hand, and back.
struct QuarterTurnMatrix {
  Q quat;
  V imageOfX, imageOfY, imageOfZ;
};

class MatrixQuarterTurns : public testing::TestWithParam<QuarterTurnMatrix> {};

TEST_P(MatrixQuarterTurns, ConvertBothWays) {
  const QuarterTurnMatrix& turn = GetParam();
  const M expected = FromAxes(turn.imageOfX, turn.imageOfY, turn.imageOfZ);
  ExpectNear(M::FromQuat(turn.quat), expected, 1e-15);
  ExpectNear(expected.ToQuat(), turn.quat, 1e-15);
}

INSTANTIATE_TEST_SUITE_P(
    Matrix, MatrixQuarterTurns,
    testing::Values(QuarterTurnMatrix{{kRootHalf, 0, 0, kRootHalf}, {1, 0, 0}, {0, 0, 1}, {0, -1, 0}},
                    QuarterTurnMatrix{{-kRootHalf, 0, 0, kRootHalf}, {1, 0, 0}, {0, 0, -1}, {0, 1, 0}},
                    QuarterTurnMatrix{{0, kRootHalf, 0, kRootHalf}, {0, 0, -1}, {0, 1, 0}, {1, 0, 0}},
                    QuarterTurnMatrix{{0, -kRootHalf, 0, kRootHalf}, {0, 0, 1}, {0, 1, 0}, {-1, 0, 0}},
                    QuarterTurnMatrix{{0, 0, kRootHalf, kRootHalf}, {0, 1, 0}, {-1, 0, 0}, {0, 0, 1}},
                    QuarterTurnMatrix{{0, 0, -kRootHalf, kRootHalf}, {0, -1, 0}, {1, 0, 0}, {0, 0, 1}}));

TEST(Matrix, FromQuatDoesNotNormalise) {
  // Twice the identity quaternion: the diagonal is w^2 = 4.
  const M m = M::FromQuat({0, 0, 0, 2});
  EXPECT_EQ(m[0], 4.0);
  EXPECT_EQ(m[5], 4.0);
  EXPECT_EQ(m[10], 4.0);
  EXPECT_EQ(m[15], 1.0);
  EXPECT_EQ(m[1], 0.0);
}

TEST(Matrix, ProductAppliesTheRightOperandFirst) {
  M translate;
  translate.SetTranslation({1, 2, 3});
  const M scale = FromAxes({2, 0, 0}, {0, 2, 0}, {0, 0, 2});
  M result;
  translate.Multiply(result, scale);  // scale, then move: p -> 2p + t
  EXPECT_EQ(result, FromAxes({2, 0, 0}, {0, 2, 0}, {0, 0, 2}, {1, 2, 3}));
  scale.Multiply(result, translate);  // move, then scale: p -> 2(p + t)
  EXPECT_EQ(result, FromAxes({2, 0, 0}, {0, 2, 0}, {0, 0, 2}, {2, 4, 6}));
  EXPECT_EQ(scale * translate, result);
}

TEST(Matrix, ProductOfTwoTurnsIsTheQuaternionProductReversed) {
  const Q aboutZ = Q::FromAxisAngle({0, 0, 1}, kPi / 2);
  const Q aboutX = Q::FromAxisAngle({1, 0, 0}, kPi / 2);
  M result;
  M::FromQuat(aboutX).Multiply(result, M::FromQuat(aboutZ));  // Z first, then X
  ExpectNear(result.TransformPoint({1, 0, 0}), {0, 0, 1}, 1e-15);
  ExpectNear(result, M::FromQuat(aboutZ * aboutX), 1e-15);

  std::mt19937 random(3);
  for (int round = 0; round < 200; ++round) {
    const Q a = RandomRotation(random), b = RandomRotation(random);
    M product;
    M::FromQuat(b).Multiply(product, M::FromQuat(a));
    ExpectNear(product, M::FromQuat(a * b), 1e-14);
  }
}

TEST(Matrix, ProductMayWriteIntoAnOperand) {
  const M a = FromElements({1, 2, 0, 0, 3, 4, 0, 0, 0, 0, 1, 0, 5, 6, 7, 1});
  const M b = FromElements({0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 1, 1, 1, 1});
  const M expected = a * b;
  M left = a;
  left.Multiply(left, b);
  EXPECT_EQ(left, expected);
  M right = b;
  a.Multiply(right, right);
  EXPECT_EQ(right, expected);
}

TEST(Matrix, RelativePoseThroughTheInverse) {
  const M parent = M::FromPose({{1, 2, 3}, Q::FromAxisAngle({0, 1, 0}, 0.4)});
  const M child = M::FromPose({{-2, 0.5, 4}, Q::FromAxisAngle({1, 1, 0}, -1.1)});
  M relative;
  parent.Inverse().Multiply(relative, child);
  ExpectNear(parent * relative, child, 1e-14);
}

// Point transforms; w' divides unless it is exactly 0.
struct PointCase {
  M m;
  V p;
  V expected;
};

class MatrixPoints : public testing::TestWithParam<PointCase> {};

TEST_P(MatrixPoints, TransformPoint) { EXPECT_EQ(GetParam().m.TransformPoint(GetParam().p), GetParam().expected); }

INSTANTIATE_TEST_SUITE_P(
    Matrix, MatrixPoints,
    testing::Values(
        // Affine: a quarter turn about Z and a move.
        PointCase{FromAxes({0, 1, 0}, {-1, 0, 0}, {0, 0, 1}, {10, 20, 30}), {1, 2, 3}, {8, 21, 33}},
        // w' = 2 from element 15.
        PointCase{FromElements({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 4, 0, 0, 2}), {2, 4, 6}, {3, 2, 3}},
        // w' = -1 divides too.
        PointCase{FromElements({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, -1}), {2, 4, 6}, {-2, -4, -6}},
        // w' = 0 from element 15: not divided.
        PointCase{FromElements({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 1, 0, 0, 0}), {2, 4, 6}, {3, 4, 6}},
        // w' = 2 x 1 + 0 - 2 = 0 from elements 3 and 15 together: not divided.
        PointCase{FromElements({1, 0, 0, 1, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, -2}), {2, 4, 6}, {2, 4, 6}},
        // w' = 4 x 0.5 = 2 from element 7 alone.
        PointCase{FromElements({1, 0, 0, 0, 0, 1, 0, 0.5, 0, 0, 1, 0, 0, 0, 0, 0}), {2, 4, 6}, {1, 2, 3}}));

TEST(Matrix, TransformVectorIgnoresTranslation) {
  const M m = FromAxes({0, 1, 0}, {-1, 0, 0}, {0, 0, 1}, {10, 20, 30});
  EXPECT_EQ(m.TransformVector({1, 2, 3}), V(-2, 1, 3));
}

class MatrixSingular : public testing::TestWithParam<M> {};

TEST_P(MatrixSingular, InvertsToSixteenZeros) {
  EXPECT_EQ(GetParam().Determinant(), 0.0);
  EXPECT_EQ(GetParam().Inverse(), M::Zero());
}

INSTANTIATE_TEST_SUITE_P(Matrix, MatrixSingular,
                         testing::Values(M::Zero(),
                                         // The Y axis vanishes.
                                         FromAxes({1, 0, 0}, {0, 0, 0}, {0, 0, 1}, {1, 2, 3}),
                                         // Two equal axes.
                                         FromAxes({1, 2, 3}, {1, 2, 3}, {0, 0, 1}),
                                         // Z is X plus Y.
                                         FromAxes({1, 2, 0}, {0, 1, 3}, {1, 3, 3}, {4, 5, 6}),
                                         // A projection with nothing in row four.
                                         FromElements({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0})));

TEST(Matrix, NearlySingularStillInverts) {
  // Determinant 1e-15: small, but not exactly 0.
  const M tiny = FromAxes({1e-5, 0, 0}, {0, 1e-5, 0}, {0, 0, 1e-5});
  const M inverse = tiny.Inverse();
  EXPECT_NEAR(inverse[0], 1e5, 1e-6);
  EXPECT_NEAR(inverse[10], 1e5, 1e-6);
  EXPECT_NEAR(inverse[15], 1.0, 1e-15);
}

TEST(Matrix, InverseByHand) {
  // Scale by 2, then move by (1, 2, 3): the inverse moves back, then halves.
  const M m = FromAxes({2, 0, 0}, {0, 2, 0}, {0, 0, 2}, {1, 2, 3});
  EXPECT_EQ(m.Determinant(), 8.0);
  EXPECT_EQ(m.Inverse(), FromAxes({0.5, 0, 0}, {0, 0.5, 0}, {0, 0, 0.5}, {-0.5, -1, -1.5}));
}

TEST(Matrix, InverseOfRandomAffineMatrices) {
  std::mt19937 random(5);
  std::uniform_real_distribution<double> uniform(-3, 3);
  for (int round = 0; round < 300; ++round) {
    M m = M::FromQuat(RandomRotation(random));
    for (int axis = 0; axis < 3; ++axis) m.SetAxis(axis, m.Axis(axis) * (0.5 + std::fabs(uniform(random))));
    m.SetTranslation({uniform(random), uniform(random), uniform(random)});
    ExpectNear(m.Inverse() * m, M(), 1e-12);
    ExpectNear(m * m.Inverse(), M(), 1e-12);
  }
}

TEST(Matrix, TransposeOfARotationIsItsInverse) {
  const M m = M::FromQuat(Q::FromAxisAngle({1, -2, 0.5}, 0.9));
  ExpectNear(m.Transposed(), m.Inverse(), 1e-15);
  const M t = FromElements({0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15}).Transposed();
  EXPECT_EQ(t[1], 4.0);
  EXPECT_EQ(t[4], 1.0);
  EXPECT_EQ(t[3], 12.0);
  EXPECT_EQ(t[15], 15.0);
}

TEST(Matrix, RoundTripsOverRandomRotations) {
  std::mt19937 random(9);
  for (int round = 0; round < 5000; ++round) {
    Q q = RandomRotation(random);
    const M m = M::FromQuat(q);
    const Q back = m.ToQuat();
    EXPECT_GE(back.w, 0.0);
    if (q.w < 0) q = -q;
    ExpectNear(back, q, 1e-13);
    // matrix -> quaternion -> matrix
    ExpectNear(M::FromQuat(back), m, 1e-13);
  }
}

// Turns close to a half turn fall into cases X, Y and Z; the result keeps w >= 0.
class MatrixLargeTurns : public testing::TestWithParam<V> {};

TEST_P(MatrixLargeTurns, ComeBackWithWNotNegative) {
  for (double angle : {3.0, -3.0, 2.5, -2.9, 3.14}) {
    Q q = Q::FromAxisAngle(GetParam(), angle);
    const Q back = M::FromQuat(q).ToQuat();
    if (q.w < 0) q = -q;
    EXPECT_GE(back.w, 0.0);
    ExpectNear(back, q, 1e-14);
  }
}

INSTANTIATE_TEST_SUITE_P(Matrix, MatrixLargeTurns,
                         testing::Values(V(1, 0, 0), V(0, 1, 0), V(0, 0, 1), V(1, -2, 0.5), V(-0.2, 0.3, -3)));

// Exact half turns: w is 0 in case X, Y or Z and is not negated. The matrix
// of a half turn about unit a is 2 a a^T - I; these axes keep it exact.
struct HalfTurn {
  V axis;
  Q expected;
};

class MatrixHalfTurns : public testing::TestWithParam<HalfTurn> {};

TEST_P(MatrixHalfTurns, GiveWZero) {
  const V a = GetParam().axis;
  const double lengthSquared = a.LengthSquared();
  const double axis[3] = {a.x, a.y, a.z};
  M m;
  for (int c = 0; c < 3; ++c) {
    for (int r = 0; r < 3; ++r) m[4 * c + r] = 2 * axis[r] * axis[c] / lengthSquared - (r == c ? 1 : 0);
  }
  const Q q = m.ToQuat();
  EXPECT_EQ(q.w, 0.0);
  ExpectNear(q, GetParam().expected, 1e-15);
}

INSTANTIATE_TEST_SUITE_P(Matrix, MatrixHalfTurns,
                         testing::Values(HalfTurn{{1, 0, 0}, {1, 0, 0, 0}},                       // case X
                                         HalfTurn{{0, 1, 0}, {0, 1, 0, 0}},                       // case Y
                                         HalfTurn{{0, 0, 1}, {0, 0, 1, 0}},                       // case Z
                                         HalfTurn{{0, 0, -1}, {0, 0, 1, 0}},                      // case Z
                                         HalfTurn{{1, -1, 0}, {kRootHalf, -kRootHalf, 0, 0}},     // case X
                                         HalfTurn{{-1, 0, 1}, {kRootHalf, 0, -kRootHalf, 0}},     // case X
                                         HalfTurn{{0, 1, -1}, {0, kRootHalf, -kRootHalf, 0}},     // case Y
                                         HalfTurn{{0, -1, -1}, {0, kRootHalf, kRootHalf, 0}}));  // case Y

TEST(Matrix, NegatedQuaternionGivesTheSameMatrixAndComesBackWithWNotNegative) {
  const Q positive = Q::FromAxisAngle({1, 2, 3}, 2.5);
  ASSERT_GT(positive.w, 0.0);
  const Q negative = -positive;
  EXPECT_EQ(M::FromQuat(positive), M::FromQuat(negative));
  ExpectNear(M::FromQuat(negative).ToQuat(), positive, 1e-15);
  ExpectNear(M::FromQuat(positive).ToQuat(), positive, 1e-15);
}

TEST(Matrix, ScaleIsNormalisedAway) {
  M scaled = M::FromQuat(Q::FromAxisAngle({0, 1, 0}, 0.7));
  scaled.SetAxis(0, scaled.Axis(0) * 0.0254);
  scaled.SetAxis(1, scaled.Axis(1) * 3);
  scaled.SetAxis(2, scaled.Axis(2) * 100);
  scaled.SetTranslation({5, 6, 7});
  ExpectNear(scaled.ToQuat(), Q::FromAxisAngle({0, 1, 0}, 0.7), 1e-15);
}

// A zero axis reads as (0, 1, 0) before the quaternion is taken. Worked out
// by hand: with X zero and Y, Z untouched the axes are (0,1,0), (0,1,0),
// (0,0,1); case W gives z = 1 / (2 sqrt 3), w = sqrt 3 / 2, normalised to
// (0, 0, 1, 3) / sqrt 10.
struct ZeroAxis {
  int axis;
  Q expected;
};

class MatrixZeroAxis : public testing::TestWithParam<ZeroAxis> {};

TEST_P(MatrixZeroAxis, ReadsAsUp) {
  M m;
  m.SetAxis(GetParam().axis, {0, 0, 0});
  ExpectNear(m.ToQuat(), GetParam().expected, 1e-15);
}

const double kRootTenth = std::sqrt(0.1);

INSTANTIATE_TEST_SUITE_P(Matrix, MatrixZeroAxis,
                         testing::Values(ZeroAxis{0, {0, 0, kRootTenth, 3 * kRootTenth}},
                                         ZeroAxis{1, {0, 0, 0, 1}},
                                         ZeroAxis{2, {-kRootTenth, 0, 0, 3 * kRootTenth}}));

TEST(Matrix, AllAxesZeroReadAsUp) {
  // All three axes read (0, 1, 0): a = 2, b = 0, c = 2, d = 0, so case W
  // with s = 2 sqrt 2: x = -1/s, z = 1/s, w = s/4; normalised (-1, 0, 1, 2)/sqrt 6.
  const double r = 1 / std::sqrt(6.0);
  ExpectNear(M::Zero().ToQuat(), {-r, 0, r, 2 * r}, 1e-15);
}

}  // namespace
}  // namespace vuk::util
