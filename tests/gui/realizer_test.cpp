#include "gui/qt/realizer.h"

#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QPushButton>
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
  using Heard = std::vector<std::pair<std::int32_t, std::int32_t>>;
  Heard heard;
};

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

// A user's change reaches the model and sends the control's id; code's change
// reaches the widget and sends nothing.
TEST(Realizer, ControlsAndTheirModelsGoBothWays) {
  util::xml::Element element;
  ASSERT_EQ(element.ParseText("<dialog label=\"Test\"><button id=\"116\" label=\"Record\"/>"
                              "<spinner id=\"7\" min=\"0\" max=\"10\" step=\"0.25\" decimals=\"2\"/>"
                              "<checkbox id=\"8\" tristate=\"yes\"/><combobox id=\"9\"><item label=\"a\"/>"
                              "<item label=\"b\"/></combobox><tree id=\"119\"><flag/><flag/></tree></dialog>"),
            util::xml::kParsed);
  std::unique_ptr<Component> root = BuildComponent(element);
  std::unique_ptr<QWidget> widget(component::qt::Realize(*root));
  ASSERT_NE(widget, nullptr);
  widget->show();
  Listener listener;
  EXPECT_EQ(widget->windowTitle(), "Test");
  listener.Connect(root->FindComponentById(116));
  auto* button = widget->findChild<QPushButton*>();
  ASSERT_NE(button, nullptr);
  EXPECT_EQ(button->text(), "Record");
  button->click();
  auto* spinnerModel = dynamic_cast<component::Spinner*>(root->FindComponentById(7));
  listener.Connect(spinnerModel);
  auto* spinner = widget->findChild<QDoubleSpinBox*>();
  ASSERT_NE(spinner, nullptr);
  EXPECT_EQ(spinner->decimals(), 2);
  EXPECT_EQ(spinner->singleStep(), 0.25);
  spinner->setValue(3.5);
  EXPECT_EQ(spinnerModel->value, 3.5);
  EXPECT_EQ(listener.heard, (Listener::Heard{{kButtonPressed, 116}, {kValueChanged, 7}}));
  spinnerModel->SetValue(9.0);
  EXPECT_EQ(spinner->value(), 9.0);
  EXPECT_EQ(listener.heard.size(), 2u);

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

  Item top("RGT");
  top.children.push_back(std::make_unique<Item>("TestTool_01"));
  auto* tree = dynamic_cast<component::Tree*>(root->FindComponentById(119));
  tree->SetRoot(&top);
  auto* view = widget->findChild<QTreeWidget*>();
  ASSERT_EQ(view->topLevelItemCount(), 1);
  QTreeWidgetItem* item = view->topLevelItem(0);
  EXPECT_EQ(item->text(0), "TestTool_01");
  EXPECT_EQ(item->checkState(1), Qt::Checked);
  listener.Connect(tree);
  item->setCheckState(2, Qt::Checked);
  EXPECT_EQ(top.children[0]->flags[1], 1);
  EXPECT_EQ(tree->GetSelected(), top.children[0].get());
  EXPECT_EQ(listener.heard.back(), std::make_pair(kValueChanged, 119));
}

// Flags with icons show the icon of their state and turn by a click; a drop
// is reported, and the items stay where the code keeps them.
TEST(Realizer, IconFlagsTurnByAClickAndDropsAreReported) {
  util::xml::Element element;
  ASSERT_EQ(element.ParseText("<dialog><tree id=\"119\" dragdrop=\"yes\"><flag trueicon=\"[coreimages]/flag_on.png\" "
                              "falseicon=\"[coreimages]/flag_off.png\"/><flag/></tree></dialog>"),
            util::xml::kParsed);
  std::unique_ptr<Component> root = BuildComponent(element);
  root->SetAlias("[coreimages]", DataRoot() + "/core/images");
  std::unique_ptr<QWidget> widget(component::qt::Realize(*root));
  Item top("RGT");
  top.children.push_back(std::make_unique<Item>("A"));
  top.children.push_back(std::make_unique<Item>("B"));
  auto* tree = dynamic_cast<component::Tree*>(root->FindComponentById(119));
  tree->SetRoot(&top);
  auto* view = widget->findChild<QTreeWidget*>();
  QTreeWidgetItem* item = view->topLevelItem(0);
  const QImage on = item->icon(1).pixmap(16).toImage();
  EXPECT_FALSE(on.isNull());
  EXPECT_EQ(item->data(1, Qt::CheckStateRole), QVariant());
  emit view->itemClicked(item, 1);
  EXPECT_EQ(top.children[0]->flags[0], 0);
  EXPECT_NE(item->icon(1).pixmap(16).toImage(), on);
  emit view->itemClicked(item, 1);
  EXPECT_EQ(top.children[0]->flags[0], 1);
  EXPECT_EQ(item->icon(1).pixmap(16).toImage(), on);

  Listener listener;
  listener.Connect(tree);
  tree->Drop(top.children[1].get(), top.children[0].get());
  EXPECT_EQ(listener.heard, (Listener::Heard{{kItemDropped, 119}}));
  EXPECT_EQ(tree->dropped, top.children[1].get());
  EXPECT_EQ(tree->dropTarget, top.children[0].get());
  tree->Drop(top.children[0].get(), top.children[0].get());
  EXPECT_EQ(listener.heard.size(), 1u);
}

TEST(Realizer, APopupSendsTheChosenId) {
  util::xml::Element element;
  element.ParseText("<popup><item id=\"1\" label=\"Configure\"/><separator/><item id=\"5\" label=\"Delete\"/>"
                    "<menu label=\"Create\"><item id=\"1000\" label=\"TestTool\"/></menu></popup>");
  std::unique_ptr<Component> root = BuildComponent(element);
  auto* popup = dynamic_cast<component::Menu*>(root.get());
  ASSERT_NE(popup, nullptr);
  EXPECT_EQ(component::qt::Realize(*popup), nullptr);
  std::unique_ptr<QMenu> menu(component::qt::MakePopup(*popup));
  const QList<QAction*> actions = menu->actions();
  ASSERT_EQ(actions.size(), 4);
  EXPECT_TRUE(actions[1]->isSeparator());
  Listener listener;
  listener.Connect(popup);
  actions[2]->trigger();
  actions[3]->menu()->actions()[0]->trigger();
  EXPECT_EQ(listener.heard, (Listener::Heard{{kButtonPressed, 5}, {kButtonPressed, 1000}}));
}

}  // namespace
}  // namespace vuk::gui
