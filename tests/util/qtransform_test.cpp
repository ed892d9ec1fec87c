#include "util/qtransform.h"

#include <gtest/gtest.h>

#include <random>

#include "util/matrix.h"

namespace vuk::util {
namespace {

using P = QTransform<double>;
using V = Vector3<double>;
using Q = Quat<double>;
using M = Matrix<double>;

void ExpectNear(const V& a, const V& b) {
  EXPECT_NEAR(a.x, b.x, 1e-12);
  EXPECT_NEAR(a.y, b.y, 1e-12);
  EXPECT_NEAR(a.z, b.z, 1e-12);
}

TEST(QTransform, DefaultIsIdentityAndLayoutIsSevenDoubles) {
  const P identity;
  EXPECT_EQ(identity.translation, V());
  EXPECT_EQ(identity.rotation, Q());
  const double* raw = reinterpret_cast<const double*>(&identity);
  EXPECT_EQ(raw[6], 1.0);  // w last
}

TEST(QTransform, AgreesWithItsMatrix) {
  std::mt19937 random(2);
  std::uniform_real_distribution<double> uniform(-2, 2);
  for (int round = 0; round < 100; ++round) {
    const P a{{uniform(random), uniform(random), uniform(random)},
              Q{uniform(random), uniform(random), uniform(random), uniform(random)}.Normalize()};
    const P b{{uniform(random), uniform(random), uniform(random)},
              Q{uniform(random), uniform(random), uniform(random), uniform(random)}.Normalize()};
    const V p{uniform(random), uniform(random), uniform(random)};
    ExpectNear(a.TransformPoint(p), M::FromPose(a).TransformPoint(p));
    // a then b, as the matrix product writes b after a.
    ExpectNear((a * b).TransformPoint(p), (M::FromPose(b) * M::FromPose(a)).TransformPoint(p));
    ExpectNear(a.Inverse().TransformPoint(a.TransformPoint(p)), p);
  }
}

}  // namespace
}  // namespace vuk::util
