#include "plugins/humanizercam/humanizercamobject.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "tests/plugins/toolharness.h"

namespace vuk::rgw::addon {
namespace {

using testing_support::HashOf;
using testing_support::ToolHarness;
using util::Matrix;
using util::Quat;

constexpr int kFrames = 600;

// The shake's angle from the base pose: its RMS and peak over a take.
struct ShakeAngles {
  double rms = 0;
  double peak = 0;
};

class HumanizerCam : public testing::Test {
 protected:
  HumanizerCam() {
    // A base pose turned and moved away from the origin, so that a shake
    // that leaked into the translation would show.
    base = Matrix<double>::FromQuat(Quat<double>::FromAxisAngle({1, 2, 3}, 0.7));
    base.SetTranslation({4, -5, 6});
    tool.cameraNode.Transform(0)->SetLocalTransform(base);
    // As the key keeps it.
    base = tool.cameraNode.Local(0);
  }
  // A take with "Shaker Amplitude" fed by the function of the frame; the
  // spinner channels rest.
  template <typename Raw>
  void Run(int first, int last, Raw raw) {
    harness.Record(first, last, [raw](std::size_t channel, int k) { return channel == 0 ? raw(k) : 0.0; });
  }
  ShakeAngles Angles() {
    ShakeAngles angles;
    for (int k = 1; k <= kFrames; ++k) {
      const double angle = Quat<double>::AngleBetween(base.ToQuat(), tool.cameraNode.Local(harness.TimeOf(k)).ToQuat());
      angles.rms += angle * angle / kFrames;
      angles.peak = std::max(angles.peak, angle);
    }
    angles.rms = std::sqrt(angles.rms);
    return angles;
  }
  // The keys the tool wrote: the start frame's is the host's, which keys a
  // rig where it stands when a take begins.
  std::uint64_t KeysHash() {
    const testing_support::Keys& keys = ToolHarness::KeysOf(tool.cameraNode.handle);
    return HashOf({keys.begin() + 1, keys.end()});
  }

