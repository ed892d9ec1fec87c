#pragma once
// Damped springs that pull a position or a rotation towards a target: the
// motion filter cameras' second-order follow, with overshoot when lightly
// damped. Like the response filters they own no state: position, rotation
// and velocities live in the owner.

#include "util/quat.h"
#include "util/vector3.h"

namespace vuk::rgw::addon {

// One semi-implicit Euler step per frame: the position moves with the old
// velocity, then the velocity takes the spring (stiffness k) towards the
// target and the damping d. A stiffness of exactly 0 puts the position on the
// target and leaves the velocity alone. maxVelocity 0 means no limit.
void filterSpringVector(util::Vector3<double>& position, util::Vector3<double>& velocity,
                        const util::Vector3<double>& target, double k, double d, double maxVelocity, double dt);

// The same for a rotation, in ten equal sub-steps per frame. The angular
// velocity is in the rotation's own (body) frame, in radians per second.
void filterSpringQuat(util::Quat<double>& rotation, util::Vector3<double>& angularVelocity,
                      const util::Quat<double>& target, double k, double d, double maxVelocity, double dt);

}  // namespace vuk::rgw::addon
