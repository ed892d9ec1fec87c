// What long takes cost: a scene of 10 tools, each with an hour of input at
// 30 fps and the histories and keys of that hour simulated, saved and shown
// again; and the worst recording tick over an hour-long live take.
//
// The save reports the bytes of the file and the peak of allocated bytes
// while it is written (counted by the operators new and delete below). The
// file stays in the temporary folder, so that `rgw scene show` can be timed
// on it as well.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "adaptor/standalone/gltffile.h"
#include "adaptor/standalone/standaloneadaptorinterface.h"
#include "core/instancemanager.h"
#include "core/librarymanager.h"
#include "core/recordmanager.h"
#include "core/resimulator.h"
#include "plugins/tools.h"

namespace {

std::atomic<std::size_t> allocated{0};
std::atomic<std::size_t> peak{0};

void* Allocate(std::size_t size) {
  void* block = std::malloc(size ? size : 1);
  if (!block) throw std::bad_alloc();
  const std::size_t now = allocated += malloc_usable_size(block);
  std::size_t seen = peak.load();
  while (now > seen && !peak.compare_exchange_weak(seen, now)) {
  }
  return block;
}

void Release(void* block) {
  if (!block) return;
  allocated -= malloc_usable_size(block);
  std::free(block);
}

}  // namespace

void* operator new(std::size_t size) { return Allocate(size); }
void* operator new[](std::size_t size) { return Allocate(size); }
void operator delete(void* block) noexcept { Release(block); }
void operator delete[](void* block) noexcept { Release(block); }
void operator delete(void* block, std::size_t) noexcept { Release(block); }
void operator delete[](void* block, std::size_t) noexcept { Release(block); }

namespace {

using namespace vuk::rgw;

constexpr int kTools = 10;
constexpr double kTakeSeconds = 3600;

// "positioners": ten 1D positioners, small states, the figures first taken;
// "mixed": the tools that take input in turn, a 4-Wheeler's state per frame
// ten times a positioner's.
std::string ScenePath(const std::string& set, const char* extension) {
  return (std::filesystem::temp_directory_path() / ("rgw_bench_long_takes_" + set + extension)).string();
}

// The host, the tools and their tree, as the rgw command line holds them.
struct Session {
  Session() {
    host.SetSceneLoader([this](const vuk::util::xml::Element& tree) {
      tools.LoadToolTree(tree);
      return tools.InstanceNames();
    });
  }
  adaptor::standalone::StandaloneAdaptorInterface host;
  core::LibraryManager library{addon::BuiltInTools()};
  core::InstanceManager tools{&host, &library};
  adaptor::standalone::GltfFile file;
};

// The tools of the table that take input: a take needs channels.
std::vector<std::string> ToolsWithChannels() {
  Session probe;
  std::vector<std::string> names;
  for (core::Plugin* tool : probe.library.AllTools()) {
    if (!probe.tools.Create(tool->ToolName())->instance->Channels().empty()) names.push_back(tool->ToolName());
  }
  return names;
}

std::vector<std::string> ToolsOf(const std::string& set) {
  return set == "positioners" ? std::vector<std::string>{"1DPositioner"} : ToolsWithChannels();
}

// Those tools in turn, each with an hour of input on every channel,
// simulated over that hour.
std::unique_ptr<Session> LongTakes(const std::string& set) {
  const std::vector<std::string> names = ToolsOf(set);
  auto made = std::make_unique<Session>();
  const double fps = made->host.GetFrameRate();
  const auto frames = static_cast<int>(kTakeSeconds * fps);
  for (int i = 0; i < kTools; ++i) {
    core::Instance& tool = *made->tools.Create(names[static_cast<std::size_t>(i) % names.size()])->instance;
    for (const core::Instance::Channel& channel : tool.Channels()) {
      vuk::util::AVar_Linear<double>& track = *tool.TrackOf(channel.name);
      for (int f = 0; f <= frames; ++f) track.Set(f / fps, std::sin(f * 0.01 + i));
    }
  }
  core::Resimulator resimulator(&made->host);
  resimulator.Start(made->tools.CheckedInstances(), 0.0, kTakeSeconds, core::TimeBase(fps));
  resimulator.RunToEnd();
  resimulator.Finish();
  return made;
}

// The peak of allocated bytes above where a stretch of work began. One at a time.
class PeakMeter {
 public:
  PeakMeter() : base_(allocated.load()) { peak = base_; }
  std::size_t Base() const { return base_; }
  std::size_t Peak() const { return peak.load() - base_; }

