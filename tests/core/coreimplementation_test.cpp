#include "core/coreimplementation.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "adaptor/standalone/standaloneadaptorinterface.h"
#include "core/corelog.h"
#include "core/messagebox.h"
#include "tests/core/scopedenv.h"
#include "tests/core/testtools.h"

namespace vuk::rgw::core {
namespace {

using adaptor::standalone::StandaloneAdaptorInterface;
using testing_support::ScopedEnv;

std::string ReadFile(const std::string& path) {
  std::ifstream in(path);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

class CountingAdaptor : public StandaloneAdaptorInterface {
 public:
  std::int32_t GetInterfaceVersion() override { return version; }
  std::int32_t Shutdown() override {
    ++shutdowns;
    return 0;
  }
  std::int32_t version = kInterfaceVersion;
  int shutdowns = 0;
};

// A fresh install root with the adaptor's defaults and an empty user folder.
class CoreStart : public testing::Test {
 protected:
  CoreStart()
      : folder(testing::TempDir() + "/corestart_" + testing::UnitTest::GetInstance()->current_test_info()->name()),
        root("RIGWORKS_ROOT", (folder + "/install").c_str()),
        dataHome("XDG_DATA_HOME", (folder + "/user").c_str()) {
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder + "/install/rigworks/data/adaptor_standalone");
    std::ofstream(folder + "/install/rigworks/data/adaptor_standalone/settings.xml")
        << "<RGTConfig><element id=\"100\">5</element><element id=\"105\">1</element></RGTConfig>";
  }
  ~CoreStart() override { CoreLog::Instance().Close(); }

  std::string Log() { return ReadFile(folder + "/user/rigworks/data/core/core.log"); }

  std::string folder;
  ScopedEnv root;
  ScopedEnv dataHome;
  CountingAdaptor adaptor;
};

TEST_F(CoreStart, MakesTheUserFoldersLogAndSettings) {
  {
    CoreImplementation core;
    ASSERT_EQ(core.Start(&adaptor, testing_support::TestTools()), &core);
    EXPECT_TRUE(core.IsStarted());
    EXPECT_NE(core.GetDevices(), nullptr);
    const std::string settings = core.GetSettingsPath();
    EXPECT_EQ(settings, folder + "/user/rigworks/data/adaptor_standalone/settings.xml");
    // The installed defaults were copied and read.
    EXPECT_EQ(core.GetSettings().GetInt(100), 5);
    EXPECT_TRUE(core.GetSettings().GetBool(105));
    // A change is written at once.
    core.SetBool(102, true);
    EXPECT_NE(ReadFile(settings).find("<element id=\"102\">1</element>"), std::string::npos);
    // A second start is refused.
    EXPECT_EQ(core.Start(&adaptor, testing_support::TestTools()), nullptr);
    EXPECT_EQ(adaptor.shutdowns, 0);
  }
  EXPECT_EQ(adaptor.shutdowns, 1);
  const std::string log = Log();
  EXPECT_NE(log.find("INFO core started with \"Standalone Adaptor\""), std::string::npos) << log;
  EXPECT_NE(log.find("INFO core stopped"), std::string::npos) << log;
  // The next start reads the user's file, not the defaults again.
  CoreImplementation again;
  ASSERT_NE(again.Start(&adaptor, testing_support::TestTools()), nullptr);
  EXPECT_TRUE(again.GetSettings().GetBool(102));
}

TEST_F(CoreStart, AMalformedUserSettingsFileIsLoggedAndTheDefaultsStand) {
  const std::string path = folder + "/user/rigworks/data/adaptor_standalone/settings.xml";
  std::filesystem::create_directories(folder + "/user/rigworks/data/adaptor_standalone");
  std::ofstream(path) << "<RGTConfig><element id=\"100\">8</element>";
  {
    CoreImplementation core;
    ASSERT_NE(core.Start(&adaptor, testing_support::TestTools()), nullptr);
    EXPECT_EQ(core.GetSettings().GetInt(100), 3);
  }
  EXPECT_NE(Log().find("WARNING " + path + ": not a settings file (parse result 3)"), std::string::npos) << Log();
}

TEST_F(CoreStart, ScansTheUsersPluginFolderForTools) {
  const std::string plugins = folder + "/user/rigworks/plugins/linux/x64";
  std::filesystem::create_directories(plugins);
  for (const char* library : {"toollibrary_externalcam.so", "toollibrary_noexports.so", "toollibrary_oldversion.so"}) {
    std::filesystem::copy_file(std::string(RGW_TOOL_LIBRARIES) + "/" + library, plugins + "/" + library);
  }
  CoreImplementation core;
  ASSERT_NE(core.Start(&adaptor, testing_support::TestTools()), nullptr);
  EXPECT_NE(core.GetLibraries()->FindTool("ExternalCam"), nullptr);
  EXPECT_NE(core.GetLibraries()->FindTool("TestTool"), nullptr);
  EXPECT_EQ(core.GetLibraries()->Libraries().size(), 1u);
  EXPECT_NE(Log().find("INFO 1 tools loaded from tool libraries"), std::string::npos);
  // Loaded again, the same tools are dropped: their names are taken.
  LibraryManager library(testing_support::TestTools());
  EXPECT_EQ(library.LoadFolder(plugins), 1);
  EXPECT_EQ(library.LoadFolder(plugins), 0);
}

// What adaptors ask of the core for the tool tree, by instance name.
TEST_F(CoreStart, ToolsAreMadeFoundRenamedClonedAndDeletedByName) {
  CoreImplementation core;
  util::xml::Element tree;
  core.SaveToolTree(tree);
  EXPECT_TRUE(tree.IsEmpty());  // nothing before the start
  EXPECT_EQ(core.CreateByName("TestTool", ""), nullptr);
  ASSERT_NE(core.Start(&adaptor, testing_support::TestTools()), nullptr);

  Instance* made = core.CreateByName("TestTool", "");
  ASSERT_NE(made, nullptr);
  EXPECT_EQ(core.FindToolByName("TestTool_01"), made);
  EXPECT_EQ(core.CreateByName("NoSuchTool", ""), nullptr);

  EXPECT_TRUE(core.Rename("TestTool_01", "Main camera"));
  EXPECT_EQ(core.FindToolByName("Main camera"), made);
  EXPECT_EQ(core.FindToolByName("TestTool_01"), nullptr);
  ASSERT_TRUE(adaptor.Undo());
  EXPECT_EQ(core.FindToolByName("TestTool_01"), made);
  ASSERT_TRUE(adaptor.Redo());
  ASSERT_NE(core.CreateByName("TestTool", "Second"), nullptr);
  EXPECT_FALSE(core.Rename("Second", "Main camera"));  // taken
  EXPECT_FALSE(core.Rename("Nobody", "Third"));

  Instance* copy = core.Clone("Main camera");
  ASSERT_NE(copy, nullptr);
  core.SaveToolTree(tree);
  EXPECT_EQ(tree.CountChildren("RGT_Plugin"), 3u);
  // Every tool has nodes: the scene's tags carry them all.
  util::xml::Element forScene;
  core.SaveToolTreeForScene(forScene);
  EXPECT_EQ(forScene.CountChildren("RGT_Plugin"), 0u);

  EXPECT_TRUE(core.SetToolProfile("Main camera", "Factory Settings"));
  EXPECT_EQ(made->ConfigProfile().GetAttribute("name"), "Factory Settings");
  EXPECT_FALSE(core.SetToolProfile("Main camera", "No such profile"));

  EXPECT_TRUE(core.Delete("Second"));
  EXPECT_FALSE(core.Delete("Second"));
  ASSERT_TRUE(adaptor.Undo());
  EXPECT_NE(core.FindToolByName("Second"), nullptr);
  // Deleted again, the tool lives on in the host's undo past the core's end.
  EXPECT_TRUE(core.Delete("Second"));
  core.RemoveAll();
  core.SaveToolTree(tree);
  EXPECT_EQ(tree.CountChildren("RGT_Plugin"), 0u);
}

TEST_F(CoreStart, TheCountdownAndTheSilentModeFollowTheSettings) {
  CoreImplementation core;
  ASSERT_NE(core.Start(&adaptor, testing_support::TestTools()), nullptr);
  EXPECT_EQ(core.GetRecorder()->countdownSeconds, 5);  // the installed defaults' 100
  for (const auto& [set, counted] : {std::pair{0, 0}, {7, 7}, {40, 9}, {-2, 0}}) {
    core.SetInt(100, set);
    EXPECT_EQ(core.GetRecorder()->countdownSeconds, counted) << set;
  }

  std::vector<std::string> shown;
  const auto answerYes = [&shown](const std::string& text, const std::string&, std::int32_t) {
    shown.push_back(text);
    return box::kYes;
  };
  SetMessageBoxSink(answerYes);
  adaptor.SetMessageBoxSink(answerYes);
  EXPECT_EQ(ShowMessageBox("asked", "Core", box::kYesNo), box::kYes);
  EXPECT_EQ(adaptor.ShowError("told", "Host"), box::kYes);
  core.SetBool(102, true);
  // Suppressed boxes answer as a closed box does; a forced one still shows.
  EXPECT_EQ(ShowMessageBox("suppressed", "Core", box::kYesNo), 1);
  EXPECT_EQ(adaptor.ShowError("suppressed", "Host"), 1);
  EXPECT_EQ(ShowMessageBox("forced", "Core", box::kYesNo, true), box::kYes);
  EXPECT_EQ(shown, (std::vector<std::string>{"asked", "told", "forced"}));
  EXPECT_NE(Log().find("box \"Core\": suppressed"), std::string::npos);

  // With no one to answer, a box gives 1 too.
  core.SetBool(102, false);
  SetMessageBoxSink(nullptr);
  adaptor.SetMessageBoxSink(nullptr);
  EXPECT_EQ(ShowMessageBox("unanswered", "Core", box::kYesNo), 1);
  EXPECT_EQ(adaptor.ShowError("unanswered", "Host"), 1);
}

// The core's recorder runs a resimulation of the tools it holds.
TEST_F(CoreStart, ResimulatesItsTools) {
  CoreImplementation core;
  ASSERT_NE(core.Start(&adaptor, testing_support::TestTools()), nullptr);
  ASSERT_NE(core.CreateByName("TestTool", ""), nullptr);
  core.StartResimulation(0.0, 1.0);
  EXPECT_TRUE(core.IsResimulating());
  EXPECT_TRUE(core.IsRecording());
  while (!core.GetRecorder()->ResimStep()) {
  }
  core.GetRecorder()->FinishResimulation();
  EXPECT_FALSE(core.IsResimulating());
}

TEST_F(CoreStart, AnotherInterfaceVersionLeavesTheSystemInert) {
  adaptor.version = 20100;
  {
    CoreImplementation core;
    EXPECT_EQ(core.Start(&adaptor, testing_support::TestTools()), nullptr);
    EXPECT_FALSE(core.IsStarted());
    EXPECT_EQ(core.GetRecorder(), nullptr);
    EXPECT_EQ(core.CreateByName("TestTool", ""), nullptr);
    EXPECT_EQ(core.GetSettings().GetInt(100), 3);
  }
  const std::string log = Log();
  EXPECT_NE(log.find("ERROR adaptor \"Standalone Adaptor\" speaks interface version 20100"), std::string::npos) << log;
}

}  // namespace
}  // namespace vuk::rgw::core
