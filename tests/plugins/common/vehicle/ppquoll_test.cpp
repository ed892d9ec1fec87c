#include "plugins/common/vehicle/ppquoll.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "tests/support/allocationcount.h"

namespace vuk::rgw::addon {
namespace {

using Regulator = PPQuollRTQuatGlobLinVelocityControlWYNewNew;
using util::Quat;
using util::Vector3;

constexpr double kPi = 3.14159265358979323846;

// Steps a regulator at rest, level, at a height of 2 with matching references.
Regulator::Output stepAtRest(Regulator& regulator, const Quat<double>& rotation = Quat<double>()) {
  return regulator.step(0, 0, 2.0, 0, {0.5, -0.5, 2.0}, {}, {}, rotation, 0);
}

double maxAbs(const PPMatrix& m) {
  double largest = 0;
  for (int i = 1; i <= m.rows; ++i) {
    for (int j = 1; j <= m.cols; ++j) largest = std::fmax(largest, std::fabs(m(i, j)));
  }
  return largest;
}

TEST(Regulator, RiccatiSolutionIsSymmetric) {
  Regulator regulator;
  for (int i = 0; i < 200; ++i) stepAtRest(regulator);
  const PPMatrix& p = regulator.riccatiSolution();
  ASSERT_EQ(p.rows, 12);
  ASSERT_EQ(p.cols, 12);
  EXPECT_GT(maxAbs(p), 0);
  for (int i = 1; i <= 12; ++i) {
    for (int j = 1; j < i; ++j) EXPECT_EQ(p(i, j), p(j, i)) << i << "," << j;
  }
}

TEST(Regulator, FirstLinearisationRunsUpToFiftyRoundsThenOneAStep) {
  Regulator regulator;
  stepAtRest(regulator);
  EXPECT_EQ(regulator.riccatiRounds(), 50);
  stepAtRest(regulator);
  EXPECT_EQ(regulator.riccatiRounds(), 51);
}

// The spectral radius of A - B K is below 1: its powers, taken by repeated
// squaring, die out.
TEST(Regulator, ClosedLoopIsStable) {
  Regulator regulator;
  for (int i = 0; i < 2000; ++i) stepAtRest(regulator);
  PPMatrix power = subtract(regulator.stateTransition(), multiply(regulator.controlInput(), regulator.feedbackGain()));
  ASSERT_EQ(power.rows, 12);
  ASSERT_EQ(power.cols, 12);
  for (int squaring = 0; squaring < 16; ++squaring) power = multiply(power, power);
  EXPECT_LT(maxAbs(power), 1e-6);
}

// At its references it carries the weight and turns the body about no axis,
// though the thruster pairs' yaw arms differ.
TEST(Regulator, HoversWithoutTurningWhenAtItsReferences) {
  Regulator regulator;
  // The reference states equal the state, so the feedback cancels.
  const Regulator::Output out = regulator.step(0, 0, 0, 0, {}, {}, {}, {}, 0);
  const PPQuollParameters& p = regulator.model();
  ASSERT_NE(p.rFactors[0], p.rFactors[1]);
  Vector3<double> torque;
  for (int i = 0; i < 4; ++i) torque += thrusterTorque(i + 1, p) * out[i];
  EXPECT_NEAR(out[0] + out[1] + out[2] + out[3], p.gravity * p.mass, 1e-9);
  EXPECT_NEAR(torque.Length(), 0, 1e-9);
  EXPECT_NEAR(out[4], 0, 1e-9);
}

TEST(Regulator, BodyUpsideDownCountsAsLevel) {
  Regulator level, upsideDown;
  const Regulator::Output expected = stepAtRest(level);
  const Regulator::Output actual = stepAtRest(upsideDown, Quat<double>::FromAxisAngle({1, 0, 0}, kPi));
  EXPECT_EQ(upsideDown.tilt(), Quat<double>());
  EXPECT_EQ(actual, expected);
  // Just off upside down it is tilted, nearly half a turn.
  Regulator almost;
  stepAtRest(almost, Quat<double>::FromAxisAngle({1, 0, 0}, kPi - 0.01));
  EXPECT_NEAR(std::fabs(almost.tilt().x), 1.0, 1e-4);
}

TEST(Regulator, FifthControlWeightChangesNothing) {
  Regulator plain, weighted;
  weighted.parameters.rFactors[2] = 7.0;
  for (int i = 0; i < 50; ++i) {
    const Regulator::Output a = plain.step(1.0, -0.5, 3.0, 0.2, {0.1, 0.2, 2.5}, {0.3, 0, 0.1}, {0, 0, 0.1}, {}, 0);
    const Regulator::Output b = weighted.step(1.0, -0.5, 3.0, 0.2, {0.1, 0.2, 2.5}, {0.3, 0, 0.1}, {0, 0, 0.1}, {}, 0);
    ASSERT_EQ(a, b) << i;
  }
  EXPECT_EQ(weighted.controlWeight()(5, 5), 7.0 * 3.0);
  EXPECT_EQ(plain.controlWeight()(5, 5), 0.0);
}

TEST(Regulator, ThrustIsClamped) {
  Regulator regulator;
  // Far below its height reference it asks for all the lift there is.
  const Regulator::Output out = regulator.step(0, 0, 1000, 0, {}, {}, {}, {}, 0);
  for (int i = 0; i < 4; ++i) EXPECT_DOUBLE_EQ(out[i], 35000.0 * 2.0 / 1000) << i;
  // The total lift beyond the weight is held to the yaw channel's limit.
  EXPECT_DOUBLE_EQ(out[4], 50000.0 * 2.0 / 1000);
}

TEST(Regulator, HeadingStaysContinuousOverFullTurns) {
  Regulator regulator;
  const double step = 0.1;
  double previous = regulator.unwrappedHeading(0, 0, 1, 0, 0);
  EXPECT_EQ(previous, 0);
  // Three and a half turns anticlockwise, then back again past the start.
  for (int i = 1; i <= 440; ++i) {
    const double angle = (i <= 220 ? i : 440 - i - 0.5) * step;
    const double heading = regulator.unwrappedHeading(1, 1, 1 + std::cos(angle), 1 + std::sin(angle), 0);
    ASSERT_NEAR(heading, angle, 1e-9) << i;
    ASSERT_LT(std::fabs(heading - previous), 2 * step) << i;
    previous = heading;
  }
  // Coincident points and points closer than the minimum keep the angle.
  EXPECT_EQ(regulator.unwrappedHeading(3, 3, 3, 3, 0), previous);
  EXPECT_EQ(regulator.unwrappedHeading(0, 0, 0, 1, 2.0), previous);
}

TEST(Regulator, TextQuery) {
  Regulator regulator;
  EXPECT_GT(std::strlen(regulator.text("CreatedBy")), 0u);
  EXPECT_STRNE(regulator.text("CreatedBy"), "CreatedBy");
  EXPECT_STREQ(regulator.text("Version"), "Version");
}

TEST(Regulator, RandomBurstHoldsAValueForABurstAndRepeats) {
  Regulator a, b;
  int changes = 0;
  double previous = a.randomBurst(0.1, 1.0, 1.0);
  EXPECT_EQ(b.randomBurst(0.1, 1.0, 1.0), previous);
  for (int i = 0; i < 200; ++i) {
    const double value = a.randomBurst(0.1, 1.0, 1.0);
    ASSERT_EQ(b.randomBurst(0.1, 1.0, 1.0), value);
    // base in [0.5, 5], sign either way.
    ASSERT_GE(std::fabs(value), 0.5);
    ASSERT_LE(std::fabs(value), 5.0);
    if (value != previous) ++changes;
    previous = value;
  }
  // Bursts last up to ten steps of 0.1 s.
  EXPECT_GT(changes, 200 / 11);
  EXPECT_LT(changes, 200);
  EXPECT_DOUBLE_EQ(a.randomBurst(0.1, 2.0, 2.0), 2.0 * std::pow(std::fabs(previous), 2.0) * (previous < 0 ? -1 : 1));
}

TEST(Regulator, StepAllocatesNothingOnceWarm) {
  Regulator regulator;
  stepAtRest(regulator);
  vuk::test::AllocationCount count;
  for (int i = 0; i < 10; ++i) regulator.step(1.0, 0.5, 2.5, 0.1, {0.5, -0.5, 2.0}, {0.1, 0, 0}, {0, 0, 0.1}, {}, 1);
  EXPECT_EQ(count.Made(), 0u);
}

}  // namespace
}  // namespace vuk::rgw::addon
