#pragma once
// The 4x4 matrix of sixteen scalars. Elements 0-2, 4-6 and 8-10 are the
// images of the X, Y and Z axes, 12-14 the translation: column-major for
// column vectors.

#include <cmath>
#include <cstddef>
#include <type_traits>

#include "util/qtransform.h"
#include "util/quat.h"
#include "util/vector3.h"

namespace vuk::util {

template <typename T>
struct Matrix {
  T m[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

  static Matrix Zero() {
    Matrix zero;
    for (T& e : zero.m) e = 0;
    return zero;
  }

  T& operator[](std::size_t i) { return m[i]; }
  const T& operator[](std::size_t i) const { return m[i]; }
  bool operator==(const Matrix& o) const {
    for (int i = 0; i < 16; ++i) {
      if (m[i] != o.m[i]) return false;
    }
    return true;
  }
  bool operator!=(const Matrix& o) const { return !(*this == o); }

  // result = this applied after b: result(p) = this(b(p)). The inverse of a
  // parent multiplied with a child this way gives the child relative to it.
  void Multiply(Matrix& result, const Matrix& b) const {
    Matrix out = Zero();
    for (int j = 0; j < 4; ++j) {
      for (int i = 0; i < 4; ++i) {
        T sum = 0;
        for (int k = 0; k < 4; ++k) sum += m[4 * k + i] * b.m[4 * j + k];
        out.m[4 * j + i] = sum;
      }
    }
    result = out;
  }
  Matrix operator*(const Matrix& b) const {
    Matrix result;
    Multiply(result, b);
    return result;
  }

  // Divided by w' unless w' is exactly 0.
  Vector3<T> TransformPoint(const Vector3<T>& p) const {
    Vector3<T> out{p.x * m[0] + p.y * m[4] + p.z * m[8] + m[12], p.x * m[1] + p.y * m[5] + p.z * m[9] + m[13],
                   p.x * m[2] + p.y * m[6] + p.z * m[10] + m[14]};
    const T w = p.x * m[3] + p.y * m[7] + p.z * m[11] + m[15];
    if (w != 0) out = out / w;
    return out;
  }
  // A direction: no translation, no division. The vehicle tools' ground
  // contact takes ray directions into a surface's space with it.
  Vector3<T> TransformVector(const Vector3<T>& v) const {
    return {v.x * m[0] + v.y * m[4] + v.z * m[8], v.x * m[1] + v.y * m[5] + v.z * m[9],
            v.x * m[2] + v.y * m[6] + v.z * m[10]};
  }

  Vector3<T> Axis(int index) const { return {m[4 * index], m[4 * index + 1], m[4 * index + 2]}; }
  void SetAxis(int index, const Vector3<T>& axis) {
    m[4 * index] = axis.x;
    m[4 * index + 1] = axis.y;
    m[4 * index + 2] = axis.z;
  }
  Vector3<T> GetTranslation() const { return {m[12], m[13], m[14]}; }
  void SetTranslation(const Vector3<T>& t) {
    m[12] = t.x;
    m[13] = t.y;
    m[14] = t.z;
  }

  // The vehicle tools bring hit normals back by the transposed inverse, and
  // the airplane's drag is built in its body frame with it.
  Matrix Transposed() const {
    Matrix out;
    for (int r = 0; r < 4; ++r) {
      for (int c = 0; c < 4; ++c) out.m[4 * c + r] = m[4 * r + c];
    }
    return out;
  }

  // By cofactors; a determinant of exactly 0 gives the all-zero matrix.
  Matrix Inverse() const {
    const Cofactors c(*this);
    const T det = m[0] * c.inv[0] + m[1] * c.inv[4] + m[2] * c.inv[8] + m[3] * c.inv[12];
    Matrix out = Zero();
    if (det == 0) return out;
    for (int i = 0; i < 16; ++i) out.m[i] = c.inv[i] / det;
    return out;
  }

  // Rotation of q, not normalised first.
  static Matrix FromQuat(const Quat<T>& q) {
    const T x = q.x, y = q.y, z = q.z, w = q.w;
    Matrix r;
    r.m[0] = x * x - y * y - z * z + w * w;
    r.m[1] = 2 * (x * y + w * z);
    r.m[2] = 2 * (x * z - w * y);
    r.m[4] = 2 * (x * y - w * z);
    r.m[5] = y * y - x * x - z * z + w * w;
    r.m[6] = 2 * (y * z + w * x);
    r.m[8] = 2 * (x * z + w * y);
    r.m[9] = 2 * (y * z - w * x);
    r.m[10] = z * z - x * x - y * y + w * w;
    return r;
  }

  static Matrix FromPose(const QTransform<T>& pose) {
    Matrix r = FromQuat(pose.rotation);
    r.SetTranslation(pose.translation);
    return r;
  }

  // The rotation of any affine matrix, scaled or not; always with w >= 0.
  Quat<T> ToQuat() const {
    Matrix a = *this;
    for (int axis = 0; axis < 3; ++axis) a.SetAxis(axis, a.Axis(axis).Normalized());
    const T* e = a.m;
    const T wCase = std::fabs(1 + e[0] + e[5] + e[10]);
    const T xCase = std::fabs(1 + e[0] - e[5] - e[10]);
    const T yCase = std::fabs(1 - e[0] + e[5] - e[10]);
    const T zCase = std::fabs(1 - e[0] - e[5] + e[10]);
    Quat<T> q;
    if (xCase <= wCase && yCase <= wCase && zCase <= wCase) {
      const T s = 2 * std::sqrt(wCase);
      q = {(e[6] - e[9]) / s, (e[8] - e[2]) / s, (e[1] - e[4]) / s, s / 4};
    } else if (yCase <= xCase && zCase <= xCase) {
      const T s = 2 * std::sqrt(xCase);
      q = {s / 4, (e[4] + e[1]) / s, (e[2] + e[8]) / s, (e[6] - e[9]) / s};
    } else if (zCase > yCase) {
      const T s = 2 * std::sqrt(zCase);
      q = {(e[2] + e[8]) / s, (e[6] + e[9]) / s, s / 4, (e[1] - e[4]) / s};
    } else {
      const T s = 2 * std::sqrt(yCase);
      q = {(e[4] + e[1]) / s, s / 4, (e[6] + e[9]) / s, (e[8] - e[2]) / s};
    }
    q.Normalize();
    if (q.w < 0) q = -q;
    return q;
  }

  // Scale is lost. The flight and camera tools read node matrices into their
  // pose records with it.
  QTransform<T> ToPose() const { return {GetTranslation(), ToQuat()}; }

 private:
  // The adjugate (transposed cofactors), laid out as the inverse before the
  // division by the determinant.
  struct Cofactors {
    T inv[16];
    explicit Cofactors(const Matrix& matrix) {
      const T* a = matrix.m;
      inv[0] = a[5] * a[10] * a[15] - a[5] * a[11] * a[14] - a[9] * a[6] * a[15] + a[9] * a[7] * a[14] +
               a[13] * a[6] * a[11] - a[13] * a[7] * a[10];
      inv[4] = -a[4] * a[10] * a[15] + a[4] * a[11] * a[14] + a[8] * a[6] * a[15] - a[8] * a[7] * a[14] -
               a[12] * a[6] * a[11] + a[12] * a[7] * a[10];
      inv[8] = a[4] * a[9] * a[15] - a[4] * a[11] * a[13] - a[8] * a[5] * a[15] + a[8] * a[7] * a[13] +
               a[12] * a[5] * a[11] - a[12] * a[7] * a[9];
      inv[12] = -a[4] * a[9] * a[14] + a[4] * a[10] * a[13] + a[8] * a[5] * a[14] - a[8] * a[6] * a[13] -
                a[12] * a[5] * a[10] + a[12] * a[6] * a[9];
      inv[1] = -a[1] * a[10] * a[15] + a[1] * a[11] * a[14] + a[9] * a[2] * a[15] - a[9] * a[3] * a[14] -
               a[13] * a[2] * a[11] + a[13] * a[3] * a[10];
      inv[5] = a[0] * a[10] * a[15] - a[0] * a[11] * a[14] - a[8] * a[2] * a[15] + a[8] * a[3] * a[14] +
               a[12] * a[2] * a[11] - a[12] * a[3] * a[10];
      inv[9] = -a[0] * a[9] * a[15] + a[0] * a[11] * a[13] + a[8] * a[1] * a[15] - a[8] * a[3] * a[13] -
               a[12] * a[1] * a[11] + a[12] * a[3] * a[9];
      inv[13] = a[0] * a[9] * a[14] - a[0] * a[10] * a[13] - a[8] * a[1] * a[14] + a[8] * a[2] * a[13] +
                a[12] * a[1] * a[10] - a[12] * a[2] * a[9];
      inv[2] = a[1] * a[6] * a[15] - a[1] * a[7] * a[14] - a[5] * a[2] * a[15] + a[5] * a[3] * a[14] +
               a[13] * a[2] * a[7] - a[13] * a[3] * a[6];
      inv[6] = -a[0] * a[6] * a[15] + a[0] * a[7] * a[14] + a[4] * a[2] * a[15] - a[4] * a[3] * a[14] -
               a[12] * a[2] * a[7] + a[12] * a[3] * a[6];
      inv[10] = a[0] * a[5] * a[15] - a[0] * a[7] * a[13] - a[4] * a[1] * a[15] + a[4] * a[3] * a[13] +
                a[12] * a[1] * a[7] - a[12] * a[3] * a[5];
      inv[14] = -a[0] * a[5] * a[14] + a[0] * a[6] * a[13] + a[4] * a[1] * a[14] - a[4] * a[2] * a[13] -
                a[12] * a[1] * a[6] + a[12] * a[2] * a[5];
      inv[3] = -a[1] * a[6] * a[11] + a[1] * a[7] * a[10] + a[5] * a[2] * a[11] - a[5] * a[3] * a[10] -
               a[9] * a[2] * a[7] + a[9] * a[3] * a[6];
      inv[7] = a[0] * a[6] * a[11] - a[0] * a[7] * a[10] - a[4] * a[2] * a[11] + a[4] * a[3] * a[10] +
               a[8] * a[2] * a[7] - a[8] * a[3] * a[6];
      inv[11] = -a[0] * a[5] * a[11] + a[0] * a[7] * a[9] + a[4] * a[1] * a[11] - a[4] * a[3] * a[9] -
                a[8] * a[1] * a[7] + a[8] * a[3] * a[5];
      inv[15] = a[0] * a[5] * a[10] - a[0] * a[6] * a[9] - a[4] * a[1] * a[10] + a[4] * a[2] * a[9] +
                a[8] * a[1] * a[6] - a[8] * a[2] * a[5];
    }
  };
};

static_assert(sizeof(Matrix<double>) == 128, "a transform blob is 128 bytes");
static_assert(std::is_trivially_copyable_v<Matrix<double>>, "transform blobs copy the bytes");

}  // namespace vuk::util
