#include "core/corelog.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>

namespace vuk::rgw::core {
namespace {

TEST(CoreLog, FormatsOneEntryPerLine) {
  // 2026-11-22 16:20:01.123 UTC
  const long long when = 1795364401123LL;
  EXPECT_EQ(CoreLog::Format(CoreLog::Level::kInfo, "core started", when), "2026-11-22T16:20:01.123Z INFO core started");
  EXPECT_EQ(CoreLog::Format(CoreLog::Level::kError, "a\r\nb", when), "2026-11-22T16:20:01.123Z ERROR a\n\tb");
  EXPECT_EQ(CoreLog::Format(CoreLog::Level::kWarning, "", 0), "1970-01-01T00:00:00.000Z WARNING ");
}

TEST(CoreLog, AppendsToItsFileAndRefusesAFolderThatIsntThere) {
  const std::string path = testing::TempDir() + "/corelog_test.log";
  std::filesystem::remove(path);
  CoreLog& log = CoreLog::Instance();
  EXPECT_FALSE(log.Open("/nonexistent-folder/x/core.log"));
  EXPECT_FALSE(log.IsOpen());
  ASSERT_TRUE(log.Open(path));
  log.Info("first");
  log.Warning("second");
  log.Close();
  ASSERT_TRUE(log.Open(path));
  log.Error("third");
  log.Close();

  std::ifstream in(path);
  const std::string text(std::istreambuf_iterator<char>(in), {});
  const std::string stamp = R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z )";
  const std::regex entries(stamp + "INFO first\n" + stamp + "WARNING second\n" + stamp + "ERROR third\n");
  EXPECT_TRUE(std::regex_match(text, entries)) << text;
}

}  // namespace
}  // namespace vuk::rgw::core
