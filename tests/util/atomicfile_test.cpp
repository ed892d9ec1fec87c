#include "util/atomicfile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <set>
#include <string>

#include "tests/util/filesizelimit.h"

namespace vuk::util {
namespace {

namespace fs = std::filesystem;

class AtomicFileTest : public testing::Test {
 protected:
  void SetUp() override {
    std::string name = testing::UnitTest::GetInstance()->current_test_info()->name();
    std::replace(name.begin(), name.end(), '/', '_');
    folder = fs::path(testing::TempDir()) / ("atomicfile_" + name);
    fs::remove_all(folder);
    fs::create_directories(folder);
    target = (folder / "out.txt").string();
  }
  void TearDown() override { fs::remove_all(folder); }

  static void Put(const std::string& path, const std::string& text) { std::ofstream(path, std::ios::binary) << text; }
  static std::string Read(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
  }
  // The names in the folder: what a writer left behind.
  std::set<std::string> Entries() const {
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder)) names.insert(entry.path().filename().string());
    return names;
  }
  static mode_t Mode(const std::string& path) {
    struct stat status {};
    stat(path.c_str(), &status);
    return status.st_mode & 07777;
  }

  fs::path folder;
  std::string target;
};

TEST_F(AtomicFileTest, ReplacesTheWholeFileAndLeavesNothingBeside) {
  Put(target, "an old and longer text");
  std::string error;
  ASSERT_TRUE(AtomicFile::Replace(target, "new", &error)) << error;
  EXPECT_EQ(Read(target), "new");
  EXPECT_EQ(Entries(), std::set<std::string>{"out.txt"});
}

// What a writer has written so far, counted over every piece: a scene
// writer refuses a file it could not read back before committing it.
TEST_F(AtomicFileTest, CountsTheBytesWrittenSoFar) {
  AtomicFile file(target);
  ASSERT_TRUE(file.Open());
  EXPECT_EQ(file.Written(), 0u);
  ASSERT_TRUE(file.Write("abc") && file.Write(std::string(70000, 'x')));
  EXPECT_EQ(file.Written(), 70003u);
  ASSERT_TRUE(file.Commit());
  EXPECT_EQ(fs::file_size(target), file.Written());
}

TEST_F(AtomicFileTest, ANewFileHasTheUsualPermissionsAndAReplacedOneKeepsItsOwn) {
  const mode_t mask = umask(0);
  umask(mask);
  ASSERT_TRUE(AtomicFile::Replace(target, "first"));
  EXPECT_EQ(Mode(target), 0666 & ~mask);
  chmod(target.c_str(), 0640);
  ASSERT_TRUE(AtomicFile::Replace(target, "second"));
  EXPECT_EQ(Mode(target), 0640u);
}

// A full disk: nothing of the new text reaches the target, and the
// temporary file goes.
TEST_F(AtomicFileTest, AFailedWriteLeavesTheTargetAndNoTemporaryFile) {
  Put(target, "old");
  std::string error;
  {
    const testing_support::FileSizeLimit limit(4);
    EXPECT_FALSE(AtomicFile::Replace(target, "a text longer than the limit", &error));
  }
  EXPECT_EQ(error, target + ": can't be written (File too large)");
  EXPECT_EQ(Read(target), "old");
  EXPECT_EQ(Entries(), std::set<std::string>{"out.txt"});
}

// Names that a writer once used, planted by someone else: a link is not
// followed, a folder not removed.
TEST_F(AtomicFileTest, PlantedNamesAreNeitherFollowedNorRemoved) {
  const std::string victim = (folder / "victim").string();
  Put(victim, "precious");
  fs::create_symlink(victim, target + ".tmp");
  const std::string other = (folder / "other.txt").string();
  fs::create_directory(other + ".tmp");
  for (const std::string& path : {target, other}) {
    std::string error;
    EXPECT_TRUE(AtomicFile::Replace(path, "written", &error)) << error;
    EXPECT_EQ(Read(path), "written");
  }
  EXPECT_EQ(Read(victim), "precious");
  EXPECT_TRUE(fs::is_symlink(target + ".tmp"));
  EXPECT_TRUE(fs::is_directory(other + ".tmp"));
  EXPECT_EQ(Entries(), (std::set<std::string>{"out.txt", "out.txt.tmp", "other.txt", "other.txt.tmp", "victim"}));
}

