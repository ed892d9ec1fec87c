#include "plugins/common/vehicle/ground/groundmeshtree.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace vuk::rgw::addon {
namespace {

// A node of more vertices than this is split where the triangles allow it.
constexpr std::size_t kLeafVertices = 29;
// An axis is not split when more triangles than this share of the node would
// land in both halves, nor when a half would get fewer than kFewestTriangles.
constexpr double kSharedLimit = 1.1;
constexpr std::size_t kFewestTriangles = 3;

double On(const Vector3& v, int axis) { return axis == 0 ? v.x : axis == 1 ? v.y : v.z; }

struct Box {
  Vector3 lower{std::numeric_limits<double>::max(), std::numeric_limits<double>::max(),
                std::numeric_limits<double>::max()};
  Vector3 upper{-std::numeric_limits<double>::max(), -std::numeric_limits<double>::max(),
                -std::numeric_limits<double>::max()};

  void Grow(const Vector3& p) {
    lower = {std::min(lower.x, p.x), std::min(lower.y, p.y), std::min(lower.z, p.z)};
    upper = {std::max(upper.x, p.x), std::max(upper.y, p.y), std::max(upper.z, p.z)};
  }
};

Box BoxOf(const Vector3* vertices, std::size_t count) {
  Box box;
  for (std::size_t i = 0; i < count; ++i) box.Grow(vertices[i]);
  return box;
}

// The corner of the node's box that a child takes: bit `axis` set is the
// upper half on that axis. A triangle goes to every child its box touches.
bool TouchesCorner(const Box& triangle, int corner, const bool split[3], const Vector3& middle) {
  for (int axis = 0; axis < 3; ++axis) {
    if (!split[axis]) continue;
    const bool upperHalf = (corner >> axis) & 1;
    if (upperHalf ? On(triangle.upper, axis) < On(middle, axis) : On(triangle.lower, axis) > On(middle, axis)) {
      return false;
    }
  }
  return true;
}

bool SegmentTouchesBox(const GroundRay& ray, const Vector3& lower, const Vector3& upper) {
  double nearest = 0, farthest = ray.length;
  for (int axis = 0; axis < 3; ++axis) {
    const double origin = On(ray.origin, axis), direction = On(ray.direction, axis);
    const double low = On(lower, axis), high = On(upper, axis);
    if (direction == 0) {
      if (origin < low || origin > high) return false;
      continue;
    }
    double enter = (low - origin) / direction, leave = (high - origin) / direction;
    if (enter > leave) std::swap(enter, leave);
    nearest = std::max(nearest, enter);
    farthest = std::min(farthest, leave);
    if (nearest > farthest) return false;
  }
  return true;
}

// Either side of the triangle counts; edges belong to both neighbours.
bool HitTriangle(const Vector3* corner, const GroundRay& ray, double& distance) {
  const Vector3 edge1 = corner[1] - corner[0], edge2 = corner[2] - corner[0];
  const Vector3 p = ray.direction.Cross(edge2);
  const double determinant = edge1.Dot(p);
  if (determinant == 0) return false;
  const double inverse = 1.0 / determinant;
  const Vector3 s = ray.origin - corner[0];
  const double u = s.Dot(p) * inverse;
  if (u < 0 || u > 1) return false;
  const Vector3 q = s.Cross(edge1);
  const double v = ray.direction.Dot(q) * inverse;
  if (v < 0 || u + v > 1) return false;
  distance = edge2.Dot(q) * inverse;
  return distance >= 0 && distance <= ray.length;
}

}  // namespace

GroundMeshTree::GroundMeshTree(const util::CMesh& mesh, const Matrix& pose) {
  std::vector<Vector3> soup;
  soup.reserve(mesh.faces.size());
  const auto vertexCount = static_cast<std::int64_t>(mesh.vertices.size());
  for (std::size_t face = 0; face + 2 < mesh.faces.size(); face += 3) {
    const std::int32_t* index = &mesh.faces[face];
    if (std::any_of(index, index + 3, [&](std::int32_t i) { return i < 0 || i >= vertexCount; })) continue;
    for (int k = 0; k < 3; ++k) soup.push_back(pose.TransformPoint(mesh.vertices[static_cast<std::size_t>(index[k])]));
  }
  if (soup.empty()) return;
  nodes_.resize(1);
  Build(0, soup);
}

