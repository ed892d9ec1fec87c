#include "plugins/common/vehicle/ground/hostsurfacecaster.h"

namespace vuk::rgw::addon {

void HostSurfaceCaster::Bind(CSnapshot_Mesh* mesh, const Matrix& world) {
  mesh_ = mesh;
  forward_ = world;
  inverse_ = world.Inverse();
  normalMatrix_ = inverse_.Transposed();
}

bool HostSurfaceCaster::Cast(const GroundRay& ray, GroundHit& hit) {
  if (!mesh_) return false;
  const Vector3 origin = inverse_.TransformPoint(ray.origin);
  const Vector3 direction = inverse_.TransformVector(ray.direction).Normalized();
  double localDistance = 0;
  Vector3 localNormal;
  if (!mesh_->IntersectRay(origin, direction, &localDistance, &localNormal)) return false;
  // The hit as a vector, measured in the world: the surface may be scaled.
  const double distance = forward_.TransformVector(direction * localDistance).Length();
  if (distance > ray.length) return false;
  hit.distance = distance;
  hit.normal = normalMatrix_.TransformVector(localNormal).Normalized();
  return true;
}

}  // namespace vuk::rgw::addon
