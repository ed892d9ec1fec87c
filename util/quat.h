#pragma once
// Rotations as quaternions, stored x, y, z, w. The product a * b applies a
// first and b second: the reverse of the matrix product, on purpose.

#include <cmath>
#include <type_traits>

#include "util/vector3.h"

namespace vuk::util {

template <typename T>
struct Quat {
  T x = 0, y = 0, z = 0, w = 1;

  constexpr Quat() = default;
  constexpr Quat(T qx, T qy, T qz, T qw) : x(qx), y(qy), z(qz), w(qw) {}

  static Quat FromAxisAngle(Vector3<T> axis, T angle) {
    const T s = std::sin(angle / 2);
    axis.Normalize();
    return {axis.x * s, axis.y * s, axis.z * s, std::cos(angle / 2)};
  }

  // The exponential of a rotation vector, as the airplane, missile and camera
  // tools integrate rotations. The axis is normalised unless the components
  // sum to exactly 0; the test on the sum, not on the length, is kept as saved
  // rigs depend on it.
  static Quat FromRotationVector(const Vector3<T>& v) {
    const T h = v.Length() / 2;
    const T s = std::sin(h);
    const Vector3<T> axis = (v.x + v.y + v.z == 0) ? v : v.Normalized();
    return {axis.x * s, axis.y * s, axis.z * s, std::cos(h)};
  }

  // a * b: the Hamilton product b (x) a, so a acts first.
  constexpr Quat operator*(const Quat& b) const {
    const Quat& a = *this;
    return {b.x * a.w + a.z * b.y - a.y * b.z + a.x * b.w, a.w * b.y - b.x * a.z + a.x * b.z + b.w * a.y,
            a.y * b.x - a.x * b.y + b.z * a.w + b.w * a.z, b.w * a.w - (a.x * b.x + a.y * b.y + a.z * b.z)};
  }
  Quat& operator*=(const Quat& b) { return *this = *this * b; }
  constexpr Quat operator-() const { return {-x, -y, -z, -w}; }
  constexpr bool operator==(const Quat& o) const { return x == o.x && y == o.y && z == o.z && w == o.w; }
  constexpr bool operator!=(const Quat& o) const { return !(*this == o); }

  constexpr T Dot(const Quat& o) const { return x * o.x + y * o.y + z * o.z + w * o.w; }
  T Norm() const { return std::sqrt(Dot(*this)); }
  // The inverse of a unit quaternion: the vehicle regulators and the camera
  // filters take rotations into a body's frame with it.
  constexpr Quat Conjugate() const { return {-x, -y, -z, w}; }

  // A zero quaternion becomes the identity.
  Quat& Normalize() {
    const T norm = Norm();
    if (norm == 0) {
      *this = Quat();
    } else {
      x /= norm;
      y /= norm;
      z /= norm;
      w /= norm;
    }
    return *this;
  }
  Quat Normalized() const { return Quat(*this).Normalize(); }

  // The image of v under this rotation (unit quaternion), as the matrix of
  // the quaternion maps it.
  constexpr Vector3<T> Rotate(const Vector3<T>& v) const {
    const Vector3<T> u{x, y, z};
    const Vector3<T> t = u.Cross(v) * T(2);
    return v + t * w + u.Cross(t);
  }

  // The shortest-arc rotation that turns the direction of from into that of
  // to. Opposite directions turn half a turn about an axis normal to from.
  static Quat FromTo(const Vector3<T>& from, const Vector3<T>& to) {
    const Vector3<T> a = from.Normalized();
    const Vector3<T> b = to.Normalized();
    const Vector3<T> c = a.Cross(b);
    // (a x b, 1 + a.b) is the half-angle rotation before normalising; it
    // vanishes only for opposite directions, where any normal axis will do.
    const Quat q{c.x, c.y, c.z, 1 + a.Dot(b)};
    if (q.Dot(q) > T(1e-24)) return q.Normalized();
    const Vector3<T> other = std::abs(a.x) < T(0.9) ? Vector3<T>{1, 0, 0} : Vector3<T>{0, 1, 0};
    const Vector3<T> axis = a.Cross(other).Normalized();
    return {axis.x, axis.y, axis.z, 0};
  }

  // The rotation vector (axis times angle, the angle in [0, pi]), the inverse
  // of FromRotationVector. q and -q give the same; the scale of q is ignored.
  Vector3<T> ToRotationVector() const {
    const Vector3<T> axis = w < 0 ? Vector3<T>{-x, -y, -z} : Vector3<T>{x, y, z};
    const T sine = axis.Length();
    if (sine == 0) return {};
    return axis * (Angle() / sine);
  }

  // The angle of this rotation in [0, pi], alike for q and -q. atan2 keeps
  // small angles exact where acos(w) would lose them.
  T Angle() const { return 2 * std::atan2(Vector3<T>{x, y, z}.Length(), std::abs(w)); }

  // The angle of the rotation that takes a to b.
  static T AngleBetween(const Quat& a, const Quat& b) { return (a.Conjugate() * b).Angle(); }

  // Spherical interpolation along the shorter arc.
  static Quat Slerp(const Quat& a, Quat b, T t) {
    T cosine = a.Dot(b);
    if (cosine < 0) {
      b = -b;
      cosine = -cosine;
    }
    T wa = 1 - t, wb = t;
    // Nearly equal rotations: the straight line is exact enough and stable.
    if (cosine < T(0.9999995)) {
      const T angle = std::acos(cosine);
      const T s = std::sin(angle);
      wa = std::sin((1 - t) * angle) / s;
      wb = std::sin(t * angle) / s;
    }
    return Quat{a.x * wa + b.x * wb, a.y * wa + b.y * wb, a.z * wa + b.z * wb, a.w * wa + b.w * wb}.Normalize();
  }
};

static_assert(sizeof(Quat<double>) == 32, "saved histories store four doubles");
static_assert(std::is_trivially_copyable_v<Quat<double>> && std::is_standard_layout_v<Quat<double>>,
              "histories copy the bytes");

}  // namespace vuk::util
