#include "plugins/carextended/carextendedobject.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "scenes/drivingscene.h"
#include "tests/plugins/carextended/cartesting.h"

namespace vuk::rgw::addon {
namespace {

using testing_support::Keys;
using testing_support::ToolHarness;

constexpr char kNonUniformBody[] =
    "Nonuniform scaling is not allowed on the body since it would affect children.\nThe 4-wheeler body will now "
    "rescale to become uniform.\nWhen scaling only the length of the dummy is of importance.\nModify the shape by "
    "editing the mesh.";
constexpr char kWheelsDisplaced[] =
    "In the rigging process the wheels should be moved and scaled with the WheelRelocatorMesh:es.\nUse the "
    "WheelCenterMesh:es for suspension and particles.";

TEST_F(Car, IsAVehicleWithItsNodesInCreationOrder) {
  CCameraPlugin& plugin = *harness.Instance().GetToolPlugin();
  EXPECT_EQ(plugin.GetName(), "4WheelerExt");
  EXPECT_EQ(plugin.GetPath(), "carextended");
  EXPECT_EQ(plugin.GetTitle(), "Quoll 4-Wheeler Extended");
  EXPECT_EQ(plugin.GetCategory(), "Vehicle");
  std::vector<std::string> aliases;
  plugin.Extension(extension::kAliases, &aliases);
  EXPECT_EQ(aliases, std::vector<std::string>{"CarExtended"});
  std::vector<std::string> expected = {"CarBodyMesh", "CarBodyBaseMesh", "ChassisRelocatorMesh"};
  for (const char* suffix : {"_FL", "_FR", "_BL", "_BR"}) {
    for (const char* name : {"WheelRelocatorMesh", "WheelMesh", "WheelCenterMesh", "WheelCenterSuspensionMesh"}) {
      expected.push_back(std::string(name) + suffix);
    }
  }
  expected.insert(expected.end(), {"SteeringWheelMesh", "TargetMesh", "GravityDirectionMesh", "ExternalForceMesh",
                                   "TurnBaseMesh", "DriverCam", "FollowCam", "TopViewCam"});
  std::vector<std::string> names;
  for (CNode* node : harness.ToolNodes()) names.push_back(node->name);
  EXPECT_EQ(names, expected);
  // The cameras start hidden, the helpers shown.
  EXPECT_FALSE(tool.followCam.handle->IsVisible());
  EXPECT_TRUE(tool.target.handle->IsVisible());
}

struct BodyScale {
  Vector scale;
  bool warns;
};

class CarRig : public Car, public testing::WithParamInterface<BodyScale> {};

// The relocators ride on the body, so a body scaled as a whole scales the rig.
TEST_P(CarRig, ABodyScaledUnevenlyWarnsAndBecomesUniform) {
  const BodyScale& given = GetParam();
  Matrix pose = BodyAt(0);
  const double scale[3] = {given.scale.x, given.scale.y, given.scale.z};
  for (int axis = 0; axis < 3; ++axis) pose.SetAxis(axis, pose.Axis(axis).Normalized() * scale[axis]);
  tool.body.Transform(0)->SetWorldTransform(pose);
  Run(0, 1, [](CarInput, int) { return 0.0; });
  EXPECT_EQ(Warned(kNonUniformBody), given.warns);
  const Matrix measured = BodyAt(0);
  for (int axis = 0; axis < 3; ++axis) EXPECT_NEAR(measured.Axis(axis).Length(), given.scale.z, 1e-12) << axis;
  EXPECT_DOUBLE_EQ(tool.cCarCam.dLength, given.scale.z);
  // The default rig at this length: its wheels and ride height in proportion.
  const double ratio = given.scale.z / 3.522;
  EXPECT_NEAR(tool.cCarCam.wheels[CCarCam::kFrontRight].x, 0.64 * ratio, 1e-9);
  EXPECT_NEAR(tool.cCarCam.wheels[CCarCam::kBackLeft].z, 1.044 * ratio, 1e-9);
  EXPECT_NEAR(tool.cCarCam.wheels[CCarCam::kBackLeft].radius, 0.26 * ratio, 1e-9);
}

INSTANTIATE_TEST_SUITE_P(Scales, CarRig,
                         testing::Values(BodyScale{{2, 2, 2}, false}, BodyScale{{2, 2, 2.1}, true},
                                         BodyScale{{3.522, 3.6, 3.522}, true}));

TEST_F(Car, MeasuresTheDefaultRigAndWarnsOfAWheelMovedOffItsRelocator) {
  Run(0, 1, [](CarInput, int) { return 0.0; });
  EXPECT_TRUE(boxes.empty());
  EXPECT_NEAR(tool.cCarCam.dRideHeight, 0.15, 1e-12);
  EXPECT_NEAR(tool.cCarCam.wheels[CCarCam::kFrontLeft].z, -1.05, 1e-12);
  Matrix wheel = tool.wheels[0].World(0);
  wheel.SetTranslation(wheel.GetTranslation() + Vector(0, 0, 0.1));
  tool.wheels[0].Transform(0)->SetWorldTransform(wheel);
  Run(0, 1, [](CarInput, int) { return 0.0; });
  EXPECT_EQ(boxes, std::vector<std::string>{std::string("Warning: ") + kWheelsDisplaced});
}

// Without input the car keeps still on the plane, every wheel on the ground.
TEST_F(Car, ACarAtRestOnThePlaneStaysAtRest) {
  const Matrix start = BodyAt(0);
  Run(0, 90, [](CarInput, int) { return 0.0; });
  for (int k = 1; k <= 90; ++k) {
    const Matrix body = BodyAt(k);
    ASSERT_NEAR((body.GetTranslation() - start.GetTranslation()).Length(), 0, 1e-6 * tool.cCarCam.dLength) << k;
    ASSERT_NEAR(Matrix::FromQuat(body.ToQuat()).Axis(1).y, 1.0, 1e-9) << k;
  }
  for (const CarWheel& wheel : tool.cCarCam.wheels) {
    EXPECT_FALSE(wheel.ground.inTheAir);
    EXPECT_NEAR(wheel.ground.hitPoint.y, 0, 1e-12);
  }
}

TEST_F(Car, DrivingFromATakeMovesItForwardOnTheGround) {
  Run(0, 90, [](CarInput channel, int) { return channel == pcInput_GAS_PEDAL ? 1.0 : 0.0; });
  // The car's front is its minus Z, which at the start is the world's. The
  // gas pedal's slow response lets it gather speed gently.
  for (int k = 1; k <= 90; ++k) {
    const Vector from = BodyAt(k - 1).GetTranslation(), to = BodyAt(k).GetTranslation();
    ASSERT_LT(to.z, from.z) << k;
    ASSERT_NEAR(to.x, from.x, 1e-9) << k;
    ASSERT_NEAR(to.y, BodyAt(0).GetTranslation().y, 0.01 * tool.cCarCam.dLength) << k;
  }
  EXPECT_LT(BodyAt(90).GetTranslation().z, BodyAt(0).GetTranslation().z - tool.cCarCam.dLength);
  const double top = tool.GaugeValue(CCarCamObject::kVelocity);
  EXPECT_NEAR(top, tool.cCarCam.dLength * 3.6 * tool.cCarCam.inputs[pcInput_GAS_PEDAL].value, 1e-9);
  EXPECT_GT(top, 0);
  // Scrubbed back, the gauge shows the speed the car had then.
  tool.TimeChanged(harness.TimeOf(1));
  EXPECT_GT(tool.GaugeValue(CCarCamObject::kVelocity), 0);
  EXPECT_LT(tool.GaugeValue(CCarCamObject::kVelocity), top);
  for (std::size_t gauge = CCarCamObject::kFirstWheelInTheAir; gauge < CCarCamObject::kGaugeCount; ++gauge) {
    EXPECT_EQ(tool.GaugeValue(gauge), 0.0) << gauge;
  }
}

// The gravity node rides above the car; a surface hung below it is ground,
// so then it stays, and the surface with it.
class CarGravityNode : public Car, public testing::WithParamInterface<bool> {};

TEST_P(CarGravityNode, FollowsTheCarUnlessASurfaceHangsBelowIt) {
  const bool carriesSurface = GetParam();
  SceneNode* surface = carriesSurface ? AddGroundBelowGravity("Floor", Floor(), Matrix()) : nullptr;
  const Vector gravityFrom = tool.gravity.World(harness.TimeOf(0)).GetTranslation();
  Run(0, 90, [](CarInput channel, int) { return channel == pcInput_GAS_PEDAL ? 1.0 : 0.0; });
  const double end = harness.TimeOf(90);
  ASSERT_LT(BodyAt(90).GetTranslation().z, BodyAt(0).GetTranslation().z - tool.cCarCam.dLength);
  const double moved = (tool.gravity.World(end).GetTranslation() - gravityFrom).Length();
  if (carriesSurface) {
    EXPECT_EQ(moved, 0.0);
    EXPECT_EQ(surface->World(harness.host.GetScene().clock.TickOf(end)).GetTranslation().Length(), 0.0);
  } else {
    EXPECT_GT(moved, tool.cCarCam.dLength);
  }
}

INSTANTIATE_TEST_SUITE_P(AloneOrCarryingASurface, CarGravityNode, testing::Bool());

struct PinnedRun {
  const char* name;
  bool terrain;
  Caster caster;
  std::uint64_t hash;
};

class CarRun : public Car, public testing::WithParamInterface<PinnedRun> {
 public:
  void SetUp() override {
    Car::SetUp();
    Prepare(*this);
  }
  // A car on the run's ground, through the run's caster.
  static void Prepare(Car& car) {
    if (GetParam().terrain) car.LinkGround(TestTerrain(), TerrainPose());
    car.Use(GetParam().caster);
  }
};

// A car beside the test's own, on the same ground.
struct GroundSideCar : SideCar {
  GroundSideCar() { CarRun::Prepare(*this); }
};

// A car at some 10 m/s over the demo's jump ramp. With the ground release
// its front wheels hang free past the lip and hold the body up until it
// flies; without it they drop to the floor below and the body dives after
// them. Either way it comes down on the floor, not through it.
class CarOverARamp : public Car, public testing::WithParamInterface<bool> {};

TEST_P(CarOverARamp, FliesOffTheLipOnlyWithTheGroundReleaseAndLands) {
  const bool release = GetParam();
  constexpr double kFoot = -15, kLength = 8, kHeight = 1.2;
  constexpr int kBoosted = 10, kFrames = 150;
  LinkGround(Floor(), Matrix());
  Matrix ramp;
  ramp.SetTranslation({0, 0, kFoot});
  AddGroundBelowGravity("Ramp", scenes::RampMesh(4, kLength, kHeight), ramp);
  tool.settings.bEnableWheelGroundRelease = release;
  Run(0, kFrames, [](CarInput channel, int k) {
    return channel == pcInput_GAS_PEDAL || (channel == pcInput_BOOSTER && k < kBoosted) ? 1.0 : 0.0;
  });
  const double riding = BodyAt(0).GetTranslation().y;
  const double lip = kFoot - kLength;
  double highestPastTheLip = 0;
  for (int k = 1; k <= kFrames; ++k) {
    const Vector at = BodyAt(k).GetTranslation();
    ASSERT_GT(at.y, riding - 0.5 * tool.cCarCam.dRideHeight) << "through the floor at frame " << k;
    if (at.z < lip && at.z > lip - kLength) highestPastTheLip = std::max(highestPastTheLip, at.y);
  }
  ASSERT_LT(BodyAt(kFrames).GetTranslation().z, lip - 2 * kLength) << "the car never got past the ramp";
  EXPECT_EQ(highestPastTheLip > riding + kHeight / 2, release) << "highest " << highestPastTheLip;
}

INSTANTIATE_TEST_SUITE_P(WithAndWithoutTheGroundRelease, CarOverARamp, testing::Bool());

// The keys of the driving take, pinned: any change to the car's numbers shows.
TEST_P(CarRun, TheSameTakeGivesTheSameKeysBitForBit) {
  Run(0, 90, DrivingTake);
  GroundSideCar again;
  again.Run(0, 90, DrivingTake);
  EXPECT_EQ(again.harness.HashOfKeys(), harness.HashOfKeys());
  EXPECT_EQ(harness.HashOfKeys(), GetParam().hash);
}

// A run stopped at frame 45, saved, loaded into a scrambled car and started
// again at 45 from its saved histories writes the continuous run's keys.
TEST_P(CarRun, ResumedFromSavedHistoriesMatchesTheContinuousRunBitForBit) {
  Run(0, 90, DrivingTake);
  const std::vector<Keys> continuous = AllKeys();
  GroundSideCar resumed;
  resumed.Run(0, 45, DrivingTake);
  const testing_support::Bytes saved = resumed.harness.Save();
  CCarCamObject& car = resumed.tool;
  car.cCarCam = CCarCam();
  car.dStartTime = 1e300;
  resumed.harness.SetSaveData(saved);
  ASSERT_EQ(car.Load(), 0);
  resumed.Run(45, 90, DrivingTake);
  const std::vector<CNode*> nodes = resumed.harness.ToolNodes();
  for (std::size_t n = 0; n < nodes.size(); ++n) {
    EXPECT_EQ(testing_support::HashOf(ToolHarness::KeysOf(nodes[n])), testing_support::HashOf(continuous[n]))
        << nodes[n]->name;
  }
}

INSTANTIATE_TEST_SUITE_P(Grounds, CarRun,
                         testing::Values(PinnedRun{"BuiltInPlane", false, Caster::kBullet, 8440386084944758973ull},
                                         PinnedRun{"TerrainBullet", true, Caster::kBullet, 2916346111553227268ull},
                                         PinnedRun{"TerrainTree", true, Caster::kTree, 12873285046962671667ull},
                                         PinnedRun{"TerrainHost", true, Caster::kHost, 1353974247479743032ull}),
                         [](const testing::TestParamInfo<PinnedRun>& info) { return info.param.name; });

TEST_F(Car, SavesLoadsAndSavesTheSameBytes) {
  Run(0, 30, DrivingTake);
  tool.settings.bKeyframeOnlyEssentialObjects = true;
  tool.cCarCam.params.dGravity = 1.5;
  const testing_support::Bytes saved = harness.Save();
  tool.settings.bKeyframeOnlyEssentialObjects = false;
  tool.cCarCam.params.dGravity = 1;
  harness.SetSaveData(saved);
  ASSERT_EQ(tool.Load(), 0);
  EXPECT_TRUE(tool.settings.bKeyframeOnlyEssentialObjects);
  EXPECT_EQ(tool.cCarCam.params.dGravity, 1.5);
  EXPECT_EQ(harness.Save(), saved);
}

TEST_F(Car, HideSwitchesUndoThroughTheHost) {
  harness.ExpectUndoableHide(tool, "Hide Helpers", tool.settings.helpers.hide, tool.wheelCenters[2].handle);
  EXPECT_FALSE(tool.gravity.handle->IsVisible());
  harness.ExpectUndoableHide(tool, "Hide Follow Camera", tool.settings.bHideFollowCam, tool.followCam.handle);
}

}  // namespace
}  // namespace vuk::rgw::addon