// Two writers of one file at once: each has its own temporary file, and the
// last to commit stands whole.
TEST_F(AtomicFileTest, TwoWritersAtOnceLeaveOneWholeVersion) {
  AtomicFile first(target), second(target);
  ASSERT_TRUE(first.Open());
  ASSERT_TRUE(second.Open());
  EXPECT_EQ(Entries().size(), 2u);
  for (int i = 0; i < 3; ++i) {
    ASSERT_TRUE(first.Write("first "));
    ASSERT_TRUE(second.Write("second "));
  }
  ASSERT_TRUE(first.Commit()) << first.Error();
  ASSERT_TRUE(second.Commit()) << second.Error();
  EXPECT_EQ(Read(target), "second second second ");
  EXPECT_EQ(Entries(), std::set<std::string>{"out.txt"});
}

TEST_F(AtomicFileTest, AWriterGivenUpLeavesTheTarget) {
  Put(target, "old");
  AtomicFile rolledBack(target);
  ASSERT_TRUE(rolledBack.Open());
  ASSERT_TRUE(rolledBack.Write("new"));
  rolledBack.Rollback();
  EXPECT_FALSE(rolledBack.Commit());
  {
    AtomicFile dropped(target);
    ASSERT_TRUE(dropped.Open());
    ASSERT_TRUE(dropped.Write("new"));
  }
  EXPECT_EQ(Read(target), "old");
  EXPECT_EQ(Entries(), std::set<std::string>{"out.txt"});
}

TEST_F(AtomicFileTest, ATargetThatBecomesAFolderIsNotReplaced) {
  AtomicFile file(target);
  ASSERT_TRUE(file.Open());
  ASSERT_TRUE(file.Write("new"));
  fs::create_directories(fs::path(target) / "inside");
  EXPECT_FALSE(file.Commit());
  EXPECT_EQ(file.Error(), target + ": can't be replaced (Is a directory)");
  EXPECT_TRUE(fs::is_directory(fs::path(target) / "inside"));
  EXPECT_EQ(Entries(), std::set<std::string>{"out.txt"});
}

// Where a file can't go, both the check before a long job and the write
// itself say so, and nothing there changes.
struct Refusal {
  const char* name;
  std::function<std::string(const fs::path& folder)> plant;  // answers the target
  const char* reason;
};

class AtomicFileRefusal : public AtomicFileTest, public testing::WithParamInterface<Refusal> {};

TEST_P(AtomicFileRefusal, IsSaidByTheCheckAndTheWrite) {
  const std::string path = GetParam().plant(folder);
  const std::set<std::string> before = Entries();
  const std::string expected = path + ": can't be written (" + GetParam().reason + ")";
  std::string checked, written;
  EXPECT_FALSE(AtomicFile::CanReplace(path, &checked));
  EXPECT_EQ(checked, expected);
  EXPECT_FALSE(AtomicFile::Replace(path, "new", &written));
  EXPECT_EQ(written, expected);
  EXPECT_EQ(Entries(), before);
}

INSTANTIATE_TEST_SUITE_P(
    Places, AtomicFileRefusal,
    testing::Values(Refusal{"MissingFolder", [](const fs::path& f) { return (f / "missing" / "out.txt").string(); },
                            "No such file or directory"},
                    Refusal{"TargetIsAFolder",
                            [](const fs::path& f) {
                              fs::create_directories(f / "out.txt" / "inside");
                              return (f / "out.txt").string();
                            },
                            "Is a directory"}),
    [](const testing::TestParamInfo<Refusal>& info) { return std::string(info.param.name); });

TEST_F(AtomicFileTest, TheCheckLeavesNothingBehind) {
  std::string error;
  EXPECT_TRUE(AtomicFile::CanReplace(target, &error)) << error;
  EXPECT_TRUE(Entries().empty());
}

}  // namespace
}  // namespace vuk::util
