#pragma once
// What the geometry tests share: comparisons within a tolerance, element by
// element, and random rotations spread evenly over the sphere.

#include <gtest/gtest.h>

#include <random>

#include "util/matrix.h"
#include "util/quat.h"
#include "util/vector3.h"

namespace vuk::util::testing_support {

inline void ExpectNear(const Vector3<double>& a, const Vector3<double>& b, double tolerance = 1e-12) {
  EXPECT_NEAR(a.x, b.x, tolerance);
  EXPECT_NEAR(a.y, b.y, tolerance);
  EXPECT_NEAR(a.z, b.z, tolerance);
}

inline void ExpectNear(const Quat<double>& a, const Quat<double>& b, double tolerance = 1e-12) {
  EXPECT_NEAR(a.x, b.x, tolerance);
  EXPECT_NEAR(a.y, b.y, tolerance);
  EXPECT_NEAR(a.z, b.z, tolerance);
  EXPECT_NEAR(a.w, b.w, tolerance);
}

inline void ExpectNear(const Matrix<double>& a, const Matrix<double>& b, double tolerance) {
  for (int i = 0; i < 16; ++i) EXPECT_NEAR(a[i], b[i], tolerance) << "element " << i;
}

// A normalised 4D normal sample is uniform over the rotations.
inline Quat<double> RandomRotation(std::mt19937& random) {
  std::normal_distribution<double> normal;
  return Quat<double>{normal(random), normal(random), normal(random), normal(random)}.Normalize();
}

}  // namespace vuk::util::testing_support
