#include "plugins/lookatcam/lookatcamobject.h"

#include <gtest/gtest.h>

#include <cmath>

#include "adaptor/standalone/standalonenode.h"
#include "tests/plugins/toolharness.h"

namespace vuk::rgw::addon {
namespace {

using adaptor::standalone::StandaloneNode;
using testing_support::ToolHarness;
using util::Matrix;
using util::Vector3;

Matrix<double> At(const Vector3<double>& position) {
  Matrix<double> pose;
  pose.SetTranslation(position);
  return pose;
}

class LookAtCam : public testing::Test {
 protected:
  double LensDistance(double time) {
    CSnapshot_Lens* lens = harness.Instance().GetLensSnapshot(tool.cameraNode.handle, time);
    const double distance = lens->GetTargetDistance();
    harness.Instance().ReleaseLensSnapshot(lens);
    return distance;
  }
  static adaptor::standalone::SceneNode* Host(CNode* node) { return static_cast<StandaloneNode*>(node)->GetHostNode(); }

  ToolHarness harness{"LookAtCam"};
  CLookAtCamObject& tool = harness.Tool<CLookAtCamObject>();
};

TEST_F(LookAtCam, ANewCameraStandsTenMetresFromASolidTarget) {
  EXPECT_EQ(harness.Instance().InstanceName(), "LookAtCam_01");
  EXPECT_EQ(harness.ToolNodes(), (std::vector<CNode*>{tool.targetNode.handle, tool.cameraNode.handle}));
  EXPECT_EQ(Host(tool.cameraNode.handle)->hostName, "LookAtCam_01_LookAtCam");
  EXPECT_FALSE(Host(tool.targetNode.handle)->wireframe);
  EXPECT_TRUE(Host(tool.targetNode.handle)->backfaceCull);
  EXPECT_EQ(tool.cameraNode.World(0).GetTranslation(), Vector3<double>(0, 0, 10));
  EXPECT_TRUE(Host(tool.cameraNode.handle)->selected);
  EXPECT_EQ(LensDistance(0), 10.0);
  EXPECT_EQ(harness.library.FindTool("LookAtCam")->CreateInstance("", &harness.host)->InstanceName(), "LookAtCam_02");
}

// The target rides on a scene node; the camera keeps its place and its scale.
TEST_F(LookAtCam, TheCameraLooksAtAMovingTargetEveryFrame) {
  const auto path = [](double t) { return Vector3<double>(5 * std::sin(t), 1 + 0.5 * std::cos(2 * t), -3 + t); };
  adaptor::standalone::SceneNode* car = harness.AddSceneNode("Car");
  harness.Link(tool.targetNode.handle, car);
  for (int k = 0; k <= 300; ++k) {
    harness.host.GetScene().WriteWorld(car, adaptor::standalone::TicksFromSeconds(k * harness.Frame()),
                                       At(path(k * harness.Frame())));
  }
  Matrix<double> scaled = At({2, 3, 12});
  for (int axis = 0; axis < 3; ++axis) scaled.SetAxis(axis, scaled.Axis(axis) * 2);
  tool.cameraNode.Transform(0)->SetWorldTransform(scaled);
  harness.Record(0, 300, nullptr);
  for (int k = 1; k <= 300; ++k) {
    const double time = k * harness.Frame();
    const Matrix<double> camera = tool.cameraNode.World(time);
    const Vector3<double> toTarget = path(time) - camera.GetTranslation();
    ASSERT_NEAR(-camera.Axis(2).Normalized().Dot(toTarget.Normalized()), 1.0, 1e-9) << "frame " << k;
    EXPECT_GT(camera.Axis(1).y, 0.0) << "frame " << k;
    EXPECT_NEAR(camera.Axis(0).y, 0.0, 1e-9) << "frame " << k;
    EXPECT_NEAR((camera.GetTranslation() - Vector3<double>(2, 3, 12)).Length(), 0.0, 1e-9);
    for (int axis = 0; axis < 3; ++axis) EXPECT_NEAR(camera.Axis(axis).Length(), 2.0, 1e-12);
  }
  // The lens holds one distance: the last frame's.
  const double end = 300 * harness.Frame();
  EXPECT_NEAR(LensDistance(end), (path(end) - Vector3<double>(2, 3, 12)).Length(), 1e-9);
}

TEST_F(LookAtCam, DegeneratePositionsWriteWithoutError) {
  // Camera on the target: the distance is 0 and the write still happens.
  tool.cameraNode.Transform(0)->SetWorldTransform(At({0, 0, 0}));
  tool.cameraNode.Measure(0);
  tool.cameraNode.Update(0);
  EXPECT_EQ(LensDistance(0), 0.0);
  for (double e : tool.cameraNode.World(0).m) EXPECT_FALSE(std::isnan(e));
  // Straight above the target: the side row has no direction of its own.
  tool.cameraNode.Transform(0)->SetWorldTransform(At({0, 4, 0}));
  tool.cameraNode.Update(0);
  EXPECT_EQ(LensDistance(0), 4.0);
  for (double e : tool.cameraNode.World(0).m) EXPECT_FALSE(std::isnan(e));
}

TEST_F(LookAtCam, HideSwitchesUndoAndRedoThroughTheHost) {
  harness.ExpectUndoableHide(tool, "Hide Camera", tool.hideCamera, tool.cameraNode.handle);
  harness.ExpectUndoableHide(tool, "Hide Helpers", tool.helpers.hide, tool.targetNode.handle);
  // Switched off, the target shows again.
  tool.helpers.hide = false;
  tool.Changed("Hide Helpers");
  // Hiding helpers during recording does nothing at once and records nothing.
  tool.helpers.hideDuringRecording = true;
  tool.Changed("Hide Helpers During Recording");
  EXPECT_TRUE(tool.targetNode.handle->IsVisible());
  // A recording hides the target and shows it again after.
  harness.Instance().Start(0, core::Instance::Run::kRecording);
  EXPECT_FALSE(tool.targetNode.handle->IsVisible());
  harness.Instance().Stop(0);
  EXPECT_TRUE(tool.targetNode.handle->IsVisible());
}

// The three bytes, in their order: hide helpers during recording, hide
// helpers, hide camera.
TEST_F(LookAtCam, SavesItsThreeFlagsInTheirOrder) {
  tool.helpers.hideDuringRecording = true;
  tool.hideCamera = true;
  EXPECT_EQ(harness.Save(), (testing_support::Bytes{1, 0, 1}));
  harness.SetSaveData({0, 1, 0});
  ASSERT_EQ(tool.Load(), 0);
  EXPECT_FALSE(tool.helpers.hideDuringRecording);
  EXPECT_TRUE(tool.helpers.hide);
  EXPECT_FALSE(tool.hideCamera);
  // Refused: the flags stay, and so do the nodes it found.
  harness.SetSaveData({1, 1, 1, 1});
  EXPECT_EQ(tool.Load(), 1);
  EXPECT_FALSE(tool.helpers.hideDuringRecording);
  EXPECT_EQ(tool.cameraNode.handle, harness.Instance().FindNode("LookAtCam"));
}

TEST_F(LookAtCam, ThePageHasItsControlsInOrder) {
  EXPECT_EQ(harness.Instance().ConfigProfile().Write("", ""),
            "<configprofile version=\"2.0\" name=\"Start Profile\"><group id=\"-1\" label=\"General Modes\">"
            "<item id=\"1\" label=\"Hide Helpers\">0</item><item id=\"2\" label=\"Hide Helpers During Recording\">0"
            "</item><item id=\"3\" label=\"Hide Camera\">0</item></group></configprofile>");
}

}  // namespace
}  // namespace vuk::rgw::addon
