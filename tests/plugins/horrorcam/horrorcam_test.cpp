#include "plugins/horrorcam/horrorcamobject.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "adaptor/standalone/standalonenode.h"
#include "tests/plugins/toolharness.h"

namespace vuk::rgw::addon {
namespace {

using testing_support::ToolHarness;
using util::Matrix;
using util::Vector3;

constexpr double kPi = 3.141592653589793;
constexpr int kFrames = 90;
// A new camera stands 10 m from its target with a 45 degree lens, so it
// frames 10 tan(22.5 degrees) either side of it.
const double kStartHalfWidth = 10 * std::tan(kPi / 8);

using Raw = std::function<double(int frame)>;
using Path = std::function<Vector3<double>(int frame)>;

class AutoZoomCam : public testing::Test {
 protected:
  // The target rides on a scene node along the path.
  void MoveTarget(const Path& path) {
    adaptor::standalone::SceneNode* car = harness.AddSceneNode("Car");
    harness.Link(tool.targetNode.handle, car);
    for (int k = 0; k <= kFrames; ++k) {
      harness.host.GetScene().WriteWorld(car, adaptor::standalone::TicksFromSeconds(harness.TimeOf(k)),
                                         Matrix<double>::FromPose({path(k), {}}));
    }
  }
  void Run(int first, int last, const Raw& raw) {
    harness.Record(first, last, [raw](std::size_t channel, int k) { return channel == 0 ? raw(k) : 0.0; });
  }
  // The lens at the frame: field of view in degrees and target distance.
  std::pair<double, double> Lens(int frame) {
    CSnapshot_Lens* lens = harness.Instance().GetLensSnapshot(tool.cameraNode.handle, harness.TimeOf(frame));
    const std::pair<double, double> read{lens->GetFOV(), lens->GetTargetDistance()};
    harness.Instance().ReleaseLensSnapshot(lens);
    return read;
  }
  const adaptor::standalone::CameraData& LensTracks() {
    return static_cast<adaptor::standalone::StandaloneNode*>(tool.cameraNode.handle)->GetHostNode()->camera;
  }

