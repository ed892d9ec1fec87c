#include "plugins/common/vehicle/ppmatrix.h"

#include <cmath>
#include <utility>

namespace vuk::rgw::addon {

PPMatrix::PPMatrix(int rowCount, int colCount) : rows(rowCount), cols(colCount), data{} {}

void PPMatrix::setZero() {
  for (int i = 1; i <= rows; ++i) {
    for (int j = 1; j <= cols; ++j) data[i][j] = 0;
  }
  diagonal = false;
  symmetric = false;
}

void PPMatrix::setIdentity() {
  setZero();
  for (int i = 1; i <= rows && i <= cols; ++i) data[i][i] = 1;
  diagonal = true;
  symmetric = true;
}

void PPMatrix::scale(double s) {
  for (int i = 1; i <= rows; ++i) {
    for (int j = 1; j <= cols; ++j) data[i][j] *= s;
  }
}

void PPMatrix::insertBlock(int row, int col, const PPMatrix& s) {
  for (int i = 1; i <= s.rows; ++i) {
    for (int j = 1; j <= s.cols; ++j) data[row + i - 1][col + j - 1] = s.data[i][j];
  }
  diagonal = false;
  symmetric = false;
}

PPMatrix multiply(const PPMatrix& a, const PPMatrix& b) {
  PPMatrix result(a.rows, b.cols);
  if (a.diagonal && b.diagonal) {
    for (int i = 1; i <= a.rows && i <= b.cols; ++i) result.data[i][i] = a.data[i][i] * b.data[i][i];
    result.diagonal = true;
    result.symmetric = true;
  } else if (a.diagonal) {
    for (int i = 1; i <= a.rows; ++i) {
      for (int j = 1; j <= b.cols; ++j) result.data[i][j] = a.data[i][i] * b.data[i][j];
    }
  } else if (b.diagonal) {
    for (int i = 1; i <= a.rows; ++i) {
      for (int j = 1; j <= b.cols; ++j) result.data[i][j] = a.data[i][j] * b.data[j][j];
    }
  } else {
    for (int i = 1; i <= a.rows; ++i) {
      for (int k = 1; k <= a.cols; ++k) {
        const double aik = a.data[i][k];
        for (int j = 1; j <= b.cols; ++j) result.data[i][j] += aik * b.data[k][j];
      }
    }
  }
  return result;
}

PPMatrix scale(double s, const PPMatrix& a) {
  PPMatrix result = a;
  result.scale(s);
  return result;
}

namespace {

// a + sign x b, element-wise, with the short paths of the diagonal flag.
PPMatrix combine(const PPMatrix& a, const PPMatrix& b, double sign) {
  PPMatrix result(a.rows, a.cols);
  if (a.diagonal && b.diagonal) {
    for (int i = 1; i <= a.rows && i <= a.cols; ++i) result.data[i][i] = a.data[i][i] + sign * b.data[i][i];
    result.diagonal = true;
  } else if (b.diagonal) {
    result = a;
    for (int i = 1; i <= a.rows && i <= a.cols; ++i) result.data[i][i] += sign * b.data[i][i];
  } else if (a.diagonal) {
    for (int i = 1; i <= a.rows; ++i) {
      for (int j = 1; j <= a.cols; ++j) result.data[i][j] = sign * b.data[i][j];
      if (i <= a.cols) result.data[i][i] += a.data[i][i];
    }
  } else {
    for (int i = 1; i <= a.rows; ++i) {
      for (int j = 1; j <= a.cols; ++j) result.data[i][j] = a.data[i][j] + sign * b.data[i][j];
    }
  }
  result.symmetric = (a.symmetric || a.diagonal) && (b.symmetric || b.diagonal);
  return result;
}

}  // namespace

PPMatrix add(const PPMatrix& a, const PPMatrix& b) { return combine(a, b, 1.0); }

PPMatrix subtract(const PPMatrix& a, const PPMatrix& b) { return combine(a, b, -1.0); }

PPMatrix transpose(const PPMatrix& a) {
  PPMatrix result(a.cols, a.rows);
  for (int i = 1; i <= a.rows; ++i) {
    for (int j = 1; j <= a.cols; ++j) result.data[j][i] = a.data[i][j];
  }
  result.diagonal = a.diagonal;
  result.symmetric = a.symmetric;
  return result;
}

PPMatrix transposeSquare(const PPMatrix& a) {
  PPMatrix identity(a.rows, a.rows);
  identity.setIdentity();
  return congruence(a, identity);
}

PPMatrix congruence(const PPMatrix& a, const PPMatrix& s) {
  const int n = a.cols;
  PPMatrix result(n, n);
  if (a.diagonal) {
    for (int i = 1; i <= n; ++i) {
      for (int j = 1; j <= i; ++j) result.data[i][j] = a.data[i][i] * s.data[i][j] * a.data[j][j];
    }
    result.diagonal = s.diagonal;
  } else if (s.diagonal) {
    for (int i = 1; i <= n; ++i) {
      for (int j = 1; j <= i; ++j) {
        double sum = 0;
        for (int k = 1; k <= a.rows; ++k) sum += a.data[k][i] * s.data[k][k] * a.data[k][j];
        result.data[i][j] = sum;
      }
    }
  } else {
    // s a first, then the lower triangle of a' (s a).
    const PPMatrix sa = multiply(s, a);
    for (int i = 1; i <= n; ++i) {
      for (int j = 1; j <= i; ++j) {
        double sum = 0;
        for (int k = 1; k <= a.rows; ++k) sum += a.data[k][i] * sa.data[k][j];
        result.data[i][j] = sum;
      }
    }
  }
  for (int i = 1; i <= n; ++i) {
    for (int j = 1; j < i; ++j) result.data[j][i] = result.data[i][j];
  }
  result.symmetric = true;
  return result;
}

PPMatrix inverseDiagonal(const PPMatrix& a) {
  PPMatrix result(a.rows, a.cols);
  for (int i = 1; i <= a.rows && i <= a.cols; ++i) result.data[i][i] = 1.0 / a.data[i][i];
  result.diagonal = true;
  result.symmetric = true;
  return result;
}

namespace {

// b divided row by row by the diagonal of a.
PPMatrix divideByDiagonal(const PPMatrix& a, const PPMatrix& b) {
  PPMatrix result(b.rows, b.cols);
  for (int i = 1; i <= b.rows; ++i) {
    for (int j = 1; j <= b.cols; ++j) result.data[i][j] = b.data[i][j] / a.data[i][i];
  }
  result.diagonal = b.diagonal;
  return result;
}

}  // namespace

PPMatrix inverseTimes(const PPMatrix& a, const PPMatrix& b) {
  if (a.diagonal) return divideByDiagonal(a, b);
  const int n = a.rows;
  PPMatrix lu = a;
  PPMatrix x = b;
  x.diagonal = false;
  x.symmetric = false;
  for (int col = 1; col <= n; ++col) {
    int pivot = col;
    for (int i = col + 1; i <= n; ++i) {
      if (std::fabs(lu.data[i][col]) > std::fabs(lu.data[pivot][col])) pivot = i;
    }
    if (pivot != col) {
      for (int j = 1; j <= n; ++j) std::swap(lu.data[col][j], lu.data[pivot][j]);
      for (int j = 1; j <= x.cols; ++j) std::swap(x.data[col][j], x.data[pivot][j]);
    }
    for (int i = col + 1; i <= n; ++i) {
      const double factor = lu.data[i][col] / lu.data[col][col];
      for (int j = col; j <= n; ++j) lu.data[i][j] -= factor * lu.data[col][j];
      for (int j = 1; j <= x.cols; ++j) x.data[i][j] -= factor * x.data[col][j];
    }
  }
  for (int i = n; i >= 1; --i) {
    for (int j = 1; j <= x.cols; ++j) {
      double sum = x.data[i][j];
      for (int k = i + 1; k <= n; ++k) sum -= lu.data[i][k] * x.data[k][j];
      x.data[i][j] = sum / lu.data[i][i];
    }
  }
  return x;
}

PPMatrix inverseTimesSymmetric(const PPMatrix& a, const PPMatrix& b) {
  if (a.diagonal) return divideByDiagonal(a, b);
  const int n = a.rows;
  // a = l l', l lower triangular; then l y = b and l' x = y.
  PPMatrix l(n, n);
  for (int j = 1; j <= n; ++j) {
    double d = a.data[j][j];
    for (int k = 1; k < j; ++k) d -= l.data[j][k] * l.data[j][k];
    l.data[j][j] = std::sqrt(d);
    for (int i = j + 1; i <= n; ++i) {
      double sum = a.data[i][j];
      for (int k = 1; k < j; ++k) sum -= l.data[i][k] * l.data[j][k];
      l.data[i][j] = sum / l.data[j][j];
    }
  }
  PPMatrix x = b;
  x.diagonal = false;
  x.symmetric = false;
  for (int c = 1; c <= x.cols; ++c) {
    for (int i = 1; i <= n; ++i) {
      double sum = x.data[i][c];
      for (int k = 1; k < i; ++k) sum -= l.data[i][k] * x.data[k][c];
      x.data[i][c] = sum / l.data[i][i];
    }
    for (int i = n; i >= 1; --i) {
      double sum = x.data[i][c];
      for (int k = i + 1; k <= n; ++k) sum -= l.data[k][i] * x.data[k][c];
      x.data[i][c] = sum / l.data[i][i];
    }
  }
  return x;
}

double lowerNorm(const PPMatrix& a) {
  double sum = 0;
  for (int i = 1; i <= a.rows; ++i) {
    const int last = a.diagonal ? i : (i < a.cols ? i : a.cols);
    for (int j = a.diagonal ? i : 1; j <= last; ++j) sum += std::fabs(a.data[i][j]);
  }
  return sum;
}

}  // namespace vuk::rgw::addon
