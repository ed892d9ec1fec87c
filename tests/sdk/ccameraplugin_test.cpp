#include "sdk/ccameraplugin.h"

#include <gtest/gtest.h>

namespace vuk::rgw {
namespace {

class Tool : public CCamera {
 public:
  using CCamera::CCamera;
};

class Plugin : public CCameraPlugin {
 public:
  CCamera* CreateObject(CCamera::CreateParam& param) override { return new Tool(param); }
  std::string GetName() override { return "SampleCam"; }
  std::string GetTitle() override { return "SampleCam"; }
  std::string GetCategory() override { return "Camera"; }
};

TEST(CCameraPlugin, CreateFillsInThePluginAndTheObjectCopiesTheRecord) {
  Plugin plugin;
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
