// The shipped windows as the program shows them: rendered under the
// offscreen platform and looked at in their widgets and pixels.
#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <algorithm>
#include <ostream>
#include <memory>
#include <string>
#include <vector>

#include "gui/builder.h"
#include "gui/qt/realizer.h"

namespace vuk::gui {
namespace {

std::unique_ptr<Component> Load(const std::string& name, const Placeholders& texts = {}) {
  std::string error;
  std::unique_ptr<Component> root = LoadLayout(DataRoot() + "/core/layout/" + name + ".xml", &error, texts);
  EXPECT_NE(root, nullptr) << error;
  return root;
}

// Realised and shown at the size it asks for, as the command line renders it.
std::unique_ptr<QWidget> Show(Component& root) {
  std::unique_ptr<QWidget> window(component::qt::Realize(root));
  window->adjustSize();
  window->show();
  QApplication::processEvents();
  return window;
}

std::vector<std::string> LabelTexts(const QWidget& window) {
  std::vector<std::string> texts;
  for (const QLabel* label : window.findChildren<QLabel*>()) texts.push_back(label->text().toStdString());
  return texts;
}

struct FilledText {
  const char* layout;
  const char* shown;
};

void PrintTo(const FilledText& text, std::ostream* out) { *out << text.layout; }

class VersionTexts : public testing::TestWithParam<FilledText> {};

TEST_P(VersionTexts, ShowTheProgramsVersion) {
  auto root = Load(GetParam().layout, {{"%VERSION%", "2.3.45"}, {"%BUILD%", "2345"}});
  ASSERT_NE(root, nullptr);
  auto window = Show(*root);
  std::vector<std::string> texts = LabelTexts(*window);
  texts.push_back(window->windowTitle().toStdString());
  EXPECT_NE(std::find(texts.begin(), texts.end(), GetParam().shown), texts.end()) << GetParam().shown;
  for (const std::string& text : texts) EXPECT_EQ(text.find('%'), std::string::npos) << text;
}

INSTANTIATE_TEST_SUITE_P(Windows, VersionTexts,
                         testing::Values(FilledText{"rgw_about", "Version 2.3.45 (build 2345)"},
                                         FilledText{"rgw_update", "Current version: 2.3.45"},
                                         FilledText{"rgw_main", "Quoll Rigworks v2.3.45 x64"}));

}  // namespace
}  // namespace vuk::gui
