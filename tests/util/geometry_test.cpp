#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <initializer_list>
#include <map>
#include <random>
#include <tuple>
#include <utility>
#include <vector>

#include "util/matrix.h"
#include "util/mesh.h"
#include "util/safedivide.h"

namespace vuk::util {
namespace {

using V = Vector3<double>;
using Q = Quat<double>;
using M = Matrix<double>;
using P = QTransform<double>;
constexpr double kPi = 3.141592653589793;
constexpr double kHalfPi = kPi / 2;
const double kRootHalf = std::sqrt(0.5);

// Element by element, as plain arrays of doubles.
template <typename T>
void ExpectNear(const T& a, const T& b, double tolerance = 1e-15) {
  const auto* x = reinterpret_cast<const double*>(&a);
  const auto* y = reinterpret_cast<const double*>(&b);
  for (std::size_t i = 0; i < sizeof(T) / sizeof(double); ++i) EXPECT_NEAR(x[i], y[i], tolerance) << "element " << i;
}

// A normalised 4D normal sample is uniform over the rotations.
Q RandomRotation(std::mt19937& random) {
  std::normal_distribution<double> normal;
  return Q{normal(random), normal(random), normal(random), normal(random)}.Normalize();
}

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

TEST(Geometry, MemoryOrderIsWhatSavedDataHolds) {
  const P pose{{1, 2, 3}, {4, 5, 6, 7}};
  double raw[7];
  std::memcpy(raw, &pose, sizeof raw);
  for (int i = 0; i < 7; ++i) EXPECT_EQ(raw[i], i + 1.0);
}

TEST(Vector3, CrossIsRightHandedAndNormalizeMakesZeroUp) {
  EXPECT_EQ(V(1, 2, 3).Cross(V(4, 5, 6)), V(-3, 6, -3));
  EXPECT_EQ(V(3, 0, -4).Normalized(), V(0.6, 0, -0.8));
  EXPECT_EQ(V(-0.0, 0.0, -0.0).Normalized(), V(0, 1, 0));
}

TEST(Geometry, SafeDivisionReplacesOnlyDenominatorsBelowTheLimit) {
  // {denominator, the one used}: zero of either sign takes +1e-12; the limit itself is kept.
  const std::pair<double, double> cases[] = {{0.0, 1e-12},      {-0.0, 1e-12},     {-5e-13, -1e-12}, {-1e-300, -1e-12},
                                             {9.999e-13, 1e-12}, {-1e-12, -1e-12}, {2e-12, 2e-12}};
  for (const auto& [denominator, used] : cases) {
    EXPECT_EQ(SafeDenominator(denominator), used) << denominator;
    EXPECT_EQ(SafeDivide(3.0, denominator), 3.0 / used) << denominator;
  }
}

// A right-handed quarter turn about an axis, and the images of the three unit
// axes worked out by hand: the columns of its matrix. An axis of any length
// is normalised first.
TEST(Geometry, QuarterTurnsAgreeAsQuaternionMatrixAndRotation) {
  const struct {
    V axis;
    Q quat;
    V x, y, z;
  } turns[] = {{{1, 0, 0}, {kRootHalf, 0, 0, kRootHalf}, {1, 0, 0}, {0, 0, 1}, {0, -1, 0}},
               {{0, 0, -5}, {0, 0, -kRootHalf, kRootHalf}, {0, -1, 0}, {1, 0, 0}, {0, 0, 1}}};
  for (const auto& turn : turns) {
    const Q q = Q::FromAxisAngle(turn.axis, kHalfPi);
    ExpectNear(q, turn.quat);
    ExpectNear(q.Rotate({1, 0, 0}), turn.x);
    ExpectNear(q.Rotate({0, 1, 0}), turn.y);
    ExpectNear(q.Rotate({0, 0, 1}), turn.z);
    ExpectNear(M::FromQuat(turn.quat), FromAxes(turn.x, turn.y, turn.z));
  }
}

// Worked out by hand as Hamilton products with the right operand on the left.
TEST(Quat, ProductIsTheReversedHamiltonProduct) {
  Q product(1, 2, 3, 4);
  product *= Q(5, 6, 7, 8);
  EXPECT_EQ(product, Q(32, 32, 56, -6));
  EXPECT_EQ(Q(5, 6, 7, 8) * Q(1, 2, 3, 4), Q(24, 48, 48, -6));
}

TEST(Quat, ProductAppliesTheLeftOperandFirstAndTheMatrixProductTheRight) {
  std::mt19937 random(17);
  std::uniform_real_distribution<double> uniform(-5, 5);
  for (int round = 0; round < 300; ++round) {
    const Q a = RandomRotation(random), b = RandomRotation(random);
    const V p{uniform(random), uniform(random), uniform(random)};
    ExpectNear((a * b).Rotate(p), b.Rotate(a.Rotate(p)), 1e-13);
    ExpectNear(a.Rotate(p), M::FromQuat(a).TransformPoint(p), 1e-13);
    ExpectNear(a.Conjugate().Rotate(a.Rotate(p)), p, 1e-13);
    ExpectNear(M::FromQuat(b) * M::FromQuat(a), M::FromQuat(a * b), 1e-14);
  }
}

TEST(Quat, NormalizeKeepsTheSignAndZeroBecomesTheIdentity) {
  EXPECT_EQ(Q(0, 0, 0, 0).Normalize(), Q());
  EXPECT_EQ(Q(0, 3, 0, -4).Normalized(), Q(0, 0.6, 0, -0.8));
  EXPECT_EQ(Q(1, -2, 0.5, 3).Conjugate(), Q(-1, 2, -0.5, 3));
}

// The exponential of a rotation vector. Where the components sum to exactly
// 0 the vector is used unnormalised, and the result is not a unit quaternion.
TEST(Quat, ExponentialOfARotationVector) {
  const std::pair<V, bool> cases[] = {
      {{-kPi, 0, 0}, false}, {{0.3, -0.1, -0.1}, false}, {{1, -1, 0}, true}, {{2, -1, -1}, true}, {{0, 0, 0}, true}};
  for (const auto& [v, unnormalised] : cases) {
    const double h = v.Length() / 2, s = unnormalised ? std::sin(h) : std::sin(h) / v.Length();
    ExpectNear(Q::FromRotationVector(v), Q(s * v.x, s * v.y, s * v.z, std::cos(h)));
  }
}

TEST(Quat, SlerpTakesTheShorterArc) {
  const Q a;
  const Q b = Q::FromAxisAngle({0, 1, 0}, kHalfPi);
  const Q eighth{0, std::sin(kPi / 8), 0, std::cos(kPi / 8)};
  ExpectNear(Q::Slerp(a, b, 0.5), eighth);
  EXPECT_NEAR(std::fabs(Q::Slerp(a, -b, 0.5).Dot(eighth)), 1.0, 1e-15);
}

// Shortest arcs worked out by hand: the axis is from x to, the angle the one
// between the directions; lengths don't matter.
TEST(Quat, FromToTakesTheShortestArc) {
  const struct {
    V from, to;
    Q expected;
  } cases[] = {{{1, 0, 0}, {0, 3, 0}, {0, 0, kRootHalf, kRootHalf}},
               {{0, 0, 2}, {0, 1, 0}, {-kRootHalf, 0, 0, kRootHalf}},
               {{1, 1, 0}, {1, 0, 0}, {0, 0, -std::sin(kPi / 8), std::cos(kPi / 8)}},
               {{0, 5, 0}, {0, 2, 0}, {0, 0, 0, 1}}};
  for (const auto& c : cases) {
    ExpectNear(Q::FromTo(c.from, c.to), c.expected);
    ExpectNear(Q::FromTo(c.from, c.to).Rotate(c.from.Normalized()), c.to.Normalized());
  }
}

TEST(Quat, FromToTurnsAnyDirectionOntoAnotherByTheAngleBetweenThem) {
  std::mt19937 random(5);
  std::normal_distribution<double> normal;
  for (int round = 0; round < 300; ++round) {
    const V a{normal(random), normal(random), normal(random)}, b{normal(random), normal(random), normal(random)};
    const Q q = Q::FromTo(a, b);
    EXPECT_NEAR(q.Norm(), 1.0, 1e-15);
    ExpectNear(q.Rotate(a.Normalized()), b.Normalized(), 1e-14);
    EXPECT_NEAR(q.Angle(), std::acos(a.Normalized().Dot(b.Normalized())), 1e-7);
  }
}

// Opposite directions: half a turn about some axis normal to the first.
TEST(Quat, FromToOppositeDirectionsIsAHalfTurn) {
  const V directions[] = {{1, 0, 0}, {0, -1, 0}, {0, 0, 3}, {0.95, 0.1, 0}, {1, 2, 3}};
  for (const V& a : directions) {
    const Q q = Q::FromTo(a, -a);
    EXPECT_EQ(q.w, 0.0);
    EXPECT_NEAR(q.Norm(), 1.0, 1e-15);
    EXPECT_NEAR(V(q.x, q.y, q.z).Dot(a), 0.0, 1e-15);
    ExpectNear(q.Rotate(a), -a, 1e-14);
  }
}

// Angles in [0, pi]; past a half turn the other way round is shorter, and q
// and -q are the same rotation.
TEST(Quat, AngleIsTheAxisAngleLength) {
  const std::pair<double, double> cases[] = {{0, 0},         {1e-9, 1e-9},           {0.5, 0.5}, {kHalfPi, kHalfPi},
                                             {kPi, kPi},     {1.5 * kPi, kHalfPi},   {2 * kPi - 1e-9, 1e-9}};
  const V axes[] = {{1, 0, 0}, {0, -2, 0}, {1, 2, 3}};
  for (const auto& [turned, angle] : cases) {
    for (const V& axis : axes) {
      const Q q = Q::FromAxisAngle(axis, turned);
      EXPECT_NEAR(q.Angle(), angle, 1e-15) << turned;
      EXPECT_NEAR((-q).Angle(), angle, 1e-15) << turned;
      EXPECT_NEAR(Q(q.x * 3, q.y * 3, q.z * 3, q.w * 3).Angle(), angle, 1e-15) << turned;
    }
  }
}

TEST(Quat, AngleBetweenIsTheAngleOfTheRelativeRotation) {
  std::mt19937 random(9);
  std::uniform_real_distribution<double> angle(0, kPi);
  for (int round = 0; round < 300; ++round) {
    const Q a = RandomRotation(random);
    const double turned = angle(random);
    const Q turn = Q::FromAxisAngle(RandomRotation(random).Rotate({1, 0, 0}), turned);
    EXPECT_NEAR(Q::AngleBetween(a, a * turn), turned, 1e-7);
    EXPECT_NEAR(Q::AngleBetween(a, turn * a), turned, 1e-7);
    EXPECT_NEAR(Q::AngleBetween(-a, turn * a), turned, 1e-7);
    EXPECT_NEAR(Q::AngleBetween(turn * a, a), turned, 1e-7);
  }
  EXPECT_EQ(Q::AngleBetween(Q(0, 0.6, 0, 0.8), Q(0, 0.6, 0, 0.8)), 0.0);
}

// The logarithm undoes the exponential for angles up to pi, and gives the
// same vector for q and -q.
TEST(Quat, RotationVectorInvertsTheExponential) {
  std::mt19937 random(11);
  std::uniform_real_distribution<double> angle(0, kPi);
  for (int round = 0; round < 300; ++round) {
    const V v = RandomRotation(random).Rotate({1, 0, 0}) * angle(random);
    const Q q = Q::FromRotationVector(v);
    ExpectNear(q.ToRotationVector(), v, 1e-13);
    ExpectNear((-q).ToRotationVector(), v, 1e-13);
  }
  ExpectNear(Q::FromRotationVector({0, 1e-10, 0}).ToRotationVector(), V(0, 1e-10, 0), 1e-24);
  EXPECT_EQ(Q().ToRotationVector(), V());
}

TEST(Matrix, ProductAppliesTheRightOperandFirstAndMayWriteIntoAnOperand) {
  // FromQuat doesn't normalise: the diagonal is w^2 = 4.
  EXPECT_EQ(M::FromQuat({0, 0, 0, 2}), FromElements({4, 0, 0, 0, 0, 4, 0, 0, 0, 0, 4, 0, 0, 0, 0, 1}));
  M translate;
  translate.SetTranslation({1, 2, 3});
  const M scale = FromAxes({2, 0, 0}, {0, 2, 0}, {0, 0, 2});
  M result;
  translate.Multiply(result, scale);  // scale, then move: p -> 2p + t
  EXPECT_EQ(result, FromAxes({2, 0, 0}, {0, 2, 0}, {0, 0, 2}, {1, 2, 3}));

  const M a = FromElements({1, 2, 0, 0, 3, 4, 0, 0, 0, 0, 1, 0, 5, 6, 7, 1});
  const M b = FromElements({0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 1, 1, 1, 1});
  M left = a, right = b;
  left.Multiply(left, b);
  a.Multiply(right, right);
  EXPECT_EQ(left, a * b);
  EXPECT_EQ(right, a * b);
}

// w' divides unless it is exactly 0.
TEST(Matrix, TransformPointAndVector) {
  const M turn = FromAxes({0, 1, 0}, {-1, 0, 0}, {0, 0, 1}, {10, 20, 30});  // a quarter turn about Z and a move
  EXPECT_EQ(turn.TransformPoint({1, 2, 3}), V(8, 21, 33));
  EXPECT_EQ(turn.TransformVector({1, 2, 3}), V(-2, 1, 3));
  const std::pair<M, V> cases[] = {
      {FromElements({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 4, 0, 0, 2}), {3, 2, 3}},       // w' = 2 from element 15
      {FromElements({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 1, 0, 0, 0}), {3, 4, 6}},       // w' = 0: not divided
      {FromElements({1, 0, 0, 0, 0, 1, 0, 0.5, 0, 0, 1, 0, 0, 0, 0, 0}), {1, 2, 3}}};    // w' = 4 x 0.5
  for (const auto& [m, expected] : cases) EXPECT_EQ(m.TransformPoint({2, 4, 6}), expected);
}

TEST(Matrix, InverseByHandSingularNearlySingularAndRandom) {
  // Singular: a zero axis, Z = X + Y, nothing in row four.
  for (const M& singular : {FromAxes({1, 0, 0}, {0, 0, 0}, {0, 0, 1}, {1, 2, 3}),
                            FromAxes({1, 2, 0}, {0, 1, 3}, {1, 3, 3}),
                            FromElements({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0})}) {
    EXPECT_EQ(singular.Inverse(), M::Zero());
  }
  // Determinant 1e-15: small, but not exactly 0.
  const M tiny = FromAxes({1e-5, 0, 0}, {0, 1e-5, 0}, {0, 0, 1e-5}).Inverse();
  EXPECT_NEAR(tiny[0], 1e5, 1e-6);
  EXPECT_NEAR(tiny[15], 1.0, 1e-15);

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

TEST(Matrix, PoseToMatrixAndBackLosesOnlyScale) {
  // A quarter turn about Y: X goes to -Z, Z goes to X.
  ExpectNear(M::FromPose({{1, 2, 3}, {0, kRootHalf, 0, kRootHalf}}),
             FromElements({0, 0, -1, 0, 0, 1, 0, 0, 1, 0, 0, 0, 1, 2, 3, 1}), 1e-15);
  M scaled = M::FromPose({{-4, 0.5, 9}, Q::FromAxisAngle({1, 1, 0}, 1.2)});
  scaled.SetAxis(0, scaled.Axis(0) * 0.0254);
  scaled.SetAxis(2, scaled.Axis(2) * 100);
  const P back = scaled.ToPose();
  EXPECT_EQ(back.translation, V(-4, 0.5, 9));
  ExpectNear(back.rotation, Q::FromAxisAngle({1, 1, 0}, 1.2));
}

// Random rotations both ways; turns near a half turn fall into cases X, Y
// and Z. The way back always has w >= 0.
TEST(Matrix, RoundTripsKeepWNotNegative) {
  std::mt19937 random(9);
  for (int round = 0; round < 3000; ++round) {
    Q q = RandomRotation(random);
    if (round % 3 == 0) q = Q::FromAxisAngle({q.x, q.y, q.z}, round % 2 ? 3.14 : -2.9);
    const M m = M::FromQuat(q);
    const Q back = m.ToQuat();
    EXPECT_GE(back.w, 0.0);
    ExpectNear(back, q.w < 0 ? -q : q, 1e-13);
    ExpectNear(M::FromQuat(back), m, 1e-13);
  }
}

const double kRootTenth = std::sqrt(0.1);
const double kRootSixth = std::sqrt(1 / 6.0);

// Half turns about the axes fall into case X, Y or Z, and keep w exactly 0,
// not negated. A zero axis reads as (0, 1, 0) before the quaternion is taken:
// with X zero the axes are (0,1,0), (0,1,0), (0,0,1) and case W gives
// (0, 0, 1, 3) / sqrt 10; all three zero give (-1, 0, 1, 2) / sqrt 6.
TEST(Matrix, ToQuatByHand) {
  const std::pair<M, Q> cases[] = {
      {FromAxes({1, 0, 0}, {0, -1, 0}, {0, 0, -1}), {1, 0, 0, 0}},
      {FromAxes({-1, 0, 0}, {0, 1, 0}, {0, 0, -1}), {0, 1, 0, 0}},
      {FromAxes({-1, 0, 0}, {0, -1, 0}, {0, 0, 1}), {0, 0, 1, 0}},
      {FromAxes({0, 0, 0}, {0, 1, 0}, {0, 0, 1}), {0, 0, kRootTenth, 3 * kRootTenth}},
      {FromAxes({1, 0, 0}, {0, 1, 0}, {0, 0, 0}), {-kRootTenth, 0, 0, 3 * kRootTenth}},
      {M::Zero(), {-kRootSixth, 0, kRootSixth, 2 * kRootSixth}}};
  for (const auto& [m, expected] : cases) {
    const Q q = m.ToQuat();
    ExpectNear(q, expected);
    EXPECT_TRUE(expected.w != 0 || q.w == 0.0);
  }
}

// Closed, wound outward and textured sensibly: every edge is met by exactly
// two triangles running along it in opposite directions; for a convex solid
// around the origin each face's normal points away from it; texture
// coordinates lie in the unit square and no texture triangle is degenerate
// or mirrored against its face.
void ExpectWellFormed(const CMesh& mesh) {
  ASSERT_EQ(mesh.faces.size() % 3, 0u);
  ASSERT_EQ(mesh.textureFaces.size(), mesh.faces.size());
  std::map<std::pair<std::int32_t, std::int32_t>, int> edges;
  for (std::size_t f = 0; f < mesh.faces.size(); f += 3) {
    for (int k = 0; k < 3; ++k) {
      ASSERT_LT(static_cast<std::size_t>(mesh.faces[f + k]), mesh.vertices.size());
      ASSERT_LT(static_cast<std::size_t>(mesh.textureFaces[f + k]), mesh.textureVertices.size());
      ++edges[{mesh.faces[f + k], mesh.faces[f + (k + 1) % 3]}];
    }
    const V a = mesh.vertices[mesh.faces[f]], b = mesh.vertices[mesh.faces[f + 1]],
            c = mesh.vertices[mesh.faces[f + 2]];
    EXPECT_GT((b - a).Cross(c - a).Dot(a + b + c), 0) << "face " << f / 3;
    const V ta = mesh.textureVertices[mesh.textureFaces[f]], tb = mesh.textureVertices[mesh.textureFaces[f + 1]],
            tc = mesh.textureVertices[mesh.textureFaces[f + 2]];
    EXPECT_GT((tb - ta).Cross(tc - ta).z, 1e-6) << "texture face " << f / 3;
  }
  for (const auto& [edge, count] : edges) {
    EXPECT_EQ(count, 1) << edge.first << "-" << edge.second;
    EXPECT_EQ(edges.count({edge.second, edge.first}), 1u) << edge.first << "-" << edge.second;
  }
  for (const V& t : mesh.textureVertices) {
    EXPECT_TRUE(t.x >= 0 && t.x <= 1 && t.y >= 0 && t.y <= 1 && t.z == 0) << t.x << ", " << t.y;
  }
}

TEST(MeshBox, CornersGoXFirstThenYThenZUnderTwelveTriangles) {
  const CMesh_Box box(2, 4, 6);
  EXPECT_EQ(box.vertices, (std::vector<V>{{-1, -2, -3}, {1, -2, -3}, {-1, 2, -3}, {1, 2, -3},
                                          {-1, -2, 3}, {1, -2, 3}, {-1, 2, 3}, {1, 2, 3}}));
  EXPECT_EQ(box.faces.size(), 36u);
  ExpectWellFormed(box);
}

TEST(MeshCylinder, TwoRingsOnTheShortCircleWithCaps) {
  for (const int segments : {3, 4, 8, 12, 33}) {
    const CMesh_Cylinder cylinder(segments, 1.5, 3.0);
    ASSERT_GE(cylinder.vertices.size(), 2u * segments);
    for (int i = 0; i < segments; ++i) {
      const V& upper = cylinder.vertices[i];
      const V& lower = cylinder.vertices[segments + i];
      EXPECT_EQ(upper, V(lower.x, 1.5, lower.z));
      EXPECT_EQ(lower.y, -1.5);
      EXPECT_NEAR(std::hypot(upper.x, upper.z), 1.5, 1e-12);
      // Step i of a circle of 6.28318, not of two pi.
      const double angle = std::atan2(upper.x, upper.z);
      EXPECT_NEAR(angle < 0 ? angle + 2 * kPi : angle, i * 6.28318 / segments, 1e-12);
    }
    EXPECT_EQ(cylinder.faces.size(), 3u * 4u * segments);  // sides and caps, two triangles each per segment
    ExpectWellFormed(cylinder);
  }
  for (const int segments : {0, -4}) {  // no segments give an empty mesh
    const CMesh_Cylinder cylinder(segments, 1.0, 1.0);
    EXPECT_TRUE(cylinder.vertices.empty() && cylinder.faces.empty() && cylinder.textureFaces.empty());
  }
}

auto AllButVertices(const CMesh& mesh) { return std::tie(mesh.textureVertices, mesh.faces, mesh.textureFaces); }

TEST(MeshCopy, TransformingCopyMovesOnlyTheVertices) {
  const CMesh_Box box(2, 4, 6);
  // A quarter turn about Y (X goes to -Z, Z goes to X), then a move.
  const CMesh moved(box, FromAxes({0, 0, -1}, {0, 1, 0}, {1, 0, 0}, {10, 20, 30}));
  EXPECT_EQ(moved.vertices[1], V(7, 18, 29));   // from (1, -2, -3)
  EXPECT_EQ(moved.vertices[6], V(13, 22, 31));  // from (-1, 2, 3)
  EXPECT_TRUE(AllButVertices(moved) == AllButVertices(box));
}

TEST(MeshCopy, AssignReplacesAllFourArrays) {
  const CMesh_Cylinder cylinder(5, 1.0, 2.0);
  CMesh target = CMesh_Box(1, 1, 1);
  target.Assign(cylinder);
  EXPECT_EQ(target.vertices, cylinder.vertices);
  EXPECT_TRUE(AllButVertices(target) == AllButVertices(cylinder));
}

}  // namespace
}  // namespace vuk::util
