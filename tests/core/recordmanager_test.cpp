#include "core/recordmanager.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QTimer>
#include <cmath>
#include <limits>
#include <tuple>

#include "adaptor/standalone/standaloneadaptorinterface.h"
#include "adaptor/standalone/standalonenode.h"
#include "tests/sdk/testplugin.h"

namespace vuk::rgw::core {
namespace {

using adaptor::standalone::StandaloneAdaptorInterface;

// A tool that writes its node at every step and notes the times it hears.
class Probe : public CCamera {
 public:
  using CCamera::CCamera;
  std::int32_t BuildConfig() override {
    channel = iface->AddInput("Throttle", input::kContinuous);
    return 0;
  }
  std::int32_t Create() override {
    node = iface->CreateCameraNode("Cam", nullptr, nullptr);
    return 0;
  }
  void Step(double t) override {
    steps.push_back(t);
    if (CSnapshot* snapshot = iface->GetTransformSnapshot(node, t)) {
      util::Matrix<double> pose;
      pose.SetTranslation({t, 0, 0});
      snapshot->SetWorldTransform(pose);
      iface->ReleaseTransformSnapshot(snapshot);
    }
  }
  void TimeChanged(double t) override { heard.push_back(t); }
  unidevice::Property* channel = nullptr;
  CNode* node = nullptr;
  std::vector<double> steps, heard;
};

class Host : public StandaloneAdaptorInterface {
 public:
  bool Undo() override { return undoWorks && StandaloneAdaptorInterface::Undo(); }
  bool undoWorks = true;
};

// Frames first to last at a frame rate, as a recording steps them.
std::vector<double> FrameTimes(std::int64_t first, std::int64_t last, double fps) {
  std::vector<double> times;
  for (std::int64_t n = first; n <= last; ++n) times.push_back(TimeBase(fps).TimeOf(n));
  return times;
}

class Recording : public testing::Test, public InstanceList {
 protected:
  void SetUp() override {
    for (const char* name : {"Probe_01", "Probe_02"}) {
      CCamera::CreateParam param(name);
      instances.push_back(std::make_unique<Instance>(&plugin, plugin.Create(param), name, &host));
      ASSERT_EQ(instances.back()->GetTool()->BuildConfig(), 0);
      ASSERT_EQ(instances.back()->GetTool()->Create(), 0);
    }
    recorder.clock = [this] { return nowMs; };
    recorder.processEvents = [] {};
    recorder.countdownSeconds = 0;
    host.GetScene().clock.onTimeChanged = [this](double t) { recorder.OnTimeChanged(t); };
  }
  std::vector<Instance*> AllInstances() override { return {instances[0].get(), instances[1].get()}; }
  std::vector<Instance*> CheckedInstances() override { return {instances[0].get()}; }

  Probe& First() { return *static_cast<Probe*>(instances[0]->GetTool()); }
  Probe& Second() { return *static_cast<Probe*>(instances[1]->GetTool()); }
  void TickAt(std::int64_t ms) {
    nowMs = ms;
    recorder.Tick(ms);
  }
  void Record(std::initializer_list<std::int64_t> ticks) {
    recorder.StartRecording();
    for (const std::int64_t ms : ticks) TickAt(ms);
    recorder.StopRecording();
  }
  // The keys on the first tool's node.
  const auto& Keys() {
    return static_cast<adaptor::standalone::StandaloneNode*>(First().node)->GetHostNode()->track.Keys();
  }

