// The speed of the main job: a resimulation of 100 tools of one kind (LookAt
// cameras, 1DPositioners) over 10,000 frames on the embedded host, and one
// recording tick with 10 LookAt cameras.
#include <benchmark/benchmark.h>

#include <memory>
#include <vector>

#include "adaptor/standalone/standaloneadaptorinterface.h"
#include "core/corelibrary.h"
#include "core/recordmanager.h"
#include "core/resimulator.h"

namespace {

using namespace vuk::rgw;

struct Rig : core::InstanceList {
  Rig(int tools, const char* toolName = "LookAtCam") {
    for (int i = 0; i < tools; ++i) instances.push_back(library.FindTool(toolName)->CreateInstance("", &host));
  }
  std::vector<core::Instance*> AllInstances() override {
    std::vector<core::Instance*> all;
    for (auto& instance : instances) all.push_back(instance.get());
    return all;
  }
  std::vector<core::Instance*> CheckedInstances() override { return AllInstances(); }

  adaptor::standalone::StandaloneAdaptorInterface host;
  core::CoreLibrary library;
  std::vector<std::unique_ptr<core::Instance>> instances;
};

void BM_Resimulate100Tools(benchmark::State& state, const char* toolName) {
  constexpr int kTools = 100, kFrames = 10000;
  for (auto _ : state) {
    state.PauseTiming();
    Rig rig(kTools, toolName);
    core::Resimulator resimulator(&rig.host);
    const double frame = rig.host.GetFrameDuration();
    state.ResumeTiming();
    resimulator.Start(rig.CheckedInstances(), 0.0, kFrames * frame, core::TimeBase(rig.host.GetFrameRate()));
    resimulator.RunToEnd();
    resimulator.Finish();
  }
  const double toolFrames = static_cast<double>(state.iterations()) * kTools * kFrames;
  state.counters["tool_frames_per_s"] = benchmark::Counter(toolFrames, benchmark::Counter::kIsRate);
  // Real time at 30 fps: 100 tools x 10,000 frames is 333 s of scene time.
  state.counters["x_real_time"] =
      benchmark::Counter(static_cast<double>(state.iterations()) * kFrames / 30.0, benchmark::Counter::kIsRate);
}
BENCHMARK_CAPTURE(BM_Resimulate100Tools, LookAtCam, "LookAtCam")->Unit(benchmark::kSecond)->Iterations(1);
BENCHMARK_CAPTURE(BM_Resimulate100Tools, 1DPositioner, "1DPositioner")->Unit(benchmark::kSecond)->Iterations(1);

void BM_RecordingTick10Tools(benchmark::State& state) {
  Rig rig(10);
  core::RecordManager recorder(&rig.host, nullptr, &rig);
  std::int64_t now = 0;
  recorder.clock = [&now] { return now; };
  recorder.processEvents = [] {};
  recorder.countdownSeconds = 0;
  recorder.autoExpand = true;
  rig.host.SetAnimationRange({0, 1e6});
  recorder.StartRecording();
  recorder.Tick(now);
  for (auto _ : state) {
    now += 33;  // one frame a tick, as in a live take at 30 fps
    recorder.Tick(now);
  }
  recorder.StopRecording();
}
BENCHMARK(BM_RecordingTick10Tools)->Unit(benchmark::kMicrosecond);

}  // namespace
