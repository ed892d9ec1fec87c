#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "adaptor/standalone/ticks.h"
#include "plugins/airplaneextended/airplaneextendedobject.h"
#include "tests/plugins/toolharness.h"
#include "util/bytes.h"

namespace vuk::rgw::addon {
namespace {

using testing_support::Bytes;
using testing_support::ToolHarness;
using util::Matrix;
using util::Quat;
using util::Vector3;

constexpr double kPi = 3.141592653589793;

class Airplane : public testing::Test {
 protected:
  // The raw values are the signals themselves.
  void SetUp() override {
    for (InputChannel& channel : tool.cAeroCam.channels) channel.control->deadzone = 0;
  }
  // A run with each channel's raw value a function of the frame.
  void Run(int frames, const std::function<double(std::size_t, int)>& raw) { harness.Record(0, frames, raw); }
  Vector3<double> Position(int frame) { return tool.body.World(harness.TimeOf(frame)).GetTranslation(); }
  // The length of one sub-step in a frame of the harness.
  double SubStep() { return harness.Frame() / std::trunc(harness.Frame() / CAeroCam::kSubStep); }
  void PlaceBody(const Quat<double>& rotation) {
    harness.Transform(tool.body.handle, 0)->SetWorldTransform(Matrix<double>::FromQuat(rotation));
  }

