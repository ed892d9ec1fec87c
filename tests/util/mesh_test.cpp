#include "util/mesh.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <utility>

#include "tests/util/geometryexpect.h"

namespace vuk::util {
namespace {

using testing_support::ExpectNear;

using V = Vector3<double>;
constexpr double kTwoPi = 6.283185307179586;

void ExpectIndicesInRange(const std::vector<std::int32_t>& indices, std::size_t count) {
  ASSERT_EQ(indices.size() % 3, 0u);
  for (std::int32_t index : indices) {
    EXPECT_GE(index, 0);
    EXPECT_LT(index, static_cast<std::int32_t>(count));
  }
}

// Every edge is met by exactly two triangles running along it in opposite
// directions: the surface is closed and consistently wound.
void ExpectClosedAndConsistent(const CMesh& mesh) {
  std::map<std::pair<std::int32_t, std::int32_t>, int> edges;
  for (std::size_t f = 0; f < mesh.faces.size(); f += 3) {
    for (int k = 0; k < 3; ++k) ++edges[{mesh.faces[f + k], mesh.faces[f + (k + 1) % 3]}];
  }
  for (const auto& [edge, count] : edges) {
    EXPECT_EQ(count, 1) << edge.first << "-" << edge.second;
    EXPECT_EQ(edges.count({edge.second, edge.first}), 1u) << edge.first << "-" << edge.second;
  }
}

// For a convex solid around the origin, a face wound outward has a normal
// pointing away from the origin.
void ExpectOutwardWinding(const CMesh& mesh) {
  for (std::size_t f = 0; f < mesh.faces.size(); f += 3) {
    const V a = mesh.vertices[mesh.faces[f]], b = mesh.vertices[mesh.faces[f + 1]],
            c = mesh.vertices[mesh.faces[f + 2]];
    const V normal = (b - a).Cross(c - a);
    EXPECT_GT(normal.Dot(a + b + c), 0) << "face " << f / 3;
  }
}

// Texture coordinates lie in the unit square, and no texture triangle is
// degenerate or mirrored against its face.
void ExpectSensibleTexture(const CMesh& mesh) {
  ASSERT_EQ(mesh.textureFaces.size(), mesh.faces.size());
  ExpectIndicesInRange(mesh.textureFaces, mesh.textureVertices.size());
  for (const V& t : mesh.textureVertices) {
    EXPECT_GE(t.x, 0.0);
    EXPECT_LE(t.x, 1.0);
    EXPECT_GE(t.y, 0.0);
    EXPECT_LE(t.y, 1.0);
    EXPECT_EQ(t.z, 0.0);
  }
  for (std::size_t f = 0; f < mesh.textureFaces.size(); f += 3) {
    const V a = mesh.textureVertices[mesh.textureFaces[f]], b = mesh.textureVertices[mesh.textureFaces[f + 1]],
            c = mesh.textureVertices[mesh.textureFaces[f + 2]];
    EXPECT_GT((b - a).Cross(c - a).z, 1e-6) << "texture face " << f / 3;
  }
}

TEST(MeshBox, CornersGoXFirstThenYThenZ) {
  const CMesh_Box box(2, 4, 6);
  const V expected[8] = {{-1, -2, -3}, {1, -2, -3}, {-1, 2, -3}, {1, 2, -3},
                         {-1, -2, 3},  {1, -2, 3},  {-1, 2, 3},  {1, 2, 3}};
  ASSERT_EQ(box.vertices.size(), 8u);
  for (int i = 0; i < 8; ++i) EXPECT_EQ(box.vertices[i], expected[i]) << "corner " << i;
}

TEST(MeshBox, TwelveTrianglesWithTextures) {
  const CMesh_Box box(2, 4, 6);
  EXPECT_EQ(box.faces.size(), 36u);
  EXPECT_EQ(box.textureFaces.size(), 36u);
  ExpectIndicesInRange(box.faces, box.vertices.size());
  ExpectSensibleTexture(box);
}

TEST(MeshBox, ClosedAndWoundOutward) {
  const CMesh_Box box(2, 4, 6);
  ExpectClosedAndConsistent(box);
  ExpectOutwardWinding(box);
  // The triangles cover the whole surface once: 2 (wh + hd + wd).
  double area = 0;
  for (std::size_t f = 0; f < box.faces.size(); f += 3) {
    const V a = box.vertices[box.faces[f]], b = box.vertices[box.faces[f + 1]], c = box.vertices[box.faces[f + 2]];
    area += (b - a).Cross(c - a).Length() / 2;
  }
  EXPECT_NEAR(area, 2 * (2 * 4 + 4 * 6 + 2 * 6), 1e-12);
}

TEST(MeshBox, ZeroSizeCollapsesToTheOrigin) {
  const CMesh_Box box(0, 0, 0);
  ASSERT_EQ(box.vertices.size(), 8u);
  for (const V& v : box.vertices) EXPECT_EQ(v, V(0, 0, 0));
  EXPECT_EQ(box.faces.size(), 36u);
}

class MeshCylinder : public testing::TestWithParam<int> {};

TEST_P(MeshCylinder, TwoRingsOnTheShortCircle) {
  const int segments = GetParam();
  const double radius = 1.5, height = 3.0;
  const CMesh_Cylinder cylinder(segments, radius, height);
  ASSERT_GE(cylinder.vertices.size(), 2u * segments);
  for (int i = 0; i < segments; ++i) {
    const V& upper = cylinder.vertices[i];
    const V& lower = cylinder.vertices[segments + i];
    EXPECT_EQ(upper.y, 1.5);
    EXPECT_EQ(lower.y, -1.5);
    EXPECT_NEAR(std::hypot(upper.x, upper.z), radius, 1e-12);
    EXPECT_EQ(upper.x, lower.x);
    EXPECT_EQ(upper.z, lower.z);
    // Step i of a circle of 6.28318, not of two pi.
    double angle = std::atan2(upper.x, upper.z);
    if (angle < 0) angle += kTwoPi;
    EXPECT_NEAR(angle, i * 6.28318 / segments, 1e-12);
  }
}

TEST_P(MeshCylinder, LastSegmentIsSlightlyShortOfAFullTurn) {
  const int segments = GetParam();
  const CMesh_Cylinder cylinder(segments, 1.0, 1.0);
  // The closing step, from the last point back to the first, is longer than
  // the others by the 5.3e-6 that 6.28318 lacks of two pi.
  const V& first = cylinder.vertices[0];
  const V& last = cylinder.vertices[segments - 1];
  double lastAngle = std::atan2(last.x, last.z);
  if (lastAngle < 0) lastAngle += kTwoPi;
  const double closing = kTwoPi - lastAngle;
  const double step = 6.28318 / segments;
  EXPECT_NEAR(closing - step, kTwoPi - 6.28318, 1e-12);
  EXPECT_GT(closing - step, 5e-6);
  EXPECT_GT((first - last).Length(), (cylinder.vertices[1] - first).Length());
}

TEST_P(MeshCylinder, ClosedOutwardAndTextured) {
  const int segments = GetParam();
  const CMesh_Cylinder cylinder(segments, 0.5, 2.0);
  EXPECT_EQ(cylinder.faces.size(), 3u * 4u * segments);  // sides and caps, two triangles each per segment
  ExpectIndicesInRange(cylinder.faces, cylinder.vertices.size());
  ExpectClosedAndConsistent(cylinder);
  ExpectOutwardWinding(cylinder);
  ExpectSensibleTexture(cylinder);
}

INSTANTIATE_TEST_SUITE_P(Mesh, MeshCylinder, testing::Values(3, 4, 8, 12, 33));

TEST(MeshCylinderDegenerate, NoSegmentsGiveAnEmptyMesh) {
  for (int segments : {0, -4}) {
    const CMesh_Cylinder cylinder(segments, 1.0, 1.0);
    EXPECT_TRUE(cylinder.vertices.empty());
    EXPECT_TRUE(cylinder.faces.empty());
    EXPECT_TRUE(cylinder.textureFaces.empty());
  }
}

TEST(MeshCopy, TransformingCopyMovesOnlyTheVertices) {
  // A quarter turn about Y (X goes to -Z, Z goes to X), then a move.
  Matrix<double> m;
  m.SetAxis(0, {0, 0, -1});
  m.SetAxis(2, {1, 0, 0});
  m.SetTranslation({10, 20, 30});
  const CMesh_Box box(2, 4, 6);
  const CMesh moved(box, m);
  ASSERT_EQ(moved.vertices.size(), 8u);
  // Corner 1 is (1, -2, -3): x 1 -> (0, 0, -1), z -3 -> (-3, 0, 0).
  ExpectNear(moved.vertices[1], {7, 18, 29});
  // Corner 6 is (-1, 2, 3).
  ExpectNear(moved.vertices[6], {13, 22, 31});
  EXPECT_EQ(moved.faces, box.faces);
  EXPECT_EQ(moved.textureVertices, box.textureVertices);
  EXPECT_EQ(moved.textureFaces, box.textureFaces);
  EXPECT_EQ(box.vertices[1], V(1, -2, -3));  // the source is untouched
  ExpectClosedAndConsistent(moved);
}

TEST(MeshCopy, AssignReplacesAllFourArrays) {
  const CMesh_Cylinder cylinder(5, 1.0, 2.0);
  CMesh_Box target(1, 1, 1);
  CMesh& asBase = target;
  asBase.Assign(cylinder);
  EXPECT_EQ(target.vertices, cylinder.vertices);
  EXPECT_EQ(target.textureVertices, cylinder.textureVertices);
  EXPECT_EQ(target.faces, cylinder.faces);
  EXPECT_EQ(target.textureFaces, cylinder.textureFaces);
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

TEST(MeshCopy, AssignIsVirtual) {
  TaggedMesh tagged;
  CMesh& asBase = tagged;
  asBase.Assign(CMesh_Box(1, 2, 3));
  EXPECT_EQ(tagged.assigned, 1);
  EXPECT_EQ(tagged.vertices.size(), 8u);
}

}  // namespace
}  // namespace vuk::util
