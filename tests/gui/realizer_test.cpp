#include "gui/qt/realizer.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QTreeWidget>
#include <memory>

#include "gui/builder.h"
#include "gui/component/choices.h"
#include "gui/component/controls.h"
#include "gui/component/tree.h"

namespace vuk::gui {
namespace {

// Keeps what components send.
class Listener : public util::MessageNode {
 public:
  void Receive(util::Message& message, bool fromBroadcast) override {
    util::MessageNode::Receive(message, fromBroadcast);
    if (message.id >= kMessageFirst) heard.emplace_back(message.id, message.value);
  }
  std::vector<std::pair<std::int32_t, std::int32_t>> heard;
};

class Window : public testing::Test {
 protected:
  void Load(const std::string& markup) {
    util::xml::Element element;
    ASSERT_EQ(element.ParseText(markup), util::xml::kParsed);
    root = BuildComponent(element);
    widget.reset(component::qt::Realize(*root));
    ASSERT_NE(widget, nullptr);
    widget->show();
  }
  template <typename W>
  W* WidgetOf(const char* name) {
    return widget->findChild<W*>(name);
  }
  std::unique_ptr<Component> root;
  std::unique_ptr<QWidget> widget;
  Listener listener;
};

TEST_F(Window, AClickArrivesAsAMessageWithTheId) {
  Load("<dialog label=\"Test\"><button id=\"116\" label=\"Record\"/></dialog>");
  listener.Connect(root->FindComponentById(116));
  auto* button = widget->findChild<QAbstractButton*>();
  ASSERT_NE(button, nullptr);
  EXPECT_EQ(button->text(), "Record");
  EXPECT_EQ(widget->windowTitle(), "Test");
  button->click();
  ASSERT_EQ(listener.heard.size(), 1u);
  EXPECT_EQ(listener.heard[0], std::make_pair(kButtonPressed, 116));
}

TEST_F(Window, ValueChangesGoBothWays) {
  Load("<dialog><spinner id=\"7\" min=\"0\" max=\"10\" step=\"0.25\" decimals=\"2\"/>"
       "<checkbox id=\"8\" tristate=\"yes\"/><combobox id=\"9\"><item label=\"a\"/><item label=\"b\"/></combobox>"
       "</dialog>");
  auto* spinnerModel = dynamic_cast<component::Spinner*>(root->FindComponentById(7));
  listener.Connect(spinnerModel);
  auto* spinner = widget->findChild<QDoubleSpinBox*>();
  ASSERT_NE(spinner, nullptr);
  EXPECT_EQ(spinner->decimals(), 2);
  EXPECT_EQ(spinner->singleStep(), 0.25);
  spinner->setValue(3.5);
  EXPECT_EQ(spinnerModel->value, 3.5);
  ASSERT_EQ(listener.heard.size(), 1u);
  EXPECT_EQ(listener.heard[0], std::make_pair(kValueChanged, 7));
  // Code's change reaches the widget and sends nothing.
  spinnerModel->SetValue(9.0);
  EXPECT_EQ(spinner->value(), 9.0);
  EXPECT_EQ(listener.heard.size(), 1u);

  auto* checkModel = dynamic_cast<component::CheckBox*>(root->FindComponentById(8));
  auto* check = widget->findChild<QCheckBox*>();
  check->setCheckState(Qt::PartiallyChecked);
  EXPECT_EQ(checkModel->state, component::CheckBox::kMixed);
  checkModel->SetState(component::CheckBox::kOn);
  EXPECT_EQ(check->checkState(), Qt::Checked);

  auto* comboModel = dynamic_cast<component::ComboBox*>(root->FindComponentById(9));
  auto* combo = widget->findChild<QComboBox*>();
  ASSERT_EQ(combo->count(), 2);
  combo->setCurrentIndex(1);
  EXPECT_EQ(comboModel->selected, 1);
  comboModel->SetItems({"x", "y", "z"});
  EXPECT_EQ(combo->count(), 3);
}

class Item : public componentinterface::Tree::Node {
 public:
  explicit Item(std::string text) : label(std::move(text)) {}
  std::string GetLabel() const override { return label; }
  std::size_t GetNodeCount() const override { return children.size(); }
  Node* GetNode(std::size_t i) const override { return children[i].get(); }
  std::int32_t GetFlag(std::size_t column) const override { return flags[column]; }
  void SetFlag(std::size_t column, std::int32_t state) override { flags[column] = state; }
  std::string label;
  std::vector<std::unique_ptr<Item>> children;
  std::int32_t flags[2] = {1, 0};
};

TEST_F(Window, TheToolTreeShowsItemsWithFlags) {
  Load("<dialog><tree id=\"119\"><flag/><flag/></tree></dialog>");
  Item top("RGT");
  top.children.push_back(std::make_unique<Item>("LookAtCam_01"));
  auto* tree = dynamic_cast<component::Tree*>(root->FindComponentById(119));
  tree->SetRoot(&top);
  auto* view = widget->findChild<QTreeWidget*>();
  ASSERT_EQ(view->topLevelItemCount(), 1);
  QTreeWidgetItem* item = view->topLevelItem(0);
  EXPECT_EQ(item->text(0), "LookAtCam_01");
  EXPECT_EQ(item->checkState(1), Qt::Checked);
  listener.Connect(tree);
  item->setCheckState(2, Qt::Checked);
  EXPECT_EQ(top.children[0]->flags[1], 1);
  EXPECT_EQ(tree->GetSelected(), top.children[0].get());
  EXPECT_FALSE(listener.heard.empty());
}

TEST_F(Window, APopupSendsTheChosenId) {
  util::xml::Element element;
  element.ParseText("<popup><item id=\"1\" label=\"Configure\"/><separator/><item id=\"5\" label=\"Delete\"/>"
                    "<menu label=\"Create\"><item id=\"1000\" label=\"LookAtCam\"/></menu></popup>");
  root = BuildComponent(element);
  auto* popup = dynamic_cast<component::Menu*>(root.get());
  ASSERT_NE(popup, nullptr);
  EXPECT_EQ(component::qt::Realize(*popup), nullptr);
  std::unique_ptr<QMenu> menu(component::qt::MakePopup(*popup));
  const QList<QAction*> actions = menu->actions();
  ASSERT_EQ(actions.size(), 4);
  EXPECT_TRUE(actions[1]->isSeparator());
  listener.Connect(popup);
  actions[2]->trigger();
  actions[3]->menu()->actions()[0]->trigger();
  ASSERT_EQ(listener.heard.size(), 2u);
  EXPECT_EQ(listener.heard[0].second, 5);
  EXPECT_EQ(listener.heard[1].second, 1000);
}

TEST_F(Window, TheMainWindowRealises) {
  std::string error;
  root = LoadLayout(DataRoot() + "/core/layout/rgw_main.xml", &error);
  ASSERT_NE(root, nullptr) << error;
  widget.reset(component::qt::Realize(*root));
  ASSERT_NE(widget, nullptr);
  widget->adjustSize();
  EXPECT_GE(widget->width(), 380);
  EXPECT_FALSE(widget->grab().isNull());
}

}  // namespace
}  // namespace vuk::gui
