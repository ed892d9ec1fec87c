// The desktop app's host parts around the main window: scene files, the
// timeline, the outliner, undo, message boxes, the log pane and the place of
// the viewport; offscreen.
#include "app/rgw/desktop/desktopwindow.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QElapsedTimer>
#include <QMessageBox>
#include <QTimer>
#include <filesystem>
#include <string>

#include "adaptor/standalone/standalonenode.h"
#include "core/corelog.h"
#include "core/messagebox.h"
#include "gui/component/choices.h"
#include "gui/component/controls.h"
#include "scenes/samplescene.h"
#include "sdk/cinterface.h"

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
  // A camera tool made through the main window, as a user makes it.
  void MakeCamera() {
    rgw::core::MainDlg& dlg = window.GetMainDlg();
    const auto& tools = dlg.Creatable();
    for (std::size_t i = 0; i < tools.size(); ++i) {
      if (tools[i]->ToolName() == "LookAtCam") {
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
  MakeCamera();
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
  MakeCamera();
  EXPECT_EQ(Shown(), 1u);
  window.Undo();
  EXPECT_TRUE(Tools().empty());
  EXPECT_EQ(Shown(), 0u);
  window.Redo();
  EXPECT_EQ(Tools(), (std::vector<std::string>{"LookAtCam_01"}));
  EXPECT_EQ(Shown(), 1u);
}

TEST_F(Desktop, UndoDuringARecordingRecordsAgainAndKeepsTheTools) {
  MakeCamera();
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
  MakeCamera();
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

TEST_F(Desktop, TheViewportTakesItsPlace) {
  auto* viewport = new QWidget();
  viewport->setObjectName("viewport");
  window.SetViewport(viewport);
  EXPECT_EQ(window.centralWidget()->findChild<QWidget*>("viewport"), viewport);
}

}  // namespace
}  // namespace vuk::app::desktop
