// The three ground casters against one terrain placed in the world: they
// find the same ground, and each finds it where the mesh is.

#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <string>

#include "adaptor/standalone/standaloneadaptorinterface.h"
#include "plugins/common/vehicle/ground/bulletground.h"
#include "plugins/common/vehicle/ground/groundmeshtree.h"
#include "plugins/common/vehicle/ground/hostsurfacecaster.h"
#include "scenes/terrain.h"
#include "tests/adaptor/testinstance.h"
#include "tests/support/allocationcount.h"

namespace vuk::rgw::addon {
namespace {

constexpr double kCarLength = 4.0;
constexpr double kGravity = 9.81;
constexpr int kCells = 60;
constexpr double kTerrainSize = 120.0;
const double kRayLength = GroundRayLength(1.0, 0.35);

struct Placement {
  std::string name;
  Vector3 translation;
  Vector3 axis;  // of the rotation
  double angle;
  double scale;

  Matrix Pose() const {
    Matrix pose = Matrix::FromQuat(util::Quat<double>::FromAxisAngle(axis, angle));
    for (int a = 0; a < 3; ++a) pose.SetAxis(a, pose.Axis(a) * scale);
    pose.SetTranslation(translation);
    return pose;
  }
};

// The terrain as the host holds it, stored in a tree, and in a Bullet world.
class GroundScene {
 public:
  GroundScene(const util::CMesh& terrain, const Matrix& pose)
      : tree(terrain, pose), bullet({{"Ground", &terrain, pose, false}}, kGravity, kCarLength), tool_("Car01") {
    node_ = adaptor_.CreateMeshNode(&tool_, "Ground", nullptr, terrain, 0);
    CSnapshot* transform = node_->GetSnapshot(0);
    transform->SetWorldTransform(pose);
    const Matrix world = transform->GetWorldTransform();
    node_->ReleaseSnapshot(transform);
    mesh_ = node_->GetMeshSnapshot(0);
    host.Bind(mesh_, world);
  }
  ~GroundScene() { node_->ReleaseMeshSnapshot(mesh_); }

  HostSurfaceCaster host;
  GroundMeshTree tree;
  BulletGround bullet;

 private:
  adaptor::standalone::StandaloneAdaptorInterface adaptor_;
  testing_support::TestInstance tool_;
  core::CoreNode* node_ = nullptr;
  CSnapshot_Mesh* mesh_ = nullptr;
};

GroundRay Down(const Vector3& above) { return {above, {0, -1, 0}, kRayLength}; }

class CastersOnTerrain : public testing::TestWithParam<Placement> {
 protected:
  CastersOnTerrain()
      : terrain(scenes::RollingTerrain(kCells, kTerrainSize)), pose(GetParam().Pose()), scene(terrain, pose) {}

  // A point straight above a point of the terrain's own space.
  Vector3 Above(double localX, double localZ) const {
    const Vector3 p = pose.TransformPoint({localX, 0, localZ});
    return {p.x, pose.GetTranslation().y + 200.0, p.z};
  }

