#include "plugins/lookatcam/lookatcamobject.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "adaptor/standalone/standaloneadaptorinterface.h"
#include "adaptor/standalone/standalonenode.h"
#include "core/corelibrary.h"
#include "plugins/tools.h"
#include "plugins/lookatcam/lookatcamobject.h"
#include "tests/plugins/keyhash.h"

namespace vuk::rgw::addon {
namespace {

using adaptor::standalone::StandaloneAdaptorInterface;
using adaptor::standalone::StandaloneNode;
using core::Instance;
using util::Matrix;
using util::Vector3;

class LookAtCam : public testing::Test {
 protected:
  void SetUp() override {
    instance = library.FindTool("LookAtCam")->CreateInstance("", &host);
    ASSERT_NE(instance, nullptr);
    tool = static_cast<CLookAtCamObject*>(instance->tool);
  }

  Matrix<double> World(CNode* node, double time) {
    CSnapshot* snapshot = instance->GetTransformSnapshot(node, time);
    const Matrix<double> world = snapshot->GetWorldTransform();
    instance->ReleaseTransformSnapshot(snapshot);
    return world;
  }
  void Place(CNode* node, double time, const Vector3<double>& position) {
    CSnapshot* snapshot = instance->GetTransformSnapshot(node, time);
    Matrix<double> pose;
    pose.SetTranslation(position);
    snapshot->SetWorldTransform(pose);
    instance->ReleaseTransformSnapshot(snapshot);
  }
  double LensDistance(double time) {
    CSnapshot_Lens* lens = instance->GetLensSnapshot(tool->cameraNode.handle, time);
    const double distance = lens->GetTargetDistance();
    instance->ReleaseLensSnapshot(lens);
    return distance;
  }
  StandaloneNode* Host(CNode* node) { return static_cast<StandaloneNode*>(node); }

