// The desktop app's host parts around the main window: scene files, the
// timeline, the outliner, undo, message boxes, the log pane and the place of
// the viewport; offscreen.
#include "app/rgw/desktop/desktopwindow.h"
#include "app/rgw/desktop/punchindialog.h"

#include <gtest/gtest.h>

#include <QAction>

#include <QAbstractButton>
#include <QApplication>
#include <QElapsedTimer>
#include <QMessageBox>
#include <QTimer>
#include <algorithm>
#include <filesystem>
#include <string>

#include "adaptor/standalone/standalonenode.h"
#include "core/corelog.h"
#include "core/messagebox.h"
#include "core/paths.h"
#include "core/takejournal.h"
#include "gui/component/choices.h"
#include "gui/component/controls.h"
#include "scenes/samplescene.h"
#include "sdk/cinterface.h"
#include "unidevice/control.h"
#include "util/avar.h"

namespace vuk::app::desktop {
namespace {

using rgw::adaptor::standalone::SceneNode;

std::string TempPath(const std::string& name) {
  return (std::filesystem::temp_directory_path() / ("rgw_desktop_" + name)).string();
}

void RunFor(int ms) {
  QElapsedTimer wall;
  wall.start();
  while (wall.elapsed() < ms) QApplication::processEvents(QEventLoop::AllEvents, 5);
}

class Desktop : public testing::Test {
 protected:
  Desktop() : window("2.3.45") {}

  SceneNode* Named(const std::string& name) {
    SceneNode* found = nullptr;
    window.GetSession().host.GetScene().Walk([&](SceneNode& node) {
      if (node.hostName == name) found = &node;
    });
    return found;
  }
  // A tool made through the main window, as a user makes it.
  void MakeTool(const std::string& tool = "LookAtCam") {
    rgw::core::MainDlg& dlg = window.GetMainDlg();
    const auto& tools = dlg.Creatable();
    for (std::size_t i = 0; i < tools.size(); ++i) {
      if (tools[i]->ToolName() == tool) {
        dlg.ControlOf<gui::component::FlmButton>(102)->Choose(rgw::core::MainDlg::kCreateBase + static_cast<int>(i));
      }
    }
  }
  std::vector<std::string> Tools() { return window.GetSession().tools.InstanceNames(); }
  std::size_t Shown() { return window.GetMainDlg().ControlOf<gui::component::Tree>(119)->root->GetNodeCount(); }

