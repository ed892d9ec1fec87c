// rgw gui: the desktop app on the embedded host.
#include <QApplication>
#include <QStyleFactory>
#include <cmath>
#include <cstdio>
#include <string>

#include "app/rgw/commandoptions.h"
#include "app/rgw/commands.h"
#include "app/rgw/desktop/desktopwindow.h"
#include "app/rgw/desktop/logpane.h"
#include "app/rgw/picture.h"
#include "app/rgw/wording.h"
#include "gui/component/controls.h"

namespace vuk::app {

namespace {

int GuiUsage(const Arguments& args) {
  return Usage(args,
               "usage: rgw gui [FILE] [--time T] [--camera NODE] [--screenshots FOLDER]\n"
               "  opens the desktop app, with the scene FILE when given, at T seconds, its viewport\n"
               "  looking through the camera node NODE when given; with --screenshots it draws the app\n"
               "  from the orbit, the app through NODE when given, the main window and the first\n"
               "  tool's configuration and input windows into PNG files of that folder, and ends\n");
}

bool Picture(QWidget& widget, const std::string& path) {
  QApplication::processEvents();
  std::string error;
  if (SavePng(widget.grab().toImage(), path, error)) return true;
  std::fprintf(stderr, "rgw: %s\n", error.c_str());
  return false;
}

// The app, through the camera when one is named, the main window, and the
// windows of the first tool of the scene.
int Screenshots(desktop::DesktopWindow& window, const std::string& folder, const std::string& camera) {
  rgw::core::MainDlg& dlg = window.GetMainDlg();
  auto& tools = window.GetSession().tools.Root();
  if (tools.GetChildCount() == 0) {
    std::fprintf(stderr, "rgw: the scene has no tool whose windows could be drawn\n");
    return 1;
  }
  dlg.Select(static_cast<rgw::core::InstanceReference*>(tools.GetChild(0)));
  window.show();
  window.LookThrough("");
  // The pane reads the log on a timer that hasn't fired yet.
  if (auto* log = window.findChild<desktop::LogPane*>()) log->ReadNew();
  bool drawn = Picture(window, folder + "/desktop.png") && Picture(*dlg.Widget(), folder + "/main_window.png");
  if (!camera.empty()) {
    window.LookThrough(camera);
    drawn = drawn && Picture(window, folder + "/desktop_viewport.png");
  }
  dlg.ControlOf<gui::component::Button>(106)->Press();
  dlg.ControlOf<gui::component::Button>(107)->Press();
  drawn = drawn && Picture(*dlg.GetConfigWindow()->Widget(), folder + "/config_window.png") &&
          Picture(*dlg.GetInputWindow()->Widget(), folder + "/input_window.png");
  if (!drawn) return 1;
  std::printf("drew the app, the main window and %s's configuration and input windows into %s\n",
              static_cast<rgw::core::InstanceReference*>(tools.GetChild(0))->GetLabel().c_str(), folder.c_str());
  return 0;
}

}  // namespace

int GuiCommand(const Arguments& args) {
  std::string file, camera, screenshots, time;
  for (std::size_t i = 0; i < args.size(); ++i) {
    if (args[i] == "--screenshots" && i + 1 < args.size()) {
      screenshots = args[++i];
    } else if (args[i] == "--time" && i + 1 < args.size()) {
      time = args[++i];
    } else if (args[i] == "--camera" && i + 1 < args.size()) {
      camera = args[++i];
    } else if (file.empty() && args[i].rfind("--", 0) != 0) {
      file = args[i];
    } else {
      return GuiUsage(args);
    }
  }
  if (WantsHelp(args)) return GuiUsage(args);
  if (!screenshots.empty()) DrawOffscreenWithoutDisplay();
  int argc = 1;
  char name[] = "rgw";
  char* argv[] = {name, nullptr};
  QApplication application(argc, argv);
  QApplication::setStyle(QStyleFactory::create("Fusion"));
  desktop::DesktopWindow window(RGW_VERSION);
  if (!file.empty() && !window.OpenScene(file)) return 1;
  if (!time.empty()) {
    double seconds = 0;
    std::string error;
    if (!ReadNumber(time, seconds, error)) return Fail("--time: " + error);
    window.GetTimeline().Scrub(static_cast<int>(std::lround(seconds * window.GetSession().host.GetFrameRate())));
  }
  if (!camera.empty() && !window.LookThrough(camera)) {
    std::fprintf(stderr, "rgw: --camera %s: the scene has no such camera; its cameras are %s\n", camera.c_str(),
                 Listed(window.Cameras()).c_str());
    return 1;
  }
  if (!screenshots.empty()) return Screenshots(window, screenshots, camera);
  window.show();
  return QApplication::exec();
}

}  // namespace vuk::app
