#include "adaptor/standalone/meshraytree.h"

#include <algorithm>
#include <cmath>

namespace vuk::rgw::adaptor::standalone {

using util::Vector3;

namespace {

constexpr std::uint32_t kLeafSize = 4;
constexpr int kMaxStack = 64;

double Component(const Vector3<double>& v, int axis) { return axis == 0 ? v.x : axis == 1 ? v.y : v.z; }

}  // namespace

void MeshRayTree::Box::Grow(const Vector3<double>& p) {
  min = {std::min(min.x, p.x), std::min(min.y, p.y), std::min(min.z, p.z)};
  max = {std::max(max.x, p.x), std::max(max.y, p.y), std::max(max.z, p.z)};
}

void MeshRayTree::Box::Grow(const Box& b) {
  Grow(b.min);
  Grow(b.max);
}

bool MeshRayTree::Box::Hit(const Vector3<double>& origin, const Vector3<double>& inverse, double farthest) const {
  double near = 0, far = farthest;
  for (int axis = 0; axis < 3; ++axis) {
    const double o = Component(origin, axis), inv = Component(inverse, axis);
    double t0 = (Component(min, axis) - o) * inv;
    double t1 = (Component(max, axis) - o) * inv;
    if (std::isnan(t0) || std::isnan(t1)) {
      // A ray parallel to the slab, starting on its boundary plane.
      if (o < Component(min, axis) || o > Component(max, axis)) return false;
      continue;
    }
    if (t0 > t1) std::swap(t0, t1);
    near = std::max(near, t0);
    far = std::min(far, t1);
    if (near > far) return false;
  }
  return true;
}

MeshRayTree::MeshRayTree(const util::CMesh& mesh) {
  const auto vertexCount = static_cast<std::int64_t>(mesh.vertices.size());
  for (std::size_t f = 0; f + 2 < mesh.faces.size(); f += 3) {
    const std::int32_t i0 = mesh.faces[f], i1 = mesh.faces[f + 1], i2 = mesh.faces[f + 2];
    // Faces that point outside the vertex list are skipped, not trusted.
    if (i0 < 0 || i1 < 0 || i2 < 0 || i0 >= vertexCount || i1 >= vertexCount || i2 >= vertexCount) continue;
    triangles_.push_back({mesh.vertices[static_cast<std::size_t>(i0)], mesh.vertices[static_cast<std::size_t>(i1)],
                          mesh.vertices[static_cast<std::size_t>(i2)]});
  }
  if (triangles_.empty()) return;
  nodes_.reserve(2 * triangles_.size() / kLeafSize + 2);
  Build(0, static_cast<std::uint32_t>(triangles_.size()));
}

std::uint32_t MeshRayTree::Build(std::uint32_t first, std::uint32_t count) {
  const auto index = static_cast<std::uint32_t>(nodes_.size());
  nodes_.emplace_back();
  Box box, centres;
  for (std::uint32_t i = first; i < first + count; ++i) {
    box.Grow(triangles_[i].a);
    box.Grow(triangles_[i].b);
    box.Grow(triangles_[i].c);
    centres.Grow(triangles_[i].Centre());
  }
  nodes_[index].box = box;
  const Vector3<double> extent = centres.max - centres.min;
  const int axis = extent.x >= extent.y && extent.x >= extent.z ? 0 : (extent.y >= extent.z ? 1 : 2);
  if (count <= kLeafSize || Component(extent, axis) <= 0) {
    nodes_[index].first = first;
    nodes_[index].count = count;
    return index;
  }
  // Split at the median centre along the longest axis of the centres.
  const std::uint32_t half = count / 2;
  std::nth_element(triangles_.begin() + first, triangles_.begin() + first + half, triangles_.begin() + first + count,
                   [axis](const Triangle& l, const Triangle& r) {
                     return Component(l.Centre(), axis) < Component(r.Centre(), axis);
                   });
  Build(first, half);
  const std::uint32_t second = Build(first + half, count - half);
  nodes_[index].first = second;
  return index;
}

bool MeshRayTree::HitTriangle(const Triangle& t, const Vector3<double>& origin, const Vector3<double>& direction,
                              double& distance) {
  // Moller and Trumbore, both faces.
  const Vector3<double> edge1 = t.b - t.a, edge2 = t.c - t.a;
  const Vector3<double> p = direction.Cross(edge2);
  const double determinant = edge1.Dot(p);
  if (determinant == 0) return false;
  const double inverse = 1.0 / determinant;
  const Vector3<double> s = origin - t.a;
  const double u = s.Dot(p) * inverse;
  if (u < 0 || u > 1) return false;
  const Vector3<double> q = s.Cross(edge1);
  const double v = direction.Dot(q) * inverse;
  if (v < 0 || u + v > 1) return false;
  const double d = edge2.Dot(q) * inverse;
  if (d < 0) return false;
  distance = d;
  return true;
}

bool MeshRayTree::Intersect(const Vector3<double>& origin, const Vector3<double>& direction, RayHit& hit) const {
  if (nodes_.empty()) return false;
  const Vector3<double> inverse{1.0 / direction.x, 1.0 / direction.y, 1.0 / direction.z};
  double best = 1e300;
  const Triangle* bestTriangle = nullptr;
  std::uint32_t stack[kMaxStack];
  int top = 0;
  stack[top++] = 0;
  while (top > 0) {
    const Node& node = nodes_[stack[--top]];
    if (!node.box.Hit(origin, inverse, best)) continue;
    if (node.count > 0) {
      for (std::uint32_t i = node.first; i < node.first + node.count; ++i) {
        double distance = 0;
        if (HitTriangle(triangles_[i], origin, direction, distance) && distance < best) {
          best = distance;
          bestTriangle = &triangles_[i];
        }
      }
      continue;
    }
    const auto self = static_cast<std::uint32_t>(&node - nodes_.data());
    // Median splits keep the depth near log2 of the triangle count.
    if (top + 2 > kMaxStack) return false;
    stack[top++] = node.first;
    stack[top++] = self + 1;
  }
  if (!bestTriangle) return false;
  hit.distance = best;
  Vector3<double> normal = (bestTriangle->b - bestTriangle->a).Cross(bestTriangle->c - bestTriangle->a).Normalized();
  if (normal.Dot(direction) > 0) normal = -normal;
  hit.normal = normal;
  return true;
}

}  // namespace vuk::rgw::adaptor::standalone
