// How the stored ground's tree is built: when a node splits, along which
// axes, and where the triangles on a split go.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "plugins/common/vehicle/ground/groundmeshtree.h"

namespace vuk::rgw::addon {
namespace {

// Flat triangles one metre wide in a row along X, each starting at one of
// the given x; a triangle spans the row's middle when it starts just below it.
util::CMesh Row(const std::vector<double>& starts) {
  util::CMesh mesh;
  for (double x : starts) {
    const auto first = static_cast<std::int32_t>(mesh.vertices.size());
    mesh.vertices.insert(mesh.vertices.end(), {{x, 0, 0}, {x, 0, 1}, {x + 1, 0, 0}});
    mesh.faces.insert(mesh.faces.end(), {first, first + 1, first + 2});
  }
  return mesh;
}

std::vector<double> Spaced(int count, double from) {
  std::vector<double> starts;
  for (int i = 0; i < count; ++i) starts.push_back(from + 2 * i);
  return starts;
}

std::vector<double> Joined(std::vector<double> a, const std::vector<double>& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

struct TreeCase {
  std::string name;
  std::vector<double> starts;
  std::vector<std::uint32_t> leafTriangles;  // empty: the root stays one leaf
};

class TreeBuild : public testing::TestWithParam<TreeCase> {};

TEST_P(TreeBuild, SplitsAsTheRulesSay) {
  const TreeCase& c = GetParam();
  const GroundMeshTree tree(Row(c.starts), Matrix());
  const auto& nodes = tree.Nodes();
  ASSERT_FALSE(nodes.empty());
  if (c.leafTriangles.empty()) {
    ASSERT_EQ(nodes.size(), 1u);
    EXPECT_EQ(nodes[0].childCount, 0u);
    EXPECT_EQ(nodes[0].vertexCount, 3 * c.starts.size());
    return;
  }
  // Only X may split: every triangle lies at y = 0 and spans z = 0 to 1.
  ASSERT_EQ(nodes[0].childCount, c.leafTriangles.size());
  EXPECT_EQ(nodes[0].vertexCount, 0u);  // the parent keeps no triangle
  for (std::uint32_t i = 0; i < nodes[0].childCount; ++i) {
    const auto& child = nodes[nodes[0].firstChild + i];
    EXPECT_EQ(child.childCount, 0u);
    EXPECT_EQ(child.vertexCount, 3 * c.leafTriangles[i]);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Rules, TreeBuild,
    testing::Values(
        // 9 triangles are 27 vertices: no more than 29, one leaf.
        TreeCase{"TwentySevenVertices", Spaced(9, 0), {}},
        // 10 triangles, 5 on either side of x = 9.5.
        TreeCase{"ThirtyVertices", Spaced(10, 0), {5, 5}},
        // 5 + 5 and one across the middle, in both halves: 12 of 11 is within 1.1.
        TreeCase{"SpanningGoesToBoth", Joined(Spaced(10, 0), {9.0}), {6, 6}},
        // 4 + 4 and 2 across: 12 of 10 is more than 1.1 times, no split.
        TreeCase{"TooManySpanning", Joined(Joined(Spaced(4, 0), Spaced(4, 11)), {9.0, 9.0}), {}},
        // 8 + 2 about x = 21.5: a half with fewer than 3 triangles, no split.
        TreeCase{"FewerThanThreeOnOneSide", Joined(Spaced(8, 0), {40.0, 42.0}), {}}),
    [](const testing::TestParamInfo<TreeCase>& info) { return info.param.name; });

TEST(GroundMeshTree, TheSpanningTriangleIsInBothLeaves) {
  const GroundMeshTree tree(Row(Joined(Spaced(10, 0), {9.0})), Matrix());
  const auto& root = tree.Nodes()[0];
  ASSERT_EQ(root.childCount, 2u);
  for (std::uint32_t i = 0; i < 2; ++i) {
    const auto& leaf = tree.Nodes()[root.firstChild + i];
    int spanning = 0;
    for (std::uint32_t v = leaf.firstVertex; v < leaf.firstVertex + leaf.vertexCount; v += 3) {
      if (tree.LeafVertices()[v].x == 9.0 && tree.LeafVertices()[v + 2].x == 10.0) ++spanning;
    }
    EXPECT_EQ(spanning, 1) << "leaf " << i;
    // A child's box is that of its own triangles.
    EXPECT_EQ(leaf.lower.x, i == 0 ? 0.0 : 9.0);
    EXPECT_EQ(leaf.upper.x, i == 0 ? 10.0 : 19.0);
  }
}

TEST(GroundMeshTree, TheFirstHitInTreeOrderWins) {
  // Two floors over each other: the ray from above finds the one that
  // comes first in the tree, whichever is nearer.
  util::CMesh floors = Row(Spaced(9, 0));
  util::CMesh upper = Row(Spaced(9, 0));
  for (auto& v : upper.vertices) v.y = 5;
  const auto offset = static_cast<std::int32_t>(floors.vertices.size());
  floors.vertices.insert(floors.vertices.end(), upper.vertices.begin(), upper.vertices.end());
  for (std::int32_t f : upper.faces) floors.faces.push_back(f + offset);
  GroundMeshTree tree(floors, Matrix());
  GroundHit hit;
  ASSERT_TRUE(tree.Cast({{2.2, 10, 0.3}, {0, -1, 0}, 100}, hit));
  const double firstFloor = tree.LeafVertices()[0].y;
  EXPECT_DOUBLE_EQ(hit.distance, 10 - firstFloor);
  // Short of the floors: no hit.
  EXPECT_FALSE(tree.Cast({{2.2, 10, 0.3}, {0, -1, 0}, 4}, hit));
}

TEST(GroundMeshTree, TheNormalIsTheCrossProductOfTheEdges) {
  // Wound the other way, the triangle's normal points down.
  util::CMesh mesh;
  mesh.vertices = {{0, 0, 0}, {1, 0, 0}, {0, 0, 1}};
  mesh.faces = {0, 1, 2};
  GroundHit hit;
  ASSERT_TRUE(GroundMeshTree(mesh, Matrix()).Cast({{0.2, 1, 0.2}, {0, -1, 0}, 10}, hit));
  EXPECT_DOUBLE_EQ(hit.normal.y, -1.0);
  mesh.faces = {0, 2, 1};
  ASSERT_TRUE(GroundMeshTree(mesh, Matrix()).Cast({{0.2, 1, 0.2}, {0, -1, 0}, 10}, hit));
  EXPECT_DOUBLE_EQ(hit.normal.y, 1.0);
}

}  // namespace
}  // namespace vuk::rgw::addon
