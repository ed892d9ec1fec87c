// The pacing of a live take: 10 tools, the built-in tools in turn, recorded
// for a few seconds of the wall clock at each slow-motion step, the ticks
// coming from the recorder's own Qt timer. Counters:
//   fps_scene, fps_wanted: frames simulated per second of scene time, and the
//     host's frame rate they should reach;
//   lag_ms_max: the longest wall-clock time from a tick to the frames it
//     produced, plus how far the newest of them trailed the clock;
//   tick_gap_ms_max: the longest wall-clock time between two ticks, against
//     the frame duration the timer is armed with;
//   ticks_left_frames: ticks that stepped their three frames and still left
//     frames due, which the next ticks had to catch up;
//   frames_behind_max: the most frames ever due and not yet simulated after a
//     tick; frames_behind_end: those still due when the take stopped.
#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <algorithm>
#include <functional>

#include "bench/core/rig.h"

namespace {

using namespace vuk::rgw;

constexpr std::int64_t kTakeMs = 3000;

// What one take measured, tick by tick.
struct Pacing {
  std::int64_t framesStepped = 0;
  double lagMsMax = 0;
  std::int64_t tickGapMsMax = 0;
  std::int64_t lastTickMs = -1;
  std::int64_t ticksLeftFrames = 0;
  std::int64_t framesBehindMax = 0;
  std::int64_t framesBehind = 0;

  // After a tick's frames, at `nowMs` of the recorder's clock.
  void TickDone(const core::RecordManager& recorder, const core::TimeBase& base, std::int64_t steppedBefore,
                std::int64_t nowMs) {
    if (recorder.time > recorder.startTime) framesStepped += recorder.frameIndex - steppedBefore;
    // A tick steps up to the frame after the clock's.
    framesBehind = std::max<std::int64_t>(0, base.FrameAt(recorder.time) + 1 - recorder.frameIndex);
    if (framesBehind > 0) ++ticksLeftFrames;
    framesBehindMax = std::max(framesBehindMax, framesBehind);
    const double trailingMs = std::max(0.0, recorder.time - base.TimeOf(recorder.frameIndex)) * recorder.timeScale * 1000;
    lagMsMax = std::max(lagMsMax, static_cast<double>(nowMs - recorder.lastTickMs) + trailingMs);
    if (lastTickMs >= 0) tickGapMsMax = std::max(tickGapMsMax, recorder.lastTickMs - lastTickMs);
    lastTickMs = recorder.lastTickMs;
  }
};

void BM_LivePacing10Tools(benchmark::State& state) {
  const auto speedStep = static_cast<std::int32_t>(state.range(0));
  bench::Rig rig(bench::ToolsInTurn(10));
  core::RecordManager recorder(&rig.host, nullptr, &rig);
  recorder.countdownSeconds = 0;
  recorder.autoExpand = true;
  rig.host.SetAnimationRange({0, 1e6});
  recorder.SetSpeedStep(speedStep + 1);
  const core::TimeBase base(rig.host.GetFrameRate());
  const std::function<void()> runEvents = recorder.processEvents;
  Pacing pacing;
  double sceneSeconds = 0;
  for (auto _ : state) {
    pacing = Pacing{};
    rig.host.SetTime(0);
    recorder.StartRecording();
    const std::int64_t startMs = recorder.clock();
    std::int64_t steppedBefore = recorder.frameIndex;
    QEventLoop loop;
    recorder.processEvents = [&] {
      const std::int64_t nowMs = recorder.clock();
      pacing.TickDone(recorder, base, steppedBefore, nowMs);
      steppedBefore = recorder.frameIndex;
      runEvents();
      if (nowMs - startMs < kTakeMs) return;
      recorder.StopRecording();
      loop.quit();
    };
    loop.exec();
    recorder.processEvents = runEvents;
    sceneSeconds = recorder.time - recorder.startTime;
  }
  state.counters["fps_scene"] = static_cast<double>(pacing.framesStepped) / sceneSeconds;
  state.counters["fps_wanted"] = base.FramesPerSecond();
  state.counters["lag_ms_max"] = pacing.lagMsMax;
  state.counters["tick_gap_ms_max"] = static_cast<double>(pacing.tickGapMsMax);
  state.counters["ticks_left_frames"] = static_cast<double>(pacing.ticksLeftFrames);
  state.counters["frames_behind_max"] = static_cast<double>(pacing.framesBehindMax);
  state.counters["frames_behind_end"] = static_cast<double>(pacing.framesBehind);
}
BENCHMARK(BM_LivePacing10Tools)->ArgName("speed_step")->DenseRange(0, 3)->Iterations(1)->Unit(benchmark::kSecond);

}  // namespace

// The recorder's timer needs an application's event loop.
int main(int argc, char** argv) {
  QCoreApplication application(argc, argv);
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
