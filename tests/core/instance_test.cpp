#include "core/instance.h"

#include <algorithm>
#include <chrono>
#include <fstream>

#include <gtest/gtest.h>

#include "adaptor/standalone/standaloneadaptorinterface.h"
#include "core/takefile.h"
#include "tests/sdk/testplugin.h"
#include "tests/unidevice/testdevice.h"
#include "unidevice/driverlist.h"
#include "unidevice/dummydriver.h"
#include "unidevice/emulatedtrinarydevice.h"

namespace vuk::rgw::core {
namespace {

using adaptor::standalone::StandaloneAdaptorInterface;
using unidevice::testing_support::TestDevice;

// A tool with two channels, a spinner that is also an input, whole-number
// values, and a gauge.
class Steering : public CCamera, public CInterface::Callback {
 public:
  using CCamera::CCamera;
  std::int32_t BuildConfig() override {
    steer = iface->AddInput("Steer", input::kContinuous);
    gas = iface->AddInput("Gas", input::kContinuous);
    iface->BeginConfig();
    iface->AddSpinner("Speed", "", &speed, 0, 100, 1, 0, true, 0, nullptr);
    iface->BeginGroup("Gearbox", "");
    iface->AddIntSpinner("Gears", "", &gears, 1, 6, 1, 0, false, 0, this);
    iface->AddCheckBox("Reverse", "", &reverse, this);
    iface->EndGroup();
    iface->AddTextBox("Note", "", &note, this);
    iface->EndConfig();
    GaugeDescription description{"Wheel angle", 0, 8, ""};
    if (iface->HasExtension(extension::kMakeGauge)) {
      gauge = reinterpret_cast<unidevice::Control*>(iface->Extension(extension::kMakeGauge, &description));
    }
    return 0;
  }
  void Step(double) override {
    steered.push_back(steer->Evaluate());
    angle += 1;
  }
  std::intptr_t Extension(std::int32_t id, void* data) override {
    if (id == extension::kWriteGauge && data == gauge) gauge->Update(angle);
    return 0;
  }
  std::vector<std::int32_t> ExtensionIds() override { return {extension::kWriteGauge}; }
  void Changed(std::string label) override { changes.push_back(label); }

  unidevice::Property* steer = nullptr;
  unidevice::Property* gas = nullptr;
  unidevice::Control* gauge = nullptr;
  double speed = 10;
  std::int32_t gears = 5;
  bool reverse = false;
  std::string note;
  double angle = 0;
  std::vector<double> steered;
  std::vector<std::string> changes;
};

class InstanceRun : public testing::Test {
 protected:
  InstanceRun() { unidevice::DriverList::Instance().Register(&pads); }
  ~InstanceRun() override {
    instance.reset();
    unidevice::DriverList::Instance().Unregister(&pads);
  }
  void SetUp() override {
    pad = new TestDevice("Pad", 3, "Axis");
    pads.AddDevice(pad);
    CCamera::CreateParam param("");
    instance = std::make_unique<Instance>(&plugin, plugin.Create(param), "", &host);
    tool = static_cast<Steering*>(instance->GetTool());
    ASSERT_EQ(tool->BuildConfig(), 0);
    tool->steer->deadzone = 0;
    tool->steer->Bind(pad->GetControl(0));
    tool->gas->Bind(pad->GetControl(1));
  }
  const util::AVar_Linear<double>& Track(std::size_t channel) { return instance->RecordedTracks()[channel]; }
  // Frames half a second apart from `from`; `press` sets the pad before frame k.
  template <typename Press>
  void RunFrames(Instance::Run run, double from, int frames, Press press) {
    instance->Start(from, run);
    for (int k = 0; k < frames; ++k) {
      press(k);
      instance->Step(from + k * 0.5);
    }
    instance->Stop(from + frames * 0.5);
  }
  template <typename Press>
  void Record(double from, int frames, Press press) {
    host.BeginUndo("Record");
    RunFrames(Instance::Run::kRecording, from, frames, press);
    host.EndUndo();
  }
  void Take(double from, int frames, double value) {
    Record(from, frames, [&](int k) { pad->Press(0, value + k); pad->Press(1, -value); });
  }
  void Resimulate(int frames) { RunFrames(Instance::Run::kResimulating, 0.0, frames, [](int) {}); }
  // Writes the text as a take file and imports it.
  bool Import(const std::string& text, std::string& error) {
    std::ofstream(takePath, std::ios::binary) << text;
    return ImportTakeCsv(takePath, *instance, &error);
  }

