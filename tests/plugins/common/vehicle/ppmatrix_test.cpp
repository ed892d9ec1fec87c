#include "plugins/common/vehicle/ppmatrix.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <random>
#include <vector>

namespace vuk::rgw::addon {
namespace {

// A naive dense reference, 0-based, to hold the 1-based matrix against.
using Dense = std::vector<std::vector<double>>;

Dense dense(const PPMatrix& m) {
  Dense d(m.rows, std::vector<double>(m.cols));
  for (int i = 0; i < m.rows; ++i) {
    for (int j = 0; j < m.cols; ++j) d[i][j] = m(i + 1, j + 1);
  }
  return d;
}

Dense product(const Dense& a, const Dense& b) {
  Dense c(a.size(), std::vector<double>(b[0].size()));
  for (std::size_t i = 0; i < a.size(); ++i) {
    for (std::size_t j = 0; j < b[0].size(); ++j) {
      for (std::size_t k = 0; k < b.size(); ++k) c[i][j] += a[i][k] * b[k][j];
    }
  }
  return c;
}

Dense transposed(const Dense& a) {
  Dense t(a[0].size(), std::vector<double>(a.size()));
  for (std::size_t i = 0; i < a.size(); ++i) {
    for (std::size_t j = 0; j < a[0].size(); ++j) t[j][i] = a[i][j];
  }
  return t;
}

Dense sum(const Dense& a, const Dense& b, double sign) {
  Dense c = a;
  for (std::size_t i = 0; i < a.size(); ++i) {
    for (std::size_t j = 0; j < a[0].size(); ++j) c[i][j] += sign * b[i][j];
  }
  return c;
}

void expectNear(const PPMatrix& actual, const Dense& expected, double tolerance) {
  ASSERT_EQ(actual.rows, static_cast<int>(expected.size()));
  ASSERT_EQ(actual.cols, static_cast<int>(expected[0].size()));
  for (int i = 0; i < actual.rows; ++i) {
    for (int j = 0; j < actual.cols; ++j) EXPECT_NEAR(actual(i + 1, j + 1), expected[i][j], tolerance) << i << "," << j;
  }
}

class Operands {
 public:
  PPMatrix random(int rows, int cols) {
    PPMatrix m(rows, cols);
    for (int i = 1; i <= rows; ++i) {
      for (int j = 1; j <= cols; ++j) m(i, j) = value_(engine_);
    }
    return m;
  }
  PPMatrix randomDiagonal(int n) {
    PPMatrix m(n, n);
    for (int i = 1; i <= n; ++i) m(i, i) = 1.5 + value_(engine_);
    m.diagonal = true;
    m.symmetric = true;
    return m;
  }
  // m m' + n I: symmetric positive definite.
  PPMatrix randomPositiveDefinite(int n) {
    PPMatrix m = random(n, n);
    PPMatrix spd = multiply(m, transpose(m));
    for (int i = 1; i <= n; ++i) spd(i, i) += n;
    spd.symmetric = true;
    return spd;
  }

