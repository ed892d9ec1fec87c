#include "tests/adaptor/standalone/testtool.h"

#include <gtest/gtest.h>

#include "adaptor/standalone/standaloneadaptorinterface.h"
#include "adaptor/standalone/standalonenode.h"
#include "core/instance.h"

namespace vuk::rgw::testing_support {
namespace {

using adaptor::standalone::StandaloneAdaptorInterface;
using adaptor::standalone::StandaloneNode;

class TestToolRecording : public testing::Test {
 protected:
  void SetUp() override {
    CCamera::CreateParam param("TestTool01");
    instance = std::make_unique<core::Instance>(&plugin, plugin.Create(param), "TestTool01", &adaptor);
    tool = static_cast<TestTool*>(instance->GetTool());
    ASSERT_EQ(tool->BuildConfig(), 0);
    ASSERT_EQ(tool->Create(), 0);
  }

  // 100 frames from time 0 inside one undo group, as a take is recorded.
  void Record() {
    adaptor.BeginUndo("Record");
    adaptor.BeginRecording();
    tool->Start(0.0);
    for (int frame = 0; frame < kFrames; ++frame) tool->Step(frame * adaptor.GetFrameDuration());
    tool->Stop(kFrames * adaptor.GetFrameDuration());
    adaptor.EndRecording();
    adaptor.EndUndo();
  }

  const std::vector<adaptor::standalone::TransformKey>& Keys(CNode* node) {
    return static_cast<StandaloneNode*>(node)->GetHostNode()->track.Keys();
  }

  static constexpr int kFrames = 100;
  StandaloneAdaptorInterface adaptor;
  TestToolPlugin plugin;
  std::unique_ptr<core::Instance> instance;
  TestTool* tool = nullptr;
};

TEST_F(TestToolRecording, WritesOneKeyPerFrameAtTheFrameTimes) {
  Record();
  for (CNode* node : {tool->target, tool->camera}) {
    const auto& keys = Keys(node);
    ASSERT_EQ(keys.size(), static_cast<std::size_t>(kFrames));
    for (int frame = 0; frame < kFrames; ++frame) EXPECT_EQ(keys[frame].tick, 160 * frame);
  }
  for (int frame = 0; frame < kFrames; ++frame) {
    const double time = frame / 30.0;
    CSnapshot* snapshot = instance->GetTransformSnapshot(tool->camera, time);
    const util::Vector3<double> expected = tool->CameraAt(frame * adaptor.GetFrameDuration());
    const util::Vector3<double> written = snapshot->GetWorldTransform().GetTranslation();
    EXPECT_NEAR(written.x, expected.x, 1e-12) << frame;
    EXPECT_EQ(written.y, 2.0);
    instance->ReleaseTransformSnapshot(snapshot);
  }
  EXPECT_EQ(tool->path.records.size(), static_cast<std::size_t>(kFrames));
  // The snapshots were reused: one per node was ever made.
  EXPECT_EQ(static_cast<StandaloneNode*>(tool->camera)->TransformPoolSize(), 1u);
}

// A second take from an earlier frame replaces the future; one undo takes
// it back, the next the first take with its keys and history, and redo
// brings that again.
TEST_F(TestToolRecording, EachTakeIsOneUndo) {
  Record();
  tool->speed = -1.0;
  adaptor.BeginUndo("Record");
  adaptor.BeginRecording();
  const double frame = adaptor.GetFrameDuration();
  tool->Start(30 * frame);
  tool->Step(31 * frame);
  adaptor.EndRecording();
  adaptor.EndUndo();
  ASSERT_EQ(tool->path.records.size(), 32u);
  EXPECT_EQ(tool->path.Get(0.5).x, 1.5);
  EXPECT_EQ(tool->path.records.back().value.x, -31 * frame);

  ASSERT_TRUE(adaptor.Undo());
  EXPECT_EQ(tool->path.records.size(), static_cast<std::size_t>(kFrames));
  ASSERT_TRUE(adaptor.Undo());
  EXPECT_TRUE(Keys(tool->target).empty());
  EXPECT_TRUE(Keys(tool->camera).empty());
  EXPECT_TRUE(tool->path.records.empty());
  ASSERT_TRUE(adaptor.Redo());
  EXPECT_EQ(Keys(tool->target).size(), static_cast<std::size_t>(kFrames));
  EXPECT_EQ(tool->path.records.size(), static_cast<std::size_t>(kFrames));
  EXPECT_EQ(tool->path.Get(1.0).x, 3.0);  // the first take, at its speed
}

TEST_F(TestToolRecording, NullHandlesAndMissingSaveDataAreHarmless) {
  EXPECT_EQ(instance->GetTransformSnapshot(nullptr, 0), nullptr);
  EXPECT_EQ(instance->GetHelperSnapshot(nullptr, 0), nullptr);
  EXPECT_EQ(instance->GetMeshSnapshot(nullptr, 0), nullptr);
  EXPECT_EQ(instance->GetLensSnapshot(nullptr, 0), nullptr);
  instance->ReleaseTransformSnapshot(nullptr);
  instance->ReleaseMeshSnapshot(nullptr);
  instance->ReleaseNode(nullptr);
  // A tool whose node is gone skips the write without an error.
  tool->camera = nullptr;
  tool->Step(0.0);
  EXPECT_TRUE(Keys(tool->target).empty() || Keys(tool->target).size() == 1u);

  std::int32_t length = -1;
  EXPECT_EQ(instance->GetSaveData(&length), nullptr);
  EXPECT_EQ(length, 0);
  instance->SetSaveData("", 0);
  EXPECT_NE(instance->GetSaveData(&length), nullptr);
  EXPECT_EQ(length, 0);
}

}  // namespace
}  // namespace vuk::rgw::testing_support
