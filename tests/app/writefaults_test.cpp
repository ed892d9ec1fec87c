// rgw when writing goes wrong: killed at any moment, a full disk, two
// writers of one file, names planted beside the output, a full standard
// output. The target is always the old version or a whole new one, and the
// exit status says which.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <random>
#include <set>
#include <string>
#include <string_view>
#include <thread>
#include <tuple>
#include <vector>

#include "tests/util/filesizelimit.h"
#include "util/base64.h"

namespace {

namespace fs = std::filesystem;

using Arguments = std::vector<std::string>;

const std::string kOld = "old version\n";
const char* const kInstance = "1DPositioner_01";

std::string Read(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

void Put(const fs::path& path, const std::string& bytes) { std::ofstream(path, std::ios::binary) << bytes; }

std::set<std::string> Entries(const fs::path& folder) {
  std::set<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) names.insert(entry.path().filename().string());
  return names;
}

// Starts rgw with its standard output and error going to the given files,
// and the files it writes limited to `fileSizeLimit` bytes.
pid_t Spawn(const Arguments& args, const std::string& out, const std::string& err, rlim_t fileSizeLimit = RLIM_INFINITY) {
  std::vector<char*> argv{const_cast<char*>(RGW_EXE)};
  for (const std::string& arg : args) argv.push_back(const_cast<char*>(arg.c_str()));
  argv.push_back(nullptr);
  const pid_t pid = fork();
  if (pid != 0) return pid;
  const int outFd = open(out.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  const int errFd = open(err.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
  if (outFd < 0 || errFd < 0 || dup2(outFd, 1) < 0 || dup2(errFd, 2) < 0) _exit(126);
  setenv("QT_QPA_PLATFORM", "offscreen", 1);
  const vuk::testing_support::FileSizeLimit limit(fileSizeLimit);
  execv(RGW_EXE, argv.data());
  _exit(127);
}

int Wait(pid_t pid) {
  int status = 0;
  while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
  }
  return status;
}

struct Finished {
  int status;
  std::string out;
  std::string err;
  bool Succeeded() const { return WIFEXITED(status) && WEXITSTATUS(status) == 0; }
  bool Failed() const { return WIFEXITED(status) && WEXITSTATUS(status) != 0; }
};

class WriteFaults : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    work = fs::path(testing::TempDir()) / ("writefaults_" + std::to_string(getpid()));
    fs::remove_all(work);
    fs::create_directories(work / "logs");
    const std::string demo = (work / "demo.gltf").string();
    const std::string tooled = (work / "tooled.gltf").string();
    scene = (work / "scene.gltf").string();
    for (const Arguments& step : {Arguments{"scene", "demo", demo},
                                  Arguments{"create", demo, "--tool", "1DPositioner", "--out", tooled},
                                  Arguments{"take", tooled, "--instance", kInstance, "--csv",
                                            RGW_SOURCE_DIR "/data/demo/1dpositioner_take.csv", "--out", scene}}) {
      const Finished made = Rgw(step);
      ASSERT_TRUE(made.Succeeded()) << made.err;
    }
  }
  static void TearDownTestSuite() { fs::remove_all(work); }

  static Finished Rgw(const Arguments& args, rlim_t fileSizeLimit = RLIM_INFINITY) {
    const std::string out = (work / "logs/out").string(), err = (work / "logs/err").string();
    const int status = Wait(Spawn(args, out, err, fileSizeLimit));
    return {status, Read(out), Read(err)};
  }
  // A run long enough to be caught while it writes: a 2 MB scene.
  static Arguments Run(const std::string& in, const std::string& out, const char* seconds = "60", const char* fps = "240") {
    return {"run", in, "--to", seconds, "--fps", fps, "--out", out};
  }
  // The arguments with SCENE, SPLIT (the scene with its buffer in a file
  // of its own beside it) and OUT filled in.
  static Arguments Filled(Arguments args, const std::string& out = "") {
    for (std::string& arg : args) {
      if (arg == "SCENE") arg = scene;
      if (arg == "SPLIT") arg = SplitScene();
      if (arg == "OUT") arg = out;
    }
    return args;
  }
  static std::string SplitScene() {
    const std::string header = "\"data:application/octet-stream;base64,";
    std::string text = Read(scene);
    const std::size_t begin = text.find(header);
    const std::size_t end = text.find('"', begin + header.size());
    vuk::util::Bytes buffer;
    EXPECT_TRUE(vuk::util::Base64::Decode(std::string_view(text).substr(begin + header.size(), end - begin - header.size()), buffer));
    text.replace(begin, end + 1 - begin, "\"split.bin\"");
    Put(work / "split.gltf", text);
    Put(work / "split.bin", std::string(buffer.begin(), buffer.end()));
    return (work / "split.gltf").string();
  }
  // A fresh folder for one test.
  static fs::path Folder(const std::string& name) {
    const fs::path folder = work / name;
    fs::create_directories(folder);
    return folder;
  }

  static fs::path work;
  static std::string scene;
};

fs::path WriteFaults::work;
std::string WriteFaults::scene;

