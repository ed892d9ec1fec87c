#include "plugins/1dpositioner/1dpositionerobject.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <fstream>
#include <iterator>

#include "adaptor/standalone/standaloneadaptorinterface.h"
#include "adaptor/standalone/standalonenode.h"
#include "core/corelibrary.h"
#include "plugins/tools.h"
#include "tests/plugins/keyhash.h"

namespace vuk::rgw::addon {
namespace {

using adaptor::standalone::StandaloneAdaptorInterface;
using adaptor::standalone::StandaloneNode;
using adaptor::standalone::TransformKey;
using core::Instance;
using util::Matrix;
using util::Quat;
using util::Vector3;

constexpr double kHalfPi = 1.5707963267948966;

class Positioner : public testing::Test {
 protected:
  void SetUp() override {
    host.GetScene().animate = true;
    instance = library.FindTool("1DPositioner")->CreateInstance("", &host);
    ASSERT_NE(instance, nullptr);
    tool = static_cast<C1DPositionerObject*>(instance->tool);
  }

  Matrix<double> Local(double time) {
    CSnapshot* snapshot = instance->GetTransformSnapshot(tool->cageNode.handle, time);
    const Matrix<double> local = snapshot->GetLocalTransform();
    instance->ReleaseTransformSnapshot(snapshot);
    return local;
  }
  void Place(const Matrix<double>& local) {
    CSnapshot* snapshot = instance->GetTransformSnapshot(tool->cageNode.handle, 0);
    snapshot->SetLocalTransform(local);
    instance->ReleaseTransformSnapshot(snapshot);
  }
  // A run from frame `first` to `last`, the raw input of frame k from the
  // function. As in the system's runs, the start frame is not stepped.
  template <typename Raw>
  void Run(int first, int last, Raw raw) {
    const double frame = host.GetFrameDuration();
    instance->Start(first * frame, Instance::Run::kRecording);
    for (int k = first + 1; k <= last; ++k) {
      tool->channel.raw = raw(k);
      instance->Step(k * frame);
    }
    instance->Stop(last * frame);
  }
  const std::vector<TransformKey>& Keys() {
    return static_cast<StandaloneNode*>(tool->cageNode.handle)->GetHostNode()->track.Keys();
  }

