#include <gtest/gtest.h>

#include <cmath>

#include "plugins/common/spinkeys.h"
#include "plugins/helicopter/helicopterobject.h"
#include "tests/plugins/toolharness.h"

namespace vuk::rgw::addon {
namespace {

using testing_support::Keys;
using testing_support::ToolHarness;
using Vector = CHeliCamObject::Vector;
using Rotation = CHeliCamObject::Rotation;

constexpr double kPi = 3.141592653589793;

class Helicopter : public testing::Test {
 protected:
  Helicopter() {
    util::Matrix<double> start;
    start.SetTranslation({0, 10, 0});
    tool.body.Transform(0)->SetLocalTransform(start);
  }
  // A run of that many seconds with the raws of the channels as given.
  void Fly(double seconds, std::array<double, HelicopterPlant::kChannelCount> raws = {}) {
    frames = static_cast<int>(std::lround(seconds / harness.Frame()));
    harness.Record(0, frames, [raws](std::size_t channel, int) { return raws[channel]; });
  }
  util::Matrix<double> Body(int frame) { return tool.body.World(harness.TimeOf(frame)); }
  // The nose's heading about Y, from minus Z towards minus X.
  double Heading(int frame) {
    const Vector nose = -Body(frame).Axis(2);
    return std::atan2(-nose.x, -nose.z);
  }

