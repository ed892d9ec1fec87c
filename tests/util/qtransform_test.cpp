#include "util/qtransform.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstring>
#include <random>

#include "util/matrix.h"
#include "tests/util/geometryexpect.h"

namespace vuk::util {
namespace {

using testing_support::ExpectNear;

using P = QTransform<double>;
using V = Vector3<double>;
using Q = Quat<double>;
using M = Matrix<double>;
const double kRootHalf = std::sqrt(0.5);

P RandomPose(std::mt19937& random) {
  std::uniform_real_distribution<double> uniform(-2, 2);
  return {{uniform(random), uniform(random), uniform(random)},
          Q{uniform(random), uniform(random), uniform(random), uniform(random)}.Normalize()};
}

TEST(QTransform, DefaultIsIdentity) {
  const P identity;
  EXPECT_EQ(identity.translation, V());
  EXPECT_EQ(identity.rotation, Q());
  EXPECT_EQ(M::FromPose(identity), M());
}

TEST(QTransform, LayoutIsTranslationThenRotation) {
  EXPECT_EQ(offsetof(P, translation), 0u);
  EXPECT_EQ(offsetof(P, rotation), 24u);
  const P pose{{1, 2, 3}, {4, 5, 6, 7}};
  double raw[7];
  std::memcpy(raw, &pose, sizeof raw);
  for (int i = 0; i < 7; ++i) EXPECT_EQ(raw[i], i + 1.0);
  P copy;
  std::memcpy(&copy, raw, sizeof raw);
  EXPECT_EQ(copy, pose);
}

TEST(QTransform, ToMatrixByHand) {
  // A quarter turn about Y: X goes to -Z, Z goes to X.
  const P pose{{1, 2, 3}, {0, kRootHalf, 0, kRootHalf}};
  const M m = M::FromPose(pose);
  const double expected[16] = {0, 0, -1, 0, 0, 1, 0, 0, 1, 0, 0, 0, 1, 2, 3, 1};
  for (int i = 0; i < 16; ++i) EXPECT_NEAR(m[i], expected[i], 1e-15) << "element " << i;
  EXPECT_EQ(m[12], 1.0);
  EXPECT_EQ(m[13], 2.0);
  EXPECT_EQ(m[14], 3.0);
}

TEST(QTransform, FromMatrixLosesOnlyScale) {
  M m = M::FromPose({{-4, 0.5, 9}, Q::FromAxisAngle({1, 1, 0}, 1.2)});
  m.SetAxis(0, m.Axis(0) * 3);
  m.SetAxis(2, m.Axis(2) * 0.5);
  const P back = m.ToPose();
  EXPECT_EQ(back.translation, V(-4, 0.5, 9));
  ExpectNear(back.rotation, Q::FromAxisAngle({1, 1, 0}, 1.2), 1e-15);
}

TEST(QTransform, RoundTripThroughTheMatrixKeepsWNotNegative) {
  std::mt19937 random(11);
  for (int round = 0; round < 500; ++round) {
    const P pose = RandomPose(random);
    const P back = M::FromPose(pose).ToPose();
    EXPECT_EQ(back.translation, pose.translation);
    EXPECT_GE(back.rotation.w, 0.0);
    ExpectNear(back.rotation, pose.rotation.w < 0 ? -pose.rotation : pose.rotation, 1e-13);
  }
}

TEST(QTransform, AgreesWithItsMatrix) {
  std::mt19937 random(2);
  std::uniform_real_distribution<double> uniform(-2, 2);
  for (int round = 0; round < 200; ++round) {
    const P a = RandomPose(random);
    const P b = RandomPose(random);
    const V p{uniform(random), uniform(random), uniform(random)};
    ExpectNear(a.TransformPoint(p), M::FromPose(a).TransformPoint(p));
    // a then b; the matrix product writes b on the left.
    ExpectNear((a * b).TransformPoint(p), b.TransformPoint(a.TransformPoint(p)));
    ExpectNear((a * b).TransformPoint(p), (M::FromPose(b) * M::FromPose(a)).TransformPoint(p));
    ExpectNear(a.Inverse().TransformPoint(a.TransformPoint(p)), p);
    ExpectNear(M::FromPose(a.Inverse()).TransformPoint(p), M::FromPose(a).Inverse().TransformPoint(p));
  }
}

TEST(QTransform, QuarterTurnThenMove) {
  // A quarter turn about Z, then a move along X: (1, 0, 0) -> (0, 1, 0) -> (5, 1, 0).
  const P turn{{}, {0, 0, kRootHalf, kRootHalf}};
  const P move{{5, 0, 0}, {}};
  ExpectNear((turn * move).TransformPoint({1, 0, 0}), {5, 1, 0}, 1e-14);
  // The other order moves first: (6, 0, 0) -> (0, 6, 0).
  ExpectNear((move * turn).TransformPoint({1, 0, 0}), {0, 6, 0}, 1e-14);
}

}  // namespace
}  // namespace vuk::util
