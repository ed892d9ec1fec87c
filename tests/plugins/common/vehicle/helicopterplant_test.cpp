#include "plugins/common/vehicle/helicopterplant.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "tests/support/allocationcount.h"

namespace vuk::rgw::addon {
namespace {

constexpr double kFrame = 1.0 / 30;

// A plant at rest at a height of 5, references matching.
HelicopterPlant hovering(double height = 5) {
  HelicopterPlant plant;
  const PoseRecord pose{{1, height, -2}, {}};
  PlantInputRecord record;
  record.heightReference = height;
  plant.reset(pose, pose, pose, record, kFrame);
  return plant;
}

void fly(HelicopterPlant& plant, double seconds) {
  for (int frame = 0; frame < std::lround(seconds / kFrame); ++frame) plant.advance(kFrame);
}

TEST(HelicopterPlant, ChannelsInOrder) {
  const HelicopterPlant plant;
  const char* names[] = {"Forw/Backw Speed", "Right/Left Speed", "Up/Down Speed", "Yaw Speed (Right/Left)",
                         "Brake All", "Wind Turbulence Strength"};
  const double maxima[] = {20, 15, 5, 0.7, 50, 10};
  for (int i = 0; i < HelicopterPlant::kChannelCount; ++i) {
    EXPECT_STREQ(plant.channels[i].name, names[i]);
    EXPECT_EQ(plant.channels[i].maximum, maxima[i]);
  }
}

TEST(HelicopterPlant, HoldsItsHoverWithoutInputOrWind) {
  HelicopterPlant plant = hovering();
  // The unequal yaw arms need a moment of differential thrust to settle.
  fly(plant, 2.0);
  EXPECT_LT((plant.position() - util::Vector3<double>(1, 5, -2)).Length(), 0.005);
  const util::Vector3<double> settled = plant.position();
  fly(plant, 10.0);
  EXPECT_LT((plant.position() - settled).Length(), 0.001);
  EXPECT_LT(plant.angularVelocity().Length(), 1e-3);
}

TEST(HelicopterPlant, ClimbsAtTheCommandedRate) {
  HelicopterPlant plant = hovering();
  fly(plant, 1.0);
  plant.channels[HelicopterPlant::kUpDown].raw = 0.5;  // 2.5 units a second
  double highest = 0;
  for (int second = 0; second < 10; ++second) {
    fly(plant, 1.0);
    highest = std::fmax(highest, std::fabs(plant.velocity().y));
    ASSERT_LT(plant.angularVelocity().Length(), 1.0) << second;
  }
  EXPECT_NEAR(plant.velocity().y, 2.5, 0.1);
  EXPECT_LT(highest, 3.0);
  EXPECT_LT(std::fabs(plant.velocity().x) + std::fabs(plant.velocity().z), 0.05);
}

TEST(HelicopterPlant, ResetTakesTheHeightFromThePoseWhenFarFromTheRecord) {
  const struct {
    double recordHeight;
    double expected;
  } cases[] = {{5.5, 5.5}, {6.0, 6.0}, {6.2, 5.0}, {3.0, 5.0}};
  for (const auto& c : cases) {
    HelicopterPlant plant;
    const PoseRecord pose{{0, 5, 0}, {}};
    PlantInputRecord record;
    record.heightReference = c.recordHeight;
    record.yaw = 0.25;
    plant.reset(pose, pose, pose, record, kFrame);
    EXPECT_EQ(plant.heightReference(), c.expected) << c.recordHeight;
    EXPECT_EQ(plant.regulator.yaw(), 0.25);
  }
}

TEST(HelicopterPlant, ResetEstimatesVelocitiesFromThePoses) {
  HelicopterPlant plant;
  const auto turn = util::Quat<double>::FromAxisAngle({0, 1, 0}, 0.1);
  const PoseRecord earlier{{0, 5, 0}, {}}, before{{0.1, 5, 0}, turn}, now{{0.2, 5, 0}, turn * turn};
  plant.reset(now, before, earlier, PlantInputRecord{}, 0.05);
  EXPECT_NEAR(plant.velocity().x, 2.0, 1e-12);
  EXPECT_NEAR(plant.angularVelocity().y, 2.0, 1e-12);
  EXPECT_EQ(plant.poses().Current().position, now.position);
}

TEST(HelicopterPlant, SubStepsAreEqualAndAtMostTheMaximum) {
  const struct {
    double dt;
    int steps;
  } cases[] = {{0.005, 1}, {0.013, 1}, {kFrame, 3}, {0.039, 3}, {1.0, 77}};
  for (const auto& c : cases) {
    EXPECT_EQ(HelicopterPlant::subStepCount(c.dt), c.steps) << c.dt;
    // A frame is its sub-steps taken one by one.
    HelicopterPlant whole = hovering(), split = hovering();
    whole.channels[HelicopterPlant::kForward].raw = split.channels[HelicopterPlant::kForward].raw = 0.3;
    whole.advance(c.dt);
    for (int i = 0; i < c.steps; ++i) split.advance(c.dt / c.steps);
    EXPECT_EQ(whole.position(), split.position()) << c.dt;
  }
}

HelicopterPlant windyFlight() {
  HelicopterPlant plant = hovering();
  plant.channels[HelicopterPlant::kWind].raw = 0.5;
  plant.channels[HelicopterPlant::kForward].raw = 0.2;
  plant.channels[HelicopterPlant::kYaw].raw = 0.3;
  fly(plant, 5.0);
  return plant;
}

TEST(HelicopterPlant, TwoRunsAreBitIdentical) {
  const HelicopterPlant a = windyFlight(), b = windyFlight();
  EXPECT_EQ(a.position(), b.position());
  EXPECT_EQ(a.rotation(), b.rotation());
  EXPECT_NE(a.position(), hovering().position());
}

TEST(HelicopterPlant, AdvanceAllocatesNothingOnceWarm) {
  HelicopterPlant plant = windyFlight();
  vuk::test::AllocationCount count;
  fly(plant, 1.0);
  EXPECT_EQ(count.Made(), 0u);
}

}  // namespace
}  // namespace vuk::rgw::addon
