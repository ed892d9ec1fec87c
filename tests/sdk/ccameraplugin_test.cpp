#include "sdk/ccameraplugin.h"

#include <gtest/gtest.h>

#include "tests/sdk/testplugin.h"

namespace vuk::rgw {
namespace {

class Tool : public CCamera {
 public:
  using CCamera::CCamera;
};

TEST(CCameraPlugin, CreateFillsInThePluginAndTheObjectCopiesTheRecord) {
  testing_support::TestPlugin<Tool> plugin("SampleCam", "Camera");
  EXPECT_EQ(plugin.GetSdkVersion(), 20110);
  CCamera::CreateParam param("SampleCam01");
  CCamera* tool = plugin.Create(param);
  ASSERT_NE(tool, nullptr);
  EXPECT_EQ(param.plugin, &plugin);
  EXPECT_EQ(tool->plugin, &plugin);
  EXPECT_EQ(tool->name, "SampleCam01");
  tool->Release();
}

}  // namespace
}  // namespace vuk::rgw
