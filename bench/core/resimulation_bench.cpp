// The speed of the main job on the embedded host: for every built-in tool, a
// resimulation of 100 of it over 10,000 frames; and one recording tick with
// 10 tools, the built-in tools in turn.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "bench/core/rig.h"
#include "core/resimulator.h"

namespace {

using namespace vuk::rgw;

using bench::Library;
using bench::Rig;

void BM_Resimulate100Tools(benchmark::State& state, core::Plugin* tool) {
  constexpr int kTools = 100, kFrames = 10000;
  for (auto _ : state) {
    state.PauseTiming();
    Rig rig(std::vector<core::Plugin*>(kTools, tool));
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

// A new tool in the table is measured without a line here.
void RegisterResimulations() {
  for (const auto& tool : Library().Tools()) {
    benchmark::RegisterBenchmark(("BM_Resimulate100Tools/" + tool->ToolName()).c_str(), BM_Resimulate100Tools,
                                 tool.get())
        ->Unit(benchmark::kSecond)
        ->Iterations(1);
  }
}

void BM_RecordingTick10Tools(benchmark::State& state) {
  Rig rig(bench::ToolsInTurn(10));
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

int main(int argc, char** argv) {
  RegisterResimulations();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
