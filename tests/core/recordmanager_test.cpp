#include "core/recordmanager.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QTimer>
#include <algorithm>
#include <cmath>
#include <limits>
#include <tuple>

#include "adaptor/standalone/standaloneadaptorinterface.h"
#include "adaptor/standalone/standalonenode.h"
#include "tests/sdk/testplugin.h"

namespace vuk::rgw::core {
namespace {

using adaptor::standalone::StandaloneAdaptorInterface;

// A tool that writes its node at every step, where its time and its two
// channels say, and notes the times it hears.
class Probe : public CCamera {
 public:
  using CCamera::CCamera;
  std::int32_t BuildConfig() override {
    channel = iface->AddInput("Throttle", input::kContinuous);
    tilt = iface->AddInput("Tilt", input::kContinuous);
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
      pose.SetTranslation({t, channel->Evaluate(), tilt->Evaluate()});
      snapshot->SetWorldTransform(pose);
      iface->ReleaseTransformSnapshot(snapshot);
    }
  }
  void TimeChanged(double t) override { heard.push_back(t); }
  unidevice::Property* channel = nullptr;
  unidevice::Property* tilt = nullptr;
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

util::Bytes Saved(const util::AVar_Linear<double>& track) {
  util::Bytes block(track.GetSaveSize());
  track.Save(block.data(), static_cast<std::uint32_t>(block.size()));
  return block;
}

// Takes over the first probe's two channels, from controls the test moves.
class PunchIn : public Recording {
 protected:
  void SetUp() override {
    Recording::SetUp();
    instances[0]->Inputs().Get(0)->source = &panStick;
    instances[0]->Inputs().Get(1)->source = &tiltStick;
    host.SetAnimationRange({0, 100});
  }
  // The sticks go before the base's tools: the tools let go of them first.
  void TearDown() override {
    for (std::size_t channel : {0, 1}) instances[0]->Inputs().Get(channel)->source = nullptr;
  }

  // A take from `from` of one tick a frame duration; the controls move at
  // each tick as `panAt` and `tiltAt` of the tick's number say.
  template <typename PanAt, typename TiltAt>
  void Take(double from, int ticks, PanAt panAt, TiltAt tiltAt) {
    host.SetTime(from);
    recorder.StartRecording();
    for (int k = 0; k < ticks; ++k) {
      panStick.Update(panAt(k));
      tiltStick.Update(tiltAt(k));
      TickAt(k * 1000 / 30);
    }
    recorder.StopRecording();
  }
  const util::AVar_Linear<double>& Track(std::size_t channel) { return instances[0]->RecordedTracks().at(channel); }

  unidevice::Control panStick, tiltStick;
};

TEST_F(PunchIn, RecordsOnlyThePunchedChannelOverTheKeptTake) {
  Take(0.0, 60, [](int k) { return 1.0 + k; }, [](int k) { return 100.0 + k; });
  const util::AVar_Linear<double> panBefore = Track(0), tiltBefore = Track(1);
  ASSERT_GT(tiltBefore.records.size(), 50u);

  // From frame 10 of the take for 20 ticks, with the pan stick somewhere else.
  recorder.punchIn.channels = {"Tilt"};
  const double from = TimeBase(30).TimeOf(10);
  Take(from, 20, [](int) { return 999.0; }, [](int k) { return -1.0 - k; });
  recorder.punchIn.channels.clear();

  EXPECT_EQ(Saved(Track(0)), Saved(panBefore));
  EXPECT_EQ(instances[0]->Inputs().Get(0)->source, &panStick);
  // The tilt: the new values from its first frame recorded to its last, the old ones around them.
  const auto& tilt = Track(1).records;
  ASSERT_EQ(tilt.size(), tiltBefore.records.size());
  const auto punchedFrom = std::find_if(tilt.begin(), tilt.end(), [](const auto& r) { return r.value < 0; });
  ASSERT_NE(punchedFrom, tilt.end());
  EXPECT_LE(punchedFrom->time, from + 2.5 / 30);
  const auto punchedTo = std::find_if(punchedFrom, tilt.end(), [](const auto& r) { return r.value >= 0; });
  EXPECT_NEAR((punchedTo - 1)->time, from + 19.0 / 30, 1e-9);
  const std::size_t first = punchedFrom - tilt.begin(), end = punchedTo - tilt.begin();
  for (std::size_t i = 0; i < tilt.size(); ++i) {
    EXPECT_EQ(tilt[i].time, tiltBefore.records[i].time) << i;
    if (i >= first && i < end) {
      // The tilt's values of the punch: whole numbers down from -1.
      EXPECT_GE(tilt[i].value, -20.0) << tilt[i].time;
      EXPECT_EQ(tilt[i].value, std::floor(tilt[i].value)) << tilt[i].time;
    } else {
      EXPECT_EQ(tilt[i].value, tiltBefore.records[i].value) << tilt[i].time;
    }
  }

  // The tool ran on the played-back pan, as a resimulation of the merged take runs it.
  const auto recorded = Keys();
  recorder.StartResimulation(0.0, tilt.back().time);
  while (!recorder.ResimStep()) {
  }
  recorder.FinishResimulation();
  std::size_t compared = 0;
  for (const auto& key : Keys()) {
    const auto same = std::find_if(recorded.begin(), recorded.end(), [&](const auto& k) { return k.tick == key.tick; });
    if (same == recorded.end()) continue;
    EXPECT_TRUE(*same == key) << "at tick " << key.tick;
    ++compared;
  }
  EXPECT_GE(compared, tilt.size() - 1);
}

TEST_F(PunchIn, WithoutChannelsATakeRecordsThemAll) {
  Take(0.0, 10, [](int k) { return 1.0 + k; }, [](int k) { return 100.0 + k; });
  Take(0.0, 10, [](int) { return 7.0; }, [](int) { return 8.0; });
  for (std::size_t channel : {0u, 1u}) {
    for (const auto& record : Track(channel).records) EXPECT_EQ(record.value, channel ? 8.0 : 7.0);
  }
}

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
