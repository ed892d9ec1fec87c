// The desktop app's viewport, under Xvfb: it draws the time the timeline
// shows, looks through the camera chosen in the View menu, and leaves the
// keys of a recording to the keyboard device.
#include <gtest/gtest.h>

#include <QApplication>
#include <QElapsedTimer>
#include <QMenu>
#include <QMenuBar>
#include <QtTest/QTest>

#include "app/rgw/desktop/desktopwindow.h"
#include "core/devicemanager.h"
#include "gui/component/choices.h"
#include "gui/component/controls.h"
#include "scenes/samplescene.h"
#include "tests/gui/viewport/pictures.h"
#include "unidevice/driver/linuxdriver.h"

namespace vuk::app::desktop {
namespace {

using gui::viewport::DifferentPixels;

constexpr int kSpaceKey = 0x20;

void RunFor(int ms) {
  QElapsedTimer wall;
  wall.start();
  while (wall.elapsed() < ms) QApplication::processEvents(QEventLoop::AllEvents, 5);
}

class DesktopViewport : public testing::Test {
 protected:
  DesktopViewport() : window("2.3.45") {
    window.show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
    // Xvfb has no window manager to make it active.
    QApplication::setActiveWindow(&window);
  }
  gui::viewport::Viewport& Viewport() { return window.GetViewport(); }
  QImage Drawn() {
    // The window's own ticks tell the viewport the time.
    RunFor(3 * Timeline::kRefreshMs);
    return Viewport().grabFramebuffer();
  }
  QAction* ViewItem(const QString& label) {
    for (QAction* menu : window.menuBar()->actions()) {
      if (menu->text() != "&View") continue;
      for (QAction* item : menu->menu()->actions()) {
        if (item->text() == label) return item;
      }
    }
    return nullptr;
  }
  QAction* LookThroughChoice(const QString& label) {
    QMenu* look = ViewItem("&Look through")->menu();
    emit look->aboutToShow();
    for (QAction* choice : look->actions()) {
      if (choice->text() == label) return choice;
    }
    return nullptr;
  }
  void MakeTool(const std::string& tool) {
    rgw::core::MainDlg& dlg = window.GetMainDlg();
    const auto& tools = dlg.Creatable();
    for (std::size_t i = 0; i < tools.size(); ++i) {
      if (tools[i]->ToolName() == tool) {
        dlg.ControlOf<gui::component::FlmButton>(102)->Choose(rgw::core::MainDlg::kCreateBase + static_cast<int>(i));
      }
    }
  }

