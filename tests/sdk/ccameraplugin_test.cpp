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
  std::string GetName() override { return "LookAtCam"; }
  std::string GetTitle() override { return "LookAtCam"; }
  std::string GetCategory() override { return "Camera"; }
};

TEST(CCameraPlugin, DefaultsAndCreate) {
  Plugin plugin;
  EXPECT_EQ(plugin.GetPath(), "LookAtCam");
  EXPECT_EQ(plugin.GetSdkVersion(), 20110);
  EXPECT_EQ(plugin.GetDescription() + plugin.GetSubtitle(), "");
  std::vector<std::int32_t>* ids = plugin.GetSupportedIds();
  EXPECT_TRUE(ids->empty());
  EXPECT_TRUE(plugin.ReleaseIds(ids));

  // Create fills in the plugin, and the object copies the record.
  CCamera::CreateParam param("LookAtCam01");
  EXPECT_EQ(param.version, 100);
  CCamera* tool = plugin.Create(param);
  ASSERT_NE(tool, nullptr);
  EXPECT_EQ(param.plugin, &plugin);
  EXPECT_EQ(tool->plugin, &plugin);
  EXPECT_EQ(tool->name, "LookAtCam01");
  EXPECT_EQ(tool->iface, nullptr);
  EXPECT_EQ(tool->BuildConfig(), 0);
  EXPECT_EQ(tool->Create(), 0);
  tool->Release();
}

}  // namespace
}  // namespace vuk::rgw
