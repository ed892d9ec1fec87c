#pragma once
// The system's rigid pose: translation, then rotation. Its memory order is
// what saved histories hold.

#include <type_traits>

#include "util/quat.h"
#include "util/vector3.h"

namespace vuk::util {

template <typename T>
struct QTransform {
  Vector3<T> translation;
  Quat<T> rotation;

  constexpr QTransform() = default;
  constexpr QTransform(const Vector3<T>& t, const Quat<T>& r) : translation(t), rotation(r) {}

  constexpr Vector3<T> TransformPoint(const Vector3<T>& p) const { return rotation.Rotate(p) + translation; }

  // This pose followed by `then`: `then` applied to the result of this one
  // would read then(this(p)); rotations compose in the quaternion order.
  constexpr QTransform operator*(const QTransform& then) const {
    return {then.rotation.Rotate(translation) + then.translation, rotation * then.rotation};
  }

  constexpr QTransform Inverse() const {
    const Quat<T> inverse = rotation.Inverse();
    return {-inverse.Rotate(translation), inverse};
  }

  constexpr bool operator==(const QTransform& o) const { return translation == o.translation && rotation == o.rotation; }
  constexpr bool operator!=(const QTransform& o) const { return !(*this == o); }
};

static_assert(sizeof(QTransform<double>) == 56, "saved histories store seven doubles");
static_assert(std::is_trivially_copyable_v<QTransform<double>> && std::is_standard_layout_v<QTransform<double>>,
              "histories copy the bytes");

}  // namespace vuk::util
