#pragma once
// A dense matrix of doubles with a fixed capacity of 20 x 20, held by value:
// the regulators build their models and gains on the stack, so nothing in a
// simulation step allocates. Indices run from 1, as in the textbook formulas
// the regulator code follows; row 0 and column 0 stay unused.
//
// Two flags are promises the operations consult: `diagonal` (only the
// diagonal is non-zero) selects short paths, `symmetric` tells that both
// triangles agree. Writing elements through operator() does not touch them.

namespace vuk::rgw::addon {

class PPMatrix {
 public:
  static constexpr int kCapacity = 20;

  explicit PPMatrix(int rowCount = 1, int colCount = 1);
  PPMatrix(const PPMatrix&) = default;
  PPMatrix& operator=(const PPMatrix&) = default;
  virtual ~PPMatrix() = default;

  double& operator()(int row, int col) { return data[row][col]; }
  double operator()(int row, int col) const { return data[row][col]; }

  // On the active size; setZero clears the flags, setIdentity sets both.
  void setZero();
  void setIdentity();
  void scale(double s);
  // Copies s to start at (row, col); the flags are cleared, since the block
  // may break them.
  void insertBlock(int row, int col, const PPMatrix& s);

  int rows;
  int cols;
  bool diagonal = false;
  bool symmetric = false;
  int capacity = kCapacity;
  double data[kCapacity + 1][kCapacity + 1];
};

PPMatrix multiply(const PPMatrix& a, const PPMatrix& b);
PPMatrix scale(double s, const PPMatrix& a);
PPMatrix add(const PPMatrix& a, const PPMatrix& b);
PPMatrix subtract(const PPMatrix& a, const PPMatrix& b);
PPMatrix transpose(const PPMatrix& a);
// a' a, symmetric.
PPMatrix transposeSquare(const PPMatrix& a);
// a' s a for a symmetric s: the lower triangle is computed and mirrored.
PPMatrix congruence(const PPMatrix& a, const PPMatrix& s);
// Element-wise reciprocal of the diagonal, flagged diagonal.
PPMatrix inverseDiagonal(const PPMatrix& a);
// a^-1 b for a general square a (elimination with partial pivoting).
PPMatrix inverseTimes(const PPMatrix& a, const PPMatrix& b);
// a^-1 b for a symmetric positive definite a (Cholesky).
PPMatrix inverseTimesSymmetric(const PPMatrix& a, const PPMatrix& b);
// The sum of the absolute values of the lower triangle and the diagonal.
double lowerNorm(const PPMatrix& a);

}  // namespace vuk::rgw::addon
