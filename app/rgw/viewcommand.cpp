// rgw view: a scene drawn as the viewport shows it, to a picture.
#include <QGuiApplication>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "app/rgw/commandoptions.h"
#include "app/rgw/commands.h"
#include "app/rgw/picture.h"
#include "app/rgw/session.h"
#include "gui/viewport/offscreenview.h"

namespace vuk::app {

namespace {

using rgw::adaptor::standalone::ObjectKind;
using rgw::adaptor::standalone::SceneNode;

constexpr int kSmallestSide = 16;
constexpr int kLargestSide = 8192;

// A picture's side from its option, or the fallback; false with the reason.
bool ReadSide(const Options& options, const std::string& name, int fallback, int& side, std::string& error) {
  side = fallback;
  if (!options.Has(name)) return true;
  double value = 0;
  if (!ReadNumber(options.Get(name), value, error) || value != std::floor(value) || value < kSmallestSide ||
      value > kLargestSide) {
    error = "--" + name + " " + options.Get(name) + ": a whole number of pixels from " + std::to_string(kSmallestSide) +
            " to " + std::to_string(kLargestSide);
    return false;
  }
  side = static_cast<int>(value);
  return true;
}

}  // namespace

int ViewCommand(const Arguments& args) {
  const char* usage =
      "usage: rgw view FILE --png OUT [--time T] [--camera NODE] [--width W] [--height H]\n"
      "  Draws the scene at T seconds (0 unless given) as the viewport shows it: from above and\n"
      "  aside with all of it in sight, or through the camera node NODE. The picture is W by H\n"
      "  pixels, 1280 by 720 unless given. Needs OpenGL: a display, or Xvfb (xvfb-run -a rgw ...).\n";
  Options options{"png", "time", "camera", "width", "height"};
  if (const auto code = options.Read(args, usage, {"png"})) return *code;
  std::string error;
  double seconds = 0;
  if (options.Has("time") && !ReadNumber(options.Get("time"), seconds, error)) return Fail("--time: " + error);
  if (seconds < 0) return Fail("--time " + options.Get("time") + ": a scene's time starts at 0 s");
  int width = 0, height = 0;
  if (!ReadSide(options, "width", 1280, width, error) || !ReadSide(options, "height", 720, height, error)) {
    return Fail(error);
  }
  DrawOffscreenWithoutDisplay();
  int argc = 1;
  char program[] = "rgw";
  char* argv[] = {program, nullptr};
  QGuiApplication application(argc, argv);
  Session session;
  if (!session.Open(options.file, error)) return Fail(error);
  rgw::adaptor::standalone::Scene& scene = session.host.GetScene();
  const rgw::adaptor::standalone::Tick tick = scene.clock.TickOf(seconds);
  gui::viewport::ViewPoint viewPoint;
  viewPoint.orbit.Fit(scene, tick);
  std::string seen = "from above";
  if (options.Has("camera")) {
    const SceneNode* camera = FindNode(session, options.file, options.Get("camera"), error);
    if (!camera) return Fail(error);
    if (camera->kind != ObjectKind::kCamera) return Fail(camera->hostName + " is not a camera");
    viewPoint.LookThrough(camera);
    seen = "through " + camera->hostName;
  }
  gui::viewport::OffscreenView view(width, height);
  if (!view.Problem().empty()) {
    const bool headless = !std::getenv("DISPLAY") && !std::getenv("WAYLAND_DISPLAY");
    return Fail(view.Problem() + (headless ? " (no display: run rgw under xvfb-run -a)" : ""));
  }
  view.Redraw(&scene, tick, viewPoint);
  if (!SavePng(view.Picture(), options.Get("png"), error)) return Fail(error);
  std::printf("drew %s at %g s %s, %d by %d pixels, written to %s\n", options.file.c_str(), seconds, seen.c_str(), width,
              height, options.Get("png").c_str());
  return 0;
}

}  // namespace vuk::app
