#include "plugins/common/filterspring.h"

namespace vuk::rgw::addon {

namespace {

using Vector3 = util::Vector3<double>;
using Quat = util::Quat<double>;

constexpr int kRotationSubSteps = 10;

void LimitLength(Vector3& v, double maxLength) {
  const double length = v.Length();
  if (maxLength != 0.0 && length > maxLength) v *= maxLength / length;
}

}  // namespace

void filterSpringVector(Vector3& position, Vector3& velocity, const Vector3& target, double k, double d,
                        double maxVelocity, double dt) {
  if (k == 0.0) {
    position = target;
    return;
  }
  position += velocity * dt;
  velocity += ((target - position) * k - velocity * d) * dt;
  LimitLength(velocity, maxVelocity);
}

void filterSpringQuat(Quat& rotation, Vector3& angularVelocity, const Quat& target, double k, double d,
                      double maxVelocity, double dt) {
  if (k == 0.0) {
    rotation = target;
    return;
  }
  const double h = dt / kRotationSubSteps;
  for (int i = 0; i < kRotationSubSteps; ++i) {
    // q' = q (x) (w, 0) / 2: w turns the body about its own axes. (w, 0) * q
    // is that Hamilton product, as * applies its left operand first.
    const Vector3& w = angularVelocity;
    const Quat rate = Quat{w.x, w.y, w.z, 0} * rotation;
    rotation = {rotation.x + rate.x * h / 2, rotation.y + rate.y * h / 2, rotation.z + rate.z * h / 2,
                rotation.w + rate.w * h / 2};
    if (rotation.Dot(rotation) != 0) rotation.Normalize();
    // The error is taken in the same body frame as the velocity: q^-1 (x) g,
    // written g * q^-1. In the world frame it would push the wrong way once
    // the body has turned more than a quarter turn from the world axes.
    const Vector3 error = (target * rotation.Conjugate()).ToRotationVector();
    angularVelocity += (error * k - angularVelocity * d) * h;
    LimitLength(angularVelocity, maxVelocity);
  }
}

}  // namespace vuk::rgw::addon
