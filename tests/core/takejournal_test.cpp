#include "core/takejournal.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "adaptor/standalone/standaloneadaptorinterface.h"
#include "core/recordmanager.h"
#include "tests/adaptor/standalone/testtool.h"
#include "tests/support/allocationcount.h"

namespace vuk::rgw::core {
namespace {

using JournalState = JournalReading::State;

util::Bytes FileBytes(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return util::Bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
}

// Two test tools, the first with a control of its own on its channel, recorded
// on a clock of the test's.
class Journal : public testing::Test, public InstanceList {
 protected:
  void SetUp() override {
    std::filesystem::create_directories(folder);
    for (const char* name : {"Tool_01", "Tool_02"}) {
      CCamera::CreateParam param(name);
      tools.push_back(std::make_unique<Instance>(&plugin, plugin.Create(param), name, &host));
      ASSERT_EQ(tools.back()->GetTool()->BuildConfig(), 0);
      ASSERT_EQ(tools.back()->GetTool()->Create(), 0);
    }
    tools[0]->Inputs().Get(0)->source = &lever;
    recorder.clock = [this] { return nowMs; };
    recorder.processEvents = [] {};
    recorder.countdownSeconds = 0;
    recorder.journal = &journal;
  }
  std::vector<Instance*> AllInstances() override { return {tools[0].get(), tools[1].get()}; }
  std::vector<Instance*> CheckedInstances() override { return AllInstances(); }

  // A take of one tick per 40 ms, the lever at a new value at each.
  void Record(int ticks) {
    recorder.StartRecording();
    for (int i = 0; i < ticks; ++i) {
      lever.Update(0.1 * i);
      nowMs = 40 * i;
      recorder.Tick(nowMs);
    }
  }
  util::Bytes WholeJournal(int ticks) {
    Record(ticks);
    recorder.StopRecording();
    return FileBytes(journal.Path());
  }
  static JournalReading Parse(const util::Bytes& bytes) { return ParseTakeJournal(bytes.data(), bytes.size()); }