TEST_F(WriteFaults, KilledAtAnyMomentItLeavesTheOldSceneOrTheNewOne) {
  const fs::path folder = Folder("killed");
  const fs::path target = folder / "scene.gltf";
  const std::string old = Read(scene);
  fs::copy_file(scene, target);
  const auto start = std::chrono::steady_clock::now();
  ASSERT_TRUE(Rgw(Run(target, target)).Succeeded());
  const auto took = std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - start);
  const std::string fresh = Read(target);
  ASSERT_NE(fresh, old);

  const unsigned seed = std::random_device()();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  std::uniform_int_distribution<std::int64_t> delay(0, took.count());
  constexpr int kTries = 30;
  int keptOld = 0, wroteNew = 0, finished = 0;
  for (int i = 0; i < kTries; ++i) {
    Put(target, old);
    const pid_t pid = Spawn(Run(target, target), "/dev/null", "/dev/null");
    std::this_thread::sleep_for(std::chrono::microseconds(delay(random)));
    kill(pid, SIGKILL);
    const int status = Wait(pid);
    const std::string found = Read(target);
    EXPECT_TRUE(found == old || found == fresh) << "try " << i << ": " << found.size() << " bytes of neither";
    keptOld += found == old;
    wroteNew += found == fresh;
    if (WIFEXITED(status)) {
      ++finished;
      EXPECT_EQ(WEXITSTATUS(status), 0);
      EXPECT_EQ(found, fresh) << "try " << i;
    }
    // A killed writer leaves its temporary file; nothing else.
    for (const std::string& name : Entries(folder)) {
      if (name == "scene.gltf") continue;
      EXPECT_EQ(name.rfind(".scene.gltf.", 0), 0u) << name;
      fs::remove(folder / name);
    }
  }
  std::cout << kTries << " kills within " << took.count() << " us: " << keptOld << " left the old scene, "
            << wroteNew << " the new one (" << finished << " finished first)\n";
}

TEST_F(WriteFaults, TwoWritersOfOneSceneLeaveOneWholeVersion) {
  const fs::path folder = Folder("two");
  const fs::path target = folder / "out.gltf";
  // Nearly alike, so that they write at the same time.
  const Arguments one = Run(scene, target), another = Run(scene, target, "60", "239");
  ASSERT_TRUE(Rgw(one).Succeeded());
  const std::string first = Read(target);
  ASSERT_TRUE(Rgw(another).Succeeded());
  const std::string second = Read(target);
  ASSERT_NE(first, second);

  constexpr int kTries = 20;
  int firstStood = 0, secondStood = 0;
  for (int i = 0; i < kTries; ++i) {
    Put(target, kOld);
    const pid_t onePid = Spawn(one, "/dev/null", "/dev/null");
    const pid_t otherPid = Spawn(another, "/dev/null", "/dev/null");
    for (const pid_t pid : {onePid, otherPid}) EXPECT_TRUE((Finished{Wait(pid), "", ""}.Succeeded())) << "try " << i;
    const std::string found = Read(target);
    EXPECT_TRUE(found == first || found == second) << "try " << i << ": " << found.size() << " bytes of neither";
    firstStood += found == first;
    secondStood += found == second;
    EXPECT_EQ(Entries(folder), std::set<std::string>{"out.gltf"});
  }
  std::cout << kTries << " pairs of writers: one scene stood " << firstStood << " times, the other " << secondStood
            << "\n";
}

// Names beside the output that a writer once used, planted by someone else:
// a link is not followed, a folder not removed.
TEST_F(WriteFaults, NamesPlantedBesideTheOutputAreLeftAlone) {
  const fs::path folder = Folder("planted");
  Put(folder / "victim", "precious");
  fs::create_symlink(folder / "victim", folder / "linked.gltf.tmp");
  fs::create_directory(folder / "foldered.gltf.tmp");
  for (const char* name : {"linked.gltf", "foldered.gltf"}) {
    const Finished run = Rgw(Run(scene, folder / name, "1"));
    EXPECT_TRUE(run.Succeeded()) << run.err;
  }
  EXPECT_EQ(Read(folder / "victim"), "precious");
  EXPECT_TRUE(fs::is_symlink(folder / "linked.gltf.tmp"));
  EXPECT_TRUE(fs::is_directory(folder / "foldered.gltf.tmp"));
  EXPECT_EQ(Read(folder / "linked.gltf").substr(0, 1), "{");
  EXPECT_EQ(Entries(folder), (std::set<std::string>{"victim", "linked.gltf", "linked.gltf.tmp", "foldered.gltf",
                                                    "foldered.gltf.tmp"}));
}

// An output that can't be written is refused before the run simulates.
struct Unwritable {
  const char* name;
  const char* out;  // below the test's folder
  const char* reason;
};

void PrintTo(const Unwritable& output, std::ostream* os) { *os << output.name; }

class WriteFaultsUnwritable : public WriteFaults, public testing::WithParamInterface<Unwritable> {};