 private:
  std::size_t base_;
};

// Peaks of the tags, of the file written with the tags in the scene, and of the whole.
struct SavePeaks {
  std::size_t tags = 0, file = 0, total = 0;
};

bool Save(Session& session, const std::string& path, SavePeaks* peaks = nullptr) {
  const std::size_t start = allocated.load();
  std::size_t tags = 0;
  {
    const PeakMeter meter;
    session.tools.WriteNodeTags();
    tags = meter.Peak();
  }
  const PeakMeter writing;
  std::string error;
  const bool saved = session.file.Save(path, session.host.GetScene(), &error);
  if (peaks) {
    const std::size_t file = writing.Peak();
    peaks->tags = std::max(peaks->tags, tags);
    peaks->file = std::max(peaks->file, file);
    peaks->total = std::max({peaks->total, tags, writing.Base() - start + file});
  }
  session.host.GetScene().Walk([](adaptor::standalone::SceneNode& node) { node.properties.erase("RGT_tag"); });
  return saved;
}

void BM_SaveLongTakes(benchmark::State& state, const char* set, const char* extension) {
  // Made here and gone before the scene is shown: tool names are unique in
  // the process, and the loaded tools must get theirs back.
  const std::unique_ptr<Session> session = LongTakes(set);
  const std::string path = ScenePath(set, extension);
  SavePeaks peaks;
  for (auto _ : state) {
    if (!Save(*session, path, &peaks)) state.SkipWithError("the scene could not be saved");
  }
  const auto fileBytes = static_cast<double>(std::filesystem::file_size(path));
  state.counters["file_bytes"] = fileBytes;
  state.counters["peak_alloc_bytes"] = static_cast<double>(peaks.total);
  state.counters["peak_per_file_byte"] = static_cast<double>(peaks.total) / fileBytes;
  // Where it goes: the tools' tags, and the file written with the tags in the scene.
  state.counters["tags_peak_bytes"] = static_cast<double>(peaks.tags);
  state.counters["file_peak_bytes"] = static_cast<double>(peaks.file);
}
BENCHMARK_CAPTURE(BM_SaveLongTakes, positioners_gltf, "positioners", ".gltf")->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK_CAPTURE(BM_SaveLongTakes, positioners_glb, "positioners", ".glb")->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK_CAPTURE(BM_SaveLongTakes, mixed_glb, "mixed", ".glb")->Unit(benchmark::kMillisecond)->Iterations(1);

// What `rgw scene show` does before it prints: read the file, rebuild the tools.
void BM_ShowLongTakes(benchmark::State& state, const char* set, const char* extension) {
  const std::string path = ScenePath(set, extension);
  if (!std::filesystem::exists(path) && !Save(*LongTakes(set), path)) state.SkipWithError("no scene to show");
  double readMs = 0, gatherMs = 0;
  for (auto _ : state) {
    Session session;
    std::string error;
    const auto start = std::chrono::steady_clock::now();
    if (!session.file.Load(path, session.host.GetScene(), &error)) state.SkipWithError(error.c_str());
    const auto read = std::chrono::steady_clock::now();
    session.host.GatherScene();
    readMs += std::chrono::duration<double, std::milli>(read - start).count();
    gatherMs += std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - read).count();
    if (session.tools.AllInstances().size() != kTools) state.SkipWithError("tools were lost on the way");
  }
  // Where the time goes: the file, and the tools taken up from its tags.
  state.counters["read_ms"] = benchmark::Counter(readMs, benchmark::Counter::kAvgIterations);
  state.counters["gather_ms"] = benchmark::Counter(gatherMs, benchmark::Counter::kAvgIterations);
}
BENCHMARK_CAPTURE(BM_ShowLongTakes, positioners_gltf, "positioners", ".gltf")->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK_CAPTURE(BM_ShowLongTakes, positioners_glb, "positioners", ".glb")->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK_CAPTURE(BM_ShowLongTakes, mixed_glb, "mixed", ".glb")->Unit(benchmark::kMillisecond)->Iterations(1);

// A live take of an hour, one frame a tick as at 30 fps, with the tools that
// take input; the worst tick is the frame a user sees stall.
void BM_WorstRecordingTickLongTake(benchmark::State& state) {
  const std::vector<std::string> names = ToolsWithChannels();
  for (auto _ : state) {
    Session session;
    for (int i = 0; i < kTools; ++i) session.tools.Create(names[static_cast<std::size_t>(i) % names.size()]);
    core::RecordManager recorder(&session.host, nullptr, &session.tools);
    std::int64_t now = 0;
    recorder.clock = [&now] { return now; };
    recorder.processEvents = [] {};
    recorder.countdownSeconds = 0;
    session.host.SetAnimationRange({0, kTakeSeconds});
    recorder.StartRecording();
    recorder.Tick(now);
    double worst = 0;
    const auto ticks = static_cast<int>(kTakeSeconds * 30);
    for (int i = 0; i < ticks && recorder.IsRecording(); ++i) {
      now += i % 3 == 2 ? 34 : 33;
      const auto start = std::chrono::steady_clock::now();
      recorder.Tick(now);
      const double ms = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
      worst = std::max(worst, ms);
    }
    recorder.StopRecording();
    state.counters["worst_tick_ms"] = worst;
  }
}
BENCHMARK(BM_WorstRecordingTickLongTake)->Unit(benchmark::kSecond)->Iterations(1);

}  // namespace