  StandaloneAdaptorInterface host;
  core::CoreLibrary library{addon::BuiltInTools()};
  std::unique_ptr<Instance> instance;
  CLookAtCamObject* tool = nullptr;
};

TEST_F(LookAtCam, ANewCameraMakesItsTwoNodes) {
  EXPECT_EQ(instance->util::MessageNode::GetName(), "LookAtCam_01");
  ASSERT_NE(tool->targetNode.handle, nullptr);
  ASSERT_NE(tool->cameraNode.handle, nullptr);
  EXPECT_EQ(instance->FindNode("TargetMesh"), tool->targetNode.handle);
  EXPECT_EQ(instance->FindNode("LookAtCam"), tool->cameraNode.handle);
  EXPECT_EQ(Host(tool->cameraNode.handle)->GetHostName(), "LookAtCam_01_LookAtCam");
  // The target is drawn solid, the camera stands ten metres out and is selected.
  EXPECT_FALSE(Host(tool->targetNode.handle)->GetHostNode()->wireframe);
  EXPECT_TRUE(Host(tool->targetNode.handle)->GetHostNode()->backfaceCull);
  EXPECT_EQ(World(tool->cameraNode.handle, 0).GetTranslation(), Vector3<double>(0, 0, 10));
  EXPECT_TRUE(Host(tool->cameraNode.handle)->GetHostNode()->selected);
  EXPECT_EQ(LensDistance(0), 10.0);

  auto second = library.FindTool("LookAtCam")->CreateInstance("", &host);
  EXPECT_EQ(second->util::MessageNode::GetName(), "LookAtCam_02");
}

TEST_F(LookAtCam, TheCameraLooksAtAMovingTargetEveryFrame) {
  const double frame = host.GetFrameDuration();
  const auto path = [](double t) { return Vector3<double>(5 * std::sin(t), 1 + 0.5 * std::cos(2 * t), -3 + t); };
  host.GetScene().animate = true;
  for (int k = 0; k < 300; ++k) Place(tool->targetNode.handle, k * frame, path(k * frame));
  Place(tool->cameraNode.handle, 0, {2, 3, 12});
  host.BeginUndo("Record");
  host.BeginRecording();
  instance->Start(0, Instance::Run::kRecording);
  for (int k = 0; k < 300; ++k) {
    const double time = k * frame;
    instance->Step(time);
    const Matrix<double> camera = World(tool->cameraNode.handle, time);
    const Vector3<double> toTarget = path(time) - camera.GetTranslation();
    const Vector3<double> forward = -camera.Axis(2).Normalized();
    ASSERT_NEAR(forward.Dot(toTarget.Normalized()), 1.0, 1e-9) << "frame " << k;
    EXPECT_GT(camera.Axis(1).y, 0.0) << "frame " << k;
    EXPECT_NEAR(camera.Axis(0).y, 0.0, 1e-9) << "frame " << k;
    EXPECT_NEAR(LensDistance(time), toTarget.Length(), 1e-9) << "frame " << k;
    EXPECT_NEAR((camera.GetTranslation() - Vector3<double>(2, 3, 12)).Length(), 0.0, 1e-9);
  }
  instance->Stop(300 * frame);
  host.EndRecording();
  host.EndUndo();
}

// The same take on two fresh scenes gives the same camera keys, bit for bit.
std::vector<adaptor::standalone::TransformKey> RecordTake() {
  StandaloneAdaptorInterface host;
  core::CoreLibrary library{addon::BuiltInTools()};
  auto instance = library.FindTool("LookAtCam")->CreateInstance("", &host);
  auto* tool = static_cast<CLookAtCamObject*>(instance->tool);
  host.GetScene().animate = true;
  const double frame = host.GetFrameDuration();
  for (int k = 0; k < 120; ++k) {
    CSnapshot* snapshot = instance->GetTransformSnapshot(tool->targetNode.handle, k * frame);
    Matrix<double> pose;
    pose.SetTranslation({std::sin(0.1 * k), 0.3 * k, std::cos(0.07 * k)});
    snapshot->SetWorldTransform(pose);
    instance->ReleaseTransformSnapshot(snapshot);
  }
  host.BeginUndo("Record");
  host.BeginRecording();
  instance->Start(0, Instance::Run::kRecording);
  for (int k = 0; k < 120; ++k) instance->Step(k * frame);
  instance->Stop(120 * frame);
  host.EndRecording();
  host.EndUndo();
  return static_cast<StandaloneNode*>(tool->cameraNode.handle)->GetHostNode()->track.Keys();
}

TEST(LookAtCamDeterminism, SameTakeSameKeys) {
  const auto first = RecordTake();
  ASSERT_EQ(first.size(), 120u);
  testing_support::ExpectSameKeys(first, RecordTake());
}

TEST(LookAtCamDeterminism, TheKeysOfAFixedTakeKeepTheirHash) {
  EXPECT_EQ(testing_support::HashOf(RecordTake()), 5733555092560626472ull);
}

TEST_F(LookAtCam, KeepsItsScale) {
  CSnapshot* snapshot = instance->GetTransformSnapshot(tool->cameraNode.handle, 0);
  Matrix<double> scaled;
  scaled.SetAxis(0, {2, 0, 0});
  scaled.SetAxis(1, {0, 2, 0});
  scaled.SetAxis(2, {0, 0, 2});
  scaled.SetTranslation({0, 0, 10});
  snapshot->SetWorldTransform(scaled);
  instance->ReleaseTransformSnapshot(snapshot);
  instance->Start(0, Instance::Run::kRecording);
  instance->Step(0);
  const Matrix<double> camera = World(tool->cameraNode.handle, 0);
  for (int axis = 0; axis < 3; ++axis) EXPECT_NEAR(camera.Axis(axis).Length(), 2.0, 1e-12);
}

TEST_F(LookAtCam, DegeneratePositionsWriteWithoutError) {
  // Camera on the target: the distance is 0 and the write still happens.
  Place(tool->cameraNode.handle, 0, {0, 0, 0});
  tool->cameraNode.Measure(0);
  tool->cameraNode.Update(0);
  EXPECT_EQ(LensDistance(0), 0.0);
  const Matrix<double> same = World(tool->cameraNode.handle, 0);
  for (double e : same.m) EXPECT_FALSE(std::isnan(e));
  // Straight above the target: the side row has no direction of its own.
  Place(tool->cameraNode.handle, 0, {0, 4, 0});
  tool->cameraNode.Update(0);
  EXPECT_EQ(LensDistance(0), 4.0);
  const Matrix<double> above = World(tool->cameraNode.handle, 0);
  for (double e : above.m) EXPECT_FALSE(std::isnan(e));
}

TEST_F(LookAtCam, HideSwitchesUndoAndRedoThroughTheHost) {
  CNode* camera = tool->cameraNode.handle;
  host.BeginUndo("Hide Camera");
  tool->hideCamera = true;
  tool->Changed("Hide Camera");
  host.EndUndo();
  EXPECT_FALSE(camera->IsVisible());
  host.Undo();
  EXPECT_TRUE(camera->IsVisible());
  EXPECT_TRUE(tool->hideCamera);
  host.Redo();
  EXPECT_FALSE(camera->IsVisible());
  // Hiding helpers during recording does nothing at once and records nothing.
  tool->hideHelpersDuringRecording = true;
  tool->Changed("Hide Helpers During Recording");
  EXPECT_TRUE(tool->targetNode.handle->IsVisible());
  // A recording hides the target and shows it again after.
  instance->Start(0, Instance::Run::kRecording);
  EXPECT_FALSE(tool->targetNode.handle->IsVisible());
  instance->Stop(0);
  EXPECT_TRUE(tool->targetNode.handle->IsVisible());
}

TEST_F(LookAtCam, SavesAndLoadsThreeBytes) {
  tool->hideHelpersDuringRecording = true;
  tool->hideCamera = true;
  ASSERT_EQ(tool->Save(), 0);
  std::int32_t length = 0;
  const std::uint8_t* bytes = instance->GetSaveData(&length);
  ASSERT_EQ(length, 3);
  EXPECT_EQ(bytes[0], 1);
  EXPECT_EQ(bytes[1], 0);
  EXPECT_EQ(bytes[2], 1);

  // A fresh object on the same instance takes up the nodes and the flags.
  CLookAtCamPlugin plugin;
  CCamera::CreateParam param("LookAtCam_01");
  std::unique_ptr<CLookAtCamObject> loaded(static_cast<CLookAtCamObject*>(plugin.Create(param)));
  loaded->iface = instance.get();
  ASSERT_EQ(loaded->Load(), 0);
  EXPECT_EQ(loaded->cameraNode.handle, tool->cameraNode.handle);
  EXPECT_TRUE(loaded->hideHelpersDuringRecording);
  EXPECT_FALSE(loaded->hideHelpers);
  EXPECT_TRUE(loaded->hideCamera);

  const std::uint8_t four[4] = {1, 1, 1, 1};
  instance->SetSaveData(four, 4);
  std::unique_ptr<CLookAtCamObject> refused(static_cast<CLookAtCamObject*>(plugin.Create(param)));
  refused->iface = instance.get();
  EXPECT_EQ(refused->Load(), 1);
  EXPECT_FALSE(refused->hideHelpers);
  EXPECT_EQ(refused->cameraNode.handle, tool->cameraNode.handle);
}

TEST_F(LookAtCam, ThePageHasItsControlsInOrder) {
  ASSERT_NE(instance->configRoot, nullptr);
  EXPECT_EQ(instance->ConfigProfile().Write("", ""),
            "<configprofile version=\"2.0\" name=\"Start Profile\"><group id=\"-1\" label=\"General Modes\">"
            "<item id=\"1\" label=\"Hide Helpers\">0</item><item id=\"2\" label=\"Hide Helpers During Recording\">0"
            "</item><item id=\"3\" label=\"Hide Camera\">0</item></group></configprofile>");
}

}  // namespace
}  // namespace vuk::rgw::addon