  DesktopWindow window;
};

TEST_F(DesktopViewport, DrawsTheTimeTheTimelineScrubsTo) {
  gui::viewport::AddMovingBox(window.GetSession().host.GetScene());
  const QImage atStart = Drawn();
  ASSERT_EQ(Viewport().Problem(), "");
  window.GetTimeline().Scrub(static_cast<int>(window.GetSession().host.GetFrameRate()));
  const QImage later = Drawn();
  EXPECT_GT(DifferentPixels(atStart, later), 100);
  window.GetTimeline().Scrub(0);
  EXPECT_EQ(DifferentPixels(atStart, Drawn()), 0);
}

TEST_F(DesktopViewport, LooksThroughTheCameraChosenAndBackFromTheOrbit) {
  vuk::scenes::BuildSampleScene(window.GetSession().host.GetScene());
  MakeTool("LookAtCam");
  const std::string camera = "LookAtCam_01_LookAtCam";
  const std::vector<std::string> cameras = window.Cameras();
  EXPECT_NE(std::find(cameras.begin(), cameras.end(), camera), cameras.end());
  const QImage orbit = Drawn();
  QAction* through = LookThroughChoice(QString::fromStdString(camera));
  ASSERT_NE(through, nullptr);
  EXPECT_FALSE(through->isChecked());
  through->trigger();
  EXPECT_EQ(window.LookingThrough(), camera);
  ASSERT_NE(Viewport().View().Camera(), nullptr);
  EXPECT_EQ(Viewport().View().Camera()->hostName, camera);
  EXPECT_GT(DifferentPixels(orbit, Drawn()), 1000);
  EXPECT_TRUE(LookThroughChoice(QString::fromStdString(camera))->isChecked());
  // Only a camera can be looked through.
  EXPECT_FALSE(window.LookThrough("Car_Body"));
  EXPECT_EQ(window.LookingThrough(), camera);
  LookThroughChoice("&Orbit")->trigger();
  EXPECT_EQ(window.LookingThrough(), "");
  EXPECT_EQ(DifferentPixels(orbit, Drawn()), 0);
}

// Frame selected comes back from a camera to the orbit around the node
// chosen in the outliner; Frame all around the whole scene.
TEST_F(DesktopViewport, FramesTheSelectedNodeOrTheWholeScene) {
  vuk::scenes::BuildSampleScene(window.GetSession().host.GetScene());
  MakeTool("LookAtCam");
  const gui::viewport::OrbitView& orbit = Viewport().View().orbit;
  ViewItem("&Frame all")->trigger();
  const float whole = orbit.Distance();
  ASSERT_TRUE(window.LookThrough("LookAtCam_01_LookAtCam"));
  rgw::adaptor::standalone::Scene& scene = window.GetSession().host.GetScene();
  rgw::adaptor::standalone::SceneNode* target = nullptr;
  scene.Walk([&target](rgw::adaptor::standalone::SceneNode& node) {
    if (node.hostName == "LookAtCam_01_TargetMesh") target = &node;
  });
  ASSERT_NE(target, nullptr);
  scene.ClearSelection();
  scene.Select(target);
  ViewItem("Frame &selected")->trigger();
  EXPECT_EQ(window.LookingThrough(), "");
  const QVector3D at = gui::viewport::ToQt(target->World(scene.clock.GetTick())).map(QVector3D());
  EXPECT_LT((orbit.Target() - at).length(), 1.0f);
  EXPECT_LT(orbit.Distance(), whole);
  ViewItem("&Frame all")->trigger();
  EXPECT_FLOAT_EQ(orbit.Distance(), whole);
}

TEST_F(DesktopViewport, DuringARecordingTheKeysGoToTheKeyboardNotToShortcuts) {
  MakeTool("1DPositioner");
  unidevice::driver::KeyboardDevice& keyboard =
      *window.GetSession().core.GetDevices()->GetPlatformDriver().GetKeyboard();
  Viewport().setFocus();
  // Idle, Space is the timeline's play key.
  QTest::keyClick(&Viewport(), Qt::Key_Space);
  EXPECT_TRUE(window.GetTimeline().IsPlaying());
  window.GetTimeline().Stop();
  window.GetSession().core.GetRecorder()->countdownSeconds = 0;
  gui::component::Button& record = *window.GetMainDlg().ControlOf<gui::component::Button>(116);
  record.Press();
  ASSERT_TRUE(window.GetSession().core.IsRecording());
  QTest::keyPress(&Viewport(), Qt::Key_Space);
  EXPECT_EQ(keyboard.GetControl(kSpaceKey)->GetValue(), 1);
  EXPECT_FALSE(window.GetTimeline().IsPlaying());
  QTest::keyRelease(&Viewport(), Qt::Key_Space);
  EXPECT_EQ(keyboard.GetControl(kSpaceKey)->GetValue(), 0);
  // Undo stays the retake.
  const double started = window.GetSession().core.GetRecorder()->startTime;
  RunFor(100);
  QTest::keyClick(&Viewport(), Qt::Key_Z, Qt::ControlModifier);
  EXPECT_TRUE(window.GetSession().core.IsRecording());
  EXPECT_LT(window.GetSession().core.GetRecorder()->time - started, 0.05);
  record.Press();
}

TEST_F(DesktopViewport, TheCountdownShowsOverTheViewportWhileItRuns) {
  MakeTool("1DPositioner");
  window.GetSession().core.GetRecorder()->countdownSeconds = 2;
  gui::component::Button& record = *window.GetMainDlg().ControlOf<gui::component::Button>(116);
  record.Press();
  RunFor(100);
  EXPECT_TRUE(window.GetCountdown().isVisible());
  EXPECT_EQ(window.GetCountdown().Seconds(), 2);
  record.Press();
  RunFor(3 * Timeline::kRefreshMs);
  EXPECT_FALSE(window.GetCountdown().isVisible());
}

}  // namespace
}  // namespace vuk::app::desktop
