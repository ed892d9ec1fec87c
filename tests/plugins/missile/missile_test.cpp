#include "plugins/missile/missileobject.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/plugins/toolharness.h"

namespace vuk::rgw::addon {
namespace {

using testing_support::ToolHarness;

constexpr double kH = 1.0 / 30;

// A flight released from rest at the origin, nose down minus Z.
struct Flight {
  explicit Flight(const MissileSettings& given) : settings(given) { flight.Release(Pose(), Pose(), kH); }
  // The angle the body turned over one frame towards the target.
  double Turn(const Vector3& target) {
    const Quat before = state.pose.rotation;
    flight.Fly(kH, target, target);
    return Quat::AngleBetween(before, state.pose.rotation);
  }

  MissileSettings settings;
  MissileState state;
  MissileFlight flight{settings, state};
};

MissileSettings Calm() {
  MissileSettings settings;
  settings.dTurbulenceStrength = 0;
  return settings;
}

// The button counts a press when it rises above 0, and again only after it
// has been back at exactly 0; the missile goes at the press that reaches
// "Fire Nth time".
struct TriggerCase {
  const char* name;
  std::vector<double> button;  // frames 1, 2, ...; 0 after
  std::int32_t fireNth;
  std::int32_t presses;
  bool fired;
};

class MissileTrigger : public testing::TestWithParam<TriggerCase> {};

TEST_P(MissileTrigger, CountsPressesAndFiresOnce) {
  const TriggerCase& c = GetParam();
  ToolHarness harness("Missile");
  auto& tool = harness.Tool<CMissileObject>();
  tool.settings.iFireNth = c.fireNth;
  harness.Record(0, 40, [&c](std::size_t channel, int frame) {
    const auto k = static_cast<std::size_t>(frame - 1);
    return channel == 0 && k < c.button.size() ? c.button[k] : 0.0;
  });
  EXPECT_EQ(tool.state.iTriggerCount, c.presses);
  EXPECT_EQ(tool.state.bFired, c.fired);
  // Once fired it flies: 40 frames hold the release and the flight.
  if (c.fired) {
    EXPECT_GT(tool.state.iFrames, 0);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Buttons, MissileTrigger,
    testing::Values(TriggerCase{"HeldFiresOnce", std::vector<double>(30, 1.0), 1, 1, true},
                    TriggerCase{"BelowZeroDoesNotRearm", {1, 1, -0.5, 1, 1}, 2, 1, false},
                    TriggerCase{"ExactlyZeroRearms", {1, 0, 0.4}, 2, 2, true},
                    TriggerCase{"NeverReached", {1, 0, 1}, 3, 2, false},
                    TriggerCase{"NeverPressed", {}, 1, 0, false}),
    [](const testing::TestParamInfo<TriggerCase>& info) { return info.param.name; });

// However it was released, a frame's move is at most h times the top speed.
TEST(MissileFlight, EachStepIsWithinTheTopSpeed) {
  struct Case {
    double maximum, mass, initialZ, initialY;
    bool addParent;
  };
  const Pose carrierBefore{{0, 0, 0}, Quat()};
  const Pose carrierNow{{0.5, 0, -1}, Quat::FromAxisAngle({0, 1, 0}, 0.1)};  // 33.5 m/s, turning
  for (const Case& c : {Case{25, 0.8, 0, 0, false}, Case{100, 0.99, 50, -20, false}, Case{10, 0, 100, 100, true}}) {
    MissileSettings settings;
    settings.dMaximumSpeed = c.maximum;
    settings.dMass = c.mass;
    settings.dInitialMinusZSpeed = c.initialZ;
    settings.dInitialYSpeed = c.initialY;
    settings.bAddParentSpeed = c.addParent;
    MissileState state;
    MissileFlight flight(settings, state);
    flight.Release(carrierNow, carrierBefore, kH);
    // |(0.5, 0, -1)| / h is the carrier's speed, added to the top speed.
    const double top = c.maximum + (c.addParent ? std::sqrt(1.25) / kH : 0);
    for (int k = 0; k < 300; ++k) {
      flight.Fly(kH, {20, 5, -100}, {20, 5, -100});
      ASSERT_LE(state.vStep.Length(), kH * top * (1 + 1e-12)) << "frame " << k << ", top " << c.maximum;
    }
  }
}

// No gust and no carrier turn: guidance alone turns the body, by at most
// h x limiter a frame and not at all before the unguided time.
TEST(MissileFlight, GuidanceTurnsWithinTheLimiterAfterTheUnguidedTime) {
  for (double limiter : {0.5, 2.0}) {
    for (double unguided : {0.0, 0.5}) {
      MissileSettings settings = Calm();
      settings.dGuidanceLimiter = limiter;
      settings.dUnguidedFlightTime = unguided;
      settings.dGuidanceStrength = 5;  // strong enough that the limiter bites
      Flight f(settings);
      double largest = 0;
      for (int k = 0; k < 60; ++k) {
        const double turn = f.Turn({100, 0, 0});  // at right angles to the nose
        if (k < unguided / kH) {
          ASSERT_EQ(turn, 0.0) << "frame " << k;
        }
        ASSERT_LE(turn, kH * limiter * (1 + 1e-9)) << "frame " << k;
        largest = std::max(largest, turn);
      }
      EXPECT_NEAR(largest, kH * limiter, 1e-9) << limiter;
    }
  }
}

// A target off to the side and above is reached: the missile passes within
// the hit sphere's radius in a time bounded by the path's length at the top
// speed, with room for the turn.
TEST(MissileFlight, HitsAStaticTargetInBoundedTime) {
  const Vector3 target{40, 15, -90};  // ~100 m away, 4 s at 25 m/s
  Flight f(MissileSettings{});
  int frame = 0;
  while (frame < 8 / kH && (target - f.state.pose.translation).Length() > 0.5) {
    f.flight.Fly(kH, target, target);
    ++frame;
  }
  EXPECT_LT(frame * kH, 8.0);
}

}  // namespace
}  // namespace vuk::rgw::addon
