#include "util/mesh.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <tuple>
#include <utility>

namespace vuk::util {
namespace {

using V = Vector3<double>;
constexpr double kTwoPi = 6.283185307179586;

// Closed, wound outward and textured sensibly: every edge is met by exactly
// two triangles running along it in opposite directions; for a convex solid
// around the origin each face's normal points away from it; texture
// coordinates lie in the unit square and no texture triangle is degenerate
// or mirrored against its face.
void ExpectWellFormed(const CMesh& mesh) {
  ASSERT_EQ(mesh.faces.size() % 3, 0u);
  ASSERT_EQ(mesh.textureFaces.size(), mesh.faces.size());
  std::map<std::pair<std::int32_t, std::int32_t>, int> edges;
  for (std::size_t f = 0; f < mesh.faces.size(); f += 3) {
    for (int k = 0; k < 3; ++k) {
      ASSERT_LT(static_cast<std::size_t>(mesh.faces[f + k]), mesh.vertices.size());
      ASSERT_LT(static_cast<std::size_t>(mesh.textureFaces[f + k]), mesh.textureVertices.size());
      ++edges[{mesh.faces[f + k], mesh.faces[f + (k + 1) % 3]}];
    }
    const V a = mesh.vertices[mesh.faces[f]], b = mesh.vertices[mesh.faces[f + 1]],
            c = mesh.vertices[mesh.faces[f + 2]];
    EXPECT_GT((b - a).Cross(c - a).Dot(a + b + c), 0) << "face " << f / 3;
    const V ta = mesh.textureVertices[mesh.textureFaces[f]], tb = mesh.textureVertices[mesh.textureFaces[f + 1]],
            tc = mesh.textureVertices[mesh.textureFaces[f + 2]];
    EXPECT_GT((tb - ta).Cross(tc - ta).z, 1e-6) << "texture face " << f / 3;
  }
  for (const auto& [edge, count] : edges) {
    EXPECT_EQ(count, 1) << edge.first << "-" << edge.second;
    EXPECT_EQ(edges.count({edge.second, edge.first}), 1u) << edge.first << "-" << edge.second;
  }
  for (const V& t : mesh.textureVertices) {
    EXPECT_TRUE(t.x >= 0 && t.x <= 1 && t.y >= 0 && t.y <= 1 && t.z == 0) << t.x << ", " << t.y;
  }
}

TEST(MeshBox, CornersGoXFirstThenYThenZUnderTwelveTriangles) {
  const CMesh_Box box(2, 4, 6);
  const V expected[8] = {{-1, -2, -3}, {1, -2, -3}, {-1, 2, -3}, {1, 2, -3},
                         {-1, -2, 3},  {1, -2, 3},  {-1, 2, 3},  {1, 2, 3}};
  ASSERT_EQ(box.vertices.size(), 8u);
  for (int i = 0; i < 8; ++i) EXPECT_EQ(box.vertices[i], expected[i]) << "corner " << i;
  EXPECT_EQ(box.faces.size(), 36u);
  ExpectWellFormed(box);
}

TEST(MeshCylinder, TwoRingsOnTheShortCircleWithCaps) {
  for (const int segments : {3, 4, 8, 12, 33}) {
    const CMesh_Cylinder cylinder(segments, 1.5, 3.0);
    ASSERT_GE(cylinder.vertices.size(), 2u * segments);
    for (int i = 0; i < segments; ++i) {
      const V& upper = cylinder.vertices[i];
      const V& lower = cylinder.vertices[segments + i];
      EXPECT_EQ(upper, V(lower.x, 1.5, lower.z));
      EXPECT_EQ(lower.y, -1.5);
      EXPECT_NEAR(std::hypot(upper.x, upper.z), 1.5, 1e-12);
      // Step i of a circle of 6.28318, not of two pi.
      const double angle = std::atan2(upper.x, upper.z);
      EXPECT_NEAR(angle < 0 ? angle + kTwoPi : angle, i * 6.28318 / segments, 1e-12);
    }
    // So the closing step, from the last point back to the first, is the
    // longest: longer than the others by the 5.3e-6 that 6.28318 lacks.
    const V& first = cylinder.vertices[0];
    EXPECT_GT((first - cylinder.vertices[segments - 1]).Length(), (cylinder.vertices[1] - first).Length());
    EXPECT_EQ(cylinder.faces.size(), 3u * 4u * segments);  // sides and caps, two triangles each per segment
    ExpectWellFormed(cylinder);
  }
  for (const int segments : {0, -4}) {  // no segments give an empty mesh
    const CMesh_Cylinder cylinder(segments, 1.0, 1.0);
    EXPECT_TRUE(cylinder.vertices.empty() && cylinder.faces.empty() && cylinder.textureFaces.empty());
  }
}

auto AllButVertices(const CMesh& mesh) { return std::tie(mesh.textureVertices, mesh.faces, mesh.textureFaces); }

TEST(MeshCopy, TransformingCopyMovesOnlyTheVertices) {
  // A quarter turn about Y (X goes to -Z, Z goes to X), then a move.
  Matrix<double> m;
  m.SetAxis(0, {0, 0, -1});
  m.SetAxis(2, {1, 0, 0});
  m.SetTranslation({10, 20, 30});
  const CMesh_Box box(2, 4, 6);
  const CMesh moved(box, m);
  EXPECT_EQ(moved.vertices[1], V(7, 18, 29));   // from (1, -2, -3)
  EXPECT_EQ(moved.vertices[6], V(13, 22, 31));  // from (-1, 2, 3)
  EXPECT_TRUE(AllButVertices(moved) == AllButVertices(box));
  EXPECT_EQ(box.vertices[1], V(1, -2, -3));  // the source is untouched
}

// Meshes with more to copy extend Assign; callers go through the base.
class TaggedMesh : public CMesh {
 public:
  void Assign(const CMesh& other) override {
    CMesh::Assign(other);
    ++assigned;
  }
  int assigned = 0;
};

TEST(MeshCopy, AssignIsVirtualAndReplacesAllFourArrays) {
  const CMesh_Cylinder cylinder(5, 1.0, 2.0);
  TaggedMesh target;
  target.faces = {0, 0, 0};
  static_cast<CMesh&>(target).Assign(cylinder);
  EXPECT_EQ(target.assigned, 1);
  EXPECT_EQ(target.vertices, cylinder.vertices);
  EXPECT_TRUE(AllButVertices(target) == AllButVertices(cylinder));
}

}  // namespace
}  // namespace vuk::util
