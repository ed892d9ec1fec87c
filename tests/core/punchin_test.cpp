#include "core/punchin.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>

#include "adaptor/standalone/standaloneadaptorinterface.h"
#include "adaptor/standalone/standalonenode.h"
#include "core/recordmanager.h"
#include "tests/sdk/testplugin.h"

namespace vuk::rgw::core {
namespace {

// A tool whose node sits where its two channels say, so that its keys show
// what each channel fed it at each frame.
class PanTilt : public CCamera {
 public:
  using CCamera::CCamera;
  std::int32_t BuildConfig() override {
    pan = iface->AddInput("Pan", input::kContinuous);
    tilt = iface->AddInput("Tilt", input::kContinuous);
    return 0;
  }
  std::int32_t Create() override {
    node = iface->CreateCameraNode("Cam", nullptr, nullptr);
    return 0;
  }
  void Step(double t) override {
    if (CSnapshot* snapshot = iface->GetTransformSnapshot(node, t)) {
      util::Matrix<double> pose;
      pose.SetTranslation({pan->Evaluate(), tilt->Evaluate(), 0});
      snapshot->SetWorldTransform(pose);
      iface->ReleaseTransformSnapshot(snapshot);
    }
  }
  unidevice::Property* pan = nullptr;
  unidevice::Property* tilt = nullptr;
  CNode* node = nullptr;
};

util::Bytes Saved(const util::AVar_Linear<double>& track) {
  util::Bytes block(track.GetSaveSize());
  track.Save(block.data(), static_cast<std::uint32_t>(block.size()));
  return block;
}

class PunchInTake : public testing::Test, public InstanceList {
 protected:
  void SetUp() override {
    CCamera::CreateParam param("PanTilt_01");
    instance = std::make_unique<Instance>(&plugin, plugin.Create(param), "PanTilt_01", &host);
    ASSERT_EQ(instance->GetTool()->BuildConfig(), 0);
    ASSERT_EQ(instance->GetTool()->Create(), 0);
    instance->Inputs().Get(0)->source = &pan;
    instance->Inputs().Get(1)->source = &tilt;
    recorder.clock = [this] { return nowMs; };
    recorder.processEvents = [] {};
    recorder.countdownSeconds = 0;
    host.SetAnimationRange({0, 100});
  }
  std::vector<Instance*> AllInstances() override { return {instance.get()}; }
  std::vector<Instance*> CheckedInstances() override { return AllInstances(); }

  // A take from `from` of one frame a tick; the controls move at each tick
  // as `panAt` and `tiltAt` of the tick's number say.
  template <typename PanAt, typename TiltAt>
  void Take(double from, int ticks, PanAt panAt, TiltAt tiltAt) {
    host.SetTime(from);
    recorder.StartRecording();
    for (int k = 0; k < ticks; ++k) {
      pan.Update(panAt(k));
      tilt.Update(tiltAt(k));
      nowMs = k * 1000 / 30;
      recorder.Tick(nowMs);
    }
    recorder.StopRecording();
  }
  const util::AVar_Linear<double>& Track(std::size_t channel) { return instance->RecordedTracks().at(channel); }
  const auto& Keys() {
    auto* tool = static_cast<PanTilt*>(instance->GetTool());
    return static_cast<adaptor::standalone::StandaloneNode*>(tool->node)->GetHostNode()->track.Keys();
  }

  adaptor::standalone::StandaloneAdaptorInterface host;
  testing_support::TestPlugin<PanTilt> plugin{"PanTilt", "Camera"};
  std::unique_ptr<Instance> instance;
  unidevice::Control pan, tilt;
  RecordManager recorder{&host, nullptr, this};
  std::int64_t nowMs = 0;
};

TEST_F(PunchInTake, RecordsOnlyThePunchedChannelOverTheKeptTake) {
  Take(0.0, 60, [](int k) { return 1.0 + k; }, [](int k) { return 100.0 + k; });
  const util::AVar_Linear<double> panBefore = Track(0), tiltBefore = Track(1);
  ASSERT_GT(tiltBefore.records.size(), 50u);

  // Over frames 10 to about 30 of the take, with the pan stick somewhere else.
  recorder.punchIn.channels = {"Tilt"};
  const double from = TimeBase(30).TimeOf(10);
  Take(from, 20, [](int) { return 999.0; }, [](int k) { return -1.0 - k; });
  recorder.punchIn.channels.clear();

  EXPECT_EQ(Saved(Track(0)), Saved(panBefore));
  EXPECT_EQ(instance->Inputs().Get(0)->source, &pan);
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

TEST_F(PunchInTake, WithoutChannelsATakeRecordsThemAll) {
  Take(0.0, 10, [](int k) { return 1.0 + k; }, [](int k) { return 100.0 + k; });
  Take(0.0, 10, [](int) { return 7.0; }, [](int) { return 8.0; });
  for (std::size_t channel : {0u, 1u}) {
    for (const auto& record : Track(channel).records) EXPECT_EQ(record.value, channel ? 8.0 : 7.0);
  }
}

}  // namespace
}  // namespace vuk::rgw::core
