// rgw record killed at random moments: the journal it leaves always holds the
// take up to the last second before the kill, and rgw recover puts that take
// into the scene; a journal torn or damaged is cut at the damage or refused,
// with a message, never a crash.
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>

#include <fcntl.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <random>
#include <regex>
#include <thread>

#include "core/takejournal.h"
#include "tests/app/rgwprogram.h"

extern char** environ;

namespace vuk::app {
namespace {

using rgw::core::JournalReading;

std::int64_t WallMs() {
  return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::system_clock::now().time_since_epoch())
      .count();
}

class KilledRecording : public testing::Test {
 protected:
  void SetUp() override {
    std::filesystem::create_directories(folder);
    ASSERT_EQ(Rgw("scene demo " + folder + "/demo.gltf").code, 0);
    ASSERT_EQ(Rgw("create " + folder + "/demo.gltf --tool 1DPositioner --out " + scene).code, 0);
  }

  // rgw record on the scene, killed `afterMs` after its journal appeared;
  // answers the wall clock of the kill.
  std::int64_t RecordAndKill(int afterMs, int slowMotion) {
    std::filesystem::remove(journal);
    const std::string speed = std::to_string(slowMotion), out = folder + "/never.gltf";
    const char* argv[] = {RGW_EXE, "record", scene.c_str(), "--seconds", "60", "--speed", speed.c_str(),
                          "--out",  out.c_str(), nullptr};
    posix_spawn_file_actions_t quiet;
    posix_spawn_file_actions_init(&quiet);
    posix_spawn_file_actions_addopen(&quiet, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&quiet, 2, "/dev/null", O_WRONLY, 0);
    pid_t pid = 0;
    const int spawned = posix_spawn(&pid, RGW_EXE, &quiet, nullptr, const_cast<char**>(argv), environ);
    posix_spawn_file_actions_destroy(&quiet);
    EXPECT_EQ(spawned, 0);
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    std::error_code none;
    while (std::filesystem::file_size(journal, none) == static_cast<std::uintmax_t>(-1) || none) {
      if (std::chrono::steady_clock::now() > deadline) break;
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
      none.clear();
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(afterMs));
    kill(pid, SIGKILL);
    const std::int64_t killedMs = WallMs();
    int status = 0;
    waitpid(pid, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) << "rgw record ended before the kill";
    return killedMs;
  }

  Ran Recover() { return Rgw("recover " + scene + " --out " + folder + "/recovered.gltf"); }

  // One per test: CTest runs them side by side.
  const std::string folder =
      testing::TempDir() + "/killedrecording/" + testing::UnitTest::GetInstance()->current_test_info()->name();
  const std::string scene = folder + "/scene.gltf";
  const std::string journal = rgw::core::JournalPathOf(scene);
};

TEST_F(KilledRecording, LeavesItsTakeUpToTheLastSecond) {
  std::mt19937 random(18);
  std::uniform_int_distribution<int> delayMs(0, 1300);
  for (int run = 0; run < 20; ++run) {
    const int slowMotion = run % 3;
    const std::int64_t killedMs = RecordAndKill(delayMs(random), slowMotion);
    const JournalReading reading = rgw::core::ReadTakeJournal(journal);
    ASSERT_EQ(reading.state, JournalReading::State::kWhole) << run << ": " << reading.problem;
    const rgw::core::JournalTake& take = reading.take;
    EXPECT_EQ(take.timeScale, 1 << slowMotion);
    // Scene seconds from the take's start to the kill; the first tick came after the start.
    const double lived = static_cast<double>(killedMs - take.startedMs) / 1000.0 / take.timeScale;
    EXPECT_GE(take.Seconds(), lived - 1.0) << run;
    EXPECT_LE(take.Seconds(), lived + 0.1) << run;
    const Ran recovered = Recover();
    if (take.times.empty()) {
      EXPECT_EQ(recovered.code, 1);
      EXPECT_NE(recovered.output.find("the take ends before its first frame; nothing to recover"), std::string::npos)
          << recovered.output;
      continue;
    }
    EXPECT_EQ(recovered.code, 0) << recovered.output;
    char said[64];
    std::snprintf(said, sizeof said, "recovered %.3f s from 0.000 s of the take of 1DPositioner_01 (", take.Seconds());
    EXPECT_NE(recovered.output.find(said), std::string::npos) << recovered.output;
  }
}

struct Damage {
  const char* what;
  // The journal's bytes as the damage leaves them.
  std::function<void(std::string&)> damage;
  int code;
  std::string said;  // a regular expression
};

TEST_F(KilledRecording, ADamagedJournalIsCutAtTheDamageOrRefused) {
  RecordAndKill(700, 0);
  std::ifstream file(journal, std::ios::binary);
  const std::string whole((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  const std::size_t frames = rgw::core::ReadTakeJournal(journal).take.times.size();
  ASSERT_GE(frames, 5u);
  // Four channels: 49 bytes a frame.
  const std::size_t frameBytes = 49, firstFrame = whole.size() - frames * frameBytes;
  const std::string thirdFrame = std::to_string(firstFrame + 2 * frameBytes);
  const Damage damages[] = {
      {"torn in the third frame", [&](std::string& bytes) { bytes.resize(firstFrame + 2 * frameBytes + 20); }, 0,
       "cut at byte " + thirdFrame + ", where the file ends too early; the take is recovered up to there\n"
       "[^\n]*\nrecovered [0-9.]+ s from 0.000 s of the take of 1DPositioner_01 \\(2 frames\\)"},
      {"a value of the third frame", [&](std::string& bytes) { bytes[firstFrame + 2 * frameBytes + 30] ^= 0x10; }, 0,
       "cut at byte " + thirdFrame + ", where a record is damaged; the take is recovered up to there"},
      {"the start of the take", [&](std::string& bytes) { bytes[20] ^= 1; }, 1,
       "^rgw: [^\n]*scene.gltf.rgwtake: no take: cut at byte 12, where a record is damaged\n$"},
      {"only the header", [&](std::string& bytes) { bytes.resize(12); }, 1,
       "^rgw: [^\n]*scene.gltf.rgwtake: the file holds no take\n$"},
      {"nothing", [&](std::string& bytes) { bytes.clear(); }, 1,
       "^rgw: [^\n]*scene.gltf.rgwtake: not a take journal\n$"},
      {"another file", [&](std::string& bytes) { bytes = "hello\n"; }, 1,
       "^rgw: [^\n]*scene.gltf.rgwtake: not a take journal\n$"},
  };
  for (const Damage& damage : damages) {
    std::string bytes = whole;
    damage.damage(bytes);
    std::ofstream(journal, std::ios::binary | std::ios::trunc) << bytes;
    const Ran recovered = Recover();
    EXPECT_EQ(recovered.code, damage.code) << damage.what << ": " << recovered.output;
    EXPECT_TRUE(std::regex_search(recovered.output, std::regex(damage.said))) << damage.what << ": " << recovered.output;
    // scene show names the journal in one line, whatever its state.
    const Ran shown = Rgw("scene show " + scene);
    EXPECT_EQ(shown.code, 0);
    EXPECT_TRUE(std::regex_search(shown.output, std::regex("scene.gltf.rgwtake(: [^\n]*; no take to recover from it| holds an unfinished take of [^\n]*recovers it)\n$")))
        << damage.what << ": " << shown.output;
  }
}

}  // namespace
}  // namespace vuk::app
