#include "tests/adaptor/standalone/testtool.h"

#include <gtest/gtest.h>

#include "adaptor/standalone/standaloneadaptorinterface.h"
#include "adaptor/standalone/standalonenode.h"
#include "core/instance.h"

namespace vuk::rgw::testing_support {
namespace {

// What a tool reaches through its instance: snapshots lent and taken back,
// and handles or saved data that are not there.
TEST(ThroughTheInstance, SnapshotsAreReusedAndMissingHandlesAndSaveDataAreHarmless) {
  adaptor::standalone::StandaloneAdaptorInterface adaptor;
  TestToolPlugin plugin;
  CCamera::CreateParam param("TestTool01");
  core::Instance instance(&plugin, plugin.Create(param), "TestTool01", &adaptor);
  auto* tool = static_cast<TestTool*>(instance.GetTool());
  ASSERT_EQ(tool->BuildConfig(), 0);
  ASSERT_EQ(tool->Create(), 0);
  for (int frame = 0; frame < 10; ++frame) tool->Step(frame * adaptor.GetFrameDuration());
  EXPECT_EQ(static_cast<adaptor::standalone::StandaloneNode*>(tool->camera)->TransformPoolSize(), 1u);

  EXPECT_EQ(instance.GetTransformSnapshot(nullptr, 0), nullptr);
  EXPECT_EQ(instance.GetHelperSnapshot(nullptr, 0), nullptr);
  EXPECT_EQ(instance.GetMeshSnapshot(nullptr, 0), nullptr);
  EXPECT_EQ(instance.GetLensSnapshot(nullptr, 0), nullptr);
  instance.ReleaseTransformSnapshot(nullptr);
  instance.ReleaseMeshSnapshot(nullptr);
  instance.ReleaseNode(nullptr);
  std::int32_t length = -1;
  EXPECT_EQ(instance.GetSaveData(&length), nullptr);
  EXPECT_EQ(length, 0);
  instance.SetSaveData("", 0);
  EXPECT_NE(instance.GetSaveData(&length), nullptr);
  EXPECT_EQ(length, 0);
}

}  // namespace
}  // namespace vuk::rgw::testing_support