 private:
  std::mt19937 engine_{20240615};
  std::uniform_real_distribution<double> value_{-1.0, 1.0};
};

// Sizes from 1 x 1 to the full capacity.
class PPMatrixAgainstReference : public testing::TestWithParam<int> {
 protected:
  Operands operands;
  int n = GetParam();
};

TEST_P(PPMatrixAgainstReference, Multiply) {
  const PPMatrix a = operands.random(n, n), b = operands.random(n, 3);
  expectNear(multiply(a, b), product(dense(a), dense(b)), 1e-12);
}

TEST_P(PPMatrixAgainstReference, AddAndSubtract) {
  const PPMatrix a = operands.random(n, 4), b = operands.random(n, 4);
  expectNear(add(a, b), sum(dense(a), dense(b), 1), 1e-15);
  expectNear(subtract(a, b), sum(dense(a), dense(b), -1), 1e-15);
  expectNear(scale(2.5, a), sum(dense(a), dense(a), 1.5), 1e-15);
}

TEST_P(PPMatrixAgainstReference, TransposeAndItsSquare) {
  const PPMatrix a = operands.random(n, 5);
  expectNear(transpose(a), transposed(dense(a)), 0);
  const PPMatrix square = transposeSquare(a);
  EXPECT_TRUE(square.symmetric);
  expectNear(square, product(transposed(dense(a)), dense(a)), 1e-12);
}

TEST_P(PPMatrixAgainstReference, Congruence) {
  const PPMatrix a = operands.random(n, 4), s = operands.randomPositiveDefinite(n);
  const PPMatrix result = congruence(a, s);
  EXPECT_TRUE(result.symmetric);
  expectNear(result, product(transposed(dense(a)), product(dense(s), dense(a))), 1e-11);
}

TEST_P(PPMatrixAgainstReference, InverseTimesGivesBackTheRightSide) {
  const PPMatrix b = operands.random(n, 3);
  using Solve = std::function<PPMatrix(const PPMatrix&, const PPMatrix&)>;
  const struct {
    const char* what;
    PPMatrix a;
    Solve solve;
  } cases[] = {{"general", operands.random(n, n), &inverseTimes},
               {"symmetric", operands.randomPositiveDefinite(n), &inverseTimesSymmetric}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    const PPMatrix x = c.solve(c.a, b);
    // A random general matrix may be badly conditioned; measure against it.
    expectNear(multiply(c.a, x), dense(b), 1e-9);
  }
}

TEST_P(PPMatrixAgainstReference, DiagonalShortPathsEqualTheGeneralPath) {
  const PPMatrix d = operands.randomDiagonal(n), a = operands.random(n, n), s = operands.randomPositiveDefinite(n);
  PPMatrix general = d;
  general.diagonal = false;
  const struct {
    const char* what;
    std::function<PPMatrix(const PPMatrix&)> operation;
  } cases[] = {
      {"d x a", [&](const PPMatrix& m) { return multiply(m, a); }},
      {"a x d", [&](const PPMatrix& m) { return multiply(a, m); }},
      {"d x d", [&](const PPMatrix& m) { return multiply(m, m); }},
      {"d + a", [&](const PPMatrix& m) { return add(m, a); }},
      {"a - d", [&](const PPMatrix& m) { return subtract(a, m); }},
      {"d - d", [&](const PPMatrix& m) { return subtract(m, scale(3, m)); }},
      {"d' s d", [&](const PPMatrix& m) { return congruence(m, s); }},
      {"a' d a", [&](const PPMatrix& m) { return congruence(a, m); }},
      {"d' d", [&](const PPMatrix& m) { return transposeSquare(m); }},
      {"d^-1 a", [&](const PPMatrix& m) { return inverseTimes(m, a); }},
      {"d^-1 a, symmetric", [&](const PPMatrix& m) { return inverseTimesSymmetric(m, a); }},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.what);
    expectNear(c.operation(d), dense(c.operation(general)), 1e-12);
  }
  PPMatrix inverse = inverseDiagonal(d);
  EXPECT_TRUE(inverse.diagonal);
  PPMatrix identity(n, n);
  identity.setIdentity();
  expectNear(multiply(inverse, general), dense(identity), 1e-15);
}

TEST_P(PPMatrixAgainstReference, LowerNorm) {
  const PPMatrix a = operands.random(n, n);
  double expected = 0;
  for (int i = 1; i <= n; ++i) {
    for (int j = 1; j <= i; ++j) expected += std::fabs(a(i, j));
  }
  EXPECT_NEAR(lowerNorm(a), expected, 1e-12);
  PPMatrix d = operands.randomDiagonal(n);
  PPMatrix general = d;
  general.diagonal = false;
  EXPECT_EQ(lowerNorm(d), lowerNorm(general));
}

INSTANTIATE_TEST_SUITE_P(Sizes, PPMatrixAgainstReference, testing::Values(1, 2, 4, 7, 12, 20));

TEST(PPMatrix, IsAValueWithFixedCapacity) {
  PPMatrix m;
  EXPECT_EQ(m.rows, 1);
  EXPECT_EQ(m.cols, 1);
  EXPECT_FALSE(m.diagonal);
  EXPECT_FALSE(m.symmetric);
  EXPECT_EQ(m.capacity, 20);
  PPMatrix block(2, 2);
  block(1, 1) = 1;
  block(1, 2) = 2;
  block(2, 1) = 3;
  block(2, 2) = 4;
  PPMatrix big(4, 4);
  big.setIdentity();
  big.insertBlock(2, 3, block);
  EXPECT_FALSE(big.diagonal);
  expectNear(big, Dense{{1, 0, 0, 0}, {0, 1, 1, 2}, {0, 0, 3, 4}, {0, 0, 0, 1}}, 0);
  const PPMatrix copy = big;
  big.scale(2);
  EXPECT_EQ(copy(2, 4), 2);
  EXPECT_EQ(big(2, 4), 4);
}

}  // namespace
}  // namespace vuk::rgw::addon
