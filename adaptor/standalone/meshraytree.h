#pragma once
// Ray casts against a triangle mesh through a bounding-volume tree, built
// once and used for every ray until the mesh changes: per-frame ground
// contact casts many rays against the same ground.

#include <cstdint>
#include <vector>

#include "util/mesh.h"

namespace vuk::rgw::adaptor::standalone {

struct RayHit {
  double distance = 0;
  util::Vector3<double> normal;  // of the face, unit length, on the side the ray came from
};

class MeshRayTree {
 public:
  explicit MeshRayTree(const util::CMesh& mesh);

  // The nearest hit at a distance of at least 0 along the direction (in
  // units of the direction's length), or false.
  bool Intersect(const util::Vector3<double>& origin, const util::Vector3<double>& direction, RayHit& hit) const;

  std::size_t TriangleCount() const { return triangles_.size(); }

 private:
  struct Box {
    util::Vector3<double> min{1e300, 1e300, 1e300};
    util::Vector3<double> max{-1e300, -1e300, -1e300};
    void Grow(const util::Vector3<double>& p);
    void Grow(const Box& b);
    bool Hit(const util::Vector3<double>& origin, const util::Vector3<double>& inverse, double farthest) const;
  };
  struct Triangle {
    util::Vector3<double> a, b, c;
    util::Vector3<double> Centre() const { return (a + b + c) / 3.0; }
  };
  struct Node {
    Box box;
    std::uint32_t first = 0;  // leaf: first triangle; inner: the second child (the first follows this node)
    std::uint32_t count = 0;  // leaf: triangle count; 0 for an inner node
  };

  std::uint32_t Build(std::uint32_t first, std::uint32_t count);
  static bool HitTriangle(const Triangle& t, const util::Vector3<double>& origin, const util::Vector3<double>& direction,
                          double& distance);

  std::vector<Triangle> triangles_;
  std::vector<Node> nodes_;
};

}  // namespace vuk::rgw::adaptor::standalone