TEST_P(WriteFaultsUnwritable, IsRefusedBeforeTheRun) {
  const fs::path folder = Folder(std::string("unwritable_") + GetParam().name);
  fs::create_directories(folder / "taken.gltf" / "inside");
  const std::string out = (folder / GetParam().out).string();
  const Finished run = Rgw(Run(scene, out));
  EXPECT_TRUE(run.Failed());
  EXPECT_EQ(run.err, "rgw: " + out + ": can't be written (" + GetParam().reason + ")\n");
  EXPECT_EQ(Entries(folder), std::set<std::string>{"taken.gltf"});
}

INSTANTIATE_TEST_SUITE_P(Outputs, WriteFaultsUnwritable,
                         testing::Values(Unwritable{"MissingFolder", "missing/out.gltf", "No such file or directory"},
                                         Unwritable{"AFolder", "taken.gltf", "Is a directory"}),
                         [](const testing::TestParamInfo<Unwritable>& info) { return std::string(info.param.name); });

// A listing that doesn't reach its file fails the command.
class WriteFaultsListing : public WriteFaults, public testing::WithParamInterface<Arguments> {};

TEST_P(WriteFaultsListing, ToAFullDeviceFails) {
  const std::string err = (work / "logs/listing_err").string();
  EXPECT_TRUE((Finished{Wait(Spawn(Filled(GetParam()), "/dev/full", err)), "", ""}.Failed()));
  EXPECT_EQ(Read(err), "rgw: the output can't be written (No space left on device)\n");
}

INSTANTIATE_TEST_SUITE_P(Commands, WriteFaultsListing,
                         testing::Values(Arguments{"scene", "show", "SCENE"}, Arguments{"tools"},
                                         Arguments{"tools", "1DPositioner"}, Arguments{"--version"}));

// A full disk, as a small disk of its own or as a limit on file sizes: every
// writer fails, says so, and leaves the old files and nothing else.
enum class Full { kFileSizeLimit, kSmallDisk };

struct Writer {
  const char* name;
  Arguments args;  // filled in
  const char* out;
};

void PrintTo(const Writer& writer, std::ostream* os) { *os << writer.name; }
void PrintTo(Full full, std::ostream* os) { *os << (full == Full::kFileSizeLimit ? "file size limit" : "small disk"); }

class WriteFaultsFullDisk : public WriteFaults, public testing::WithParamInterface<std::tuple<Full, Writer>> {
 protected:
  void SetUp() override {
    disk = Folder(std::string("full_") + std::get<1>(GetParam()).name + "_" + std::to_string(static_cast<int>(full())));
    if (full() == Full::kSmallDisk) {
      // Two pages: the two old files fill it.
      if (mount("tmpfs", disk.c_str(), "tmpfs", MS_NOSUID | MS_NODEV, "size=8k") != 0) {
        GTEST_SKIP() << "no small disk can be mounted here: " << std::strerror(errno);
      }
      mounted = true;
    }
  }
  void TearDown() override {
    if (mounted) umount2(disk.c_str(), MNT_DETACH);
  }
  Full full() const { return std::get<0>(GetParam()); }

  fs::path disk;
  bool mounted = false;
};

TEST_P(WriteFaultsFullDisk, LeavesTheOldFiles) {
  const Writer& writer = std::get<1>(GetParam());
  const fs::path out = disk / writer.out;
  const fs::path buffer = fs::path(out).replace_extension(".bin");
  const Arguments args = Filled(writer.args, out.string());
  Put(out, kOld);
  Put(buffer, kOld);
  const Finished run = Rgw(args, full() == Full::kFileSizeLimit ? 1024 : RLIM_INFINITY);
  EXPECT_TRUE(run.Failed()) << run.out;
  // Named: the file that met the full disk, the buffer's or the scene's.
  EXPECT_NE(run.err.find("rgw: " + disk.string() + "/out."), std::string::npos) << run.err;
  EXPECT_NE(run.err.find(": can't be written ("), std::string::npos) << run.err;
  EXPECT_EQ(Read(out), kOld);
  EXPECT_EQ(Read(buffer), kOld);
  EXPECT_EQ(Entries(disk), (std::set<std::string>{out.filename().string(), buffer.filename().string()}));
}

INSTANTIATE_TEST_SUITE_P(
    Writers, WriteFaultsFullDisk,
    testing::Combine(testing::Values(Full::kFileSizeLimit, Full::kSmallDisk),
                     testing::Values(Writer{"Run", {"run", "SCENE", "--to", "60", "--fps", "240", "--out", "OUT"}, "out.gltf"},
                                     Writer{"RunSplit", {"run", "SPLIT", "--to", "60", "--fps", "240", "--out", "OUT"}, "out.gltf"},
                                     Writer{"Binary", {"run", "SCENE", "--out", "OUT"}, "out.glb"},
                                     Writer{"Demo", {"scene", "demo", "OUT"}, "out.gltf"},
                                     Writer{"Model", {"model", "SCENE", "--instance", kInstance, "--out", "OUT"}, "out.prm"},
                                     Writer{"Picture", {"layout", "page", "--png", "OUT"}, "out.png"})),
    [](const testing::TestParamInfo<std::tuple<Full, Writer>>& info) {
      return std::string(std::get<0>(info.param) == Full::kFileSizeLimit ? "Limit" : "SmallDisk") +
             std::get<1>(info.param).name;
    });

}  // namespace
