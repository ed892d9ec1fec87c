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

  constexpr bool operator==(const QTransform& o) const { return translation == o.translation && rotation == o.rotation; }
  constexpr bool operator!=(const QTransform& o) const { return !(*this == o); }
};

static_assert(sizeof(QTransform<double>) == 56, "saved histories store seven doubles");
static_assert(std::is_trivially_copyable_v<QTransform<double>> && std::is_standard_layout_v<QTransform<double>>,
              "histories copy the bytes");

}  // namespace vuk::util
