// The 4-Wheeler in autonomous mode, as a user rigs it: the TargetMesh keyed
// along a path, and the car choosing its own gas and steering to follow.

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "core/corenode.h"
#include "tests/plugins/carextended/cartesting.h"

namespace vuk::rgw::addon {
namespace {

constexpr char kTargetUnderBody[] =
    "The TargetMesh is parented to the CarBodyMesh.\nThis will mess up the autonomous mode making the car spin.";

class CarFollowing : public Car {
 public:
  void SetUp() override {
    Car::SetUp();
    tool.cCarCam.params.bAutonomousMode = true;
    length = tool.cCarCam.dLength;
  }
  // The target keyed at every frame up to `last`, where `at` puts it.
  template <typename At>
  void KeyTarget(int last, At at) {
    for (int k = 0; k <= last; ++k) {
      Matrix pose;
      pose.SetTranslation(at(k));
      harness.Transform(tool.target.handle, harness.TimeOf(k))->SetWorldTransform(pose);
    }
  }
  // The base's speed along the world's Z over frame k, in L per second: the
  // car's own, without the body's bounce.
  double SpeedZ(int k) {
    const auto z = [this](int frame) { return tool.base.World(harness.TimeOf(frame)).GetTranslation().z; };
    return (z(k) - z(k - 1)) / harness.Frame() / length;
  }

  double length = 0;
};

// A target driving down -Z at one car length a second: the car takes up its
// speed and, after a few slow swings of its follow filter, trails it by a
// lag that stops changing, never leaving the line.
TEST_F(CarFollowing, FollowsATargetOnAStraightLineWithASteadyLagAndNoSidewaysError) {
  constexpr int kFrames = 900;
  const double start = -3 * length;
  KeyTarget(kFrames, [&](int k) { return Vector(0, 0.3, start - length * harness.TimeOf(k)); });
  Run(0, kFrames, NoInput);
  std::vector<double> lags;
  for (int k = 1; k <= kFrames; ++k) {
    const Matrix body = BodyAt(k);
    ASSERT_NEAR(body.GetTranslation().x, 0, 1e-9 * length) << k;
    ASSERT_NEAR(body.Axis(0).Normalized().x, 1, 1e-12) << k;
    const double front = body.GetTranslation().z - 0.5 * length;
    lags.push_back(front - (start - length * harness.TimeOf(k - 1)));
  }
  // The last two seconds: the speed of the target, and a lag held within a
  // hundredth of a length.
  for (int k = kFrames - 60; k <= kFrames; ++k) ASSERT_NEAR(SpeedZ(k), -1.0, 0.02) << k;
  const auto last = lags.end() - 60;
  const auto [least, most] = std::minmax_element(last, lags.end());
  EXPECT_LT(*most - *least, 0.01 * length);
  EXPECT_GT(*least, tool.cCarCam.params.dIgnoreSphereRadius * length);
}

// A target standing behind the car: it backs towards it, asking each frame
// "Reverse Max Vel Mult" (a half) of the speed the same lag ahead would ask.
TEST_F(CarFollowing, ReversesTowardsATargetBehindAtHalfTheSpeedOfTheSameLagAhead) {
  const double front = BodyAt(0).GetTranslation().z - 0.5 * length;
  const double lag = 1.2 * length;
  SideCar ahead;
  ahead.tool.cCarCam.params.bAutonomousMode = true;
  Matrix pose;
  pose.SetTranslation({0, 0.3, front - lag});
  ahead.harness.Transform(ahead.tool.target.handle, 0)->SetWorldTransform(pose);
  ahead.Run(0, 10, NoInput);
  KeyTarget(0, [&](int) { return Vector(0, 0.3, front + lag); });
  Run(0, 150, NoInput);
  for (int k = 1; k <= 10; ++k) {
    const double forward = ahead.tool.history.GasValueAt(harness.TimeOf(k));
    ASSERT_GT(forward, 0) << k;
    // Exactly at the first frame; then the two lags part as the cars move.
    ASSERT_NEAR(tool.history.GasValueAt(harness.TimeOf(k)), -0.5 * forward, (k == 1 ? 1e-9 : 0.01) * forward) << k;
  }
  // Backwards all the way until it reaches the target's sphere, near frame 130.
  for (int k = 1; k <= 120; ++k) ASSERT_GE(SpeedZ(k), 0) << k;
  EXPECT_GT(BodyAt(150).GetTranslation().z, 0.5 * lag);
}

// A target inside the ignore sphere, at the very front point where it has no
// direction: the car brakes and stands, its numbers all finite.
TEST_F(CarFollowing, StandsStillWithATargetInsideTheIgnoreSphere) {
  const Vector front = BodyAt(0).GetTranslation() - Vector(0, 0, 0.5 * length);
  KeyTarget(0, [&](int) { return front; });
  Run(0, 60, NoInput);
  for (int k = 1; k <= 60; ++k) {
    ASSERT_NEAR((BodyAt(k).GetTranslation() - BodyAt(0).GetTranslation()).Length(), 0, 1e-6 * length) << k;
  }
  for (const testing_support::Keys& keys : AllKeys()) {
    for (const auto& key : keys) ASSERT_TRUE(std::isfinite(key.position.Length() + key.rotation.w));
  }
  EXPECT_EQ(tool.cCarCam.inputs[pcInput_STEERING_WHEEL].value, 0.0);
}

struct TargetRig {
  bool autonomous;
  bool underBody;
};

class CarTargetRig : public Car, public testing::WithParamInterface<TargetRig> {};

TEST_P(CarTargetRig, WarnsOfATargetUnderTheBodyInAutonomousMode) {
  tool.cCarCam.params.bAutonomousMode = GetParam().autonomous;
  if (GetParam().underBody) {
    static_cast<core::CoreNode*>(tool.target.handle)->SetParent(static_cast<core::CoreNode*>(tool.body.handle));
  }
  Run(0, 1, NoInput);
  EXPECT_EQ(Warned(kTargetUnderBody), GetParam().autonomous && GetParam().underBody);
}

INSTANTIATE_TEST_SUITE_P(Rigs, CarTargetRig,
                         testing::Values(TargetRig{true, true}, TargetRig{true, false}, TargetRig{false, true}));

}  // namespace
}  // namespace vuk::rgw::addon
