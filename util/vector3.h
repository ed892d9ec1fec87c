#pragma once
// Points, directions and scale factors. A plain value of three scalars.

#include <cmath>
#include <type_traits>

namespace vuk::util {

template <typename T>
struct Vector3 {
  T x = 0, y = 0, z = 0;

  constexpr Vector3() = default;
  constexpr Vector3(T vx, T vy, T vz) : x(vx), y(vy), z(vz) {}

  constexpr Vector3 operator+(const Vector3& o) const { return {x + o.x, y + o.y, z + o.z}; }
  constexpr Vector3 operator-(const Vector3& o) const { return {x - o.x, y - o.y, z - o.z}; }
  constexpr Vector3 operator-() const { return {-x, -y, -z}; }
  constexpr Vector3 operator*(T s) const { return {x * s, y * s, z * s}; }
  constexpr Vector3 operator/(T s) const { return {x / s, y / s, z / s}; }
  Vector3& operator+=(const Vector3& o) { return *this = *this + o; }
  Vector3& operator-=(const Vector3& o) { return *this = *this - o; }
  Vector3& operator*=(T s) { return *this = *this * s; }
  Vector3& operator/=(T s) { return *this = *this / s; }
  constexpr bool operator==(const Vector3& o) const { return x == o.x && y == o.y && z == o.z; }
  constexpr bool operator!=(const Vector3& o) const { return !(*this == o); }

  constexpr T Dot(const Vector3& o) const { return x * o.x + y * o.y + z * o.z; }
  constexpr Vector3 Cross(const Vector3& o) const {
    return {y * o.z - z * o.y, z * o.x - x * o.z, x * o.y - y * o.x};
  }
  T Length() const { return std::sqrt(Dot(*this)); }

  // A vector of length exactly 0 becomes (0, 1, 0): degenerate axes then
  // still give a usable rotation.
  Vector3& Normalize() {
    const T length = Length();
    if (length == 0) {
      *this = {0, 1, 0};
    } else {
      *this = *this / length;
    }
    return *this;
  }
  Vector3 Normalized() const { return Vector3(*this).Normalize(); }
};

template <typename T>
constexpr Vector3<T> operator*(T s, const Vector3<T>& v) {
  return v * s;
}

static_assert(sizeof(Vector3<double>) == 24, "saved histories store three doubles");
static_assert(std::is_trivially_copyable_v<Vector3<double>> && std::is_standard_layout_v<Vector3<double>>,
              "histories copy the bytes");

}  // namespace vuk::util
