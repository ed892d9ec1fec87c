#pragma once
// What the 4-Wheeler's tests share: a car on a fresh embedded host whose
// message boxes are caught, takes to drive it with, and grounds to link it to.

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "adaptor/standalone/scenenode.h"
#include "adaptor/standalone/standalonenode.h"
#include "core/messagebox.h"
#include "plugins/carextended/carextendedobject.h"
#include "scenes/terrain.h"
#include "tests/plugins/toolharness.h"

namespace vuk::rgw::addon {

using Matrix = CCarCamObject::Matrix;
using Vector = CCarCamObject::Vector;
using adaptor::standalone::ObjectKind;
using adaptor::standalone::SceneNode;

// The raw value of each channel at a frame.
using Take = std::function<double(CarInput channel, int frame)>;

// Gas, then a turn to the left with a touch of booster, then the brake.
inline double DrivingTake(CarInput channel, int k) {
  switch (channel) {
    case pcInput_GAS_PEDAL:
      return k < 70 ? 0.8 : 0.0;
    case pcInput_STEERING_WHEEL:
      return k > 30 && k < 60 ? -0.6 : 0.0;
    case pcInput_BOOSTER:
      return k > 40 && k < 50 ? 1.0 : 0.0;
    case pcInput_ABS_BRAKE:
      return k >= 70 ? 1.0 : 0.0;
    default:
      return 0.0;
  }
}

inline double NoInput(CarInput, int) { return 0.0; }

// The casters a run can use, as the options choose them.
enum class Caster { kHost, kTree, kBullet };

inline const char* NameOf(Caster caster) {
  return caster == Caster::kHost ? "host" : caster == Caster::kTree ? "tree" : "bullet";
}

// The terrain the car tests drive on: 60 m square in cells of half a metre,
// so that the mesh lies within a millimetre of RollingHeight.
inline util::CMesh TestTerrain() { return scenes::RollingTerrain(120, 60); }

// A translation that puts the terrain's point (5, 3), on a slope, under the
// car's start at the origin.
inline Matrix TerrainPose() {
  Matrix pose;
  pose.SetTranslation({-5, -scenes::RollingHeight(5, 3), -3});
  return pose;
}

// The terrain's height under a world point, placed by TerrainPose.
inline double TerrainHeight(double x, double z) {
  return scenes::RollingHeight(x + 5, z + 3) + TerrainPose().GetTranslation().y;
}

// A floor 200 m square at y = 0, facing up.
inline util::CMesh Floor() {
  util::CMesh floor;
  floor.vertices = {{-100, 0, -100}, {100, 0, -100}, {100, 0, 100}, {-100, 0, 100}};
  floor.faces = {0, 2, 1, 0, 3, 2};
  return floor;
}

// Public, so that a helper can drive a car of its own outside a test.
class Car : public testing::Test {
 public:
  void SetUp() override {
    core::SetMessageBoxSink([this](const std::string& text, const std::string& caption, std::int32_t) {
      boxes.push_back(caption + ": " + text);
      return box::kOk;
    });
  }
  void TearDown() override { core::SetMessageBoxSink(nullptr); }

  void Run(int first, int last, const Take& take) {
    harness.Record(first, last,
                   [&take](std::size_t channel, int k) { return take(static_cast<CarInput>(channel), k); });
  }
  bool Warned(const std::string& text) const {
    return std::find(boxes.begin(), boxes.end(), std::string("Warning: ") + text) != boxes.end();
  }
  Matrix BodyAt(int frame) { return tool.body.World(harness.TimeOf(frame)); }
  std::vector<testing_support::Keys> AllKeys() {
    std::vector<testing_support::Keys> keys;
    for (CNode* node : harness.ToolNodes()) keys.push_back(testing_support::ToolHarness::KeysOf(node));
    return keys;
  }

  // A scene node of that kind, mesh and pose.
  SceneNode* AddSurface(const std::string& name, const util::CMesh& mesh, const Matrix& pose,
                        ObjectKind kind = ObjectKind::kMesh) {
    adaptor::standalone::Scene& scene = harness.host.GetScene();
    SceneNode* node = scene.CreateNode(kind, name);
    if (kind == ObjectKind::kMesh) node->SetMesh(mesh);
    scene.WriteWorld(node, 0, pose);
    return node;
  }
  // The surface the gravity node hangs below: the car's primary ground.
  SceneNode* LinkGround(const util::CMesh& mesh, const Matrix& pose, ObjectKind kind = ObjectKind::kMesh) {
    SceneNode* ground = AddSurface("Ground", mesh, pose, kind);
    harness.Link(tool.gravity.handle, ground);
    return ground;
  }
  // A further surface, hung below the gravity node.
  SceneNode* AddGroundBelowGravity(const std::string& name, const util::CMesh& mesh, const Matrix& pose) {
    SceneNode* surface = AddSurface(name, mesh, pose);
    harness.host.GetScene().SetParent(surface, HostOf(tool.gravity.handle), 0);
    return surface;
  }
  static SceneNode* HostOf(CNode* node) {
    return static_cast<adaptor::standalone::StandaloneNode*>(node)->GetHostNode();
  }
  // Sets the options that choose the caster; the stored tree takes the
  // primary surface as it stands, so link it first.
  void Use(Caster caster) {
    tool.settings.bUseFastRayCast = caster == Caster::kBullet;
    tool.Changed(carpage::kUseFastRayCast);
    tool.settings.bStoreGroundMeshData = caster == Caster::kTree;
    tool.Changed(carpage::kStoreGroundMeshData);
  }

  std::vector<std::string> boxes;
  testing_support::ToolHarness harness{"4WheelerExt"};
  CCarCamObject& tool = harness.Tool<CCarCamObject>();
};

// A car beside the test's own, on a host of its own; its boxes go to the log.
struct SideCar : Car {
  void TestBody() override {}
};

}  // namespace vuk::rgw::addon
