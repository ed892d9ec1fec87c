// rgw layout: windows rendered offscreen to pictures, to look at them without a screen.
#include <QApplication>
#include <QImage>
#include <QStyleFactory>
#include <QWidget>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "app/rgw/commands.h"
#include "app/rgw/picture.h"
#include "app/rgw/samplepage.h"
#include "core/window/windowbase.h"
#include "gui/builder.h"
#include "gui/qt/realizer.h"
#include "util/xml/element.h"

namespace vuk::app {

namespace {

int LayoutUsage(const Arguments& args) {
  return Usage(args,
               "usage: rgw layout show FILE --png OUT [--width W] [--height H]\n"
               "       rgw layout page --png OUT [--width W] [--height H]\n");
}

// Shows the tree and writes its picture.
int Render(vuk::gui::Component& root, const std::string& png, int width, int height) {
  QWidget* window = vuk::gui::component::qt::Realize(root);
  if (!window) {
    std::fprintf(stderr, "rgw: the layout's root has nothing to show\n");
    return 1;
  }
  if (width > 0 || height > 0) window->resize(width > 0 ? width : window->width(), height > 0 ? height : window->height());
  window->show();
  QApplication::processEvents();
  const QImage picture = window->grab().toImage();
  delete window;
  std::string error;
  if (!SavePng(picture, png, error)) {
    std::fprintf(stderr, "rgw: %s\n", error.c_str());
    return 1;
  }
  std::printf("drew the window, %d by %d pixels, written to %s\n", picture.width(), picture.height(), png.c_str());
  return 0;
}

int ShowLayout(const std::vector<std::string>& args, bool samplePage) {
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
      return LayoutUsage(args);
    }
  }
  if (samplePage) file = vuk::gui::DataRoot() + "/core/layout/rgw_config.xml";
  if (file.empty() || png.empty() || (samplePage && args.size() % 2)) return LayoutUsage(args);
  vuk::util::xml::Element layout;
  if (layout.Parse(file) != vuk::util::xml::kParsed) {
    std::fprintf(stderr, "rgw: %s: the layout can't be read\n", file.c_str());
    return 1;
  }
  vuk::gui::FillPlaceholders(layout, vuk::rgw::core::ProgramTexts(RGW_VERSION));
  vuk::app::SamplePage page;
  if (samplePage) {
    // The page goes into the window's list 210, as the configuration window places it.
    for (auto& child : layout.children) {
      if (child->GetAttribute("id") == "210") child->AddChild(page.root.BuildLayout());
    }
  }
  std::unique_ptr<vuk::gui::Component> root = vuk::gui::BuildComponent(layout);
  if (!root) {
    std::fprintf(stderr, "rgw: %s: \"%s\" is not a component\n", file.c_str(), layout.name.c_str());
    return 1;
  }
  root->SetAlias("[coreimages]", vuk::gui::DataRoot() + "/core/images");
  if (samplePage) page.root.AttachView(root.get());
  return Render(*root, png, width, height);
}

}  // namespace

int LayoutCommand(const Arguments& args) {
  if (args.empty() || WantsHelp(args) || (args[0] != "show" && args[0] != "page")) return LayoutUsage(args);
  DrawOffscreenWithoutDisplay();
  int argc = 1;
  char name[] = "rgw";
  char* argv[] = {name, nullptr};
  QApplication application(argc, argv);
  QApplication::setStyle(QStyleFactory::create("Fusion"));
  return ShowLayout(Arguments(args.begin() + 1, args.end()), args[0] == "page");
}

}  // namespace vuk::app