  ToolHarness harness{"AutoZoomCam"};
  CHorrorCamObject& tool = harness.Tool<CHorrorCamObject>();
};

struct Take {
  const char* name;
  Raw raw;
  Path target;
};

class FramedWidth : public AutoZoomCam, public testing::WithParamInterface<Take> {};

// d tan(fov / 2) is the half width framed at the target: the zoom's invariant.
TEST_P(FramedWidth, StaysAtItsStartValueOnEveryFrame) {
  MoveTarget(GetParam().target);
  Run(0, kFrames, GetParam().raw);
  double farthestMove = 0;
  for (int k = 0; k <= kFrames; ++k) {
    const auto [fov, distance] = Lens(k);
    ASSERT_NEAR(distance * std::tan(fov / 2 * kPi / 180), kStartHalfWidth, 1e-6) << "frame " << k;
    farthestMove = std::max(farthestMove, std::fabs(distance - 10));
  }
  EXPECT_GT(farthestMove, 2.0) << "the take is to change the distance";
}

INSTANTIATE_TEST_SUITE_P(Takes, FramedWidth,
                         testing::Values(Take{"CameraDrivenInAndOut", [](int k) { return std::sin(0.08 * k); },
                                              [](int) { return Vector3<double>(); }},
                                         Take{"TargetMoving", [](int) { return 0.0; },
                                              [](int k) { return Vector3<double>(std::sin(0.05 * k), 0, -0.1 * k); }}),
                         [](const testing::TestParamInfo<Take>& info) { return info.param.name; });

TEST_F(AutoZoomCam, AResimulationFromTheMiddleRepeatsTheFullRunsKeysAndLens) {
  MoveTarget([](int k) { return Vector3<double>(0.5 * std::sin(0.1 * k), 0, -0.05 * k); });
  Run(0, kFrames, [](int k) { return std::cos(0.07 * k); });
  const std::uint64_t keys = harness.HashOfKeys();
  const adaptor::standalone::CameraData lens = LensTracks();
  for (int from : {0, 37}) {
    harness.Resimulate(from, kFrames);
    EXPECT_EQ(harness.HashOfKeys(), keys) << "from frame " << from;
    EXPECT_EQ(LensTracks().fovDegrees.Keys(), lens.fovDegrees.Keys()) << "from frame " << from;
    EXPECT_EQ(LensTracks().targetDistance.Keys(), lens.targetDistance.Keys()) << "from frame " << from;
  }
}

struct Extreme {
  const char* name;
  Vector3<double> start;  // the camera's; the target stays at the origin
  double raw, maximum;
  int frames;
  double lastFovAtLeast, lastFovAtMost;
};

class ExtremeInput : public AutoZoomCam, public testing::WithParamInterface<Extreme> {};

// The field of view stays in (0, 180] degrees. Driven onto the target the
// distance is held at 1e-16 of the start's, and the zoom saturates just
// short of 180; driven through it, or away, it narrows towards 0 and stays
// positive while the distance is finite (full input with a maximum near
// 1e16 would overflow it within some twenty frames: not held). A run that
// begins on the target frames nothing and keeps the lens as it was.
TEST_P(ExtremeInput, KeepsTheFieldOfViewInItsRange) {
  const Extreme& row = GetParam();
  tool.channel.responseFactor = 0;
  tool.channel.maximum = row.maximum;
  tool.cameraNode.Transform(0)->SetLocalTransform(Matrix<double>::FromPose({row.start, {}}));
  Run(0, row.frames, [&row](int) { return row.raw; });
  for (int k = 0; k <= row.frames; ++k) {
    const double fov = Lens(k).first;
    ASSERT_GT(fov, 0.0) << "frame " << k;
    ASSERT_LE(fov, 180.0) << "frame " << k;
  }
  EXPECT_GE(Lens(row.frames).first, row.lastFovAtLeast);
  EXPECT_LE(Lens(row.frames).first, row.lastFovAtMost);
}

// Unfiltered, a step moves the camera forwards by raw x maximum / 50 of the
// distance, from the start pose on frame 1. The checked fields of view are
// 2 atan(10 tan(22.5 degrees) / d) with these d: 1e-15 m on frame 2, after
// the first step carried the camera its whole 10 m; 30 x 5^58 m on frame 60, as each step carries it forwards by
// four times the distance (10 m, then 30 m beyond the target, and five times
// as far each frame); 10 x 1.02^599 m on frame 600 backwards.
INSTANTIATE_TEST_SUITE_P(Inputs, ExtremeInput,
                         testing::Values(Extreme{"OntoTheTarget", {0, 0, 10}, 1, 50, 2, 179.99999, 180},
                                         Extreme{"ThroughTheTarget", {0, 0, 10}, 1, 200, 60, 4.5e-40, 4.6e-40},
                                         Extreme{"AwayFromTheTarget", {0, 0, 10}, -1, 1, 600, 3.34e-4, 3.35e-4},
                                         Extreme{"StartedOnTheTarget", {0, 0, 0}, 1, 50, 60, 45, 45}),
                         [](const testing::TestParamInfo<Extreme>& info) { return info.param.name; });

// Hide helpers during recording, hide helpers, hide camera, five spare
// bytes, then the response factor 0.25 and the maximum -2.5.
TEST_F(AutoZoomCam, ReadsItsSavedFieldsInTheirOrder) {
  const testing_support::Bytes fixture = testing_support::ReadFile(RGW_TOOL_TESTS "/horrorcam/savedata.bin");
  harness.SetSaveData(fixture);
  ASSERT_EQ(tool.Load(), 0);
  EXPECT_TRUE(tool.helpers.hideDuringRecording);
  EXPECT_FALSE(tool.helpers.hide);
  EXPECT_TRUE(tool.hideCamera);
  EXPECT_EQ(tool.channel.responseFactor, 0.25);
  EXPECT_EQ(tool.channel.maximum, -2.5);
  EXPECT_EQ(harness.Save(), fixture);
}

TEST_F(AutoZoomCam, ThePageAndTheHideSwitches) {
  EXPECT_EQ(harness.Instance().ConfigProfile().Write("", ""),
            "<configprofile version=\"2.0\" name=\"Start Profile\"><group id=\"-1\" label=\"General Modes\">"
            "<item id=\"0\" label=\"Hide Helpers\">0</item><item id=\"1\" label=\"Hide Helpers During Recording\">0"
            "</item><item id=\"2\" label=\"Hide Camera\">0</item></group><group id=\"-1\" label=\"Input Property "
            "Parameters\"><item id=\"3\" label=\"Forw/Backw Transl Response Factor\" type=\"blob\">mpmZmZmZ2T8=</item>"
            "<item id=\"4\" label=\"Forw/Backw Transl Maximum\" type=\"blob\">AAAAAAAA8D8=</item></group>"
            "</configprofile>");
  harness.ExpectUndoableHide(tool, "Hide Camera", tool.hideCamera, tool.cameraNode.handle);
  harness.ExpectUndoableHide(tool, "Hide Helpers", tool.helpers.hide, tool.targetNode.handle);
}

}  // namespace
}  // namespace vuk::rgw::addon
