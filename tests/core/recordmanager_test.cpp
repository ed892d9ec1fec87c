#include "core/recordmanager.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QTimer>
#include <cmath>

#include "adaptor/standalone/standaloneadaptorinterface.h"
#include "adaptor/standalone/standalonenode.h"

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

class ProbePlugin : public CCameraPlugin {
 public:
  CCamera* CreateObject(CCamera::CreateParam& param) override { return new Probe(param); }
  std::string GetName() override { return "Probe"; }
  std::string GetTitle() override { return "Probe"; }
  std::string GetCategory() override { return "Camera"; }
};

class Host : public StandaloneAdaptorInterface {
 public:
  bool Undo() override { return undoWorks && StandaloneAdaptorInterface::Undo(); }
  bool undoWorks = true;
};

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
  std::size_t KeysOf(Probe& probe) {
    return static_cast<adaptor::standalone::StandaloneNode*>(probe.node)->GetHostNode()->track.Keys().size();
  }

  Host host;
  ProbePlugin plugin;
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
  EXPECT_EQ(First().steps, (std::vector<double>{2 / 30.0, 3 / 30.0, 4 / 30.0}));
  EXPECT_TRUE(Second().steps.empty());  // unchecked
  recorder.StopRecording();
}

TEST_F(Recording, AtMostThreeFramesATickAndAllWhenFewerArePending) {
  recorder.StartRecording();
  TickAt(0);     // the start itself: no step
  TickAt(40);    // one frame and a bit: one step
  EXPECT_EQ(First().steps.size(), 1u);
  TickAt(1040);  // a whole second late: three frames only
  ASSERT_EQ(First().steps.size(), 4u);
  for (std::size_t k = 0; k < First().steps.size(); ++k) {
    EXPECT_DOUBLE_EQ(First().steps[k], (k + 2) / 30.0);
  }
  recorder.StopRecording();
}

