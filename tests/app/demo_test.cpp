// The demos' outcomes, read from the files their steps wrote (scripts/demo-steps,
// scripts/demo-cameras-steps and scripts/demo-flight-steps, run by fixtures
// before these tests): the car drives far over the terrain, never below it and
// never off it, jumps off the ramp; the truck drives the same take otherwise;
// the follower ends near the car; the follow cameras trail it; the humanizer
// only turns its camera; the auto zoom keeps the car's framed width; the
// airplane rolls, climbs and flies far; the helicopter climbs and flies
// forward; the missile leaves the airplane and hits the car; the bullets
// land on the terrain.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "adaptor/standalone/gltffile.h"
#include "adaptor/standalone/scene.h"
#include "scenes/drivingscene.h"
#include "scenes/terrain.h"

namespace vuk::app {
namespace {

using rgw::adaptor::standalone::GltfFile;
using rgw::adaptor::standalone::Scene;
using rgw::adaptor::standalone::SceneNode;
using Point = util::Vector3<double>;

// A scene the demo wrote, read as rgw reads it.
class Written {
 public:
  explicit Written(const std::string& name, const std::string& folder = RGW_DEMO_OUTPUT) {
    std::string error;
    loaded = file_.Load(folder + "/" + name, scene, &error);
    EXPECT_TRUE(loaded) << name << ": " << error;
  }
  SceneNode* Node(const std::string& name) {
    SceneNode* found = nullptr;
    scene.Walk([&](SceneNode& node) {
      if (node.hostName == name) found = &node;
    });
    EXPECT_NE(found, nullptr) << name;
    return found;
  }
  // Where the node stands at its last key.
  Point End(const std::string& name) {
    const SceneNode* node = Node(name);
    return node && !node->track.Keys().empty() ? node->World(node->track.Keys().back().tick).GetTranslation() : Point();
  }

  bool loaded = false;
  Scene scene;

 private:
  GltfFile file_;
};

double AboveTerrain(const Point& at) { return at.y - scenes::RollingHeight(at.x, at.z); }

class MainJob : public testing::Test {
 protected:
  static void SetUpTestSuite() { result = std::make_unique<Written>("demo_result.gltf"); }
  static void TearDownTestSuite() { result.reset(); }

  static std::unique_ptr<Written> result;
};

std::unique_ptr<Written> MainJob::result;

TEST_F(MainJob, TheCarDrivesFarOverTheTerrainAndJumpsOffTheRamp) {
  ASSERT_TRUE(result->loaded);
  const SceneNode* body = result->Node("Car_CarBodyMesh");
  const SceneNode* ramp = result->Node("Ramp");
  ASSERT_TRUE(body && ramp);
  ASSERT_GT(body->track.Keys().size(), 500u);
  // Past the ramp's lip, the far end of its mesh down the road, where a
  // car that jumps is still in the air.
  constexpr double kFlight = 10;
  double lip = std::numeric_limits<double>::max();
  for (const auto& vertex : ramp->mesh.vertices) lip = std::min(lip, ramp->World(0).TransformPoint(vertex).z);
  const Point start = body->World(body->track.Keys().front().tick).GetTranslation();
  const double riding = AboveTerrain(start);
  double highestPastTheLip = -1;
  for (const auto& key : body->track.Keys()) {
    const Point at = body->World(key.tick).GetTranslation();
    ASSERT_GT(AboveTerrain(at), 0.05) << "below the terrain at tick " << key.tick;
    const double half = scenes::kDrivingTerrainSize / 2;
    ASSERT_TRUE(std::fabs(at.x) < half && std::fabs(at.z) < half) << "off the terrain at tick " << key.tick;
    if (at.z < lip && at.z > lip - kFlight && std::fabs(at.x) < 5) {
      highestPastTheLip = std::max(highestPastTheLip, AboveTerrain(at));
    }
  }
  EXPECT_GT((result->End("Car_CarBodyMesh") - start).Length(), 50);
  // In the air: higher above the terrain than it rides by far.
  EXPECT_GT(highestPastTheLip, riding + 0.4);
}

TEST_F(MainJob, TheTruckDrivesTheSameTakeOtherwise) {
  Written truck("demo_truck_result.gltf");
  ASSERT_TRUE(result->loaded && truck.loaded);
  EXPECT_GT((truck.End("Car_CarBodyMesh") - result->End("Car_CarBodyMesh")).Length(), 5);
}

TEST_F(MainJob, TheFollowerEndsNearTheCar) {
  ASSERT_TRUE(result->loaded);
  const SceneNode* body = result->Node("Follower_CarBodyMesh");
  ASSERT_TRUE(body && !body->track.Keys().empty());
  const Point start = body->World(body->track.Keys().front().tick).GetTranslation();
  const Point end = result->End("Follower_CarBodyMesh");
  EXPECT_LT((end - result->End("Car_CarBodyMesh")).Length(), 15);
  // It drove to get there, from behind the car.
  EXPECT_GT((end - start).Length(), 30);
}

class CameraDemo : public testing::Test {
 protected:
  static void SetUpTestSuite() { result = std::make_unique<Written>("cameras_result.gltf", RGW_CAMERAS_OUTPUT); }
  static void TearDownTestSuite() { result.reset(); }