  DesktopWindow window;
};

TEST_F(Desktop, ScenesOpenSaveAndStartAfreshWithTheirTools) {
  const std::string path = TempPath("scene.gltf");
  vuk::scenes::BuildSampleScene(window.GetSession().host.GetScene());
  MakeTool();
  ASSERT_EQ(Tools(), (std::vector<std::string>{"LookAtCam_01"}));
  ASSERT_TRUE(window.SaveSceneAs(path));
  EXPECT_EQ(window.ScenePath(), path);
  // The tags go into the file only.
  window.GetSession().host.GetScene().Walk([](SceneNode& node) { EXPECT_EQ(node.properties.count("RGT_tag"), 0u); });
  EXPECT_NE(window.windowTitle().toStdString().find("Quoll Rigworks v2.3.45 x64 - rgw_desktop_scene.gltf"),
            std::string::npos)
      << window.windowTitle().toStdString();

  window.NewScene();
  EXPECT_TRUE(Tools().empty());
  EXPECT_EQ(Shown(), 0u);
  EXPECT_TRUE(window.GetSession().host.GetScene().Root().children.empty());
  EXPECT_TRUE(window.ScenePath().empty());

  ASSERT_TRUE(window.OpenScene(path));
  EXPECT_EQ(Tools(), (std::vector<std::string>{"LookAtCam_01"}));
  EXPECT_EQ(Shown(), 1u);
  EXPECT_NE(Named("LookAtCam_01_LookAtCam"), nullptr);
  std::filesystem::remove(path);
}

TEST_F(Desktop, AFileThatCantBeReadIsABoxAndAnEmptyScene) {
  std::string shown;
  rgw::core::SetMessageBoxSink([&shown](const std::string& text, const std::string&, std::int32_t) {
    shown = text;
    return rgw::box::kOk;
  });
  EXPECT_FALSE(window.OpenScene(TempPath("missing.gltf")));
  EXPECT_NE(shown.find("no such file"), std::string::npos) << shown;
  EXPECT_TRUE(window.ScenePath().empty());
}

TEST_F(Desktop, UndoAndRedoFollowTheHostsBufferAndTheTree) {
  MakeTool();
  EXPECT_EQ(Shown(), 1u);
  window.Undo();
  EXPECT_TRUE(Tools().empty());
  EXPECT_EQ(Shown(), 0u);
  window.Redo();
  EXPECT_EQ(Tools(), (std::vector<std::string>{"LookAtCam_01"}));
  EXPECT_EQ(Shown(), 1u);
}

TEST_F(Desktop, UndoDuringARecordingRecordsAgainAndKeepsTheTools) {
  MakeTool();
  auto& recorder = *window.GetSession().core.GetRecorder();
  window.GetMainDlg().ControlOf<gui::component::Button>(116)->Press();
  ASSERT_TRUE(recorder.IsRecording());
  window.Undo();
  EXPECT_TRUE(recorder.IsRecording());
  EXPECT_EQ(Tools(), (std::vector<std::string>{"LookAtCam_01"}));
  window.GetMainDlg().ControlOf<gui::component::Button>(116)->Press();
  EXPECT_FALSE(recorder.IsRecording());
}

TEST_F(Desktop, TimelineScrubsSetsRangeAndRateAndPlaysRoundTheRange) {
  auto& host = window.GetSession().host;
  Timeline& timeline = window.GetTimeline();
  timeline.SetFrameRate(25);
  EXPECT_DOUBLE_EQ(host.GetFrameRate(), 25);
  timeline.SetRange(1.0, 1.2);
  EXPECT_EQ(host.GetAnimationRange(), (std::pair<double, double>{1.0, 1.2}));
  timeline.Scrub(27);
  EXPECT_NEAR(host.GetTime(), 27 / 25.0, 1e-9);
  timeline.Play();
  RunFor(120);
  EXPECT_GE(host.GetTime(), 1.0);
  EXPECT_LE(host.GetTime(), 1.2);
  const double before = host.GetTime();
  RunFor(60);
  EXPECT_NE(host.GetTime(), before);
  timeline.Stop();
  const double stopped = host.GetTime();
  RunFor(60);
  EXPECT_EQ(host.GetTime(), stopped);
}

TEST_F(Desktop, OutlinerLinksAToolsNodeBelowASceneNodeAndUnlinksItUndoably) {
  vuk::scenes::BuildSampleScene(window.GetSession().host.GetScene());
  MakeTool();
  Outliner& outliner = window.GetOutliner();
  outliner.Refresh();
  SceneNode* camera = Named("LookAtCam_01_LookAtCam");
  SceneNode* target = Named("Car_Body");
  ASSERT_NE(camera, nullptr);
  ASSERT_NE(target, nullptr);
  SceneNode* top = camera->parent;
  ASSERT_TRUE(outliner.Choose("LookAtCam_01_LookAtCam"));
  EXPECT_TRUE(window.GetSession().host.GetScene().Selection() == std::vector<SceneNode*>{camera});
  ASSERT_TRUE(outliner.LinkBelow("Car_Body")) << outliner.Status();
  EXPECT_EQ(camera->parent, target);
  window.Undo();
  EXPECT_EQ(camera->parent, top);
  window.Redo();
  EXPECT_EQ(camera->parent, target);
  ASSERT_TRUE(outliner.Choose("LookAtCam_01_LookAtCam"));
  ASSERT_TRUE(outliner.Unlink());
  EXPECT_EQ(camera->parent, &window.GetSession().host.GetScene().Root());
  // A scene node of no tool can't be linked.
  ASSERT_TRUE(outliner.Choose("Car"));
  EXPECT_FALSE(outliner.LinkBelow("Ground"));
}

TEST_F(Desktop, MessageBoxesAreDialogsThatAnswer) {
  QTimer::singleShot(0, [] {
    auto* dialog = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(dialog->text().toStdString(), "Go on?");
    EXPECT_EQ(dialog->icon(), QMessageBox::Question);
    dialog->button(QMessageBox::No)->click();
  });
  EXPECT_EQ(rgw::core::ShowMessageBox("Go on?", "Quoll Rigworks", rgw::box::kYesNo | rgw::box::kQuestion, true),
            rgw::box::kNo);
}

TEST_F(Desktop, LogPaneShowsWhatTheCoreWrites) {
  rgw::core::CoreLog::Instance().Info("a line for the pane");
  auto* pane = window.findChild<LogPane*>();
  ASSERT_NE(pane, nullptr);
  pane->ReadNew();
  EXPECT_NE(pane->toPlainText().toStdString().find("a line for the pane"), std::string::npos);
}

// Records with the main window's Record button for a while of the wall
// clock, without a countdown, and stops.
void RecordFor(DesktopWindow& window, int ms) {
  window.GetSession().core.GetRecorder()->countdownSeconds = 0;
  gui::component::Button& record = *window.GetMainDlg().ControlOf<gui::component::Button>(116);
  record.Press();
  ASSERT_TRUE(window.GetSession().core.IsRecording());
  RunFor(ms);
  record.Press();
  ASSERT_FALSE(window.GetSession().core.IsRecording());
}

TEST_F(Desktop, ARecordingKeepsItsJournalBesideTheSceneUntilSaved) {
  const std::string path = TempPath("journal.gltf");
  vuk::scenes::BuildSampleScene(window.GetSession().host.GetScene());
  MakeTool("1DPositioner");
  ASSERT_TRUE(window.SaveSceneAs(path));
  const std::string journal = rgw::core::JournalPathOf(path);
  EXPECT_EQ(window.JournalPath(), journal);
  RecordFor(window, 300);
  const rgw::core::JournalReading reading = rgw::core::ReadTakeJournal(journal);
  ASSERT_EQ(reading.state, rgw::core::JournalReading::State::kWhole) << reading.problem;
  EXPECT_EQ(reading.take.tools.size(), 1u);
  EXPECT_EQ(reading.take.tools[0].name, "1DPositioner_01");
  EXPECT_GT(reading.take.times.size(), 2u);
  ASSERT_TRUE(window.SaveScene());
  EXPECT_FALSE(std::filesystem::exists(journal));
  std::filesystem::remove(path);
}

TEST_F(Desktop, AnUnsavedScenesJournalIsInTheUserFolder) {
  EXPECT_EQ(window.JournalPath().rfind(rgw::core::GetUserFolder(), 0), 0u) << window.JournalPath();
}

TEST_F(Desktop, OpeningASceneWithAnUnfinishedTakeOffersToRecoverIt) {
  const std::string path = TempPath("recover.gltf");
  vuk::scenes::BuildSampleScene(window.GetSession().host.GetScene());
  MakeTool("1DPositioner");
  ASSERT_TRUE(window.SaveSceneAs(path));
  RecordFor(window, 300);
  const rgw::core::JournalReading reading = rgw::core::ReadTakeJournal(rgw::core::JournalPathOf(path));
  ASSERT_FALSE(reading.take.times.empty());
  ASSERT_FALSE(reading.take.tools[0].channels.empty());
  const std::string channel = reading.take.tools[0].channels[0];
  std::vector<std::string> asked;
  std::int32_t answer = rgw::box::kNo;
  rgw::core::SetMessageBoxSink([&](const std::string& text, const std::string&, std::int32_t style) {
    asked.push_back(text);
    EXPECT_EQ(style, rgw::box::kYesNo | rgw::box::kQuestion);
    return answer;
  });
  const auto recorded = [&] {
    return window.GetSession().tools.Find("1DPositioner_01")->instance->TrackOf(channel)->records.size();
  };
  // Declined, the scene is as saved and the journal stays for later.
  ASSERT_TRUE(window.OpenScene(path));
  ASSERT_EQ(asked.size(), 1u);
  EXPECT_NE(asked[0].find("holds an unfinished take of"), std::string::npos) << asked[0];
  EXPECT_NE(asked[0].find("1DPositioner_01"), std::string::npos) << asked[0];
  EXPECT_EQ(recorded(), 0u);
  answer = rgw::box::kYes;
  ASSERT_TRUE(window.OpenScene(path));
  EXPECT_EQ(asked.size(), 2u);
  EXPECT_EQ(recorded(), reading.take.times.size());
  EXPECT_GT(window.GetSession().ToolKeyCount(), 0u);
  ASSERT_TRUE(window.SaveScene());
  ASSERT_TRUE(window.OpenScene(path));
  EXPECT_EQ(asked.size(), 2u);
  EXPECT_EQ(recorded(), reading.take.times.size());
  std::filesystem::remove(path);
}

util::Bytes Saved(const util::AVar_Linear<double>& track) {
  util::Bytes block(track.GetSaveSize());
  track.Save(block.data(), static_cast<std::uint32_t>(block.size()));
  return block;
}

// Answers the punch-in dialog that the Record menu opens with the channels
// given checked, the others cleared.
void ChoosePunchInFromTheMenu(DesktopWindow& window, const std::vector<std::string>& channels) {
  std::vector<std::string> listed;
  QTimer::singleShot(0, [&] {
    auto* dialog = dynamic_cast<PunchInDialog*>(QApplication::activeModalWidget());
    ASSERT_NE(dialog, nullptr);
    for (const std::string& channel : window.GetSession().CheckedChannels()) {
      const bool chosen = std::find(channels.begin(), channels.end(), channel) != channels.end();
      if (dialog->Check(channel, chosen)) listed.push_back(channel);
    }
    dialog->accept();
  });
  auto* punchIn = window.findChild<QAction*>("punchIn");
  ASSERT_NE(punchIn, nullptr);
  punchIn->trigger();
  EXPECT_EQ(listed, window.GetSession().CheckedChannels());
}

TEST_F(Desktop, APunchInChosenFromTheRecordMenuLeavesTheOtherChannelsTrackAsItWas) {
  MakeTool("Helicopter");
  rgw::core::Instance& tool = *window.GetSession().tools.Find("Helicopter_01")->instance;
  const unidevice::PropertyHandler& inputs = tool.Inputs();
  ASSERT_GE(inputs.Count(), 2u);
  const std::string punched = inputs.Get(0)->name, kept = inputs.Get(1)->name;
  unidevice::Control first, second;
  unidevice::Control* const real[] = {inputs.Get(0)->source, inputs.Get(1)->source};
  inputs.Get(0)->source = &first;
  inputs.Get(1)->source = &second;
  first.Update(1);
  second.Update(2);
  RecordFor(window, 400);
  const util::Bytes keptBefore = Saved(*tool.TrackOf(kept));
  ASSERT_GT(tool.TrackOf(kept)->records.size(), 2u);

  ChoosePunchInFromTheMenu(window, {punched});
  EXPECT_EQ(window.GetSession().core.GetRecorder()->punchIn.channels, std::vector<std::string>{punched});
  EXPECT_EQ(window.PunchInStatus().toStdString(), "Punching in " + punched);
  auto* pane = window.findChild<LogPane*>();
  pane->ReadNew();
  EXPECT_NE(pane->toPlainText().toStdString().find("the next takes punch in " + punched), std::string::npos);

  // Over the start of the take, with both controls somewhere else.
  window.GetTimeline().Scrub(0);
  first.Update(7);
  second.Update(9);
  RecordFor(window, 200);
  EXPECT_EQ(Saved(*tool.TrackOf(kept)), keptBefore);
  const auto& punchedTrack = tool.TrackOf(punched)->records;
  EXPECT_TRUE(std::any_of(punchedTrack.begin(), punchedTrack.end(), [](const auto& r) { return r.value == 7; }));
  EXPECT_EQ(punchedTrack.back().value, 1);

  // None checked, the next take is an ordinary one again.
  ChoosePunchInFromTheMenu(window, {});
  EXPECT_TRUE(window.GetSession().core.GetRecorder()->punchIn.channels.empty());
  EXPECT_TRUE(window.PunchInStatus().isEmpty());
  window.GetTimeline().Scrub(0);
  RecordFor(window, 200);
  EXPECT_NE(Saved(*tool.TrackOf(kept)), keptBefore);
  inputs.Get(0)->source = real[0];
  inputs.Get(1)->source = real[1];
}

// A punch-in's journal holds the punched channel alone; recovered over the
// scene as saved before it, the take's tracks are those the punch-in left.
TEST_F(Desktop, APunchInLostWithTheProcessIsRecoveredExactly) {
  const std::string path = TempPath("punchin.gltf");
  MakeTool("Helicopter");
  rgw::core::Instance& tool = *window.GetSession().tools.Find("Helicopter_01")->instance;
  const unidevice::PropertyHandler& inputs = tool.Inputs();
  const std::string punched = inputs.Get(0)->name, kept = inputs.Get(1)->name;
  unidevice::Control first, second;
  inputs.Get(0)->source = &first;
  inputs.Get(1)->source = &second;
  first.Update(1);
  second.Update(2);
  RecordFor(window, 400);
  ASSERT_TRUE(window.SaveSceneAs(path));

  ChoosePunchInFromTheMenu(window, {punched});
  window.GetTimeline().Scrub(0);
  first.Update(7);
  second.Update(9);
  RecordFor(window, 200);
  const rgw::core::JournalReading reading = rgw::core::ReadTakeJournal(rgw::core::JournalPathOf(path));
  EXPECT_TRUE(reading.take.punchIn);
  ASSERT_EQ(reading.take.tools.size(), 1u);
  EXPECT_EQ(reading.take.tools[0].channels, std::vector<std::string>{punched});
  const util::Bytes punchedAfter = Saved(*tool.TrackOf(punched)), keptAfter = Saved(*tool.TrackOf(kept));

  rgw::core::SetMessageBoxSink([](const std::string&, const std::string&, std::int32_t) { return rgw::box::kYes; });
  ASSERT_TRUE(window.OpenScene(path));
  rgw::core::Instance& recovered = *window.GetSession().tools.Find("Helicopter_01")->instance;
  EXPECT_EQ(Saved(*recovered.TrackOf(punched)), punchedAfter);
  EXPECT_EQ(Saved(*recovered.TrackOf(kept)), keptAfter);
  std::filesystem::remove(path);
}

}  // namespace
}  // namespace vuk::app::desktop