void GroundMeshTree::Build(std::uint32_t index, const std::vector<Vector3>& soup) {
  const Box box = BoxOf(soup.data(), soup.size());
  nodes_[index].lower = box.lower;
  nodes_[index].upper = box.upper;
  const std::size_t triangles = soup.size() / 3;
  std::vector<Box> triangleBoxes;
  bool split[3] = {false, false, false};
  const Vector3 middle = (box.lower + box.upper) * 0.5;
  if (soup.size() > kLeafVertices) {
    triangleBoxes.reserve(triangles);
    for (std::size_t t = 0; t < triangles; ++t) triangleBoxes.push_back(BoxOf(&soup[3 * t], 3));
    for (int axis = 0; axis < 3; ++axis) {
      std::size_t lowerSide = 0, upperSide = 0;
      for (const Box& triangle : triangleBoxes) {
        if (On(triangle.lower, axis) <= On(middle, axis)) ++lowerSide;
        if (On(triangle.upper, axis) >= On(middle, axis)) ++upperSide;
      }
      // A half that keeps every triangle would repeat this node for ever.
      split[axis] = lowerSide + upperSide <= kSharedLimit * static_cast<double>(triangles) &&
                    lowerSide >= kFewestTriangles && upperSide >= kFewestTriangles && lowerSide < triangles &&
                    upperSide < triangles;
    }
  }
  if (!split[0] && !split[1] && !split[2]) {
    nodes_[index].firstVertex = static_cast<std::uint32_t>(vertices_.size());
    nodes_[index].vertexCount = static_cast<std::uint32_t>(soup.size());
    vertices_.insert(vertices_.end(), soup.begin(), soup.end());
    return;
  }
  std::vector<std::vector<Vector3>> children;
  children.reserve(8);
  for (int corner = 0; corner < 8; ++corner) {
    // An axis that isn't split has its lower half only.
    if ((!split[0] && (corner & 1)) || (!split[1] && (corner & 2)) || (!split[2] && (corner & 4))) continue;
    std::vector<Vector3> part;
    for (std::size_t t = 0; t < triangles; ++t) {
      if (TouchesCorner(triangleBoxes[t], corner, split, middle)) {
        part.insert(part.end(), &soup[3 * t], &soup[3 * t + 3]);
      }
    }
    if (!part.empty()) children.push_back(std::move(part));
  }
  const auto first = static_cast<std::uint32_t>(nodes_.size());
  nodes_[index].firstChild = first;
  nodes_[index].childCount = static_cast<std::uint32_t>(children.size());
  nodes_.resize(nodes_.size() + children.size());
  for (std::uint32_t i = 0; i < children.size(); ++i) Build(first + i, children[i]);
}

bool GroundMeshTree::Cast(const GroundRay& ray, GroundHit& hit) {
  return !nodes_.empty() && CastNode(nodes_.front(), ray, hit);
}

bool GroundMeshTree::CastNode(const Node& node, const GroundRay& ray, GroundHit& hit) const {
  if (!SegmentTouchesBox(ray, node.lower, node.upper)) return false;
  for (std::uint32_t v = node.firstVertex; v < node.firstVertex + node.vertexCount; v += 3) {
    const Vector3* corner = &vertices_[v];
    double distance = 0;
    if (HitTriangle(corner, ray, distance)) {
      hit.distance = distance;
      hit.normal = (corner[1] - corner[0]).Cross(corner[2] - corner[0]).Normalized();
      return true;
    }
  }
  for (std::uint32_t c = node.firstChild; c < node.firstChild + node.childCount; ++c) {
    if (CastNode(nodes_[c], ray, hit)) return true;
  }
  return false;
}

util::CMesh GroundPlaneMesh(double carLength) {
  const double scale = carLength / std::sqrt(3.0);
  util::CMesh quad;
  quad.vertices = {{1000 * scale, 0, 1000 * scale},
                   {1000 * scale, 0, -1000 * scale},
                   {-1000 * scale, 0, -1000 * scale},
                   {-1000 * scale, 0, 1000 * scale}};
  quad.faces = {0, 1, 2, 2, 3, 0};
  return quad;
}

}  // namespace vuk::rgw::addon