  static std::unique_ptr<Written> result;
};

std::unique_ptr<Written> CameraDemo::result;

TEST_F(CameraDemo, TheFollowCamerasTrailTheCar) {
  ASSERT_TRUE(result->loaded);
  const Point car = result->End("Car_CarBodyMesh");
  for (const char* follower : {"Soft_FollowCam", "Bouncy_FollowCam"}) {
    const SceneNode* node = result->Node(follower);
    ASSERT_TRUE(node && node->track.Keys().size() > 500) << follower;
    // They ride 8 to 10 m behind the car and lag it.
    EXPECT_LT((result->End(follower) - car).Length(), 20) << follower;
    EXPECT_GT((result->End(follower) - car).Length(), 5) << follower;
  }
}

TEST_F(CameraDemo, TheHumanizerTurnsItsCameraAndNeverMovesIt) {
  ASSERT_TRUE(result->loaded);
  const SceneNode* shaky = result->Node("Shaky_HumanizerCam");
  ASSERT_TRUE(shaky && shaky->track.Keys().size() > 500);
  double largestAngle = 0;
  for (const auto& key : shaky->track.Keys()) {
    ASSERT_EQ(key.position, Point(0, 0, 0)) << "tick " << key.tick;
    largestAngle = std::max(largestAngle, 2 * std::acos(std::min(1.0, std::fabs(key.rotation.w))));
  }
  // A hand-held shake: visible, a few degrees at most.
  EXPECT_GT(largestAngle, 0.001);
  EXPECT_LT(largestAngle, 0.2);
}

TEST_F(CameraDemo, TheAutoZoomKeepsTheCarsFramedWidth) {
  ASSERT_TRUE(result->loaded);
  const SceneNode* zoom = result->Node("Zoom_AutoZoomCam");
  ASSERT_TRUE(zoom);
  const auto& fovs = zoom->camera.fovDegrees.Keys();
  const auto& distances = zoom->camera.targetDistance.Keys();
  ASSERT_GT(fovs.size(), 500u);
  ASSERT_EQ(fovs.size(), distances.size());
  auto width = [&](std::size_t i) { return distances[i].value * std::tan(fovs[i].value * M_PI / 360); };
  double nearest = std::numeric_limits<double>::max(), farthest = 0;
  for (std::size_t i = 0; i < fovs.size(); ++i) {
    ASSERT_EQ(fovs[i].tick, distances[i].tick);
    ASSERT_NEAR(width(i), width(0), 1e-6 * width(0)) << "tick " << fovs[i].tick;
    nearest = std::min(nearest, distances[i].value);
    farthest = std::max(farthest, distances[i].value);
  }
  // The car drove off and the camera dollied: the lens had work to do.
  EXPECT_GT(farthest, 2 * nearest);
}

class FlightDemo : public testing::Test {
 protected:
  static void SetUpTestSuite() { result = std::make_unique<Written>("flight_result.gltf", RGW_FLIGHT_OUTPUT); }
  static void TearDownTestSuite() { result.reset(); }

