#include "plugins/1dpositioner/1dpositionerobject.h"

#include <gtest/gtest.h>

#include "adaptor/standalone/standalonenode.h"
#include "tests/plugins/toolharness.h"

namespace vuk::rgw::addon {
namespace {

using testing_support::Keys;
using testing_support::ToolHarness;
using util::Matrix;
using util::Quat;
using util::Vector3;

constexpr double kHalfPi = 1.5707963267948966;

class Positioner : public testing::Test {
 protected:
  // A run with the Position channel fed by the function of the frame; the
  // spinner channels stay at rest.
  template <typename Raw>
  void Run(int first, int last, Raw raw) {
    harness.Record(first, last, [raw](std::size_t channel, int k) { return channel == 0 ? raw(k) : 0.0; });
  }

  ToolHarness harness{"1DPositioner"};
  C1DPositionerObject& tool = harness.Tool<C1DPositionerObject>();
};

TEST_F(Positioner, IsAnAccessoryWithAWireCage) {
  EXPECT_EQ(harness.Instance().GetToolPlugin()->GetCategory(), "Accessory");
  EXPECT_EQ(harness.ToolNodes(), std::vector<CNode*>{tool.cageNode.handle});
  EXPECT_TRUE(static_cast<adaptor::standalone::StandaloneNode*>(tool.cageNode.handle)->GetHostNode()->wireframe);
}

// Unfiltered, the output is maximum x input: the cage moves at that speed
// down its local Z, one frame's distance each frame after the start, and
// keeps its turn and scale.
TEST_F(Positioner, MovesAlongItsMinusZAtTheOutputSpeed) {
  tool.channel.responseFactor = 0;
  tool.channel.maximum = 2;
  Matrix<double> placed = Matrix<double>::FromQuat(Quat<double>::FromAxisAngle({0, 1, 0}, kHalfPi));
  for (int axis = 0; axis < 3; ++axis) placed.SetAxis(axis, placed.Axis(axis) * 2);
  placed.SetTranslation({1, 2, 3});
  tool.cageNode.Transform(0)->SetLocalTransform(placed);
  Run(0, 90, [](int) { return 1.0; });
  // Turned a quarter about Y, local minus Z is world minus X.
  for (int k = 0; k <= 90; ++k) {
    const Matrix<double> local = tool.cageNode.Local(k * harness.Frame());
    ASSERT_NEAR((local.GetTranslation() - Vector3<double>(1 - 2.0 * k * harness.Frame(), 2, 3)).Length(), 0, 1e-12)
        << "frame " << k;
    for (int axis = 0; axis < 3; ++axis) ASSERT_NEAR((local.Axis(axis) - placed.Axis(axis)).Length(), 0, 1e-12);
  }
  EXPECT_EQ(ToolHarness::KeysOf(tool.cageNode.handle).size(), 91u);  // the placed start and 90 frames
}

TEST_F(Positioner, AFilteredStartRisesSmoothlyToTheMaximumSpeed) {
  tool.channel.responseFactor = 0.3;
  tool.channel.maximum = 1;
  Run(0, 150, [](int) { return 1.0; });
  double previousSpeed = 0;
  const auto z = [this](int k) { return tool.cageNode.Local(k * harness.Frame()).GetTranslation().z; };
  for (int k = 2; k <= 150; ++k) {
    const double speed = (z(k - 1) - z(k)) / harness.Frame();
    ASSERT_GE(speed, previousSpeed - 1e-12) << "frame " << k;
    ASSERT_LE(speed, 1.0 + 1e-12) << "frame " << k;
    previousSpeed = speed;
  }
  EXPECT_NEAR(previousSpeed, 1.0, 1e-6);
}

// A run restarted at a frame continues from the state that frame had, and a
// resimulation of the take gives the recording's keys.
TEST_F(Positioner, ARunFromAMiddleFrameRepeatsTheFullRun) {
  tool.channel.keepState = true;
  tool.channel.changeLimit = 5;
  const auto raw = [](int k) { return (k / 10) % 3 == 1 ? 1.0 : 0.0; };
  Run(0, 80, raw);
  const Keys full = ToolHarness::KeysOf(tool.cageNode.handle);
  Run(37, 80, raw);
  EXPECT_EQ(testing_support::HashOf(ToolHarness::KeysOf(tool.cageNode.handle)), testing_support::HashOf(full));
  // Resimulated from the start and from the middle, through the recorder's
  // time base: the middle frame's record is found at exactly its time.
  for (int from : {0, 37}) {
    harness.Resimulate(from, 80);
    EXPECT_EQ(testing_support::HashOf(ToolHarness::KeysOf(tool.cageNode.handle)), testing_support::HashOf(full))
        << "from frame " << from;
  }
}

// Where the fields of version 100 lie: the fixture's values, and a rewind
// through its three recorded frames.
TEST_F(Positioner, ReadsTheFieldsOfItsVersion100Data) {
  harness.SetSaveData(testing_support::ReadFile(RGW_TOOL_TESTS "/1dpositioner/savedata_v100.bin"));
  ASSERT_EQ(tool.Load(), 0);
  EXPECT_FALSE(tool.helpers.hideDuringRecording);
  EXPECT_TRUE(tool.helpers.hide);
  EXPECT_TRUE(tool.channel.keepState);
  EXPECT_FALSE(tool.channel.integrate);
  EXPECT_EQ(tool.channel.responseFactor, 0.3);
  EXPECT_EQ(tool.channel.maximum, 2.0);
  EXPECT_EQ(tool.channel.changeLimit, 0.5);
  ActuatorChannel state("Position", 0.3, 2.0);
  tool.history.RewindTo(2.5 / 30, state, harness.Instance());
  EXPECT_EQ(state.output, 0.2);
  EXPECT_EQ(state.lastState, 0);
  tool.history.RewindTo(1.5 / 30, state, harness.Instance());
  EXPECT_EQ(state.lastState, 1);
}

TEST_F(Positioner, HideHelpersUndoesThroughTheHost) {
  harness.ExpectUndoableHide(tool, "Hide Helpers", tool.helpers.hide, tool.cageNode.handle);
}

}  // namespace
}  // namespace vuk::rgw::addon
