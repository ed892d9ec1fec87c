#include "scenes/drivingscene.h"

#include <gtest/gtest.h>

#include "scenes/terrain.h"
#include "util/vector3.h"

namespace vuk::scenes {
namespace {

using Vector3 = util::Vector3<double>;

// Every face of the ramp looks away from its inside, so that a ray from
// above meets the slope from its front and a wheel climbs it.
TEST(RampMesh, EveryFaceLooksOutwards) {
  const util::CMesh ramp = RampMesh(4, 8, 1.2);
  Vector3 centre;
  for (const Vector3& v : ramp.vertices) centre += v / static_cast<double>(ramp.vertices.size());
  ASSERT_EQ(ramp.faces.size(), 18u);
  for (std::size_t f = 0; f < ramp.faces.size(); f += 3) {
    const Vector3& pa = ramp.vertices[static_cast<std::size_t>(ramp.faces[f])];
    const Vector3& pb = ramp.vertices[static_cast<std::size_t>(ramp.faces[f + 1])];
    const Vector3& pc = ramp.vertices[static_cast<std::size_t>(ramp.faces[f + 2])];
    const Vector3 normal = (pb - pa).Cross(pc - pa);
    EXPECT_GT(normal.Dot((pa + pb + pc) / 3.0 - centre), 0) << "face " << f / 3;
  }
}

TEST(RampMesh, RisesTowardsMinusZ) {
  const util::CMesh ramp = RampMesh(4, 8, 1.2);
  // The slope's two triangles face up and towards +Z, where a car comes from.
  const Vector3& a = ramp.vertices[0];
  const Vector3& b = ramp.vertices[1];
  const Vector3& c = ramp.vertices[2];
  const Vector3 normal = (b - a).Cross(c - a);
  EXPECT_GT(normal.y, 0);
  EXPECT_GT(normal.z, 0);
  EXPECT_DOUBLE_EQ(c.y, 1.2);
  EXPECT_DOUBLE_EQ(c.z, -8);
}

TEST(DrivingScene, TheTerrainHasTheSizeTheBenchmarksQuote) {
  const util::CMesh terrain = RollingTerrain(kDrivingTerrainCells, kDrivingTerrainSize);
  EXPECT_EQ(terrain.faces.size() / 3, 131072u);
  // Flat along x = 0, where the ramp stands and the cars start.
  for (double z = -100; z <= 100; z += 12.5) EXPECT_NEAR(RollingHeight(0, z), 0, 1e-12) << z;
}

}  // namespace
}  // namespace vuk::scenes