  ToolHarness harness{"HumanizerCam"};
  CHumanizerCamObject& tool = harness.Tool<CHumanizerCamObject>();
  Matrix<double> base;
};

TEST_F(HumanizerCam, IsOneCameraWithAShakerChannelOfExponent13) {
  EXPECT_EQ(harness.ToolNodes(), std::vector<CNode*>{tool.cameraNode.handle});
  EXPECT_EQ(tool.cameraNode.handle->name, "HumanizerCam");
  EXPECT_EQ(harness.Instance().GetToolPlugin()->GetPath(), "humanizercam");
  EXPECT_EQ(harness.Instance().FindInput("Shaker Amplitude")->exponent, 1.3);
}

// The shake turns the camera about its base position and never moves it.
TEST_F(HumanizerCam, ChangesOnlyTheRotation) {
  Run(0, kFrames, [](int k) { return std::sin(0.05 * k); });
  EXPECT_EQ(tool.cameraNode.mInit, base);
  for (int k = 1; k <= kFrames; ++k) {
    ASSERT_EQ(tool.cameraNode.Local(harness.TimeOf(k)).GetTranslation(), base.GetTranslation()) << "frame " << k;
  }
  EXPECT_GT(Angles().peak, 1e-3);
}

// Every impulse is sign x A x m with A = (channel output + Shake Multiplier)
// / 100 and m independent of A, and the filters are linear: with the same
// draws, the angles scale as A. The channel's output is 4 (its maximum) at
// full deflection. Only the impulses' axes, which follow the shake itself,
// are not linear in A: a tilt of at most the peak angle p turns each
// impulse without changing its length, and over a take of random signs the
// first-order turns cancel, leaving a relative error of order p^2 (seen: a
// few parts in 10^4 at p = 0.18 rad, where p^2 = 0.03).
struct Strength {
  double multiplier;
  double amplitude;
  double ratio;  // (multiplier + 4 x amplitude) / 10, against the default 10 and 0
};
class HumanizerStrength : public HumanizerCam, public testing::WithParamInterface<Strength> {};

TEST_P(HumanizerStrength, AnglesScaleWithTheShakeStrength) {
  Run(0, kFrames, [](int) { return 0.0; });
  const ShakeAngles reference = Angles();
  tool.sim.parameters[HumanizerCamSim::kShakeMultiplier].value = GetParam().multiplier;
  Run(0, kFrames, [](int) { return GetParam().amplitude; });
  const ShakeAngles scaled = Angles();
  const double tolerance = std::pow(std::max(reference.peak, scaled.peak), 2);
  EXPECT_NEAR(scaled.rms / reference.rms, GetParam().ratio, tolerance * GetParam().ratio + 1e-12);
  EXPECT_NEAR(scaled.peak / reference.peak, GetParam().ratio, tolerance * GetParam().ratio + 1e-12);
}

INSTANTIATE_TEST_SUITE_P(Table, HumanizerStrength,
                         testing::Values(Strength{0, 0, 0}, Strength{5, 0, 0.5}, Strength{20, 0, 2},
                                         Strength{10, 1, 1.4}, Strength{0, 1, 0.4}, Strength{40, 1, 4.4}));

// The tool's own generator, kept frame by frame: the same take repeats, and
// a run from a middle frame, recorded or resimulated, goes on as the full
// run went, with the channel's filter memory too.
TEST_F(HumanizerCam, ATakeRepeatsBitForBitFromTheStartOrFromAMiddleFrame) {
  tool.sim.channel.responseFactor = 0.3;
  const auto raw = [](int k) { return (k / 20) % 2 ? 0.9 : -0.4; };
  Run(0, 150, raw);
  const std::uint64_t full = KeysHash();
  for (int from : {0, 67}) {
    Run(from, 150, raw);
    EXPECT_EQ(KeysHash(), full) << "recorded from frame " << from;
    harness.Resimulate(from, 150);
    EXPECT_EQ(KeysHash(), full) << "resimulated from frame " << from;
  }
}

TEST(HumanizerCamSim, TheSameSeedGivesTheSameShakeAndAnotherAnother) {
  const auto shake = [](std::uint32_t seed) {
    HumanizerCamSim sim;
    sim.Resume({}, {}, 0, seed, 1 / 30.0);
    std::vector<double> angles;
    for (int k = 0; k < 300; ++k) {
      sim.Step(1 / 30.0);
      angles.push_back(sim.ring.Current().rotation.Angle());
    }
    return angles;
  };
  EXPECT_EQ(shake(7), shake(7));
  EXPECT_NE(shake(7), shake(8));
}

// "Re-Initialize" makes the next run take the camera's pose then as its base.
TEST_F(HumanizerCam, ReInitializeTakesANewBase) {
  Run(0, 10, [](int) { return 0.0; });
  Matrix<double> moved;
  moved.SetTranslation({1, 1, 1});
  tool.cameraNode.Transform(0)->SetLocalTransform(moved);
  Run(0, 10, [](int) { return 0.0; });
  EXPECT_EQ(tool.cameraNode.mInit, base);
  tool.Changed("Re-Initialize");
  tool.cameraNode.Transform(0)->SetLocalTransform(moved);
  Run(0, 10, [](int) { return 0.0; });
  EXPECT_EQ(tool.cameraNode.mInit, moved);
}

// The fixture: a take of three frames at 30 fps with the channel at full
// deflection, after these settings and a base at (1, 2, 3).
TEST_F(HumanizerCam, ReadsTheFieldsOfItsVersion104Data) {
  harness.SetSaveData(testing_support::ReadFile(RGW_TOOL_TESTS "/humanizercam/savedata.bin"));
  ASSERT_EQ(tool.Load(), 0);
  EXPECT_EQ(tool.hideFlags, (std::array<bool, 3>{false, true, true}));
  EXPECT_TRUE(tool.sim.allowRoll);
  EXPECT_FALSE(tool.bFirstTime);
  EXPECT_EQ(tool.cameraNode.mInit.GetTranslation(), util::Vector3<double>(1, 2, 3));
  EXPECT_EQ(tool.sim.channel.responseFactor, 0.25);
  EXPECT_EQ(tool.sim.channel.maximum, 3.0);
  const double values[] = {12.5, 400, 150, 50, 0.05, 8, 20};
  for (int i = 0; i < HumanizerCamSim::kParameterCount; ++i)
    EXPECT_EQ(tool.sim.Value(HumanizerCamSim::Parameter(i)), values[i]);
  // Each frame takes 0.25 x (1/30) / 0.04 of the way to 3.
  tool.history.RewindTo(harness.TimeOf(3), harness.Frame(), 9, tool.sim, harness.Instance());
  EXPECT_NEAR(tool.sim.channel.output, 3 * (1 - std::pow(1 - 0.25 / 1.2, 3)), 1e-15);
  EXPECT_NE(tool.sim.random.State(), 9u);
  tool.history.RewindTo(0, harness.Frame(), 9, tool.sim, harness.Instance());
  EXPECT_EQ(tool.sim.channel.output, 0.0);
  EXPECT_EQ(tool.sim.random.State(), 9u);
}

}  // namespace
}  // namespace vuk::rgw::addon
