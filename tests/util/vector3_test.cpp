#include "util/vector3.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>

#include "util/safedivide.h"

namespace vuk::util {
namespace {

using V = Vector3<double>;

TEST(Vector3, LayoutIsThreeDoublesInOrder) {
  EXPECT_EQ(offsetof(V, x), 0u);
  EXPECT_EQ(offsetof(V, y), 8u);
  EXPECT_EQ(offsetof(V, z), 16u);
  const double raw[3] = {1.5, -2.5, 3.5};
  V v;
  std::memcpy(&v, raw, sizeof raw);
  EXPECT_EQ(v, V(1.5, -2.5, 3.5));
  EXPECT_EQ(V(), V(0, 0, 0));
}

TEST(Vector3, Arithmetic) {
  const V a(1, 2, 3), b(4, -5, 6);
  EXPECT_EQ(a + b, V(5, -3, 9));
  EXPECT_EQ(a - b, V(-3, 7, -3));
  EXPECT_EQ(-a, V(-1, -2, -3));
  EXPECT_EQ(a * 2.0, V(2, 4, 6));
  EXPECT_EQ(2.0 * a, V(2, 4, 6));
  EXPECT_EQ(b / 2.0, V(2, -2.5, 3));
  EXPECT_EQ(a.Dot(b), 4 - 10 + 18);
  V c = a;
  c += b;
  EXPECT_EQ(c, V(5, -3, 9));
  c -= b;
  EXPECT_EQ(c, a);
  c *= 3.0;
  EXPECT_EQ(c, V(3, 6, 9));
  c /= 3.0;
  EXPECT_EQ(c, a);
  EXPECT_NE(a, b);
}

TEST(Vector3, CrossIsRightHanded) {
  EXPECT_EQ(V(1, 0, 0).Cross(V(0, 1, 0)), V(0, 0, 1));
  EXPECT_EQ(V(0, 1, 0).Cross(V(0, 0, 1)), V(1, 0, 0));
  EXPECT_EQ(V(0, 0, 1).Cross(V(1, 0, 0)), V(0, 1, 0));
  EXPECT_EQ(V(0, 1, 0).Cross(V(1, 0, 0)), V(0, 0, -1));
  // Worked out by hand.
  EXPECT_EQ(V(1, 2, 3).Cross(V(4, 5, 6)), V(-3, 6, -3));
}

TEST(Vector3, Length) {
  EXPECT_EQ(V(2, 3, 6).Length(), 7.0);
  EXPECT_EQ(V(2, 3, 6).LengthSquared(), 49.0);
  EXPECT_EQ(V(0, -4, 0).Length(), 4.0);
}

TEST(Vector3, NormalizeDividesByTheLength) {
  V v(3, 0, -4);
  V& same = v.Normalize();
  EXPECT_EQ(&same, &v);
  EXPECT_EQ(v, V(0.6, 0, -0.8));
  const V original(0, 0, 0.25);
  EXPECT_EQ(original.Normalized(), V(0, 0, 1));
  EXPECT_EQ(original, V(0, 0, 0.25));
}

TEST(Vector3, NormalizeOfZeroIsUp) {
  V zero;
  zero.Normalize();
  EXPECT_EQ(zero, V(0, 1, 0));
  EXPECT_EQ(V(-0.0, 0.0, -0.0).Normalized(), V(0, 1, 0));
}

struct Division {
  double denominator;
  double used;
};

class SafeDivisionTable : public testing::TestWithParam<Division> {};

TEST_P(SafeDivisionTable, ReplacesOnlyDenominatorsBelowTheLimit) {
  const Division& row = GetParam();
  EXPECT_EQ(SafeDenominator(row.denominator), row.used);
  EXPECT_EQ(SafeDivide(3.0, row.denominator), 3.0 / row.used);
}

INSTANTIATE_TEST_SUITE_P(SafeDivision, SafeDivisionTable,
                         testing::Values(Division{0.0, 1e-12},       // zero takes the positive sign
                                         Division{-0.0, 1e-12},      // so does negative zero
                                         Division{5e-13, 1e-12},     //
                                         Division{-5e-13, -1e-12},   // a negative one keeps its sign
                                         Division{1e-300, 1e-12},    //
                                         Division{-1e-300, -1e-12},  //
                                         Division{9.999e-13, 1e-12},  //
                                         Division{1e-12, 1e-12},      // at the limit: kept as is
                                         Division{-1e-12, -1e-12},    //
                                         Division{2e-12, 2e-12},      //
                                         Division{-2.5, -2.5},        //
                                         Division{4.0, 4.0}));

TEST(SafeDivision, ZeroDenominatorGivesALargeFiniteResult) {
  EXPECT_DOUBLE_EQ(SafeDivide(2.0, 0.0), 2e12);
  EXPECT_DOUBLE_EQ(SafeDivide(-2.0, -1e-20), 2e12);
  EXPECT_EQ(SafeDivide(0.0, 0.0), 0.0);
}

}  // namespace
}  // namespace vuk::util
