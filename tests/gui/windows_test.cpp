// The shipped windows as the program shows them: rendered under the
// offscreen platform and looked at in their widgets and pixels.
#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <QLabel>
#include <QLayout>
#include <QMenuBar>
#include <algorithm>
#include <cstdlib>
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

// Realised and shown at the size it opens at, as the command line renders it.
std::unique_ptr<QWidget> Show(Component& root) {
  std::unique_ptr<QWidget> window(component::qt::Realize(root));
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

// The colour of the pixel that stands out most from the widget's corner,
// which is its ground: the ink of its text.
std::string Ink(QWidget& widget) {
  const QImage image = widget.grab().toImage();
  const QColor ground = image.pixelColor(0, 0);
  QColor ink = ground;
  int farthest = -1;
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      const QColor c = image.pixelColor(x, y);
      const int distance =
          std::abs(c.red() - ground.red()) + std::abs(c.green() - ground.green()) + std::abs(c.blue() - ground.blue());
      if (distance > farthest) {
        farthest = distance;
        ink = c;
      }
    }
  }
  return ink.name().toStdString();
}

class SectionTitle : public testing::TestWithParam<const char*> {};

// A section title is a label that takes no input; it reads in the ink of the
// window's other texts, on light grounds and dark.
TEST_P(SectionTitle, ReadsInTheWindowsInk) {
  util::xml::Element element;
  ASSERT_EQ(element.ParseText(std::string("<dialog>") + GetParam() +
                              "<label id=\"1\" label=\"Suspension\" enabled=\"no\"/>"
                              "<label id=\"2\" label=\"Suspension\"/></dialog>"),
            util::xml::kParsed);
  auto root = BuildComponent(element);
  auto window = Show(*root);
  const QList<QLabel*> labels = window->findChildren<QLabel*>();
  ASSERT_EQ(labels.size(), 2);
  EXPECT_FALSE(labels[0]->isEnabled());
  EXPECT_EQ(Ink(*labels[0]), Ink(*labels[1]));
}

INSTANTIATE_TEST_SUITE_P(Grounds, SectionTitle,
                         testing::Values("", "<background type=\"color\" r=\"40\" g=\"44\" b=\"52\" a=\"255\"/>"));

// The boxes' items of a widget, with its menu bar: the rows that it lays out.
std::vector<QWidget*> Rows(const QWidget& widget) {
  std::vector<QWidget*> rows;
  QLayout* layout = widget.layout();
  if (!layout) return rows;
  if (layout->menuBar()) rows.push_back(layout->menuBar());
  for (int i = 0; i < layout->count(); ++i) {
    QWidget* row = layout->itemAt(i)->widget();
    if (row && row->isVisible()) rows.push_back(row);
  }
  return rows;
}

void ExpectNoOverlap(const QWidget& widget) {
  const std::vector<QWidget*> rows = Rows(widget);
  for (std::size_t i = 0; i < rows.size(); ++i) {
    for (std::size_t j = i + 1; j < rows.size(); ++j) {
      EXPECT_FALSE(rows[i]->geometry().intersects(rows[j]->geometry()))
          << rows[i]->metaObject()->className() << " " << rows[i]->objectName().toStdString() << " at "
          << rows[i]->geometry().y() << " meets " << rows[j]->metaObject()->className() << " at "
          << rows[j]->geometry().y();
    }
  }
  for (const QWidget* child : widget.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
    ExpectNoOverlap(*child);
  }
}

struct Layout {
  const char* name;
  bool smallest;  // shrunk to the least the window allows
};

void PrintTo(const Layout& layout, std::ostream* out) { *out << layout.name << (layout.smallest ? " smallest" : ""); }

class WindowRows : public testing::TestWithParam<Layout> {};

TEST_P(WindowRows, NeverOverlap) {
  auto root = Load(GetParam().name);
  ASSERT_NE(root, nullptr);
  auto window = Show(*root);
  if (GetParam().smallest) {
    window->resize(1, 1);
    QApplication::processEvents();
  }
  ExpectNoOverlap(*window);
}

INSTANTIATE_TEST_SUITE_P(Windows, WindowRows,
                         testing::Values(Layout{"rgw_main", false}, Layout{"rgw_main", true},
                                         Layout{"rgw_about", true}, Layout{"rgw_update", true},
                                         Layout{"rgw_config", true}, Layout{"rgw_inputs", true},
                                         Layout{"rgw_resimulate", true}),
                         [](const testing::TestParamInfo<Layout>& info) {
                           return std::string(info.param.name) + (info.param.smallest ? "_smallest" : "_shown");
                         });

}  // namespace
}  // namespace vuk::gui
