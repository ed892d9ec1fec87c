#pragma once
// The host's own ray cast against one surface's mesh, for one frame. The host
// answers in the surface's own space: the ray goes in through the inverse of
// the surface's matrix, and distance and normal come back to the world.

#include "plugins/common/vehicle/ground/groundcaster.h"
#include "sdk/csnapshot.h"

namespace vuk::rgw::addon {

class HostSurfaceCaster : public GroundCaster {
 public:
  // The surface's mesh at the frame's time, borrowed until the frame ends
  // (null for a surface that has no mesh: it is never hit), and its world
  // matrix at that time.
  void Bind(CSnapshot_Mesh* mesh, const Matrix& world);

  bool Cast(const GroundRay& ray, GroundHit& hit) override;

 private:
  CSnapshot_Mesh* mesh_ = nullptr;
  Matrix forward_;
  Matrix inverse_;
  Matrix normalMatrix_;  // the transposed inverse
};

}  // namespace vuk::rgw::addon