  util::CMesh terrain;
  Matrix pose;
  GroundScene scene;
};

TEST_P(CastersOnTerrain, AgreeOnHeightAndNormal) {
  const Matrix inverse = pose.Inverse();
  int points = 0;
  // At least 0.05 m off every edge of the 2 m cells, where two triangles
  // would give two normals.
  for (double localX = -54.37; localX <= 55; localX += 9.21) {
    for (double localZ = -54.77; localZ <= 55; localZ += 8.41) {
      SCOPED_TRACE(testing::Message() << "local (" << localX << ", " << localZ << ")");
      const GroundRay ray = Down(Above(localX, localZ));
      GroundHit host, tree, bullet;
      ASSERT_TRUE(scene.host.Cast(ray, host));
      ASSERT_TRUE(scene.tree.Cast(ray, tree));
      ASSERT_TRUE(scene.bullet.Cast(ray, bullet));
      EXPECT_NEAR(tree.distance, host.distance, 1e-6 * kCarLength);
      EXPECT_NEAR(bullet.distance, host.distance, 1e-6 * kCarLength);
      for (const GroundHit* hit : {&host, &tree, &bullet}) {
        EXPECT_NEAR(hit->normal.Length(), 1.0, 1e-9);
        EXPECT_GT(hit->normal.y, 0.9);
        EXPECT_GT(hit->normal.Dot(host.normal), 1 - 1e-9);
      }
      // Back in the terrain's space the hit lies on the rolling surface,
      // within what the cells' flat triangles cut off.
      const Vector3 local = inverse.TransformPoint(ray.origin + ray.direction * host.distance);
      EXPECT_NEAR(local.y, scenes::RollingHeight(local.x, local.z), 0.02);
      ++points;
    }
  }
  EXPECT_GT(points, 100);
}

TEST_P(CastersOnTerrain, MissOffTheTerrain) {
  for (const auto& [localX, localZ] : {std::pair{70.0, 0.0}, {0.0, -70.0}, {-90.0, 90.0}, {65.0, 65.0}}) {
    SCOPED_TRACE(testing::Message() << "local (" << localX << ", " << localZ << ")");
    const GroundRay ray = Down(Above(localX, localZ));
    GroundHit hit;
    EXPECT_FALSE(scene.host.Cast(ray, hit));
    EXPECT_FALSE(scene.tree.Cast(ray, hit));
    EXPECT_FALSE(scene.bullet.Cast(ray, hit));
  }
}

TEST_P(CastersOnTerrain, AWarmCastAllocatesNothing) {
  const GroundRay ray = Down(Above(3, 4));
  GroundHit hit;
  for (GroundCaster* caster : std::initializer_list<GroundCaster*>{&scene.host, &scene.tree, &scene.bullet}) {
    ASSERT_TRUE(caster->Cast(ray, hit));
    const vuk::test::AllocationCount count;
    for (int i = 0; i < 100; ++i) caster->Cast(Down(Above(i * 0.5, -i * 0.3)), hit);
    EXPECT_EQ(count.Made(), 0u);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Placements, CastersOnTerrain,
    testing::Values(Placement{"Identity", {0, 0, 0}, {0, 1, 0}, 0, 1},
                    Placement{"Translated", {40, -3, -25}, {0, 1, 0}, 0, 1},
                    Placement{"Rotated", {0, 0, 0}, Vector3{0.2, 1, 0.1}.Normalized(), 0.6, 1},
                    Placement{"Scaled", {0, 0, 0}, {0, 1, 0}, 0, 2},
                    Placement{"AllThree", {40, -3, -25}, Vector3{0.2, 1, 0.1}.Normalized(), 0.6, 2}),
    [](const testing::TestParamInfo<Placement>& info) { return info.param.name; });

// With no surface the built-in plane carries the car, as far as its corners
// at 1000 x L / sqrt(3).
struct PlanePoint {
  double x, z;
  bool hit;
};

class PlaneFallback : public testing::TestWithParam<PlanePoint> {};

TEST_P(PlaneFallback, TheQuadAtZeroHeight) {
  GroundPlane plane(kCarLength);
  BulletGround bullet({}, kGravity, kCarLength);
  ASSERT_EQ(bullet.BodyCount(), 1u);
  EXPECT_EQ(bullet.BodyName(0), "DefaultGround");
  const GroundRay ray = Down({GetParam().x, 2.5, GetParam().z});
  for (GroundCaster* caster : std::initializer_list<GroundCaster*>{&plane, &bullet}) {
    GroundHit hit;
    ASSERT_EQ(caster->Cast(ray, hit), GetParam().hit);
    if (!GetParam().hit) continue;
    EXPECT_NEAR(hit.distance, 2.5, 1e-9);
    EXPECT_NEAR(hit.normal.x, 0, 1e-12);
    EXPECT_NEAR(hit.normal.y, 1, 1e-12);
    EXPECT_NEAR(hit.normal.z, 0, 1e-12);
  }
}

// 1000 x 4 / sqrt(3) = 2309.4 m.
INSTANTIATE_TEST_SUITE_P(Corners, PlaneFallback,
                         testing::Values(PlanePoint{0, 0, true}, PlanePoint{2000, -2000, true},
                                         PlanePoint{-2300, 2300, true}, PlanePoint{2320, 0, false},
                                         PlanePoint{0, -2320, false}));

TEST(GroundCasters, ASurfaceWithoutMeshIsNeverHit) {
  adaptor::standalone::StandaloneAdaptorInterface adaptor;
  testing_support::TestInstance tool("Car01");
  core::CoreNode* camera = adaptor.CreateCameraNode(&tool, "NotAMesh", nullptr, 0);
  CSnapshot_Mesh* noMesh = camera->GetMeshSnapshot(0);
  EXPECT_EQ(noMesh, nullptr);
  HostSurfaceCaster host;
  host.Bind(noMesh, Matrix());
  GroundMeshTree tree{util::CMesh(), Matrix()};
  // A surface is listed, so there is no plane either.
  BulletGround bullet({{"NotAMesh", nullptr, Matrix(), false}}, kGravity, kCarLength);
  EXPECT_EQ(bullet.BodyCount(), 0u);
  const GroundRay ray = Down({0, 1, 0});
  GroundHit hit;
  EXPECT_FALSE(host.Cast(ray, hit));
  EXPECT_FALSE(tree.Cast(ray, hit));
  EXPECT_FALSE(bullet.Cast(ray, hit));
}

}  // namespace
}  // namespace vuk::rgw::addon
