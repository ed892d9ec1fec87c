#include "core/plugin.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <utility>

#include "adaptor/standalone/standaloneadaptorinterface.h"
#include "core/corelibrary.h"
#include "tests/core/scopedenv.h"
#include "tests/core/testtools.h"

namespace vuk::rgw::core {
namespace {

using testing_support::ScopedEnv;
using testing_support::TestTool;

TEST(Plugin, ANewToolTakesTheStartProfileAndKeepsTheFactorySettings) {
  const std::string home = testing::TempDir() + "/plugin_profiles";
  std::filesystem::remove_all(home);
  ScopedEnv dataHome("XDG_DATA_HOME", home.c_str());
  CoreLibrary library(testing_support::TestTools());
  Plugin* plugin = library.FindTool("TestTool");
  ASSERT_NE(plugin, nullptr);
  const std::string folder = home + "/rigworks/data/TestTool";
  EXPECT_EQ(plugin->GetUserFolder(), folder);
  // The profiles are read at the first need, not when the tools are listed.
  std::filesystem::create_directories(folder + "/configprofiles");
  std::ofstream(folder + "/configprofiles/Start Profile.ccp")
      << "<configprofile version=\"2.0\" name=\"Start Profile\">"
         "<item id=\"1\" label=\"Hide Helpers During Recording\">1</item></configprofile>";

  adaptor::standalone::StandaloneAdaptorInterface host;
  auto instance = plugin->CreateInstance("", &host);
  ASSERT_NE(instance, nullptr);
  EXPECT_TRUE(static_cast<TestTool*>(instance->GetTool())->hideHelpers);
  EXPECT_EQ(instance->ConfigProfile().GetAttribute("name"), "Start Profile");
  const util::xml::Element* factory = plugin->ConfigProfiles().Find("Factory Settings");
  ASSERT_NE(factory, nullptr);
  EXPECT_EQ(factory->GetChild("item").GetText(), "0");
  EXPECT_TRUE(plugin->ConfigProfiles().IsReadOnly("factory settings"));
  // A tool without former names answers to its own only, and exactly.
  EXPECT_EQ(plugin->GetAliases(), std::vector<std::string>{"TestTool"});
  EXPECT_EQ(library.FindTool("testtool"), nullptr);
}

// The test tool kept in a data folder of the given path.
class PathTool : public testing_support::TestToolPlugin {
 public:
  explicit PathTool(std::string path) : path_(std::move(path)) {}
  std::string GetPath() override { return path_; }

 private:
  std::string path_;
};

TEST(Plugin, HelpFileIsTheDataPathWithItsFoldersJoinedByUnderscores) {
  ScopedEnv root("RIGWORKS_ROOT", "/opt/rgw");
  // The data path, and the file name of its help page.
  const std::pair<const char*, const char*> cases[] = {{"steadycam", "steadycam.html"},
                                                       {"utility/1dpositioner", "utility_1dpositioner.html"},
                                                       {"cameras\\rail", "cameras_rail.html"},
                                                       {"a/b\\c/d", "a_b_c_d.html"}};
  for (const auto& [path, file] : cases) {
    Plugin plugin(new PathTool(path));
    EXPECT_EQ(plugin.GetHelpFileName(), file) << path;
    EXPECT_EQ(plugin.GetHelpFile(), std::string("/opt/rgw/rigworks/doc/") + file) << path;
  }
}

}  // namespace
}  // namespace vuk::rgw::core