  // One file per test: CTest runs tests side by side.
  const std::string takePath =
      testing::TempDir() + "/take_" + testing::UnitTest::GetInstance()->current_test_info()->name() + ".csv";

  unidevice::DummyDriver dummy;
  unidevice::Driver pads{"pads"};
  TestDevice* pad = nullptr;
  StandaloneAdaptorInterface host;
  testing_support::TestPlugin<Steering> plugin{"Steering", "Vehicle"};
  std::unique_ptr<Instance> instance;
  Steering* tool = nullptr;
};

TEST_F(InstanceRun, NamesCountUp) {
  EXPECT_EQ(instance->util::MessageNode::GetName(), "Steering_01");
  CCamera::CreateParam param("Steering_01");
  Instance second(&plugin, plugin.Create(param), "Steering_01", &host);
  EXPECT_EQ(second.util::MessageNode::GetName(), "Steering_02");
  second.Rename("Truck");
  EXPECT_EQ(second.GetTool()->name, "Truck");
  EXPECT_EQ(second.Device::name, "Truck");
}

TEST_F(InstanceRun, ARecordingKeepsRawSamplesAndASecondTakeKeepsTheEarlierOnes) {
  tool->steer->multiplier = 5;  // shaping is not what is recorded
  Take(0.0, 4, 0.25);
  // One track per channel, the spinner's own channel included.
  ASSERT_EQ(instance->RecordedTracks().size(), 3u);
  EXPECT_EQ(Track(2).Get(1.0), 0.0);
  EXPECT_EQ(Track(0).records.size(), 4u);
  EXPECT_EQ(Track(0).Get(1.0), 2.25);
  EXPECT_EQ(Track(1).Get(1.5), -0.25);
  Take(1.0, 2, 7.0);
  EXPECT_EQ(Track(0).records.size(), 4u);  // 0, 0.5 kept; 1.0, 1.5 new
  EXPECT_EQ(Track(0).Get(0.5), 1.25);
  EXPECT_EQ(Track(0).Get(1.5), 8.0);
  host.Undo();
  EXPECT_EQ(Track(0).Get(1.5), 3.25);
}

TEST_F(InstanceRun, AResimulationFeedsTheRecordedValuesThroughTheShaping) {
  Take(0.0, 3, 0.5);
  tool->steered.clear();
  tool->steer->multiplier = 2;
  pad->Press(0, 0.0);
  Resimulate(3);
  EXPECT_EQ(tool->steered, (std::vector<double>{1.0, 3.0, 5.0}));
  // The real control is back.
  EXPECT_EQ(tool->steer->source, pad->GetControl(0));
}

// Two keys on one axis, as the keyboard profile binds them: the take holds
// the keys pressed, and its resimulation steers as the live run did.
TEST_F(InstanceRun, ATwoKeyAxisRecordsAndReplaysTheKeysPressed) {
  unidevice::EmulatedTControl keys(pad->GetControl(0), pad->GetControl(2));
  tool->steer->Bind(&keys);
  const std::vector<std::pair<double, double>> pressed = {{1, 0}, {0, 0}, {0, 1}, {1, 1}};
  Record(0.0, 4, [&](int k) { pad->Press(0, pressed.at(k).first); pad->Press(2, pressed.at(k).second); });
  const std::vector<double> live = {1, 0, -1, 0};
  EXPECT_EQ(tool->steered, live);
  for (std::size_t k = 0; k < live.size(); ++k) EXPECT_EQ(Track(0).Get(k * 0.5), live[k]) << k;

  tool->steered.clear();
  pad->Press(0, 0.0);
  pad->Press(2, 0.0);
  Resimulate(4);
  EXPECT_EQ(tool->steered, live);
  EXPECT_EQ(tool->steer->source, &keys);
}

TEST_F(InstanceRun, ASpinnerInputAddsTheChannelToTheSpinner) {
  unidevice::Property* input = instance->FindInput("Spinner: Speed");
  ASSERT_NE(input, nullptr);
  input->deadzone = 0;
  instance->Start(0, Instance::Run::kRecording);
  instance->Step(0);
  EXPECT_EQ(tool->speed, 10.0);  // no control: unchanged
  input->Bind(pad->GetControl(2));
  pad->Press(2, 0.5);
  instance->Step(0.5);
  EXPECT_EQ(tool->speed, 10.5);
  // A spinner holds what its field can: a channel drives it to its limits, not past them.
  tool->speed = 99.8;
  instance->Step(1.0);
  EXPECT_EQ(tool->speed, 100.0);
  pad->Press(2, -1.0);
  tool->speed = 0.5;
  instance->Step(1.5);
  EXPECT_EQ(tool->speed, 0.0);
  instance->Stop(2);
}

TEST_F(InstanceRun, GaugesArePolledFromTheTool) {
  ASSERT_NE(tool->gauge, nullptr);
  EXPECT_EQ(instance->GetControlCount(), 1);
  EXPECT_EQ(instance->driver, &dummy);
  tool->angle = 3;
  dummy.PollAll();
  EXPECT_EQ(tool->gauge->value, 3.0);
}

TEST_F(InstanceRun, InputProfilesBindWhatIsThereAndWaitForTheRest) {
  util::xml::Element profile = instance->InputProfile();
  EXPECT_EQ(profile.CountChildren("property"), 2u);
  util::xml::Element other;
  other.ParseText("<inputprofile><profile name=\"Wheel\"><property name=\"Gas\"><deadzone>0.2</deadzone>"
                  "<control type=\"Axis\" index=\"1\" device=\"Wheel\"/></property></profile></inputprofile>");
  instance->ApplyInputProfile(other);
  EXPECT_EQ(tool->steer->source, nullptr);
  EXPECT_EQ(tool->gas->source, nullptr);
  EXPECT_EQ(tool->gas->deadzone, 0.2);
  EXPECT_EQ(instance->InputProfile().GetAttribute("name"), "Wheel");
  auto* wheel = new TestDevice("Wheel", 2, "Axis");
  pads.AddDevice(wheel);
  unidevice::DriverList::Instance().DeviceAdded(wheel);
  EXPECT_EQ(tool->gas->source, wheel->GetControl(1));
}

TEST_F(InstanceRun, DeleteWithAndWithoutNodes) {
  CNode* kept = instance->CreateCameraNode("Cam", nullptr, nullptr);
  EXPECT_EQ(instance->NodeNames(), std::vector<std::string>{"Cam"});
  instance->Delete(false);
  EXPECT_TRUE(static_cast<CoreNode*>(kept)->IsExternal());
  EXPECT_EQ(instance->FindNode("Cam"), nullptr);
  instance->CreateCameraNode("Gone", nullptr, nullptr);
  instance->Delete(true);
  EXPECT_EQ(instance->FindNode("Gone"), nullptr);
}

TEST_F(InstanceRun, SetValueTakesValuesInRangeAndTellsTheTool) {
  const std::tuple<const char*, double, const char*> cases[] = {
      {"Speed", 55.5, ""}, {"Gears", 1, ""}, {"Reverse", 1, ""},
      {"Speed", 100.5, "\"Speed\" takes values from 0 to 100, not 100.5"},
      {"Gears", 2.5, "\"Gears\" takes whole numbers from 1 to 6, not 2.5"},
      {"Reverse", -1, "\"Reverse\" takes whole numbers from 0 to 1, not -1"},
      {"Note", 1, "Steering_01 has no value \"Note\""}, {"Gearbox", 1, "Steering_01 has no value \"Gearbox\""}};
  for (const auto& [label, value, refusal] : cases) {
    tool->changes.clear();
    std::string error;
    EXPECT_EQ(instance->SetValue(label, value, error), *refusal == '\0') << label;
    EXPECT_EQ(error, refusal);
    // As from the page: the tool hears of its labelled controls; the speed's has no listener.
    const bool told = !*refusal && label != std::string("Speed");
    EXPECT_EQ(tool->changes, told ? std::vector<std::string>{label} : std::vector<std::string>{}) << label;
  }
  // The refused values left the taken ones; the text box holds no number.
  std::vector<double> values;
  for (const Instance::Value& value : instance->Values()) values.push_back(value.value);
  EXPECT_EQ(values, (std::vector<double>{55.5, 1, 1}));
}

// Saved tracks: Gas holds -2 at 0, Steer 0.5 at 0 and 1.5 at 1, Brake 9 at 0.
constexpr char kSteerBlob[] = "EAAAACAAAABkAAAAAgAAAAAAAAAAAAAAAAAAAAAA4D8AAAAAAADwPwAAAAAAAPg/";
constexpr char kGasBlob[] = "EAAAABAAAABkAAAAAQAAAAAAAAAAAAAAAAAAAAAAAMA=";
constexpr char kBrakeBlob[] = "EAAAABAAAABkAAAAAQAAAAAAAAAAAAAAAAAAAAAAIkA=";

util::xml::Element Tracks(const std::string& inputs) {
  util::xml::Element tracks;
  tracks.ParseText("<recordedinputvalues>" + inputs + "</recordedinputvalues>");
  return tracks;
}

// A track of a channel the tool lacks feeds nothing and is saved again.
TEST_F(InstanceRun, TracksAreSavedWithTheirChannelsAndFoundByName) {
  instance->LoadTracks(Tracks(std::string("<input channel=\"Gas\">") + kGasBlob + "</input><input channel=\"Brake\">" +
                              kBrakeBlob + "</input><input channel=\"Steer\">" + kSteerBlob + "</input>"));
  EXPECT_EQ(Track(0).Get(1.0), 1.5);
  EXPECT_EQ(Track(1).Get(0.0), -2.0);
  EXPECT_TRUE(Track(2).records.empty());
  const util::xml::Element saved = instance->SaveTracks();
  ASSERT_EQ(saved.CountChildren("input"), 4u);
  EXPECT_EQ(saved.GetChild("input", 0).GetAttribute("channel"), "Steer");
  EXPECT_EQ(saved.GetChild("input", 0).GetText(), kSteerBlob);
  EXPECT_EQ(saved.GetChild("input", 2).GetAttribute("channel"), "Spinner: Speed");
  EXPECT_EQ(saved.GetChild("input", 3).GetAttribute("channel"), "Brake");
  EXPECT_EQ(saved.GetChild("input", 3).GetText(), kBrakeBlob);
}

TEST_F(InstanceRun, TracksOfOlderFilesGoByTheirOrder) {
  instance->LoadTracks(Tracks(std::string("<input>") + kSteerBlob + "</input><input>" + kGasBlob + "</input>"));
  ASSERT_EQ(instance->RecordedTracks().size(), 2u);
  EXPECT_EQ(Track(0).Get(1.0), 1.5);
  EXPECT_EQ(Track(1).Get(0.0), -2.0);
}

TEST_F(InstanceRun, BadTakeFilesAreRefusedWithTheLineAndNothingChanges) {
  const std::pair<const char*, const char*> files[] = {
      {"Steer,Gas\n1,2\n", ": line 1: the first column must be \"time\""},
      {"time,Brake\n0,1\n", ": line 1: the tool has no channel \"Brake\"; its channels are Steer, Gas, Spinner: Speed"},
      {"time,Steer\n0,0.5\n0.1,x\n", ": line 3: column \"Steer\": \"x\" is not a number"},
      {"time,Steer,Gas\n0,0.5,1\n0.1,1,nan\n", ": line 3: column \"Gas\": \"nan\" is not a finite number"},
      {"time,Steer\n0,-inf\n", ": line 2: column \"Steer\": \"-inf\" is not a finite number"},
      {"time,Steer\ninf,1\n", ": line 2: column \"time\": \"inf\" is not a finite number"},
      {"time,Steer\n0,1\n1e18,1\n", ": line 3: column \"time\": 1e18 s lies outside the scene's 0 s to 86400 s (a day)"},
      {"time,Steer\n-0.5,1\n", ": line 2: column \"time\": -0.5 s lies outside the scene's 0 s to 86400 s (a day)"},
      {"time,Steer,Gas\n0,1\n", ": line 2: 2 values where the header has 3"}};
  for (const auto& [text, problem] : files) {
    std::string error;
    EXPECT_FALSE(Import(text, error));
    EXPECT_EQ(error, takePath + problem);
  }
  for (const auto& track : instance->RecordedTracks()) EXPECT_TRUE(track.records.empty());
}

// The command line's job runs an imported take. Spreadsheets write it with
// a byte order mark, Windows line ends, or semicolons and decimal commas.
TEST_F(InstanceRun, ATakeFromCsvFillsTheTracksByChannelName) {
  const char* const files[] = {
      "time,Gas,Steer\n0,1,0.5\n0.5,1,1.5\n1,0,2.5\n",
      "\xEF\xBB\xBFtime,Gas,Steer\r\n0,1,0.5\r\n0.5,1,1.5\r\n1,0,2.5\r\n\r\n",
      "time;Gas;Steer\r\n0;1;0,5\r\n0,5;1;1,5\r\n1;0;2,5\r\n",
      "time, Gas, Steer\n0, 1, 0.5\n 0.5 ,1,1.5\n1,0,2.5",
  };
  for (const char* text : files) {
    std::string error;
    ASSERT_TRUE(Import(text, error)) << error;
    ASSERT_EQ(Track(0).records.size(), 3u) << text;
    EXPECT_EQ(Track(0).Get(0.5), 1.5) << text;  // Steer is the first channel
    EXPECT_EQ(Track(1).Get(1.0), 0.0) << text;
  }
}

// A take written last sample first reads in time order, and at the cost of
// a sort: a million rows in well under the time an insert per row would take.
TEST_F(InstanceRun, ATakeInDescendingTimeIsSortedOnce) {
  constexpr int kRows = 1000000;
  const std::string path = testing::TempDir() + "/descending.csv";
  {
    std::ofstream csv(path);
    csv << "time,Steer\n";
    for (int row = kRows - 1; row >= 0; --row) csv << row * 0.001 << ',' << row << '\n';
    csv << "0.5,-1\n";  // a time again: the later row stands
  }
  std::string error;
  const auto started = std::chrono::steady_clock::now();
  ASSERT_TRUE(ImportTakeCsv(path, *instance, &error)) << error;
  EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(20));
  const auto& records = Track(0).records;
  ASSERT_EQ(records.size(), static_cast<std::size_t>(kRows));
  EXPECT_TRUE(std::is_sorted(records.begin(), records.end(),
                             [](const auto& a, const auto& b) { return a.time < b.time; }));
  EXPECT_EQ(Track(0).Get(0.25), 250.0);
  EXPECT_EQ(Track(0).Get(0.5), -1.0);
  EXPECT_EQ(records.back().value, kRows - 1.0);
}

TEST_F(InstanceRun, RedrawIsSkippedDuringARun) {
  const int before = host.GetRedrawCount();
  instance->Redraw();
  EXPECT_EQ(host.GetRedrawCount(), before + 1);
  instance->Start(0, Instance::Run::kRecording);
  instance->Redraw();
  EXPECT_EQ(host.GetRedrawCount(), before + 1);
  instance->Stop(0);
}

}  // namespace
}  // namespace vuk::rgw::core