  ToolHarness harness{"AirplaneExt"};
  CAeroCamObject& tool = harness.Tool<CAeroCamObject>();
};

TEST_F(Airplane, MakesItsNodesByNameWithTheCockpitCameraInTheBody) {
  const char* names[] = {"PlaneBody", "BodyRelocatorNode", "TargetMesh", "Propeller", "Propeller2", "Rudder",
                         "Rudder2", "Elevator", "Elevator2", "AileronRight", "AileronRight2", "AileronLeft",
                         "AileronLeft2", "CockpitCam", "FollowCam"};
  const std::vector<CNode*> nodes = harness.ToolNodes();
  ASSERT_EQ(nodes.size(), std::size(names));
  for (std::size_t i = 0; i < nodes.size(); ++i) EXPECT_EQ(nodes[i]->name, names[i]);
  EXPECT_TRUE(tool.cockpitCam.handle->IsSameOrBelow(tool.body.handle));
  EXPECT_EQ(harness.Instance().GetToolPlugin()->GetTitle(), "Quoll Airplane Extended");
}

// At full command the lift along the body's up equals the weight step
// removed each sub-step, so the momentum's height part stays exactly 0.
TEST_F(Airplane, LevelFlightAtFullForwardCommandHoldsItsAltitude) {
  tool.settings.dInitialVelocityPercent = 100;
  Run(450, [](std::size_t channel, int) { return channel == kForward ? 1.0 : 0.0; });
  for (int k = 1; k <= 450; ++k) ASSERT_NEAR(Position(k).y, 0.0, 1e-12) << "frame " << k;
  EXPECT_LT(Position(450).z, -25 * 15.0);  // at least the command's speed along the nose
  EXPECT_NEAR(Position(450).x, 0.0, 1e-12);
}

// Without command: each sub-step h adds the weight step g = mass / 9.81 x
// 0.02 and the drag keeps 1 - h of the vertical momentum, so it settles at
// m = -g (1 - h) / h; the speed filter then passes 1 - 0.6 h / 0.04 of it.
TEST_F(Airplane, WithoutForwardCommandItFallsAtTheDragLimit) {
  Run(900, [](std::size_t, int) { return 0.0; });
  const double h = SubStep();
  const double g = 15 / 9.81 * 0.02;
  const double limit = -g * (1 - h) / h * (1 - 0.6 * h / 0.04);
  const double speed = (Position(900).y - Position(899).y) / harness.Frame();
  EXPECT_NEAR(speed, limit, 1e-9 * std::fabs(limit));
  EXPECT_NEAR(Position(900).x, 0.0, 1e-12);
  EXPECT_NEAR(Position(900).z, 0.0, 1e-12);
}

// "Brake All" drops gravity and divides the released commands at every
// sub-step; the momentum left dies away with the drag, e^(-0.3 t) at the
// slowest: after 45 s, less than 2e-6 of it.
TEST_F(Airplane, BrakeAllStopsItInTheAir) {
  tool.settings.dInitialVelocityPercent = 100;
  Run(1500, [](std::size_t channel, int k) {
    if (channel == kForward) return k > 60 ? 0.0 : 1.0;
    return channel == kBrakeAll && k > 60 ? 1.0 : 0.0;
  });
  const double cruise = (Position(60) - Position(30)).Length();
  EXPECT_GT(cruise, 25.0);
  EXPECT_LT((Position(1500) - Position(1470)).Length(), 2e-6 * cruise);
}

struct RegulatorCase {
  const char* name;
  bool realistic;
  double regulatorRaw;
  bool levels;
};

class Regulator : public Airplane, public testing::WithParamInterface<RegulatorCase> {};

// Tilted with the sticks centred, the regulator's memory turns towards the
// body's yaw alone: the rate limit (the channel's maximum, 1 rad/s) lets
// each sub-step h ask for at most h, of which the filter takes the share
// (h / 0.04) x 0.06, so the tilt goes at 1.5 h rad/s and the body follows.
// Realistic control regulates only while the channel is held; otherwise
// nothing turns the body.
TEST_P(Regulator, ReturnsRollAndPitchToLevel) {
  tool.cAeroCam.params.bRealisticControl = GetParam().realistic;
  PlaceBody(Quat<double>::FromAxisAngle({0, 0, 1}, 0.5) * Quat<double>::FromAxisAngle({1, 0, 0}, 0.3) *
            Quat<double>::FromAxisAngle({0, 1, 0}, 0.7));
  const double tilt = std::acos(tool.body.World(0).Axis(1).y);
  const double levelAfter = tilt / (1.5 * SubStep());
  const int frames = static_cast<int>(1.2 * levelAfter / harness.Frame());
  Run(frames, [](std::size_t channel, int) { return channel == kRegulator ? GetParam().regulatorRaw : 0.0; });
  const auto up = [this](double time) { return tool.body.World(time).Axis(1).y; };
  if (GetParam().levels) {
    EXPECT_LT(up(0.8 * levelAfter), std::cos(0.1 * tilt));
    EXPECT_NEAR(up(harness.TimeOf(frames)), 1.0, 1e-9);
  } else {
    EXPECT_NEAR(up(harness.TimeOf(frames)), std::cos(tilt), 1e-9);
  }
}

INSTANTIATE_TEST_SUITE_P(Modes, Regulator,
                         testing::Values(RegulatorCase{"AtRest", false, 0, true},
                                         RegulatorCase{"HeldOff", false, 1, false},
                                         RegulatorCase{"RealisticHeld", true, 1, true},
                                         RegulatorCase{"RealisticAtRest", true, 0, false}),
                         [](const auto& info) { return std::string(info.param.name); });

// Each surface settles at raw x multiplier x pi / 4, positive about its axis
// for the rudder and the left aileron; the second copy follows the first.
TEST_F(Airplane, ControlSurfacesDeflectRawTimesMultiplierTimesAQuarterTurn) {
  tool.settings.dRudderAngleMult = 1.5;
  tool.settings.dElevatorAngleMult = 2;
  tool.settings.dLeftAileronAngleMult = 0.5;
  tool.settings.dRightAileronAngleMult = -1;
  const double raws[kAeroChannelCount] = {0, 0, 0, 0.6, -0.4, 0.8};
  Run(120, [&raws](std::size_t channel, int) { return raws[channel]; });
  struct Expected {
    ToolNode* node;
    ToolNode* copy;
    Vector3<double> axis;
    double angle;
  };
  const Expected parts[] = {
      {&tool.rudder, &tool.rudder2, {0, 1, 0}, 0.6 * 1.5 * kPi / 4},
      {&tool.elevator, &tool.elevator2, {1, 0, 0}, -(-0.4 * 2) * kPi / 4},
      {&tool.aileronLeft, &tool.aileronLeft2, {1, 0, 0}, 0.8 * 0.5 * kPi / 4},
      {&tool.aileronRight, &tool.aileronRight2, {1, 0, 0}, -(0.8 * -1) * kPi / 4},
  };
  const double end = harness.TimeOf(120);
  for (const Expected& part : parts) {
    for (ToolNode* node : {part.node, part.copy}) {
      const Quat<double> turn = node->Local(end).ToQuat();
      const Quat<double> wanted = Quat<double>::FromAxisAngle(part.axis, part.angle);
      EXPECT_NEAR(std::fabs(turn.Dot(wanted)), 1.0, 1e-12) << node->name;
    }
  }
}

// In autonomous mode the airplane steers after the TargetMesh: with the
// target ahead and to the right it turns right, banks into the turn, and
// closes in.
TEST_F(Airplane, AutonomousModeFollowsTheTarget) {
  tool.cAeroCam.params.bAutonomousMode = true;
  Matrix<double> placed;
  placed.SetTranslation({60, 0, -120});
  harness.Transform(tool.target.handle, 0)->SetWorldTransform(placed);
  Run(100, [](std::size_t, int) { return 0.0; });
  const double start = placed.GetTranslation().Length();
  const Matrix<double> body = tool.body.World(harness.TimeOf(100));
  const Vector3<double> toTarget = placed.GetTranslation() - body.GetTranslation();
  EXPECT_LT(toTarget.Length(), 0.2 * start);
  EXPECT_GT(-body.Axis(2).x, 0.3);  // the nose has turned towards plus X
  EXPECT_GT(body.Axis(1).x, 0.3);   // banked right
}

struct PropellerCase {
  const char* name;
  bool reverseFirst;
  double firstSense, secondSense;  // the way each turns about its Z
};

class Propellers : public Airplane, public testing::WithParamInterface<PropellerCase> {};

// At a constant 300 degrees a frame a propeller settles at 300 / 1.22 =
// 245.9 degrees, 4.2918 rad, a frame: more than one key's largest turn, so
// each frame gets one extra key where that turn is done, turning the way
// the propeller is driven (minus Z, or plus for a reversed first one).
TEST_P(Propellers, FasterThanTheKeyLimitGetExtraKeysTurningTheCommandedWay) {
  tool.settings.bConstantPropellerSpeed = true;
  tool.settings.dPropellerSpeed = 300;
  tool.settings.bReverseFirstPropeller = GetParam().reverseFirst;
  Run(60, [](std::size_t, int) { return 0.0; });
  const double spin = 300 * kPi / 180 / 1.22;
  const auto tick = [this](double time) { return adaptor::standalone::TicksFromSeconds(time); };
  const double start = harness.TimeOf(59), end = harness.TimeOf(60);
  const std::pair<ToolNode*, std::pair<double, double>> propellers[] = {
      {&tool.propeller, {3.1101767270538954, GetParam().firstSense}},
      {&tool.propeller2, {3.110487775831478, GetParam().secondSense}}};
  for (const auto& [node, limit] : propellers) {
    std::vector<adaptor::standalone::TransformKey> inside;
    const adaptor::standalone::TransformKey* before = nullptr;
    for (const auto& key : ToolHarness::KeysOf(node->handle)) {
      if (key.tick == tick(start)) before = &key;
      if (key.tick > tick(start) && key.tick < tick(end)) inside.push_back(key);
    }
    ASSERT_TRUE(before);
    ASSERT_EQ(inside.size(), 1u) << node->name;
    EXPECT_EQ(inside[0].tick, tick(end - harness.Frame() * (1 - limit.first / spin))) << node->name;
    const Quat<double> turn = before->rotation.Conjugate() * inside[0].rotation;
    EXPECT_NEAR(turn.Angle(), limit.first, 1e-6) << node->name;
    EXPECT_GT(turn.z * limit.second, 0.0) << node->name;
  }
}

INSTANTIATE_TEST_SUITE_P(Airplane, Propellers,
                         testing::Values(PropellerCase{"AsBuilt", false, -1, -1},
                                         PropellerCase{"FirstReversed", true, 1, -1}),
                         [](const auto& info) { return std::string(info.param.name); });

// The oldest scenes hold the bare settings structure: sixteen flag bytes,
// each channel's response factor and maximum, then seven parameters.
TEST_F(Airplane, ReadsTheBareSettingsStructureOfTheOldestScenes) {
  Bytes old;
  util::ByteWriter out(old);
  for (std::uint8_t flag : {1, 0, 1, 0, 1, 1}) out.Put(flag);
  out.PutZeros(10);
  for (std::size_t i = 0; i < kAeroChannelCount; ++i) {
    out.Put(0.01 * static_cast<double>(i + 1));
    out.Put(10.0 + static_cast<double>(i));
  }
  for (double value : {2.0, 20.0, 0.2, 0.3, 50.0, 0.5, 40.0}) out.Put(value);
  ASSERT_EQ(old.size(), 248u);
  tool.cAeroCam.params.dWindStrength = 7;  // not in the structure: it takes its start
  harness.SetSaveData(old);
  ASSERT_EQ(tool.Load(), 0);
  const AeroSettings& s = tool.settings;
  const AeroParameters& p = tool.cAeroCam.params;
  EXPECT_TRUE(s.helpers.hideDuringRecording && !s.helpers.hide && s.bHideCockpitCam && !s.bHideFollowCam);
  EXPECT_TRUE(s.bFollowCamAllDirections && p.bRealisticControl);
  EXPECT_EQ(tool.cAeroCam.channels[kAfterBurner].responseFactor, 0.11);
  EXPECT_EQ(tool.cAeroCam.channels[kAfterBurner].maximum, 20.0);
  EXPECT_EQ(p.dRelativeScale, 2.0);
  EXPECT_EQ(p.dVirtualMass, 20.0);
  EXPECT_EQ(p.dTurbulenceOffset, 0.5);
  EXPECT_EQ(s.dInitialVelocityPercent, 40.0);
  EXPECT_EQ(p.dWindStrength, 0.0);
  EXPECT_TRUE(tool.history.IsEmpty());
}

struct VersionCase {
  std::int32_t version;
  bool loads;
  double wind;         // came with the newer keys
  bool relativeMode;   // came later
  bool autonomous;     // came last
  bool historyEmpty;   // the pose's history came with the newer keys
};

class SavedVersion : public Airplane, public testing::WithParamInterface<VersionCase> {};

// A scene saved now, its version entry set to an older one: keys that
// version didn't have are not read, and take their starts.
TEST_P(SavedVersion, ReadsOnlyTheKeysItsVersionHad) {
  AeroParameters& p = tool.cAeroCam.params;
  p.dWindStrength = 5;
  p.bRelativeVelocityMode = true;
  p.bAutonomousMode = true;
  Run(10, [](std::size_t, int) { return 0.3; });
  util::DataChunk chunk;
  ASSERT_TRUE(chunk.Read(harness.Save()));
  Bytes version;
  util::ByteWriter(version).Put(GetParam().version);
  for (util::DataChunk& child : chunk.children) {
    if (child.name == "iVersion") child.data = version;
  }
  harness.SetSaveData(chunk.Flatten());
  const VersionCase& expected = GetParam();
  ASSERT_EQ(tool.Load() == 0, expected.loads);
  if (!expected.loads) return;
  EXPECT_EQ(p.dWindStrength, expected.wind);
  EXPECT_EQ(p.bRelativeVelocityMode, expected.relativeMode);
  EXPECT_EQ(p.bAutonomousMode, expected.autonomous);
  EXPECT_EQ(tool.history.IsEmpty(), expected.historyEmpty);
}

INSTANTIATE_TEST_SUITE_P(Airplane, SavedVersion,
                         testing::Values(VersionCase{99, false, 0, false, false, true},
                                         VersionCase{104, true, 0, false, false, true},
                                         VersionCase{113, true, 0, false, false, true},
                                         VersionCase{114, true, 5, false, false, false},
                                         VersionCase{8102, true, 5, false, false, false},
                                         VersionCase{8103, true, 5, true, false, false},
                                         VersionCase{8104, true, 5, true, false, false},
                                         VersionCase{8105, true, 5, true, true, false},
                                         VersionCase{8106, false, 0, false, false, true}),
                         [](const auto& info) { return std::to_string(info.param.version); });

}  // namespace
}  // namespace vuk::rgw::addon
