#include "core/xmlfilemanager.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace vuk::rgw::core {
namespace {

class Profiles : public testing::Test {
 protected:
  void SetUp() override {
    folder = testing::TempDir() + "/profiles_" + testing::UnitTest::GetInstance()->current_test_info()->name();
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder + "/install/configprofiles");
    std::filesystem::create_directories(folder + "/user");
  }
  void Write(const std::string& path, const std::string& text) { std::ofstream(folder + "/" + path) << text; }
  XMLFileManager Config() {
    XMLFileManager manager(XMLFileManager::Kind::kConfig, folder + "/user");
    manager.AddFolder(folder + "/user");
    manager.AddFile(folder + "/install/configprofile.xml");
    manager.AddFolder(folder + "/install/configprofiles");
    return manager;
  }
  std::string folder;
};

TEST_F(Profiles, LaterSourcesOverrideEarlierNamesWithoutCase) {
  Write("user/Racing.ccp", "<configprofile version=\"2.0\" name=\"Racing\"><item id=\"0\">1</item></configprofile>");
  Write("install/configprofile.xml",
        "<profiles><configprofile version=\"2.0\" name=\"racing\"><item id=\"0\">2</item></configprofile>"
        "<configprofile version=\"2.0\" name=\"Soft\"/></profiles>");
  Write("install/configprofiles/Offroad.ccp", "<configprofile version=\"2.0\" name=\"Offroad\"/>");
  Write("install/configprofiles/broken.ccp", "<configprofile name=\"x\">");
  XMLFileManager manager = Config();
  manager.Load();
  EXPECT_EQ(manager.Names(), (std::vector<std::string>{"racing", "Soft", "Offroad"}));
  ASSERT_NE(manager.Find("RACING"), nullptr);
  EXPECT_EQ(manager.Find("Racing")->GetChild("item").GetText(), "2");
  EXPECT_TRUE(manager.IsExample("Soft"));
  EXPECT_FALSE(manager.IsExample("Offroad"));
}

TEST_F(Profiles, StoreRenameDeleteAndTheirMessages) {
  Write("install/configprofile.xml", "<profiles><configprofile version=\"2.0\" name=\"Example\"/></profiles>");
  XMLFileManager manager = Config();
  manager.Load();
  util::xml::Element profile;
  profile.ParseText("<configprofile version=\"2.0\"><item id=\"0\">AAAAAAAA4D8=</item></configprofile>");
  EXPECT_EQ(manager.Store(profile, "Mine", false), "");
  XMLFileManager again = Config();
  again.Load();
  ASSERT_NE(again.Find("Mine"), nullptr);
  EXPECT_EQ(again.Find("Mine")->GetChild("item").GetText(), "AAAAAAAA4D8=");
  EXPECT_EQ(manager.Store(profile, "mine", false), XMLFileManager::kExists);
  EXPECT_EQ(manager.Store(profile, "a/b", false),
            "a/b - name contains forbidden characters. \n The following characters are not allowed: \\ / : * ? \" < > | ");
  EXPECT_EQ(manager.Store(profile, "", false), XMLFileManager::kSelect);
  EXPECT_EQ(manager.Rename("Example", "Other"), XMLFileManager::kExampleRename);
  EXPECT_EQ(manager.Rename("Mine", "Example"), "Example - name already exists.");
  EXPECT_EQ(manager.Rename("Mine", "Yours"), "");
  EXPECT_FALSE(std::filesystem::exists(folder + "/user/Mine.ccp"));
  EXPECT_TRUE(std::filesystem::exists(folder + "/user/Yours.ccp"));
  EXPECT_EQ(manager.Delete("Yours"), "");
  EXPECT_EQ(manager.Find("Yours"), nullptr);
  EXPECT_EQ(manager.Delete("Yours"), XMLFileManager::kSelect);
  // The factory settings cannot be changed.
  ASSERT_EQ(manager.Store(profile, "Factory Settings", false), "");
  manager.SetReadOnly("Factory Settings");
  EXPECT_EQ(manager.Store(profile, "factory settings", true), XMLFileManager::kReadOnly);
  EXPECT_EQ(manager.Rename("Factory Settings", "Mine"), XMLFileManager::kCannotRename);
  EXPECT_EQ(manager.Delete("Factory Settings"), XMLFileManager::kReadOnly);
}

TEST_F(Profiles, ImportAndExportOfInputProfiles) {
  XMLFileManager inputs(XMLFileManager::Kind::kInput, folder + "/user");
  Write("wheel.cip", "<unidevice><profile name=\"Wheel\"><property name=\"Steer\"><deadzone>0.05</deadzone>"
                     "</property></profile></unidevice>");
  EXPECT_EQ(inputs.Import(folder + "/wheel.cip"), "");
  ASSERT_NE(inputs.Find("wheel"), nullptr);
  EXPECT_TRUE(std::filesystem::exists(folder + "/user/Wheel.cip"));
  EXPECT_EQ(inputs.Export("Wheel", folder + "/out.cip"), "");
  XMLFileManager again(XMLFileManager::Kind::kInput, folder + "/user");
  again.AddFile(folder + "/out.cip");
  again.Load();
  ASSERT_NE(again.Find("Wheel"), nullptr);
  EXPECT_EQ(again.Find("Wheel")->Write(), inputs.Find("Wheel")->Write());
  Write("junk.cip", "nothing");
  EXPECT_EQ(inputs.Import(folder + "/junk.cip"), XMLFileManager::kCouldNotImport);
}

}  // namespace
}  // namespace vuk::rgw::core
