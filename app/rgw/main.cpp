// The rgw command line.
//   rgw layout show FILE --png OUT [--width W] [--height H]
// renders a layout file (or a resource path beginning with ":") offscreen to
// a PNG, for looking at windows without a screen.
#include <QApplication>
#include <QImage>
#include <QStyleFactory>
#include <QWidget>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "gui/builder.h"
#include "gui/qt/realizer.h"

namespace {

int Usage() {
  std::fprintf(stderr, "usage: rgw layout show FILE --png OUT [--width W] [--height H]\n");
  return 2;
}

int ShowLayout(const std::vector<std::string>& args) {
  std::string file, png;
  int width = 0, height = 0;
  for (std::size_t i = 0; i < args.size(); ++i) {
    const bool hasValue = i + 1 < args.size();
    if (args[i] == "--png" && hasValue) {
      png = args[++i];
    } else if (args[i] == "--width" && hasValue) {
      width = std::atoi(args[++i].c_str());
    } else if (args[i] == "--height" && hasValue) {
      height = std::atoi(args[++i].c_str());
    } else if (file.empty()) {
      file = args[i];
    } else {
      return Usage();
    }
  }
  if (file.empty() || png.empty()) return Usage();
  std::string error;
  std::unique_ptr<vuk::gui::Component> root = vuk::gui::LoadLayout(file, &error);
  if (!root) {
    std::fprintf(stderr, "rgw: %s\n", error.c_str());
    return 1;
  }
  QWidget* window = vuk::gui::component::qt::Realize(*root);
  if (!window) {
    std::fprintf(stderr, "rgw: %s: the root has nothing to show\n", file.c_str());
    return 1;
  }
  window->adjustSize();
  if (width > 0 || height > 0) window->resize(width > 0 ? width : window->width(), height > 0 ? height : window->height());
  window->show();
  QApplication::processEvents();
  if (!window->grab().toImage().save(QString::fromStdString(png))) {
    std::fprintf(stderr, "rgw: %s: the picture can't be written\n", png.c_str());
    return 1;
  }
  delete window;
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  // Without a display the picture is drawn offscreen.
  if (!std::getenv("DISPLAY") && !std::getenv("WAYLAND_DISPLAY") && !std::getenv("QT_QPA_PLATFORM")) {
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
  }
  QApplication application(argc, argv);
  QApplication::setStyle(QStyleFactory::create("Fusion"));
  const std::vector<std::string> args(argv + 1, argv + argc);
  if (args.size() >= 2 && args[0] == "layout" && args[1] == "show") {
    return ShowLayout(std::vector<std::string>(args.begin() + 2, args.end()));
  }
  return Usage();
}
