#pragma once
// Where a wheel's ray meets the ground. Every caster takes a ray in the world
// and answers in the world, whatever space it keeps its surfaces in, so that
// the wheel logic is the same for the host, the stored tree, Bullet and the
// built-in plane.

#include "util/matrix.h"
#include "util/vector3.h"

namespace vuk::rgw::addon {

using Vector3 = util::Vector3<double>;
using Matrix = util::Matrix<double>;

struct GroundRay {
  Vector3 origin;
  Vector3 direction;  // unit length
  double length = 0;  // hits farther than this don't count
};

struct GroundHit {
  double distance = 0;  // from the origin along the ray, in world units
  Vector3 normal;       // unit length, in the world
};

class GroundCaster {
 public:
  virtual ~GroundCaster() = default;
  // True on a hit within the ray's length; the hit is left alone on a miss.
  virtual bool Cast(const GroundRay& ray, GroundHit& hit) = 0;
};

// The length of a wheel's ray: far enough below any car that a ground under
// it is always found, from the suspension length in radii and the radius.
inline double GroundRayLength(double suspensionLength, double radius) {
  return (suspensionLength + 1.0) * radius * 1000.0;
}

}  // namespace vuk::rgw::addon
