#include "plugins/common/actuatorchannel.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/plugins/toolharness.h"

namespace vuk::rgw::addon {
namespace {

// Unfiltered (factor 0 passes through) and with maximum 1, the output is the
// input stage's value itself.
ActuatorChannel Unfiltered() {
  ActuatorChannel channel("Position", 0.0, 1.0);
  return channel;
}

std::vector<double> Outputs(ActuatorChannel& channel, const std::vector<double>& raws, double dt) {
  std::vector<double> outputs;
  for (double raw : raws) {
    channel.raw = raw;
    channel.Feed(dt);
    outputs.push_back(channel.output);
  }
  return outputs;
}

TEST(ActuatorChannel, KeepStateMakesAPushButtonASwitch) {
  ActuatorChannel channel = Unfiltered();
  channel.keepState = true;
  // Press +1 and let go: latched at 1. Press -1: any press from a set state
  // clears it. Press -1 again: latched at -1. Small values are no press.
  EXPECT_EQ(Outputs(channel, {1, 0, 0, -1, 0, -0.9, -1, 0, 0.4}, 0.04),
            (std::vector<double>{1, 1, 1, 0, 0, -1, -1, -1, -1}));
}

TEST(ActuatorChannel, ChangeLimitBoundsTheRateAndZeroMeansNone) {
  ActuatorChannel channel = Unfiltered();
  channel.changeLimit = 2.0;  // per second
  const std::vector<double> limited = Outputs(channel, {1, 1, 1, 1, 1, 1, -1}, 0.125);
  const std::vector<double> expected = {0.25, 0.5, 0.75, 1, 1, 1, 0.75};
  ASSERT_EQ(limited.size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) EXPECT_DOUBLE_EQ(limited[i], expected[i]) << i;

  ActuatorChannel free = Unfiltered();
  EXPECT_EQ(Outputs(free, {1, -1, 0.5}, 0.125), (std::vector<double>{1, -1, 0.5}));
}

TEST(ActuatorChannel, IntegrateMakesTheInputASpeed) {
  ActuatorChannel channel = Unfiltered();
  channel.integrate = true;
  EXPECT_EQ(Outputs(channel, {1, 1, 0, -1}, 0.5), (std::vector<double>{0.5, 1, 1, 0.5}));
  // Without the integrator the output goes back to 0 with the input.
  ActuatorChannel direct = Unfiltered();
  EXPECT_EQ(Outputs(direct, {1, 1, 0}, 0.5), (std::vector<double>{1, 1, 0}));
}

TEST(ActuatorChannel, TwoFilterStagesTowardsTheMaximum) {
  ActuatorChannel channel("Position", 0.5, 4.0);
  // dt 0.02: one slice of s = 0.5, so each stage closes a quarter of its error.
  Outputs(channel, {1}, 0.02);
  EXPECT_DOUBLE_EQ(channel.stage, 1.0);
  EXPECT_DOUBLE_EQ(channel.output, 0.25);
  Outputs(channel, {1}, 0.02);
  EXPECT_DOUBLE_EQ(channel.stage, 1.75);
  EXPECT_DOUBLE_EQ(channel.output, 0.25 + (1.75 - 0.25) * 0.25);
}

// The histories of a tool on the embedded host, whose undo takes what a rewind forgets.
class ActuatorHistoryOfATool : public testing::Test {
 protected:
  testing_support::ToolHarness harness{"1DPositioner"};
  CInterface& tool = harness.Instance();
};

// A run rewound to a frame, which it keeps, and run again from the next one
// gives what it gave.
TEST_F(ActuatorHistoryOfATool, RewindRepeatsTheRun) {
  ActuatorChannel channel("Position", 0.3, 2.0);
  channel.keepState = true;
  channel.changeLimit = 3;
  ActuatorHistory history;
  const std::vector<double> raws = {0, 1, 0, 0, -1, 0, 1, 1, 0, 0, 0, 1};
  std::vector<double> first;
  for (std::size_t i = 0; i < raws.size(); ++i) {
    channel.raw = raws[i];
    channel.Feed(0.04);
    history.Record(i * 0.04, channel);
    first.push_back(channel.output);
  }
  history.RewindTo(4 * 0.04, channel, tool);
  for (std::size_t i = 5; i < raws.size(); ++i) {
    channel.raw = raws[i];
    channel.Feed(0.04);
    history.Record(i * 0.04, channel);
    EXPECT_EQ(channel.output, first[i]) << "frame " << i;
  }
  // Rewound to before the first frame, the channel is at rest.
  history.RewindTo(-0.04, channel, tool);
  EXPECT_TRUE(history.IsEmpty());
  EXPECT_EQ(channel.output, 0.0);
  EXPECT_EQ(channel.storedState, 0);
}

TEST_F(ActuatorHistoryOfATool, SavesAndLoadsEveryFrame) {
  ActuatorChannel channel("Position", 0.3, 2.0);
  ActuatorHistory history;
  for (int i = 0; i < 20; ++i) {
    channel.raw = i % 3 - 1;
    channel.Feed(0.04);
    history.Record(i * 0.04, channel);
  }
  util::DataChunk saved("history", {});
  history.SaveTo(saved);
  ActuatorHistory loaded;
  ASSERT_TRUE(loaded.LoadFrom(saved));
  util::DataChunk again("history", {});
  loaded.SaveTo(again);
  EXPECT_EQ(again.Flatten(), saved.Flatten());

  ActuatorChannel restored("Position", 0.3, 2.0);
  loaded.RewindTo(10 * 0.04, restored, tool);
  ActuatorChannel expected("Position", 0.3, 2.0);
  history.RewindTo(10 * 0.04, expected, tool);
  EXPECT_EQ(restored.output, expected.output);
  EXPECT_EQ(restored.stage, expected.stage);
}

TEST(ActuatorHistory, AnIncompleteSaveLoadsNothing) {
  ActuatorChannel channel("Position", 0.3, 2.0);
  ActuatorHistory history;
  history.Record(0, channel);
  util::DataChunk saved("history", {});
  history.SaveTo(saved);
  saved.children.pop_back();
  ActuatorHistory loaded;
  EXPECT_FALSE(loaded.LoadFrom(saved));
  EXPECT_TRUE(loaded.IsEmpty());
}

}  // namespace
}  // namespace vuk::rgw::addon
