#include "util/mesh.h"

#include <gtest/gtest.h>

#include <cmath>

namespace vuk::util {
namespace {

using V = Vector3<double>;

TEST(CMesh_Box, CornersGoXFirstThenYThenZ) {
  const CMesh_Box box(2, 4, 6);
  ASSERT_EQ(box.vertices.size(), 8u);
  EXPECT_EQ(box.vertices[0], V(-1, -2, -3));
  EXPECT_EQ(box.vertices[1], V(1, -2, -3));
  EXPECT_EQ(box.vertices[2], V(-1, 2, -3));
  EXPECT_EQ(box.vertices[7], V(1, 2, 3));
  EXPECT_EQ(box.faces.size(), 36u);
  EXPECT_EQ(box.textureFaces.size(), 36u);
}

TEST(CMesh_Box, FacesPointOutward) {
  const CMesh_Box box(1, 1, 1);
  for (std::size_t f = 0; f < box.faces.size(); f += 3) {
    const V a = box.vertices[box.faces[f]], b = box.vertices[box.faces[f + 1]], c = box.vertices[box.faces[f + 2]];
    const V normal = (b - a).Cross(c - a);
    const V centre = (a + b + c) / 3.0;
    EXPECT_GT(normal.Dot(centre), 0) << "face " << f / 3;
  }
}

TEST(CMesh_Box, ZeroSizeCollapsesToTheOrigin) {
  for (const V& v : CMesh_Box(0, 0, 0).vertices) EXPECT_EQ(v.LengthSquared(), 0.0);
}

TEST(CMesh_Cylinder, RingsAndTheShortCircle) {
  const int segments = 8;
  const CMesh_Cylinder cylinder(segments, 2.0, 1.0);
  for (int i = 0; i < segments; ++i) {
    EXPECT_DOUBLE_EQ(cylinder.vertices[i].y, 0.5);
    EXPECT_DOUBLE_EQ(cylinder.vertices[segments + i].y, -0.5);
    const V& v = cylinder.vertices[i];
    EXPECT_NEAR(std::hypot(v.x, v.z), 2.0, 1e-12);
  }
  // The last point stands at 7/8 of 6.28318, a little short of 7/8 of a turn.
  const double angle = 7 * 6.28318 / 8;
  EXPECT_EQ(cylinder.vertices[7].x, std::sin(angle) * 2.0);
  EXPECT_LT(angle, 7 * 2 * 3.141592653589793 / 8);
  for (std::int32_t index : cylinder.faces) {
    EXPECT_GE(index, 0);
    EXPECT_LT(index, static_cast<std::int32_t>(cylinder.vertices.size()));
  }
  EXPECT_EQ(cylinder.faces.size(), cylinder.textureFaces.size());
}

TEST(CMesh, TransformingCopyAndAssign) {
  Matrix<double> move;
  move.SetTranslation({10, 0, 0});
  const CMesh_Box box(2, 2, 2);
  const CMesh moved(box, move);
  EXPECT_EQ(moved.vertices[0], V(9, -1, -1));
  EXPECT_EQ(moved.faces, box.faces);
  CMesh target;
  target.Assign(moved);
  EXPECT_EQ(target.vertices, moved.vertices);
  EXPECT_EQ(target.textureFaces, moved.textureFaces);
}

}  // namespace
}  // namespace vuk::util