  // One per test: CTest runs them side by side.
  const std::string folder =
      testing::TempDir() + "/takejournal/" + testing::UnitTest::GetInstance()->current_test_info()->name();
  adaptor::standalone::StandaloneAdaptorInterface host;
  testing_support::TestToolPlugin plugin;
  // Before the tools: their inputs let go of it as they go.
  unidevice::Control lever;
  std::vector<std::unique_ptr<Instance>> tools;
  TakeJournal journal{JournalPathOf(folder + "/scene.gltf")};
  RecordManager recorder{&host, nullptr, this};
  std::int64_t nowMs = 0;
};

TEST_F(Journal, HoldsEveryRecordedFrameOfEveryChannel) {
  recorder.SetSpeedStep(2);
  const JournalReading reading = Parse(WholeJournal(12));
  ASSERT_EQ(reading.state, JournalState::kWhole) << reading.problem;
  const JournalTake& take = reading.take;
  EXPECT_EQ(take.timeScale, 2);
  EXPECT_EQ(take.startTime, 0);
  ASSERT_EQ(take.tools.size(), 2u);
  EXPECT_EQ(take.tools[1].name, "Tool_02");
  EXPECT_EQ(take.tools[0].channels, (std::vector<std::string>{"Lift", "Spinner: Speed"}));
  const std::size_t channels = take.ChannelCount();
  ASSERT_EQ(channels, 4u);
  const auto& lift = tools[0]->RecordedTracks()[0].records;
  ASSERT_EQ(take.times.size(), lift.size());
  ASSERT_FALSE(lift.empty());
  for (std::size_t i = 0; i < lift.size(); ++i) {
    EXPECT_EQ(take.times[i], lift[i].time);
    EXPECT_EQ(take.values[channels * i], lift[i].value);
    EXPECT_EQ(take.values[channels * i + 2], 0.0);  // the second tool's channel has no control
  }
  EXPECT_NE(take.values[channels * (lift.size() - 1)], 0.0);
  EXPECT_DOUBLE_EQ(take.Seconds(), lift.back().time);
}

// A process that dies finds each frame in the file already: nothing waits in a buffer.
TEST_F(Journal, EachFrameIsInTheFileAsItIsRecorded) {
  recorder.StartRecording();
  for (int i = 0; i < 6; ++i) {
    nowMs = 40 * i;
    recorder.Tick(nowMs);
    EXPECT_EQ(Parse(FileBytes(journal.Path())).take.times.size(), tools[0]->RecordedTracks()[0].records.size());
  }
  recorder.StopRecording();
}

TEST_F(Journal, ARetakeStartsTheJournalAnewAndRemoveDeletesIt) {
  Record(10);
  recorder.RetakeAfterUndo();
  nowMs = 0;
  recorder.Tick(0);
  recorder.Tick(40);
  recorder.StopRecording();
  EXPECT_EQ(Parse(FileBytes(journal.Path())).take.times.size(), 1u);
  journal.Remove();
  EXPECT_FALSE(std::filesystem::exists(journal.Path()));
  EXPECT_EQ(ReadTakeJournal(journal.Path()).problem, journal.Path() + ": can't be read");
}

TEST_F(Journal, AFileThatCantBeWrittenSaysSoAndTheTakeGoesOn) {
  TakeJournal nowhere(folder + "/missing/scene.gltf.rgwtake");
  recorder.journal = &nowhere;
  Record(4);
  EXPECT_EQ(nowhere.Error(), folder + "/missing/scene.gltf.rgwtake: can't be written (No such file or directory)");
  EXPECT_EQ(tools[0]->RecordedTracks()[0].records.size(), 3u);
  recorder.StopRecording();
}

// Cut anywhere, the journal gives the whole frames before the cut; cut in its
// header or first record, it gives nothing and says why.
TEST_F(Journal, ATornTailDropsOnlyTheTornFrame) {
  const util::Bytes whole = WholeJournal(8);
  const JournalTake take = Parse(whole).take;
  const std::size_t frames = take.times.size();
  const std::size_t frameSize = 4 + 1 + 8 * (1 + take.ChannelCount()) + 4;
  const std::size_t firstFrame = whole.size() - frames * frameSize;
  for (std::size_t size = 0; size < whole.size(); ++size) {
    const JournalReading reading = ParseTakeJournal(whole.data(), size);
    if (size < firstFrame) {
      EXPECT_EQ(reading.state, JournalState::kRefused) << size;
      EXPECT_TRUE(reading.take.times.empty());
      continue;
    }
    const std::size_t kept = (size - firstFrame) / frameSize;
    EXPECT_EQ(reading.take.times.size(), kept) << size;
    EXPECT_EQ(reading.state, size == firstFrame + kept * frameSize ? JournalState::kWhole : JournalState::kCut);
    if (reading.state == JournalState::kCut) {
      EXPECT_EQ(reading.problem,
                "cut at byte " + std::to_string(firstFrame + kept * frameSize) + ", where the file ends too early");
    }
  }
}

struct Damage {
  const char* what;
  // Byte to change, counted back from the end (0: none), and its new value.
  std::size_t fromEnd;
  std::uint8_t value;
  JournalState state;
  std::size_t frames;
  const char* problem;
};

class DamagedJournal : public Journal, public testing::WithParamInterface<Damage> {};

// Eight ticks at 30 frames a second give eight frames of 49 bytes (four
// channels) after a take record of 120 bytes at byte 12.
const Damage kDamages[] = {
    {"nothing", 0, 0, JournalState::kWhole, 8, ""},
    {"the last checksum", 1, 0x55, JournalState::kCut, 7, "cut at byte 475, where a record is damaged"},
    {"a value of the sixth frame", 3 * 49 - 20, 0x7f, JournalState::kCut, 5, "cut at byte 377, where a record is damaged"},
    {"a length gone huge", 3 * 49 - 3, 0xff, JournalState::kCut, 5, "cut at byte 377, where a record is damaged"},
    {"a length too long", 3 * 49, 0xff, JournalState::kCut, 5, "cut at byte 377, where the file ends too early"},
    {"the kind of the fourth frame", 5 * 49 - 4, 1, JournalState::kCut, 3, "cut at byte 279, where a record is damaged"},
    {"the start of the take", 8 * 49 + 120 - 20, 0x33, JournalState::kRefused, 0,
     "no take: cut at byte 12, where a record is damaged"},
    {"the version", 8 * 49 + 120 + 4, 3, JournalState::kRefused, 0,
     "a take journal of version 3, this program reads versions 1 to 2"},
    {"the magic", 8 * 49 + 120 + 12, 'X', JournalState::kRefused, 0, "not a take journal"},
};

TEST_P(DamagedJournal, IsCutAtTheDamageOrRefused) {
  const Damage& damage = GetParam();
  util::Bytes bytes = WholeJournal(8);
  ASSERT_EQ(bytes.size(), 12u + 120 + 8 * 49);
  if (damage.fromEnd) bytes[bytes.size() - damage.fromEnd] = damage.value;
  const JournalReading reading = Parse(bytes);
  EXPECT_EQ(reading.state, damage.state);
  EXPECT_EQ(reading.take.times.size(), damage.frames);
  EXPECT_EQ(reading.problem, damage.problem);
}

INSTANTIATE_TEST_SUITE_P(Bytes, DamagedJournal, testing::ValuesIn(kDamages),
                         [](const auto& info) { return "Case" + std::to_string(info.index); });

// A punch-in journals the channels recorded anew, in every tool, and marks
// the take as one; the played-back channels stay out of the file.
TEST_F(Journal, APunchInHoldsThePunchedChannelsOnly) {
  recorder.punchIn.channels = {"Lift"};
  const JournalReading reading = Parse(WholeJournal(6));
  ASSERT_EQ(reading.state, JournalState::kWhole) << reading.problem;
  const JournalTake& take = reading.take;
  EXPECT_TRUE(take.punchIn);
  ASSERT_EQ(take.tools.size(), 2u);
  for (const JournalTake::Tool& tool : take.tools) EXPECT_EQ(tool.channels, std::vector<std::string>{"Lift"});
  const auto& lift = tools[0]->RecordedTracks()[0];
  ASSERT_FALSE(take.times.empty());
  for (std::size_t i = 0; i < take.times.size(); ++i) EXPECT_EQ(take.values[2 * i], lift.Get(take.times[i]));
  recorder.punchIn.channels.clear();
  EXPECT_FALSE(Parse(WholeJournal(6)).take.punchIn);
}

// A journal written before punch-ins existed reads as a whole take.
TEST_F(Journal, AVersionOneJournalReadsAsAWholeTake) {
  const JournalReading reading = ReadTakeJournal(RGW_TEST_DATA "/takejournal_v1.rgwtake");
  ASSERT_EQ(reading.state, JournalState::kWhole) << reading.problem;
  EXPECT_FALSE(reading.take.punchIn);
  EXPECT_EQ(reading.take.timeScale, 2);
  EXPECT_EQ(reading.take.tools[1].channels, (std::vector<std::string>{"Lift", "Spinner: Speed"}));
  ASSERT_EQ(reading.take.times.size(), 6u);
  EXPECT_EQ(reading.take.times[5], 0.23333333333333334);
  EXPECT_EQ(reading.take.values[5 * 4], 1.0);
}

// Frames out of order or of the wrong size, with their checksums right, make no sense.
TEST_F(Journal, AFrameBackInTimeEndsTheTake) {
  ASSERT_TRUE(journal.Begin(AllInstances(), 0, 1));
  journal.Append(0.1, AllInstances());
  journal.Append(0.2, AllInstances());
  journal.Append(0.15, AllInstances());
  journal.Close();
  const JournalReading reading = ReadTakeJournal(journal.Path());
  EXPECT_EQ(reading.state, JournalState::kCut);
  EXPECT_EQ(reading.take.times, (std::vector<double>{0.1, 0.2}));
  EXPECT_EQ(reading.problem, journal.Path() + ": cut at byte 230, where a record makes no sense");
}

// Frames go out on every tick: once started, the journal allocates nothing.
TEST_F(Journal, AFrameAllocatesNothing) {
  const std::vector<Instance*> recorded = AllInstances();
  ASSERT_TRUE(journal.Begin(recorded, 0, 1));
  journal.Append(0.04, recorded);
  const test::AllocationCount count;
  for (int frame = 2; frame < 100; ++frame) journal.Append(frame * 0.04, recorded);
  EXPECT_EQ(count.Made(), 0u);
  journal.Close();
  EXPECT_EQ(ReadTakeJournal(journal.Path()).take.times.size(), 99u);
}

}  // namespace
}  // namespace vuk::rgw::core
