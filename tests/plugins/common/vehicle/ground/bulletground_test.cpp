// The Bullet world of the ground: its bodies as the tools build them, a
// broadphase that follows the surfaces, and animated surfaces that move.

#include <gtest/gtest.h>

#include "plugins/common/vehicle/ground/bulletground.h"
#include "scenes/terrain.h"

namespace vuk::rgw::addon {
namespace {

constexpr double kCarLength = 4.0;
constexpr double kGravity = 9.81;

Matrix At(const Vector3& translation) {
  Matrix pose;
  pose.SetTranslation(translation);
  return pose;
}

GroundRay Down(double x, double y, double z) { return {{x, y, z}, {0, -1, 0}, GroundRayLength(1.0, 0.35)}; }

TEST(BulletGround, BodiesAsTheToolsBuildThem) {
  const util::CMesh box = util::CMesh_Box(2, 4, 6);
  BulletGround ground({{"Rock", &box, At({1, 2, 3}), false}, {"Lift", &box, At({9, 0, 0}), true}}, kGravity,
                      kCarLength);
  ASSERT_EQ(ground.BodyCount(), 2u);
  const struct {
    const char* name;
    bool kinematic;
  } expected[] = {{"Dynamic_Rock", false}, {"Kinematic_Lift", true}};
  for (std::size_t i = 0; i < 2; ++i) {
    SCOPED_TRACE(expected[i].name);
    const btRigidBody& body = ground.Body(i);
    EXPECT_EQ(ground.BodyName(i), expected[i].name);
    EXPECT_EQ(body.getInvMass(), 0.0);
    EXPECT_EQ(body.getFriction(), 0.5);
    EXPECT_EQ(body.getRestitution(), 0.5);
    EXPECT_EQ(body.getBroadphaseHandle()->m_collisionFilterGroup, 2);
    EXPECT_EQ(body.getBroadphaseHandle()->m_collisionFilterMask, 3);
    EXPECT_EQ((body.getCollisionFlags() & btCollisionObject::CF_KINEMATIC_OBJECT) != 0, expected[i].kinematic);
    EXPECT_EQ(body.getActivationState() == DISABLE_DEACTIVATION, expected[i].kinematic);
  }
  EXPECT_NE(dynamic_cast<const btBvhTriangleMeshShape*>(ground.Body(0).getCollisionShape()), nullptr);
  EXPECT_NE(dynamic_cast<const btConvexTriangleMeshShape*>(ground.Body(1).getCollisionShape()), nullptr);
  EXPECT_EQ(ground.World().getSolverInfo().m_numIterations, 10);
  EXPECT_EQ(ground.World().getGravity().y(), -kGravity);
  // The static box stands in the world: its top is at 2 + 2.
  GroundHit hit;
  ASSERT_TRUE(ground.Cast(Down(1, 10, 3), hit));
  EXPECT_NEAR(hit.distance, 6.0, 1e-12);
}

TEST(BulletGround, TheStorageKeepsTheBoxVolume) {
  const triMeshStorage storage(util::CMesh_Box(2, 4, 6), false);
  EXPECT_NEAR(storage.volume(), 48.0, 1e-9);
}

TEST(BulletGround, AnAnimatedSurfaceMovesWithItsVelocities) {
  const util::CMesh box = util::CMesh_Box(2, 2, 2);
  BulletGround ground({{"Lift", &box, At({0, 0, 0}), true}}, kGravity, kCarLength);
  GroundHit hit;
  // Bullet's ray test against a convex shape converges only to about a
  // tenth of a metre on this box: a moving surface is found less exactly.
  ASSERT_TRUE(ground.Cast(Down(0, 10, 0), hit));
  const double before = hit.distance;
  EXPECT_NEAR(before, 9.0, 0.25);
  ground.MoveSurface(0, At({0, 3, 0}), At({0, 3.3, 0}), 0.1);
  ASSERT_TRUE(ground.Cast(Down(0, 10, 0), hit));
  EXPECT_NEAR(before - hit.distance, 3.0, 0.1);
  EXPECT_NEAR(ground.Body(0).getLinearVelocity().y(), 3.0, 1e-9);
  // Moved away, the old place is empty.
  ground.MoveSurface(0, At({50, 0, 0}), At({50, 0, 0}), 0.1);
  EXPECT_FALSE(ground.Cast(Down(0, 10, 0), hit));
  EXPECT_TRUE(ground.Cast(Down(50, 10, 0), hit));
}

// Bullet's usual broadphase ends at 1000 m. Beyond, the sweep clamps its
// boxes to the limits (rays still find the surface through the ray
// accelerator's own boxes): the limits must take the surfaces in.
TEST(BulletGround, TheBroadphaseTakesInFarSurfaces) {
  const util::CMesh terrain = scenes::RollingTerrain(40, 200);
  const Vector3 far{5000, 20, -5000};
  BulletGround ground({{"Ground", &terrain, At(far), false}}, kGravity, kCarLength);
  Vector3 lower, upper;
  ground.BroadphaseBounds(lower, upper);
  EXPECT_LT(lower.z, far.z - 100);
  EXPECT_GT(upper.x, far.x + 100);
  for (const auto& [dx, dz] : {std::pair{0.0, 0.0}, {60.0, -45.0}, {-90.0, 90.0}}) {
    GroundHit hit;
    ASSERT_TRUE(ground.Cast(Down(far.x + dx, 100, far.z + dz), hit)) << dx << ", " << dz;
    EXPECT_NEAR(100 - hit.distance, far.y + scenes::RollingHeight(dx, dz), 0.02);
  }
}

}  // namespace
}  // namespace vuk::rgw::addon