  Host host;
  testing_support::TestPlugin<Probe> plugin{"Probe", "Camera"};
  std::vector<std::unique_ptr<Instance>> instances;
  RecordManager recorder{&host, nullptr, this};
  std::int64_t nowMs = 0;
};

TEST_F(Recording, ACountdownStepsNoFrame) {
  recorder.countdownSeconds = 1;
  recorder.StartRecording();
  EXPECT_TRUE(recorder.IsRecording());
  EXPECT_TRUE(recorder.countdownShown);
  TickAt(0);
  EXPECT_DOUBLE_EQ(host.GetTime(), -1.0);
  TickAt(500);
  EXPECT_EQ(recorder.countdownShownSeconds, 1);
  EXPECT_DOUBLE_EQ(recorder.countdownFraction, 0.5);
  TickAt(1000);  // exactly the start: a frame passes, none is simulated
  EXPECT_TRUE(First().steps.empty());
  TickAt(1100);
  EXPECT_FALSE(recorder.countdownShown);
  // Frames up to one past the time: 2, 3 and 4 thirtieths.
  EXPECT_EQ(First().steps, FrameTimes(2, 4, 30));
  EXPECT_TRUE(Second().steps.empty());  // unchecked
  recorder.StopRecording();
}

TEST_F(Recording, AtMostThreeFramesATickAndAllWhenFewerArePending) {
  recorder.StartRecording();
  TickAt(0);     // the start itself: no step
  TickAt(40);    // one frame and a bit: one step
  EXPECT_EQ(First().steps.size(), 1u);
  TickAt(1040);  // a whole second late: three frames only
  EXPECT_EQ(First().steps, FrameTimes(2, 5, 30));
  recorder.StopRecording();
}

TEST_F(Recording, AFixedFrameDurationSetsTheFramesOfRecordingAndResimulation) {
  recorder.useFixedFrameDuration = true;  // 0.04 s on a host of 30 frames a second
  Record({0, 100});
  EXPECT_EQ(First().steps, FrameTimes(2, 3, 25));
  First().steps.clear();
  recorder.StartResimulation(0.0, 0.2);
  EXPECT_TRUE(recorder.ResimStep());
  recorder.FinishResimulation();
  EXPECT_EQ(First().steps, FrameTimes(1, 5, 25));
}

TEST_F(Recording, SlowMotionStretchesTheClock) {
  recorder.SetSpeedStep(3);
  recorder.StartRecording();
  EXPECT_EQ(host.GetTimeScale(), 4);
  TickAt(0);
  TickAt(1000);
  EXPECT_DOUBLE_EQ(host.GetTime(), 0.25);
  recorder.StopRecording();
  EXPECT_EQ(host.GetTimeScale(), 1);
}

TEST_F(Recording, TheRangeEndStopsOrDoubles) {
  host.SetAnimationRange({0, 0.1});
  recorder.StartRecording();
  TickAt(0);
  TickAt(200);
  EXPECT_FALSE(recorder.IsRecording());

  recorder.autoExpand = true;
  host.SetTime(0);
  recorder.StartRecording();
  TickAt(200);
  TickAt(350);
  EXPECT_TRUE(recorder.IsRecording());
  EXPECT_NEAR(recorder.endTime, 0.2, 1e-12);
  EXPECT_NEAR(host.GetAnimationRange().second, 0.2, 1e-3);
  recorder.StopRecording();
}

// A take has room for its frames up to the range end, ten minutes at least:
// neither the keys nor the recorded inputs move while it runs.
TEST_F(Recording, ATakeHasRoomForItsRangeAndNothingMovesWhileItRuns) {
  const std::pair<double, std::size_t> cases[] = {{1200.0, 36001}, {0.1, 18001}};
  for (const auto& [rangeEnd, frames] : cases) {
    host.SetTime(0);
    host.SetAnimationRange({0, rangeEnd});
    recorder.StartRecording();
    EXPECT_EQ(util::HistoryHorizon(), frames) << rangeEnd;
    const auto& keys = Keys();
    const auto& inputs = instances[0]->RecordedTracks().at(0).records;
    EXPECT_GE(keys.capacity(), frames);
    EXPECT_GE(inputs.capacity(), frames);
    const auto* keysAt = keys.data();
    const auto* inputsAt = inputs.data();
    for (std::int64_t ms = 0; ms <= 2000; ms += 33) TickAt(ms);
    EXPECT_EQ(keys.data(), keysAt);
    EXPECT_EQ(inputs.data(), inputsAt);
    recorder.StopRecording();
    EXPECT_EQ(util::HistoryHorizon(), 0u);
  }
}

TEST_F(Recording, StopInTheCountdownLeavesNoKeysAndTheClockAtTheStart) {
  recorder.countdownSeconds = 2;
  host.SetTime(1.0);
  recorder.StartRecording();
  TickAt(0);
  TickAt(500);
  recorder.StopRecording();
  EXPECT_TRUE(First().steps.empty());
  EXPECT_DOUBLE_EQ(host.GetTime(), 1.0);
  EXPECT_EQ(Keys().size(), 1u);  // the pinning key at the start only
}

TEST_F(Recording, TimeChangesReachOnlyTheToolsTakingPart) {
  Record({0, 100});
  EXPECT_FALSE(First().heard.empty());
  host.SetTime(2.0);  // the second heard nothing before this
  EXPECT_EQ(Second().heard, std::vector<double>{2.0});
}

TEST_F(Recording, OneHostUndoTakesBackKeysAndTracks) {
  Record({0, 100, 200});
  ASSERT_GT(Keys().size(), 2u);
  ASSERT_FALSE(instances[0]->RecordedTracks()[0].records.empty());
  host.Undo();
  EXPECT_EQ(Keys().size(), 0u);
  EXPECT_TRUE(instances[0]->RecordedTracks()[0].records.empty());
}

TEST_F(Recording, ControlZAloneRetakesOrLeavesItIdleWhenUndoFails) {
  EXPECT_FALSE(recorder.OnKey(90, true, false, false, false));  // not recording
  recorder.StartRecording();
  TickAt(0);
  TickAt(100);
  EXPECT_FALSE(recorder.OnKey(90, true, false, true, false));
  EXPECT_FALSE(recorder.OnKey(89, true, false, false, false));
  EXPECT_TRUE(recorder.OnKey(90, true, false, false, false));
  EXPECT_TRUE(recorder.IsRecording());
  EXPECT_EQ(Keys().size(), 1u);  // the retake's pinning key only
  host.undoWorks = false;
  EXPECT_TRUE(recorder.OnKey(90, true, false, false, false));
  EXPECT_FALSE(recorder.IsRecording());
}

// From a frame, frames have the times a recording gives them (the long takes
// below); from between frames, they keep the offset.
TEST_F(Recording, AResimulationFromBetweenFramesStepsFromThereAndPutsTheClockBack) {
  recorder.StartResimulation(0.51, 1.0);
  EXPECT_TRUE(recorder.IsResimulating());
  EXPECT_TRUE(recorder.ResimStep());
  EXPECT_EQ(recorder.Resimulation().Progress(), 1.0f);
  recorder.FinishResimulation();
  std::vector<double> expected;
  for (int k = 1; k <= 14; ++k) expected.push_back(0.51 + k / 30.0);
  EXPECT_EQ(First().steps, expected);
  EXPECT_TRUE(Second().steps.empty());  // unchecked
  EXPECT_DOUBLE_EQ(host.GetTime(), 0.51);
  EXPECT_FALSE(recorder.IsRecording());
}

TEST_F(Recording, AnEmptyOrBackwardRangeStepsNothing) {
  for (const auto& [from, to] : {std::pair{1.0, 1.0}, {1.0, 0.5}}) {
    recorder.StartResimulation(from, to);
    EXPECT_TRUE(recorder.ResimStep());
    recorder.FinishResimulation();
    EXPECT_DOUBLE_EQ(host.GetTime(), from);
  }
  EXPECT_TRUE(First().steps.empty());
}

// Ranges that aren't numbers, lie outside a day or hold more frames than a
// run keeps start nothing: no frame, no undo, the clock where it was.
TEST_F(Recording, RangesBeyondTheLimitsStartNothing) {
  const double nan = std::numeric_limits<double>::quiet_NaN(), inf = std::numeric_limits<double>::infinity();
  const std::tuple<double, double, double, const char*> cases[] = {
      {0, 86400, 30, ""},
      {nan, 1, 30, "a run lies within 0 s and 86400 s of scene time (a day), not nan s to 1 s"},
      {0, inf, 30, "a run lies within 0 s and 86400 s of scene time (a day), not 0 s to inf s"},
      {0, 1e18, 30, "a run lies within 0 s and 86400 s of scene time (a day), not 0 s to 1e+18 s"},
      {-0.5, 1, 30, "a run lies within 0 s and 86400 s of scene time (a day), not -0.5 s to 1 s"},
      {0, 86400, 4800, "0 s to 86400 s at 4800 fps is 414720000 frames; a run steps at most 2592000"}};
  for (const auto& [from, to, fps, problem] : cases) {
    EXPECT_EQ(Resimulator::RangeProblem(from, to, TimeBase(fps)), problem);
    if (!*problem) continue;
    host.SetTime(2);
    const std::uint64_t holds = host.GetScene().undo.HoldNumber();
    Resimulator resimulator(&host);
    EXPECT_FALSE(resimulator.Start(CheckedInstances(), from, to, TimeBase(fps)));
    EXPECT_TRUE(resimulator.RunFor(Resimulator::kSliceMs));
    EXPECT_EQ(resimulator.Progress(), 1.0f);
    resimulator.Finish();
    EXPECT_EQ(host.GetTime(), 2.0);
    EXPECT_EQ(host.GetScene().undo.HoldNumber(), holds) << from << " " << to;
  }
  EXPECT_TRUE(First().steps.empty());
}

TEST_F(Recording, SlicesOfHalfASecondResumeWhereTheyStopped) {
  std::int64_t fake = 0;
  recorder.clock = [&fake] { return fake += 100; };
  recorder.StartResimulation(0.0, 10.0);
  EXPECT_FALSE(recorder.ResimStep());
  const std::size_t firstSlice = First().steps.size();
  EXPECT_GT(firstSlice, 0u);
  EXPECT_LT(firstSlice, 10u);
  EXPECT_GT(recorder.Resimulation().Progress(), 0.0f);
  EXPECT_LT(recorder.Resimulation().Progress(), 1.0f);
  while (!recorder.ResimStep()) {
  }
  recorder.FinishResimulation();
  EXPECT_EQ(First().steps, FrameTimes(1, 300, 30));
}

// A long take at a frame rate, recorded, then resimulated from its start and from its middle.
class LongTakes : public Recording, public testing::WithParamInterface<std::int32_t> {};

TEST_P(LongTakes, AResimulationStepsEachFrameAtTheTimeItWasRecordedAt) {
  constexpr std::int64_t kFrames = 100000;
  const TimeBase base(GetParam());
  host.GetScene().clock.SetFrameRate(GetParam());
  host.SetAnimationRange({0, base.TimeOf(kFrames + 10)});
  recorder.StartRecording();
  for (std::int64_t ms = 0; First().steps.size() < kFrames; ms += 50) TickAt(ms);
  recorder.StopRecording();
  // The take holds frame n >= 2 at recorded[n - 2]: frame 1 passes in the first tick, at the start itself.
  const std::vector<double> recorded = First().steps;
  for (const std::int64_t from : {std::int64_t{0}, kFrames / 2}) {
    SCOPED_TRACE(from);
    First().steps.clear();
    host.SetTime(base.TimeOf(from));
    Resimulator resimulator(&host);
    resimulator.Start(CheckedInstances(), host.GetTime(), base.TimeOf(kFrames), base);
    resimulator.RunToEnd();
    resimulator.Finish();
    const std::vector<double>& resimulated = First().steps;
    ASSERT_EQ(resimulated.size(), static_cast<std::size_t>(kFrames - from));
    EXPECT_EQ(resimulated.back(), base.TimeOf(kFrames));
    std::int64_t differing = 0;
    for (std::int64_t n = std::max<std::int64_t>(from + 1, 2); n <= kFrames; ++n) {
      differing += resimulated[n - from - 1] != recorded[n - 2];
    }
    EXPECT_EQ(differing, 0);
  }
}

INSTANTIATE_TEST_SUITE_P(Recorder, LongTakes, testing::Values(30, 24));

// The real timer path: Qt's event loop fires the record tick on the wall clock.
TEST_F(Recording, TheRealTimerDrivesFrames) {
  int argc = 1;
  char name[] = "tests_core";
  char* argv[] = {name, nullptr};
  QCoreApplication application(argc, argv);
  RecordManager live(&host, nullptr, this);
  live.countdownSeconds = 0;
  live.StartRecording();
  QTimer::singleShot(400, [&] {
    live.StopRecording();
    application.quit();
  });
  application.exec();
  // About twelve frames in 0.4 s at 30 fps; a loaded machine may manage fewer.
  EXPECT_GE(First().steps.size(), 3u);
  EXPECT_LE(First().steps.size(), 14u);
  EXPECT_FALSE(live.IsRecording());
}

}  // namespace
}  // namespace vuk::rgw::core
