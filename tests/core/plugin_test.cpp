#include "core/plugin.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "adaptor/standalone/standaloneadaptorinterface.h"
#include "core/corelibrary.h"
#include "plugins/lookatcam/lookatcamobject.h"
#include "plugins/tools.h"
#include "tests/core/scopedenv.h"

namespace vuk::rgw::core {
namespace {

using testing_support::ScopedEnv;

TEST(Plugin, ANewToolTakesTheStartProfileAndKeepsTheFactorySettings) {
  const std::string home = testing::TempDir() + "/plugin_profiles";
  std::filesystem::remove_all(home);
  ScopedEnv dataHome("XDG_DATA_HOME", home.c_str());
  const std::string folder = home + "/rigworks/data/utility/lookatcam/configprofiles";
  std::filesystem::create_directories(folder);
  std::ofstream(folder + "/Start Profile.ccp")
      << "<configprofile version=\"2.0\" name=\"Start Profile\"><group id=\"-1\" label=\"General Modes\">"
         "<item id=\"3\" label=\"Hide Camera\">1</item></group></configprofile>";

  CoreLibrary library(addon::BuiltInTools());
  Plugin* plugin = library.FindTool("LookAtCam");
  ASSERT_NE(plugin, nullptr);
  EXPECT_EQ(plugin->GetUserFolder(), home + "/rigworks/data/utility/lookatcam");
  adaptor::standalone::StandaloneAdaptorInterface host;
  auto instance = plugin->CreateInstance("", &host);
  ASSERT_NE(instance, nullptr);
  EXPECT_TRUE(static_cast<addon::CLookAtCamObject*>(instance->tool)->hideCamera);
  EXPECT_EQ(instance->configProfileName, "Start Profile");
  const util::xml::Element* factory = plugin->configProfiles.Find("Factory Settings");
  ASSERT_NE(factory, nullptr);
  EXPECT_EQ(factory->GetChild("group").GetChild("item", 2).GetText(), "0");
  EXPECT_TRUE(plugin->configProfiles.IsReadOnly("factory settings"));
  EXPECT_NE(plugin->inputProfiles.Find("Start Profile"), nullptr);
}

TEST(Plugin, AliasesAndCategories) {
  CoreLibrary library(addon::BuiltInTools());
  Plugin* plugin = library.FindTool("LookAtCam");
  EXPECT_EQ(plugin->GetAliases(), std::vector<std::string>{"LookAtCam"});
  EXPECT_EQ(plugin->GetCategories(), std::vector<std::string>{"Camera"});
  EXPECT_TRUE(plugin->IsCreatable());
  EXPECT_EQ(library.FindTool("lookatcam"), nullptr);
}

}  // namespace
}  // namespace vuk::rgw::core
