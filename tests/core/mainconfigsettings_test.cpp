#include "core/mainconfigsettings.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/util/filesizelimit.h"

namespace vuk::rgw::core {
namespace {

std::string WriteFile(const std::string& name, const std::string& text) {
  const std::string path = testing::TempDir() + "/" + name;
  std::ofstream(path, std::ios::trunc) << text;
  return path;
}

std::string ReadFile(const std::string& path) {
  std::ifstream in(path);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

TEST(MainConfigSettings, ReadsKnownAndForeignIdsAndKeepsDefaultsForTheRest) {
  const std::string path = WriteFile("settings_read.xml",
                                     "<RGTConfig>\n\t<element id=\"102\">1</element>\n"
                                     "\t<element id=\"1027\">1</element>\n"
                                     "\t<element id=\"105\">0.25</element>\n"
                                     "\t<element id=\"x\">9</element>\n"
                                     "\t<element id=\"100\">many</element>\n</RGTConfig>\n");
  MainConfigSettings settings;
  // No file is no error: the defaults stand.
  EXPECT_TRUE(settings.Load("/nonexistent/settings.xml"));
  ASSERT_TRUE(settings.Load(path));
  EXPECT_EQ(settings.GetInt(setting::kCountdownSeconds), 3);  // not a number: the default stays
  EXPECT_TRUE(settings.GetBool(setting::kSilentMode));
  // An adaptor's id, read before anyone declared it, answers any type.
  EXPECT_TRUE(settings.GetBool(1027));
  EXPECT_EQ(settings.GetDouble(105), 0.25);
  EXPECT_EQ(settings.GetString(105), "0.25");
  // An id nobody declared or read answers the caller's fallback.
  EXPECT_EQ(settings.GetSetting(999), nullptr);
  EXPECT_EQ(settings.GetInt(999, -5), -5);
}

TEST(MainConfigSettings, SaveAndLoadRoundTripEveryType) {
  MainConfigSettings settings;
  settings.SetInt(setting::kCountdownSeconds, 9);
  settings.SetDouble(200, 0.1);
  settings.SetString(201, "a <b> & \"c\"");
  settings.SetBool(setting::kCheckForUpdates, false);
  const std::string path = testing::TempDir() + "/settings_roundtrip.xml";
  std::string error;
  ASSERT_TRUE(settings.Save(path, &error)) << error;
  EXPECT_FALSE(std::filesystem::exists(path + ".tmp"));

  MainConfigSettings back;
  back.SetDouble(200, 0.0);
  back.SetString(201, "");
  ASSERT_TRUE(back.Load(path));
  EXPECT_EQ(back.GetInt(setting::kCountdownSeconds), 9);
  EXPECT_EQ(back.GetDouble(200), 0.1);  // every digit kept
  EXPECT_EQ(back.GetString(201), "a <b> & \"c\"");
  EXPECT_FALSE(back.GetBool(setting::kCheckForUpdates, true));
  EXPECT_NE(ReadFile(path).find("<element id=\"100\">9</element>"), std::string::npos) << ReadFile(path);
}

TEST(MainConfigSettings, AFailedSaveLeavesTheOldFile) {
  const std::string folder = testing::TempDir() + "/settings_readonly";
  std::filesystem::create_directories(folder);
  const std::string path = folder + "/settings.xml";
  std::ofstream(path) << "<RGTConfig/>";
  MainConfigSettings settings;
  std::string error;
  {
    // As on a full disk.
    const testing_support::FileSizeLimit limit(8);
    EXPECT_FALSE(settings.Save(path, &error));
  }
  EXPECT_EQ(error, path + ": can't be written (File too large)");
  EXPECT_EQ(ReadFile(path), "<RGTConfig/>");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 1);
  std::filesystem::remove_all(folder);
}

}  // namespace
}  // namespace vuk::rgw::core