  // Where the node stands at each of its keys.
  static std::vector<Point> Path(const std::string& name) {
    std::vector<Point> path;
    if (const SceneNode* node = result->Node(name)) {
      for (const auto& key : node->track.Keys()) path.push_back(node->World(key.tick).GetTranslation());
    }
    return path;
  }

  static std::unique_ptr<Written> result;
};

std::unique_ptr<Written> FlightDemo::result;

TEST_F(FlightDemo, TheAirplaneRollsDownTheRoadClimbsAndFliesFar) {
  ASSERT_TRUE(result->loaded);
  const std::vector<Point> path = Path("Plane_PlaneBody");
  ASSERT_GT(path.size(), 500u);
  const Point start = path.front();
  // The take-off roll: a second at its height on the road, going fast.
  constexpr std::size_t kSecond = 30;
  EXPECT_NEAR(path[kSecond].y, start.y, 0.05);
  EXPECT_GT((path[kSecond] - start).Length(), 10);
  double highest = start.y;
  for (std::size_t i = 0; i < path.size(); ++i) {
    ASSERT_GT(AboveTerrain(path[i]), 0.5) << "into the ground at key " << i;
    highest = std::max(highest, path[i].y);
  }
  EXPECT_GT(highest - start.y, 10);
  EXPECT_GT((path.back() - start).Length(), 50);
}

TEST_F(FlightDemo, TheHelicopterHoversClimbsAndFliesForward) {
  ASSERT_TRUE(result->loaded);
  const std::vector<Point> path = Path("Heli_CHelicopterBody");
  ASSERT_GT(path.size(), 500u);
  const Point start = path.front(), end = path.back();
  // The hover: its first second and a half, still to a centimetre.
  for (std::size_t i = 0; i < 45; ++i) ASSERT_LT((path[i] - start).Length(), 0.01) << "key " << i;
  EXPECT_GT(end.y - start.y, 10);
  // Forward is along its nose at the start, minus Z.
  EXPECT_GT(start.z - end.z, 30);
}

TEST_F(FlightDemo, TheMissileLeavesTheAirplaneAndHitsTheCar) {
  ASSERT_TRUE(result->loaded);
  const SceneNode* missile = result->Node("Rocket_Missile");
  const SceneNode* carrier = result->Node("Rocket_BodyRelocator");
  const SceneNode* car = result->Node("Car_CarBodyMesh");
  ASSERT_TRUE(missile && carrier && car);
  ASSERT_GT(missile->track.Keys().size(), 500u);
  bool fired = false;
  double nearest = std::numeric_limits<double>::max();
  for (const auto& key : missile->track.Keys()) {
    const Point at = missile->World(key.tick).GetTranslation();
    // Until it is fired it hangs where it is carried, under the airplane.
    fired = fired || (at - carrier->World(key.tick).GetTranslation()).Length() > 0.01;
    if (fired) nearest = std::min(nearest, (at - car->World(key.tick).GetTranslation()).Length());
  }
  ASSERT_TRUE(fired);
  EXPECT_LT(nearest, 3);
}

TEST_F(FlightDemo, TheBulletsAreNodesThatLandOnTheTerrain) {
  ASSERT_TRUE(result->loaded);
  // The terrain's flat triangles dip below its rolling height between their
  // corners by about a millimetre.
  constexpr double kFlatTriangles = 0.005;
  int bullets = 0;
  result->scene.Walk([&](SceneNode& node) {
    if (node.hostName.rfind("Gun_Bullet_", 0) != 0) return;
    ++bullets;
    ASSERT_FALSE(node.track.Keys().empty()) << node.hostName;
    for (const auto& key : node.track.Keys()) {
      ASSERT_GT(AboveTerrain(node.World(key.tick).GetTranslation()), -kFlatTriangles)
          << node.hostName << " below the terrain at tick " << key.tick;
    }
    // It struck the terrain and lies on it, where its lifetime ends.
    EXPECT_LT(AboveTerrain(result->End(node.hostName)), 0.05) << node.hostName;
  });
  // Three bursts of a second at ten rounds a second.
  EXPECT_EQ(bullets, 30);
}

}  // namespace
}  // namespace vuk::app
