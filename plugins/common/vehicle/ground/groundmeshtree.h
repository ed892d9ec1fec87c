#pragma once
// The stored ground: a box tree over a mesh's triangles, put into the world
// once by the surface's matrix at the time it was stored. Also the built-in
// plane, a quad under the car when no surface exists.

#include <cstdint>
#include <vector>

#include "plugins/common/vehicle/ground/groundcaster.h"
#include "util/mesh.h"

namespace vuk::rgw::addon {

class GroundMeshTree : public GroundCaster {
 public:
  struct Node {
    Vector3 lower, upper;  // the box of the node's triangles
    std::uint32_t firstChild = 0, childCount = 0;
    std::uint32_t firstVertex = 0, vertexCount = 0;  // a leaf's triangles, three vertices each
  };

  GroundMeshTree(const util::CMesh& mesh, const Matrix& pose);

  // Depth first: the first leaf triangle hit wins, not the nearest; the
  // normal is the cross product of the triangle's two edges.
  bool Cast(const GroundRay& ray, GroundHit& hit) override;

  // The root comes first; empty for a mesh without triangles.
  const std::vector<Node>& Nodes() const { return nodes_; }
  const std::vector<Vector3>& LeafVertices() const { return vertices_; }

 private:
  void Build(std::uint32_t index, const std::vector<Vector3>& soup);
  bool CastNode(const Node& node, const GroundRay& ray, GroundHit& hit) const;

  std::vector<Node> nodes_;
  std::vector<Vector3> vertices_;
};

// The quad of the built-in ground, y = 0, its corners at 1000 scaled by
// carLength / sqrt(3) on X and Z.
util::CMesh GroundPlaneMesh(double carLength);

class GroundPlane : public GroundMeshTree {
 public:
  explicit GroundPlane(double carLength) : GroundMeshTree(GroundPlaneMesh(carLength), Matrix()) {}
};

}  // namespace vuk::rgw::addon
