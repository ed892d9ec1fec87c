// What every built-in tool must do, whatever it is: make its nodes, save and
// load what it saved, refuse damaged saved data without a trace, give the
// same keys for the same take, and read the saved data of older scenes.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <map>
#include <set>
#include <sstream>

#include "plugins/tools.h"
#include "tests/core/scopedenv.h"
#include "tests/plugins/toolharness.h"

namespace vuk::rgw::testing_support {
namespace {

// Each tool's channels in their order, which saved takes and input profiles
// rely on, and the hash of its fixed take's keys. A change to a tool's
// numbers shows here; pin the new hash only when the change is meant.
struct Pinned {
  std::vector<std::string> channels;
  std::uint64_t hash;
};
const std::map<std::string, Pinned> kPinned = {
    {"LookAtCam", {{}, 18361497430993571376ull}},
    {"SoftMotionCam",
     {{"Spinner: Translation Response Factor", "Spinner: Rotation Response Factor"}, 11161823820767269405ull}},
    {"MotionFilterCam",
     {{"Spinner: Translation Response Factor", "Spinner: Translation Smoothing Factor",
       "Spinner: Translation Max Velocity", "Spinner: Rotation Response Factor", "Spinner: Rotation Smoothing Factor",
       "Spinner: Rotation Max Velocity"},
      13029045060245173665ull}},
    {"1DPositioner",
     {{"Position", "Spinner: Position Response Factor", "Spinner: Position Maximum", "Spinner: Position Change Limit"},
      17204771284010365527ull}},
    {"4WheelerExt",
     {{"Gas Pedal (Forw/Backw)", "Steering Wheel (Right/Left)", "Booster", "ABS Brake", "Skidding", "Skid Brake",
       "Gravel Shake Amplitude", "Burnout", "External Force"},
      14693986732673745105ull}},
    {"AirplaneExt",
     {{"Forw/Backw Speed", "Right/Left Speed", "Up/Down Speed", "Rudder (Yaw Right/Left)", "Elevator (Pitch Up/Down)",
       "Aileron (Roll Right/Left)", "Horizontal Regulator", "Turbulence Amplitude", "Shaker Amplitude", "Brake All",
       "AfterBurner"},
      6844015055053682221ull}},
    {"Helicopter",
     {{"Forw/Backw Speed", "Right/Left Speed", "Up/Down Speed", "Yaw Speed (Right/Left)", "Brake All",
       "Wind Turbulence Strength"},
      4967163177756151944ull}},
    {"HumanizerCam",
     {{"Shaker Amplitude", "Spinner: Shake Multiplier", "Spinner: Yaw Shake", "Spinner: Pitch Shake",
       "Spinner: Roll Shake", "Spinner: Damping Factor", "Spinner: Irregularity", "Spinner: Shaker Threshold",
       "Spinner: Shaker Amplitude Response Factor", "Spinner: Shaker Amplitude Maximum"},
      5416381138553233614ull}},
    {"AutoZoomCam",
     {{"Forw/Backw Transl", "Spinner: Forw/Backw Transl Response Factor", "Spinner: Forw/Backw Transl Maximum"},
      2952556554671708385ull}},
    {"Missile", {{"Fire Missile", "Turbulence"}, 18163696854428202823ull}},
    {"Firepower", {{"Fire"}, 6727417875774636537ull}},
};

constexpr int kTakeFrames = 60;

// By slot when `withEmptySlots`, an empty name in an empty slot.
std::vector<std::string> BuiltInToolNames(bool withEmptySlots = false) {
  std::vector<std::string> names;
  for (PluginFactory make : addon::BuiltInTools()) {
    if (!make) {
      if (withEmptySlots) names.emplace_back();
      continue;
    }
    CCameraPlugin* plugin = make();
    names.push_back(plugin->GetName());
    plugin->Release();
  }
  return names;
}

// A spinner's channel adds to the spinner's value every frame.
bool IsSpinnerChannel(ToolHarness& harness, std::size_t channel) {
  return harness.Instance().Inputs().Get(channel)->name.rfind("Spinner: ", 0) == 0;
}

// Each node keyed along a path of its own, each channel a wave of its own.
// A spinner's channel gets a nudge that comes back, just past the dead zone,
// so the setting stays sane.
void RecordFixedTake(ToolHarness& harness) {
  const std::vector<CNode*> nodes = harness.ToolNodes();
  for (std::size_t n = 0; n < nodes.size(); ++n) {
    for (int k = 0; k <= kTakeFrames; ++k) {
      util::Matrix<double> pose;
      pose.SetTranslation({std::sin(0.1 * k) + 3.0 * n, 0.05 * k - n, std::cos(0.07 * k) + 2.0 * n});
      harness.Transform(nodes[n], harness.TimeOf(k))->SetWorldTransform(pose);
    }
  }
  harness.Record(0, kTakeFrames, [&harness](std::size_t channel, int k) {
    if (IsSpinnerChannel(harness, channel)) return k % 2 ? 0.15 : -0.15;
    return 0.8 * std::sin(0.1 * k + channel);
  });
}

// The recorded tracks, byte for byte.
std::vector<Bytes> TrackBytes(ToolHarness& harness) {
  std::vector<Bytes> tracks;
  for (const auto& track : harness.Instance().RecordedTracks()) {
    tracks.emplace_back(track.GetSaveSize());
    track.Save(tracks.back().data(), static_cast<std::uint32_t>(tracks.back().size()));
  }
  return tracks;
}

class ToolContract : public testing::TestWithParam<std::string> {
 protected:
  // The tool's folder under plugins/ and tests/plugins/, by its slot in the table.
  std::string Folder() {
    const std::vector<std::string> names = BuiltInToolNames(true);
    const auto slot = std::find(names.begin(), names.end(), GetParam()) - names.begin();
    std::istringstream table(RGW_TOOL_FOLDER_BY_SLOT);
    std::string entry;
    while (std::getline(table, entry, ',')) {
      std::istringstream fields(entry);
      long number = -1;
      std::string folder;
      if (fields >> number >> folder && number == slot) return folder;
    }
    ADD_FAILURE() << GetParam() << " has no folder in the tool table";
    return {};
  }