  ToolHarness harness{"Helicopter"};
  CHeliCamObject& tool = harness.Tool<CHeliCamObject>();
  int frames = 0;
};

// At rest it stays at rest: height, tilt and heading all hold.
TEST_F(Helicopter, HoversInPlaceWithoutInputOrWind) {
  Fly(20);
  for (int k = 0; k <= frames; ++k) {
    const util::Matrix<double> body = Body(k);
    ASSERT_LT(std::fabs(body.GetTranslation().y - 10), 0.01) << k;
    ASSERT_LT(std::fabs(Heading(k) - Heading(0)), 1e-6) << k;
    // The tilt is the angle of the body's up from the world's.
    ASSERT_LT(std::acos(std::fmin(1.0, body.Axis(1).Normalized().y)), 1e-3) << k;
  }
}

// The forward channel's value is the wanted speed along the nose, in units
// a second; the body leans into it. The regulator's velocity loop has no
// integral action while not braking, so the drag leaves a shortfall that
// grows with the speed: at a quarter of the input it stays within 5 %.
TEST_F(Helicopter, AForwardReferenceSettlesWithTheNoseDown) {
  Fly(30, {0.25});
  const double wanted = tool.plant.channels[HelicopterPlant::kForward].value;
  ASSERT_GT(wanted, 3);
  const Vector velocity = (Body(frames).GetTranslation() - Body(frames - 1).GetTranslation()) / harness.Frame();
  EXPECT_NEAR(-velocity.z, wanted, 0.05 * wanted);
  EXPECT_NEAR(velocity.x, 0, 0.05 * wanted);
  EXPECT_LT((-Body(frames).Axis(2)).y, -1e-3);
}

// Each speed channel moves the body the way its name says first, in the
// world, as the body starts level and facing minus Z.
struct SpeedCase {
  HelicopterPlant::ChannelIndex channel;
  Vector way;
};

class SpeedChannel : public Helicopter, public testing::WithParamInterface<SpeedCase> {};

TEST_P(SpeedChannel, APositiveValueMovesTheWayItsNameSaysFirst) {
  std::array<double, HelicopterPlant::kChannelCount> raws{};
  raws[GetParam().channel] = 0.5;
  Fly(5, raws);
  const Vector moved = Body(frames).GetTranslation() - Body(0).GetTranslation();
  EXPECT_GT(moved.Dot(GetParam().way), 0.8 * moved.Length()) << moved.x << " " << moved.y << " " << moved.z;
  EXPECT_GT(moved.Length(), 1.0);
}

INSTANTIATE_TEST_SUITE_P(Helicopter, SpeedChannel,
                         testing::Values(SpeedCase{HelicopterPlant::kForward, {0, 0, -1}},
                                         SpeedCase{HelicopterPlant::kRight, {1, 0, 0}},
                                         SpeedCase{HelicopterPlant::kUpDown, {0, 1, 0}}));

// The yaw channel's value v turns the wanted heading at -v radians a
// second: a positive input turns to the right, clockwise from above.
TEST_F(Helicopter, YawInputIntegratesTheHeading) {
  Fly(10, {0, 0, 0, 0.5});
  const double rate = -tool.plant.channels[HelicopterPlant::kYaw].value;
  ASSERT_LT(rate, -0.2);
  const int from = frames / 5;
  double turned = 0;
  for (int k = from + 1; k <= frames; ++k) turned += std::remainder(Heading(k) - Heading(k - 1), 2 * kPi);
  EXPECT_NEAR(turned / ((frames - from) * harness.Frame()), rate, 0.02 * std::fabs(rate));
  EXPECT_LT(std::fabs(Body(frames).GetTranslation().y - 10), 0.05);
}

struct SpinCase {
  const char* rotor;
  double degreesPerFrame;
  int keysPerFrame;  // 1 + the largest turns that fit inside the frame's turn
};

class RotorSpin : public Helicopter, public testing::WithParamInterface<SpinCase> {};

// Each key turns the rotor its commanded way about its own axis, by at most
// the largest turn per key, and a frame's keys add up to its speed.
TEST_P(RotorSpin, FastRotorsGetExtraKeysThatTurnTheCommandedWay) {
  const SpinCase& c = GetParam();
  const bool main = std::string(c.rotor) == "main";
  (main ? tool.dMainRotorSpeed : tool.dTailRotorSpeed) = c.degreesPerFrame;
  const CHeliCamObject::CRotorNode& rotor = main ? static_cast<CHeliCamObject::CRotorNode&>(tool.mainRotor)
                                                 : static_cast<CHeliCamObject::CRotorNode&>(tool.tailRotor);
  const Vector axis = main ? Vector(0, 1, 0) : Vector(1, 0, 0);
  Fly(0.5);
  const Keys& keys = ToolHarness::KeysOf(rotor.handle);
  ASSERT_EQ(keys.size(), static_cast<std::size_t>(1 + frames * c.keysPerFrame));
  const double perFrame = c.degreesPerFrame * kPi / 180;
  double frameTurn = 0;
  for (std::size_t i = 1; i < keys.size(); ++i) {
    // This key's rotation is the former one after a turn in the rotor's own frame.
    const double turn = (keys[i - 1].rotation.Conjugate() * keys[i].rotation).ToRotationVector().Dot(axis);
    ASSERT_GT(turn * perFrame, 0) << i;
    ASSERT_LE(std::fabs(turn), kLargestTurnPerKey + 1e-9) << i;
    frameTurn += turn;
    if (i % c.keysPerFrame == 0) {
      ASSERT_NEAR(frameTurn, perFrame, 1e-9) << i;
      frameTurn = 0;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Rotors, RotorSpin,
                         testing::Values(SpinCase{"main", 90, 1}, SpinCase{"main", 400, 3}, SpinCase{"tail", -178, 1},
                                         SpinCase{"tail", -1000, 6}),
                         [](const testing::TestParamInfo<SpinCase>& info) {
                           return std::string(info.param.rotor) + std::to_string(info.index);
                         });

TEST_F(Helicopter, AnOldSceneFindsItsFollowCameraUnderTheFormerName) {
  harness.Instance().FindNode("FollowCam")->name = "HeliCam";
  tool.followCam.handle = nullptr;
  ASSERT_TRUE(tool.followCam.Find());
  EXPECT_EQ(tool.followCam.handle->name, "HeliCam");
}

}  // namespace
}  // namespace vuk::rgw::addon