  StandaloneAdaptorInterface host;
  core::CoreLibrary library{addon::BuiltInTools()};
  std::unique_ptr<Instance> instance;
  C1DPositionerObject* tool = nullptr;
};

TEST_F(Positioner, IsAnAccessoryWithAWireCageAndItsChannelFirst) {
  const core::Plugin* plugin = library.FindTool("1DPositioner");
  EXPECT_EQ(plugin->plugin->GetCategory(), "Accessory");
  ASSERT_NE(tool->cageNode.handle, nullptr);
  EXPECT_EQ(instance->FindNode("RelativeCage"), tool->cageNode.handle);
  EXPECT_TRUE(static_cast<StandaloneNode*>(tool->cageNode.handle)->GetHostNode()->wireframe);
  // The channel comes first; the spinners that inputs may drive follow.
  ASSERT_EQ(instance->inputs.Count(), 4u);
  EXPECT_EQ(instance->inputs.Get(0)->name, "Position");
  EXPECT_EQ(instance->inputs.Get(1)->name, "Spinner: Position Response Factor");
}

// Unfiltered, the output is maximum x input: the cage moves at that speed
// down its local Z, one frame's distance each frame after the start.
TEST_F(Positioner, MovesAlongItsMinusZAtTheOutputSpeed) {
  tool->channel.responseFactor = 0;
  tool->channel.maximum = 2;
  Matrix<double> turned = Matrix<double>::FromQuat(Quat<double>::FromAxisAngle({0, 1, 0}, kHalfPi));
  turned.SetTranslation({1, 2, 3});
  Place(turned);
  Run(0, 90, [](int) { return 1.0; });
  const double frame = host.GetFrameDuration();
  // Turned a quarter about Y, local minus Z is world minus X.
  for (int k = 0; k <= 90; ++k) {
    const Vector3<double> at = Local(k * frame).GetTranslation();
    ASSERT_NEAR(at.x, 1 - 2.0 * k * frame, 1e-12) << "frame " << k;
    ASSERT_NEAR(at.y, 2, 1e-12);
    ASSERT_NEAR(at.z, 3, 1e-12);
  }
  EXPECT_EQ(Keys().size(), 91u);  // the placed start and 90 frames
}

TEST_F(Positioner, KeepsTheCageScaleAndTurn) {
  Matrix<double> scaled;
  scaled.SetAxis(0, {0, 0, -2});
  scaled.SetAxis(1, {0, 2, 0});
  scaled.SetAxis(2, {2, 0, 0});
  Place(scaled);
  Run(0, 10, [](int) { return 1.0; });
  const Matrix<double> last = Local(10 * host.GetFrameDuration());
  for (int axis = 0; axis < 3; ++axis) {
    const Vector3<double> a = last.Axis(axis), b = scaled.Axis(axis);
    EXPECT_NEAR((a - b).Length(), 0.0, 1e-12) << "axis " << axis;
  }
}

TEST_F(Positioner, AFilteredStartRisesSmoothlyToTheMaximumSpeed) {
  tool->channel.responseFactor = 0.3;
  tool->channel.maximum = 1;
  Run(0, 150, [](int) { return 1.0; });
  double previousSpeed = 0;
  const double frame = host.GetFrameDuration();
  for (int k = 2; k <= 150; ++k) {
    const double speed = (Local((k - 1) * frame).GetTranslation().z - Local(k * frame).GetTranslation().z) / frame;
    ASSERT_GE(speed, previousSpeed - 1e-12) << "frame " << k;
    ASSERT_LE(speed, 1.0 + 1e-12) << "frame " << k;
    previousSpeed = speed;
  }
  EXPECT_NEAR(previousSpeed, 1.0, 1e-6);
}

// A run restarted at a frame continues from the state that frame had.
TEST_F(Positioner, ARunFromAMiddleFrameRepeatsTheFullRun) {
  tool->channel.keepState = true;
  tool->channel.changeLimit = 5;
  const auto raw = [](int k) { return (k / 10) % 3 == 1 ? 1.0 : 0.0; };
  Run(0, 80, raw);
  const std::vector<TransformKey> full = Keys();
  Run(37, 80, raw);
  ASSERT_EQ(Keys().size(), full.size());
  for (std::size_t i = 0; i < full.size(); ++i) {
    EXPECT_EQ(std::memcmp(&Keys()[i], &full[i], sizeof full[i]), 0) << "key " << i;
  }
}

TEST_F(Positioner, SavesItsSettingsAndHistoryAndLoadsThem) {
  tool->hideHelpers = true;
  tool->channel.keepState = true;
  tool->channel.integrate = true;
  tool->channel.responseFactor = 0.125;
  tool->channel.maximum = -3.5;
  tool->channel.changeLimit = 0.1;
  Run(0, 20, [](int k) { return k % 2; });
  ASSERT_EQ(tool->Save(), 0);
  std::int32_t length = 0;
  const std::uint8_t* bytes = instance->GetSaveData(&length);
  const std::vector<std::uint8_t> saved(bytes, bytes + length);

  C1DPositionerObject loaded(CCamera::CreateParam("Loaded"));
  loaded.iface = instance.get();
  ASSERT_EQ(loaded.BuildConfig(), 0);
  ASSERT_EQ(loaded.Load(), 0);
  EXPECT_TRUE(loaded.hideHelpers);
  EXPECT_TRUE(loaded.channel.keepState);
  EXPECT_TRUE(loaded.channel.integrate);
  EXPECT_EQ(loaded.channel.responseFactor, 0.125);
  EXPECT_EQ(loaded.channel.maximum, -3.5);
  EXPECT_EQ(loaded.channel.changeLimit, 0.1);
  EXPECT_FALSE(loaded.history.IsEmpty());
  ASSERT_EQ(loaded.Save(), 0);
  bytes = instance->GetSaveData(&length);
  EXPECT_EQ(std::vector<std::uint8_t>(bytes, bytes + length), saved);
}

// Saved data of version 100, kept as a file: it must always read back, and
// a save of what it gave must write the same bytes.
TEST_F(Positioner, ReadsAndRewritesItsVersion100Data) {
  std::ifstream in(RGW_TEST_DATA "/1dpositioner_v100.bin", std::ios::binary);
  const std::vector<std::uint8_t> saved{std::istreambuf_iterator<char>(in), {}};
  ASSERT_FALSE(saved.empty());
  instance->SetSaveData(saved.data(), static_cast<std::int32_t>(saved.size()));
  ASSERT_EQ(tool->Load(), 0);
  EXPECT_FALSE(tool->hideHelpersDuringRecording);
  EXPECT_TRUE(tool->hideHelpers);
  EXPECT_TRUE(tool->channel.keepState);
  EXPECT_FALSE(tool->channel.integrate);
  EXPECT_EQ(tool->channel.responseFactor, 0.3);
  EXPECT_EQ(tool->channel.maximum, 2.0);
  EXPECT_EQ(tool->channel.changeLimit, 0.5);
  ASSERT_EQ(tool->Save(), 0);
  std::int32_t length = 0;
  const std::uint8_t* bytes = instance->GetSaveData(&length);
  EXPECT_EQ(std::vector<std::uint8_t>(bytes, bytes + length), saved);
  // Its three frames rewind like recorded ones.
  ActuatorChannel state("Position", 0.3, 2.0);
  tool->history.RewindTo(2.5 / 30, state);
  EXPECT_EQ(state.output, 0.2);
  EXPECT_EQ(state.lastState, 0);
  tool->history.RewindTo(1.5 / 30, state);
  EXPECT_EQ(state.lastState, 1);
}

TEST_F(Positioner, DamagedSaveDataIsRefused) {
  ASSERT_EQ(tool->Save(), 0);
  std::int32_t length = 0;
  const std::uint8_t* bytes = instance->GetSaveData(&length);
  std::vector<std::uint8_t> cut(bytes, bytes + length / 2);
  instance->SetSaveData(cut.data(), static_cast<std::int32_t>(cut.size()));
  EXPECT_EQ(tool->Load(), 1);
  const std::uint8_t lookAt[3] = {0, 1, 0};
  instance->SetSaveData(lookAt, 3);
  EXPECT_EQ(tool->Load(), 1);
}

TEST_F(Positioner, HideHelpersUndoesThroughTheHost) {
  auto* cage = static_cast<StandaloneNode*>(tool->cageNode.handle)->GetHostNode();
  host.BeginUndo("Hide Helpers");
  tool->hideHelpers = true;
  tool->Changed("Hide Helpers");
  host.EndUndo();
  EXPECT_FALSE(cage->visible);
  host.Undo();
  EXPECT_TRUE(cage->visible);
  host.Redo();
  EXPECT_FALSE(cage->visible);
}

// The same take on two fresh scenes gives the same keys, bit for bit.
std::vector<TransformKey> RecordTake() {
  StandaloneAdaptorInterface host;
  host.GetScene().animate = true;
  core::CoreLibrary library{addon::BuiltInTools()};
  auto instance = library.FindTool("1DPositioner")->CreateInstance("", &host);
  auto* tool = static_cast<C1DPositionerObject*>(instance->tool);
  tool->channel.changeLimit = 4;
  const double frame = host.GetFrameDuration();
  instance->Start(0, Instance::Run::kRecording);
  for (int k = 1; k <= 120; ++k) {
    tool->channel.raw = std::sin(0.1 * k);
    instance->Step(k * frame);
  }
  instance->Stop(120 * frame);
  return static_cast<StandaloneNode*>(tool->cageNode.handle)->GetHostNode()->track.Keys();
}

TEST(PositionerDeterminism, SameTakeSameKeys) {
  const auto first = RecordTake();
  ASSERT_EQ(first.size(), 120u);
  testing_support::ExpectSameKeys(first, RecordTake());
}

TEST(PositionerDeterminism, TheKeysOfAFixedTakeKeepTheirHash) {
  EXPECT_EQ(testing_support::HashOf(RecordTake()), 11866018287832509387ull);
}

}  // namespace
}  // namespace vuk::rgw::addon