  ToolHarness harness{GetParam()};
  CCamera& tool = *harness.Instance().GetTool();
};

TEST_P(ToolContract, MakesItsPageAndNodesAndFindsThemByName) {
  ASSERT_NE(harness.Instance().GetPage(), nullptr);
  const std::vector<CNode*> nodes = harness.ToolNodes();
  ASSERT_FALSE(nodes.empty());
  for (CNode* node : nodes) EXPECT_EQ(harness.Instance().FindNode(node->name), node) << node->name;
}

TEST_P(ToolContract, AFreshObjectLoadsWhatItSavedAndSavesItAgain) {
  RecordFixedTake(harness);
  const Bytes saved = harness.Save();
  CCamera::CreateParam param(harness.Instance().InstanceName());
  CCamera* fresh = harness.Instance().GetToolPlugin()->Create(param);
  fresh->iface = &harness.Instance();
  ASSERT_EQ(fresh->BuildConfig(), 0);
  EXPECT_EQ(fresh->Load(), 0);
  EXPECT_EQ(fresh->Save(), 0);
  fresh->Release();
  std::int32_t length = 0;
  const std::uint8_t* bytes = harness.Instance().GetSaveData(&length);
  EXPECT_EQ(Bytes(bytes, bytes + length), saved);
}

TEST_P(ToolContract, RefusesDamagedSavedDataAndKeepsWhatItHad) {
  RecordFixedTake(harness);
  const Bytes saved = harness.Save();
  std::vector<std::pair<std::string, Bytes>> damaged = {{"empty", {}}};
  for (std::size_t cut : std::set<std::size_t>{1, saved.size() / 3, saved.size() / 2, saved.size() - 1}) {
    if (cut == 0 || cut >= saved.size()) continue;
    damaged.push_back({"cut at " + std::to_string(cut), {saved.begin(), saved.begin() + cut}});
  }
  for (const std::string& other : BuiltInToolNames()) {
    if (other != GetParam()) damaged.push_back({other + "'s", ToolHarness(other).Save()});
  }
  for (const auto& [what, bytes] : damaged) {
    harness.SetSaveData(bytes);
    EXPECT_NE(tool.Load(), 0) << what;
    EXPECT_EQ(harness.Save(), saved) << "after the " << what << " saved data";
  }
}

TEST_P(ToolContract, TheSameTakeGivesThePinnedKeysOnThePinnedChannels) {
  RecordFixedTake(harness);
  ToolHarness again(GetParam());
  RecordFixedTake(again);
  EXPECT_EQ(again.HashOfKeys(), harness.HashOfKeys());
  // The kept take, resimulated without devices, writes the very same keys.
  const std::uint64_t recorded = harness.HashOfKeys();
  again.Resimulate(0, kTakeFrames);
  EXPECT_EQ(again.HashOfKeys(), recorded) << "resimulated";
  for (CNode* node : harness.ToolNodes()) {
    for (const auto& key : ToolHarness::KeysOf(node)) {
      ASSERT_TRUE(std::isfinite(key.position.Length() + key.rotation.x + key.scale.Length())) << node->name;
    }
  }
  const auto pinned = kPinned.find(GetParam());
  ASSERT_TRUE(pinned != kPinned.end()) << "pin the tool's channels and take hash in kPinned";
  EXPECT_EQ(harness.HashOfKeys(), pinned->second.hash);
  std::vector<std::string> channels;
  for (std::size_t i = 0; i < harness.Instance().Inputs().Count(); ++i) {
    channels.push_back(harness.Instance().Inputs().Get(i)->name);
  }
  EXPECT_EQ(channels, pinned->second.channels);
}

// The tools whose run, resumed in the middle of a take, rebuilds part of its
// state from the scene rather than from its histories, as their simulation
// is defined: their keys after a resume only stay near the whole take's.
const std::map<std::string, const char*> kApproximateResume = {
    {"Helicopter", "the regulator starts afresh, and the velocities come from the keyed poses"},
};

// Pose keys that differ by rounding only: a resumed run measures its nodes
// again from the keys it wrote.
bool NearlyEqual(const adaptor::standalone::TransformKey& a, const adaptor::standalone::TransformKey& b) {
  constexpr double kRounding = 1e-9;
  const util::Quat<double>&p = a.rotation, &q = b.rotation;
  const double turn = std::fabs(p.x - q.x) + std::fabs(p.y - q.y) + std::fabs(p.z - q.z) + std::fabs(p.w - q.w);
  return a.tick == b.tick && (a.position - b.position).Length() <= kRounding * (1 + a.position.Length()) &&
         turn <= kRounding &&
         (a.scale - b.scale).Length() <= kRounding * (1 + a.scale.Length());
}

// A resimulation from the middle of the take takes up the tool's state there
// from its histories: the keys come out as the whole take's.
TEST_P(ToolContract, ResimulatingFromTheMiddleGivesTheWholeTakesKeys) {
  if (kApproximateResume.count(GetParam())) GTEST_SKIP() << kApproximateResume.at(GetParam());
  RecordFixedTake(harness);
  std::vector<Keys> whole;
  for (CNode* node : harness.ToolNodes()) whole.push_back(ToolHarness::KeysOf(node));
  harness.Resimulate(kTakeFrames / 2, kTakeFrames);
  const std::vector<CNode*> nodes = harness.ToolNodes();
  ASSERT_EQ(nodes.size(), whole.size());
  for (std::size_t n = 0; n < nodes.size(); ++n) {
    const Keys& resumed = ToolHarness::KeysOf(nodes[n]);
    ASSERT_EQ(resumed.size(), whole[n].size()) << nodes[n]->name;
    for (std::size_t k = 0; k < resumed.size(); ++k) {
      ASSERT_TRUE(NearlyEqual(resumed[k], whole[n][k])) << nodes[n]->name << ", key " << k;
    }
  }
}

// A second take from the middle of the first cuts the first's tracks and the
// tool's histories there; one undo brings back all of the first take.
TEST_P(ToolContract, UndoingATakeOverAnEarlierOneBringsTheEarlierBackWhole) {
  RecordFixedTake(harness);
  const Bytes saved = harness.Save();
  const std::vector<Bytes> tracks = TrackBytes(harness);
  const std::uint64_t keys = harness.HashOfKeys();
  // Spinner channels rest, so that the spinners keep their values.
  harness.Record(kTakeFrames / 2, kTakeFrames + 10, [this](std::size_t channel, int k) {
    return IsSpinnerChannel(harness, channel) ? 0.0 : -0.6 * std::cos(0.2 * k + channel);
  });
  if (!tracks.empty()) {
    ASSERT_NE(TrackBytes(harness), tracks);
  }
  ASSERT_NE(harness.HashOfKeys(), keys);
  ASSERT_TRUE(harness.host.Undo());
  EXPECT_EQ(harness.Save(), saved);
  EXPECT_EQ(TrackBytes(harness), tracks);
  EXPECT_EQ(harness.HashOfKeys(), keys);
}

// Fixtures are tests/plugins/<tool folder>/savedata*.bin.
TEST_P(ToolContract, ReadsAndRewritesOldSavedDataByteForByte) {
  const std::filesystem::path folder = std::filesystem::path(RGW_TOOL_TESTS) / Folder();
  std::vector<std::filesystem::path> fixtures;
  if (std::filesystem::is_directory(folder)) {
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
      const std::string name = entry.path().filename().string();
      if (name.rfind("savedata", 0) == 0 && entry.path().extension() == ".bin") fixtures.push_back(entry.path());
    }
  }
  if (fixtures.empty()) GTEST_SKIP() << "no saved-data fixture in " << folder;
  for (const auto& fixture : fixtures) {
    const Bytes old = ReadFile(fixture);
    harness.SetSaveData(old);
    EXPECT_EQ(tool.Load(), 0) << fixture;
    EXPECT_EQ(harness.Save(), old) << fixture;
  }
}

// The profiles a tool ships in plugins/<folder>/data are where the core looks
// for them in the build tree: its rgw_tool line's data path is its record's.
TEST_P(ToolContract, ItsShippedProfilesAreFound) {
  const std::filesystem::path shipped = std::filesystem::path(RGW_TOOL_SOURCES) / Folder() / "data";
  if (!std::filesystem::is_directory(shipped)) GTEST_SKIP() << "no profiles in " << shipped;
  ScopedEnv root("RIGWORKS_ROOT", RGW_BUILD_ROOT);
  core::CoreLibrary library(addon::BuiltInTools());
  core::Plugin* plugin = library.FindTool(GetParam());
  using Kind = core::XMLFileManager::Kind;
  for (const auto& [kind, folder] : {std::pair{Kind::kConfig, "configprofiles"}, {Kind::kInput, "inputprofiles"}}) {
    core::XMLFileManager files(kind, "");
    files.AddFolder((shipped / folder).string());
    files.Load();
    const core::XMLFileManager& found = kind == Kind::kConfig ? plugin->ConfigProfiles() : plugin->InputProfiles();
    for (const std::string& name : files.Names()) EXPECT_NE(found.Find(name), nullptr) << folder << ": " << name;
  }
}

INSTANTIATE_TEST_SUITE_P(BuiltIn, ToolContract, testing::ValuesIn(BuiltInToolNames()),
                         [](const testing::TestParamInfo<std::string>& info) { return info.param; });

}  // namespace
}  // namespace vuk::rgw::testing_support