TEST_F(Recording, SlowMotionStretchesTheClock) {
  recorder.SetSpeedStep(3);
  EXPECT_EQ(recorder.timeScale, 4.0);
  EXPECT_EQ(recorder.GetSpeedStep(), 3);
  recorder.StartRecording();
  EXPECT_EQ(host.GetTimeScale(), 4);
  EXPECT_EQ(host.GetFrameRate(), 30.0);
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

TEST_F(Recording, StopInTheCountdownLeavesNoKeysAndTheClockAtTheStart) {
  recorder.countdownSeconds = 2;
  host.SetTime(1.0);
  recorder.StartRecording();
  TickAt(0);
  TickAt(500);
  recorder.StopRecording();
  EXPECT_TRUE(First().steps.empty());
  EXPECT_DOUBLE_EQ(host.GetTime(), 1.0);
  EXPECT_EQ(KeysOf(First()), 1u);  // the pinning key at the start only
}

TEST_F(Recording, TimeChangesReachOnlyTheToolsTakingPart) {
  recorder.StartRecording();
  TickAt(0);
  TickAt(100);
  EXPECT_FALSE(First().heard.empty());
  EXPECT_TRUE(Second().heard.empty());
  recorder.StopRecording();
  host.SetTime(2.0);
  EXPECT_EQ(Second().heard, std::vector<double>{2.0});
}

TEST_F(Recording, OneHostUndoTakesBackKeysAndTracks) {
  recorder.StartRecording();
  TickAt(0);
  TickAt(100);
  TickAt(200);
  recorder.StopRecording();
  ASSERT_GT(KeysOf(First()), 2u);
  ASSERT_FALSE(instances[0]->RecordedTracks()[0].records.empty());
  host.Undo();
  EXPECT_EQ(KeysOf(First()), 0u);
  EXPECT_TRUE(instances[0]->RecordedTracks()[0].records.empty());
}

TEST_F(Recording, ControlZRetakesOrStaysIdleWhenUndoFails) {
  recorder.StartRecording();
  TickAt(0);
  TickAt(100);
  recorder.RetakeAfterUndo();
  EXPECT_TRUE(recorder.IsRecording());
  EXPECT_EQ(KeysOf(First()), 1u);  // the retake's pinning key only
  host.undoWorks = false;
  recorder.RetakeAfterUndo();
  EXPECT_FALSE(recorder.IsRecording());
}

TEST_F(Recording, OnlyControlZAloneRetakes) {
  EXPECT_FALSE(recorder.OnKey(90, true, false, false, false));  // not recording
  recorder.StartRecording();
  EXPECT_FALSE(recorder.OnKey(90, true, false, true, false));
  EXPECT_FALSE(recorder.OnKey(89, true, false, false, false));
  EXPECT_TRUE(recorder.OnKey(90, true, false, false, false));
  EXPECT_TRUE(recorder.IsRecording());
  recorder.StopRecording();
}

TEST_F(Recording, AResimulationStepsAtFromPlusWholeFrames) {
  host.SetAnimationRange({0, 2});
  recorder.StartResimulation(0.5, 1.0);
  EXPECT_TRUE(recorder.IsResimulating());
  EXPECT_TRUE(recorder.ResimStep());
  recorder.FinishResimulation();
  ASSERT_EQ(First().steps.size(), 15u);
  for (std::size_t k = 0; k < 15; ++k) EXPECT_NEAR(First().steps[k], 0.5 + (k + 1) / 30.0, 1e-12);
  EXPECT_EQ(recorder.progress, 1.0f);
  EXPECT_DOUBLE_EQ(host.GetTime(), 0.5);
  EXPECT_FALSE(recorder.IsRecording());
}

TEST_F(Recording, AResimulationOfNoLengthStepsNothing) {
  recorder.StartResimulation(1.0, 1.0);
  EXPECT_TRUE(recorder.ResimStep());
  EXPECT_EQ(recorder.progress, 1.0f);
  EXPECT_TRUE(First().steps.empty());
  recorder.FinishResimulation();
}

TEST_F(Recording, ASliceEndsAfterHalfASecondOfClock) {
  std::int64_t fake = 0;
  recorder.clock = [&fake] { return fake += 100; };
  recorder.StartResimulation(0.0, 10.0);
  EXPECT_FALSE(recorder.ResimStep());
  const std::size_t firstSlice = First().steps.size();
  EXPECT_GT(firstSlice, 0u);
  EXPECT_LT(firstSlice, 10u);
  EXPECT_GT(recorder.progress, 0.0f);
  recorder.FinishResimulation();
}

}  // namespace
}  // namespace vuk::rgw::core

namespace vuk::rgw::core {
namespace {

// The real timer path: Qt's event loop fires the record tick.
TEST(RealTimeRecording, TheTimerDrivesFrames) {
  int argc = 1;
  char name[] = "tests_core";
  char* argv[] = {name, nullptr};
  QCoreApplication application(argc, argv);
  StandaloneAdaptorInterface host;
  ProbePlugin plugin;
  CCamera::CreateParam param("Probe_01");
  Instance instance(&plugin, plugin.Create(param), "Probe_01", &host);
  instance.GetTool()->BuildConfig();
  instance.GetTool()->Create();
  struct One : InstanceList {
    std::vector<Instance*> AllInstances() override { return {instance}; }
    std::vector<Instance*> CheckedInstances() override { return {instance}; }
    Instance* instance;
  } list;
  list.instance = &instance;
  RecordManager recorder(&host, nullptr, &list);
  recorder.countdownSeconds = 0;
  recorder.StartRecording();
  QTimer::singleShot(400, [&] {
    recorder.StopRecording();
    application.quit();
  });
  application.exec();
  const auto& steps = static_cast<Probe*>(instance.GetTool())->steps;
  // About twelve frames in 0.4 s at 30 fps; a loaded machine may manage fewer.
  EXPECT_GE(steps.size(), 3u);
  EXPECT_LE(steps.size(), 14u);
  EXPECT_FALSE(recorder.IsRecording());
}

}  // namespace
}  // namespace vuk::rgw::core
