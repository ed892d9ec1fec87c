// The 4-Wheeler on real ground: the surfaces linked through its gravity node,
// each caster the options choose, rim rays, and the options' messages.

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "tests/plugins/carextended/cartesting.h"

namespace vuk::rgw::addon {
namespace {

constexpr int kSettleFrames = 90;

double WheelRadius(const CCarCamObject& car, std::size_t wheel) {
  return car.cCarCam.wheels[wheel].radius * car.cCarCam.params.dWheelRadiusMult;
}

struct Resting {
  Caster caster;
  bool terrain;
};

class CarResting : public Car, public testing::WithParamInterface<Resting> {};

// Each wheel stands on the ground, none sunk into it by more than a
// fiftieth of its radius once the tyres have taken the ground up from where
// the rig stood them (two frames), and at the end the car has come to rest.
TEST_P(CarResting, KeepsEveryWheelOnTheGroundAndSettles) {
  const Resting& given = GetParam();
  if (given.terrain) {
    LinkGround(TestTerrain(), TerrainPose());
  } else {
    LinkGround(Floor(), Matrix());
  }
  Use(given.caster);
  Run(0, kSettleFrames, NoInput);
  EXPECT_TRUE(boxes.empty());
  const auto groundAt = [&given](const Vector& p) { return given.terrain ? TerrainHeight(p.x, p.z) : 0.0; };
  for (int k = 3; k <= kSettleFrames; ++k) {
    for (std::size_t i = 0; i < CCarCamObject::kWheels; ++i) {
      const Vector centre = tool.wheels[i].World(harness.TimeOf(k)).GetTranslation();
      const double r = WheelRadius(tool, i);
      ASSERT_GE(centre.y - groundAt(centre), r * 0.98) << "frame " << k << ", wheel " << i;
    }
  }
  for (const CarWheel& wheel : tool.cCarCam.wheels) EXPECT_FALSE(wheel.ground.inTheAir);
  const Vector last = BodyAt(kSettleFrames).GetTranslation(), before = BodyAt(kSettleFrames - 1).GetTranslation();
  EXPECT_LT((last - before).Length(), 1e-5 * tool.cCarCam.dLength);
}

INSTANTIATE_TEST_SUITE_P(Grounds, CarResting,
                         testing::Values(Resting{Caster::kHost, false}, Resting{Caster::kTree, false},
                                         Resting{Caster::kBullet, false}, Resting{Caster::kHost, true},
                                         Resting{Caster::kTree, true}, Resting{Caster::kBullet, true}),
                         [](const testing::TestParamInfo<Resting>& info) {
                           return std::string(NameOf(info.param.caster)) + (info.param.terrain ? "Terrain" : "Floor");
                         });

// The body's path through a driving take on the ground, frame by frame.
std::vector<Vector> DrivenPath(Caster caster, bool terrain) {
  struct Drive : Car {
    void TestBody() override {}
  } drive;
  drive.SetUp();
  if (terrain) drive.LinkGround(TestTerrain(), TerrainPose());
  drive.Use(caster);
  drive.Run(0, 90, DrivingTake);
  std::vector<Vector> path;
  for (int k = 0; k <= 90; ++k) path.push_back(drive.BodyAt(k).GetTranslation());
  drive.TearDown();
  return path;
}

class CarCasters : public testing::TestWithParam<bool> {};

// Bullet, the stored tree and the host's own ray cast find the same ground,
// on the terrain and on the built-in plane alike.
TEST_P(CarCasters, DriveTheSamePath) {
  const bool terrain = GetParam();
  const std::vector<Vector> bullet = DrivenPath(Caster::kBullet, terrain);
  const double length = 3.522;
  EXPECT_GT((bullet.back() - bullet.front()).Length(), length);
  for (Caster other : {Caster::kTree, Caster::kHost}) {
    if (!terrain && other == Caster::kTree) continue;  // no surface to store
    const std::vector<Vector> path = DrivenPath(other, terrain);
    for (std::size_t k = 0; k < path.size(); ++k) {
      ASSERT_NEAR((path[k] - bullet[k]).Length(), 0, 1e-6 * length) << NameOf(other) << ", frame " << k;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Grounds, CarCasters, testing::Bool(),
                         [](const testing::TestParamInfo<bool>& info) { return info.param ? "Terrain" : "Plane"; });

struct Stepping {
  Caster caster;
  std::int32_t rayMultiplier;
  bool liftsBeforeTheStep;
};

class CarStep : public Car, public testing::WithParamInterface<Stepping> {};

// A block a third of a wheel's radius high stands across the road ahead, a
// surface of its own below the gravity node. Rim rays see it coming: the
// front wheel rises before its centre is over the block. The centre ray
// alone finds it only once the centre is there.
TEST_P(CarStep, RimRaysLiftTheWheelBeforeItsCentreReachesTheStep) {
  const Stepping& given = GetParam();
  LinkGround(Floor(), Matrix());
  const double r = WheelRadius(tool, CCarCam::kFrontLeft);
  const double edge = tool.cCarCam.wheels[CCarCam::kFrontLeft].z - 0.3;
  Matrix blockPose;
  blockPose.SetTranslation({0, r / 6, edge - 5});
  AddGroundBelowGravity("Step", util::CMesh_Box(10, r / 3, 10), blockPose);
  Use(given.caster);
  tool.settings.iRayMultiplier = given.rayMultiplier;
  tool.settings.dDegreesPerRay = 5;
  Run(0, 150, [](CarInput channel, int) { return channel == pcInput_GAS_PEDAL ? 0.2 : 0.0; });
  const double rest = tool.wheels[CCarCam::kFrontLeft].World(harness.TimeOf(1)).GetTranslation().y;
  int lifted = 0;
  Vector centre;
  for (int k = 1; k <= 150 && !lifted; ++k) {
    centre = tool.wheels[CCarCam::kFrontLeft].World(harness.TimeOf(k)).GetTranslation();
    if (centre.y > rest + 0.01 * r) lifted = k;
  }
  ASSERT_GT(lifted, 1) << "the wheel never climbed the step";
  EXPECT_EQ(centre.z > edge, given.liftsBeforeTheStep) << "centre at " << centre.z << ", step at " << edge;
}

INSTANTIATE_TEST_SUITE_P(Rays, CarStep,
                         testing::Values(Stepping{Caster::kHost, 10, true}, Stepping{Caster::kHost, 1, false},
                                         Stepping{Caster::kBullet, 10, true}, Stepping{Caster::kBullet, 1, false}),
                         [](const testing::TestParamInfo<Stepping>& info) {
                           return std::string(NameOf(info.param.caster)) + std::to_string(info.param.rayMultiplier);
                         });

struct RayFan {
  std::int32_t rayMultiplier;
  double degreesPerRay;
  bool edges;
  std::size_t raysPerWheel;  // per surface: 1 + 3 x (2 n + 1) - 1 with edges, else 1 + 2 n
};

class CarRayCount : public Car, public testing::WithParamInterface<RayFan> {};

// One frame on two flat surfaces: each wheel casts its centre ray and its
// rim rays once per surface, the fan clamped short of the wheel's side.
TEST_P(CarRayCount, StaysWithinTheFanPerWheelAndSurface) {
  const RayFan& given = GetParam();
  LinkGround(Floor(), Matrix());
  Matrix below;
  below.SetTranslation({0, -1, 0});
  AddGroundBelowGravity("Below", Floor(), below);
  Use(Caster::kHost);
  tool.settings.iRayMultiplier = given.rayMultiplier;
  tool.settings.dDegreesPerRay = given.degreesPerRay;
  tool.settings.bCastRaysAtWheelEdges = given.edges;
  Run(0, 1, NoInput);
  EXPECT_EQ(tool.ground.RaysCast(), given.raysPerWheel * CCarCamObject::kWheels * 2);
}

INSTANTIATE_TEST_SUITE_P(Fans, CarRayCount,
                         testing::Values(RayFan{1, 2, true, 1}, RayFan{10, 2, true, 57}, RayFan{10, 2, false, 19},
                                         RayFan{10, 89, true, 9}, RayFan{4, 40, true, 15}));

// On the terrain the centre ray may take a second try where the ground rose
// above its start; the fan stays within its bound.
TEST_F(Car, CastsNoMoreThanTheFanOnTheTerrain) {
  LinkGround(TestTerrain(), TerrainPose());
  Use(Caster::kBullet);
  Run(0, 60, DrivingTake);
  EXPECT_LE(tool.ground.RaysCast(), 60u * CCarCamObject::kWheels * 57);
  EXPECT_GT(tool.ground.RaysCast(), 60u * CCarCamObject::kWheels);
}

struct OptionCase {
  std::string name;
  ObjectKind surface;  // kEmpty: none linked
  bool withTriangles;
  std::string message;  // empty: none
};

class CarStoreMesh : public Car, public testing::WithParamInterface<OptionCase> {};

TEST_P(CarStoreMesh, TakesThePrimarySurfaceOrSaysWhyNot) {
  const OptionCase& given = GetParam();
  if (given.surface != ObjectKind::kEmpty) {
    LinkGround(given.withTriangles ? Floor() : util::CMesh(), Matrix(), given.surface);
  }
  Use(Caster::kTree);
  EXPECT_EQ(boxes, given.message.empty() ? std::vector<std::string>{} : std::vector<std::string>{given.message});
  EXPECT_EQ(tool.settings.bStoreGroundMeshData, given.message.empty());
  EXPECT_EQ(tool.ground.HasStoredMesh(), given.message.empty());
}

INSTANTIATE_TEST_SUITE_P(Surfaces, CarStoreMesh,
                         testing::Values(OptionCase{"None", ObjectKind::kEmpty, false, "Error: No ground mesh available"},
                                         OptionCase{"Camera", ObjectKind::kCamera, false, "Error: Surface not a mesh"},
                                         OptionCase{"NoTriangles", ObjectKind::kMesh, false, "Error: Mesh Invalid"},
                                         OptionCase{"Floor", ObjectKind::kMesh, true, ""}),
                         [](const testing::TestParamInfo<OptionCase>& info) { return info.param.name; });

TEST_F(Car, TurningFastRayCastOffDropsTheStoredMesh) {
  LinkGround(Floor(), Matrix());
  tool.settings.bStoreGroundMeshData = true;
  tool.Changed(carpage::kStoreGroundMeshData);
  ASSERT_TRUE(tool.ground.HasStoredMesh());
  tool.settings.bUseFastRayCast = false;
  tool.Changed(carpage::kUseFastRayCast);
  EXPECT_FALSE(tool.settings.bStoreGroundMeshData);
  EXPECT_FALSE(tool.ground.HasStoredMesh());
}

// A surface that is no mesh can't go into Bullet: fast ray casting is
// cancelled for the host's own, with one ray per wheel.
TEST_F(Car, ASurfaceThatIsNoMeshCancelsFastRayCasting) {
  LinkGround(Floor(), Matrix());
  SceneNode* empty = AddSurface("Marker", {}, Matrix(), ObjectKind::kEmpty);
  harness.host.GetScene().SetParent(empty, HostOf(tool.gravity.handle), 0);
  Run(0, 10, NoInput);
  EXPECT_EQ(boxes, std::vector<std::string>{
                       "UNSUPPORTED SURFACE TYPE: Support for this kind of surface has not yet been implemented for "
                       "FAST RAYCAST for this adaptor. Fast raycast is therefore cancelled.\nContact support for more "
                       "information on this issue."});
  EXPECT_FALSE(tool.settings.bUseFastRayCast);
  EXPECT_EQ(tool.settings.iRayMultiplier, 1);
  for (const CarWheel& wheel : tool.cCarCam.wheels) EXPECT_FALSE(wheel.ground.inTheAir);
}

// A world with nothing in it finds no ground: the car falls.
TEST_F(Car, AWorldWithoutTrianglesIsNotCreatedAndTheCarFalls) {
  LinkGround(util::CMesh(), Matrix());
  Run(0, 10, NoInput);
  EXPECT_EQ(boxes, std::vector<std::string>{"Error: Physics World not created"});
  EXPECT_TRUE(tool.cCarCam.bCarInTheAir);
  EXPECT_LT(BodyAt(10).GetTranslation().y, BodyAt(0).GetTranslation().y);
}

// The stored mesh travels in the saved data, and a damaged one is refused.
TEST_F(Car, SavesAndLoadsTheStoredMesh) {
  LinkGround(TestTerrain(), TerrainPose());
  Use(Caster::kTree);
  Run(0, 10, DrivingTake);
  const testing_support::Bytes saved = harness.Save();
  tool.ground.ClearStoredMesh();
  harness.SetSaveData(saved);
  ASSERT_EQ(tool.Load(), 0);
  EXPECT_EQ(tool.ground.StoredMesh().faces, TestTerrain().faces);
  EXPECT_EQ(harness.Save(), saved);
  testing_support::Bytes damaged = saved;
  // The first face index of the mesh, past its two counts and vertices.
  const std::size_t vertices = TestTerrain().vertices.size();
  const std::string key = "cMesh_storedGroundMesh";
  const auto at = std::search(damaged.begin(), damaged.end(), key.begin(), key.end()) - damaged.begin();
  damaged[static_cast<std::size_t>(at) + key.size() + 8 + vertices * 24 + 3] = 0x7f;
  harness.SetSaveData(damaged);
  EXPECT_NE(tool.Load(), 0);
  EXPECT_EQ(harness.Save(), saved);
}

}  // namespace
}  // namespace vuk::rgw::addon
