#include "gui/builder.h"

#include <gtest/gtest.h>

#include <fstream>

#include "gui/component/choices.h"
#include "gui/component/containers.h"
#include "gui/component/controls.h"
#include "gui/component/tree.h"

namespace vuk::gui {
namespace {

std::unique_ptr<Component> Build(const std::string& markup) {
  util::xml::Element element;
  EXPECT_EQ(element.ParseText(markup), util::xml::kParsed) << markup;
  return BuildComponent(element);
}

template <typename Kind>
Kind* Find(Component& root, int id) {
  return dynamic_cast<Kind*>(root.FindComponentById(id));
}

TEST(Builder, UnknownTagsVanishWithTheirSubtree) {
  auto root = Build("<dialog><list id=\"1\"><fancy><button id=\"2\"/></fancy><button id=\"3\"/></list></dialog>");
  ASSERT_NE(root, nullptr);
  EXPECT_EQ(root->FindComponentById(2), nullptr);
  ASSERT_NE(root->FindComponentById(3), nullptr);
  EXPECT_EQ(root->FindComponentById(1)->GetChildCount(), 1u);
  EXPECT_EQ(Build("<fancy/>"), nullptr);
}

TEST(Builder, OnlyTheExactWordIsHorizontal) {
  for (const auto& [type, horizontal] : {std::pair{"horizontal", true}, {"vertical", false}, {"horizonal", false},
                                         {"Horizontal", false}, {"", false}}) {
    auto root = Build(std::string("<list id=\"1\" type=\"") + type + "\"/>");
    EXPECT_EQ(Find<component::List>(*root, 1)->horizontal, horizontal) << type;
  }
}

TEST(Builder, CommonAttributes) {
  auto root = Build(
      "<border id=\"4\" padding=\"25 25\" margin=\"1 2 3 4\" margin-left=\"9\" fixed=\"vertical\" width=\"120\" "
      "maxwidth=\"16777215\" visible=\"false\" enabled=\"no\" halign=\"center\" valign=\"bottom\" "
      "tooltip=\"attr\"><tooltip>child</tooltip></border>");
  auto* border = Find<component::Border>(*root, 4);
  ASSERT_NE(border, nullptr);
  const auto sides = [](const Box& box) { return std::vector<int>{box.left, box.top, box.right, box.bottom}; };
  EXPECT_EQ(sides(border->padding), (std::vector<int>{25, 25, 0, 0}));
  EXPECT_EQ(sides(border->margin), (std::vector<int>{9, 2, 3, 4}));
  EXPECT_EQ(border->fixed, Fixed::kVertical);
  EXPECT_EQ(border->width, 120);
  EXPECT_FALSE(border->visible || border->enabled);
  EXPECT_EQ(border->halign, HAlign::kCenter);
  EXPECT_EQ(border->valign, VAlign::kBottom);
  EXPECT_EQ(border->tooltip, "child");
}

TEST(Builder, KindsReadTheirOwnAttributes) {
  auto root = Build(
      "<list><spinner id=\"1\" min=\"-1\" max=\"1e6\" step=\"0.5\" decimals=\"2\" defaultvalue=\"3.25\"/>"
      "<checkbox id=\"2\" defaultstate=\"true\" tristate=\"yes\"/>"
      "<combobox id=\"3\"><item id=\"0\" label=\"Front\"/><item id=\"1\" label=\"Rear\" grayed=\"yes\"/></combobox>"
      "<tree id=\"4\"><flag defaultstate=\"undetermined\"/><flag/></tree>"
      "<border id=\"7\"><background type=\"gradient-linear\" endy=\"1\"><color pos=\"0\" r=\"10\"/>"
      "<color pos=\"1\" b=\"200\" a=\"128\"/></background></border></list>");
  auto* spinner = Find<component::Spinner>(*root, 1);
  EXPECT_EQ(spinner->maximum, 1e6);
  EXPECT_EQ(spinner->value, 3.25);
  auto* check = Find<component::CheckBox>(*root, 2);
  EXPECT_EQ(check->state, component::CheckBox::kOn);
  EXPECT_TRUE(check->tristate);
  auto* combo = Find<component::ComboBox>(*root, 3);
  ASSERT_EQ(combo->items.size(), 2u);
  EXPECT_EQ(combo->items[1].label, "Rear");
  EXPECT_TRUE(combo->items[1].grayed);
  auto* tree = Find<component::Tree>(*root, 4);
  ASSERT_EQ(tree->flags.size(), 2u);
  EXPECT_EQ(tree->flags[0].defaultState, 2);
  auto* border = Find<component::Border>(*root, 7);
  auto* gradient = dynamic_cast<Gradient_Linear*>(border->background.get());
  ASSERT_NE(gradient, nullptr);
  ASSERT_EQ(gradient->stops.size(), 2u);
  EXPECT_EQ(gradient->stops[1].color.a, 128);
}

TEST(Builder, LookupsGoFromTheRootDepthFirst) {
  auto root = Build("<list><list><button id=\"9\" label=\"deep\"/><label id=\"6\" imagepath=\"[images]/a.png\"/>"
                    "</list><button id=\"9\" label=\"shallow\"/></list>");
  EXPECT_EQ(Find<component::Button>(*root, 9)->label, "deep");
  root->SetAlias("[images]", "/tools/car/images");
  auto* label = Find<component::Label>(*root, 6);
  EXPECT_EQ(label->ResolvePath(label->imagePath), "/tools/car/images/a.png");
}

TEST(Builder, PlaceholdersAreFilledInAttributesAndTexts) {
  util::xml::Element element;
  ASSERT_EQ(element.ParseText("<list label=\"%A% and %A%\"><label tooltip=\"%B%\"><tooltip>v%A%</tooltip></label>"
                              "</list>"),
            util::xml::kParsed);
  // A text that holds its own placeholder is filled once, not again and again.
  FillPlaceholders(element, {{"%A%", "<%A%>"}, {"%B%", "b"}, {"", "never"}});
  EXPECT_EQ(element.GetAttribute("label"), "<%A%> and <%A%>");
  const util::xml::Element& label = element.GetChild("label");
  EXPECT_EQ(label.GetAttribute("tooltip"), "b");
  EXPECT_EQ(label.GetChild("tooltip").GetText(), "v<%A%>");
}

// Lists in lists, as deep as asked, with a placeholder at the bottom.
std::string NestedLists(int levels) {
  std::string markup;
  for (int i = 0; i < levels - 1; ++i) markup += "<list>";
  markup += "<label label=\"%A%\"/>";
  for (int i = 0; i < levels - 1; ++i) markup += "</list>";
  return markup;
}

// Components build recursively: nesting past the limit is refused, and a
// file's name comes with the reason.
TEST(Builder, LayoutsNestedTooDeepAreRefused) {
  const std::pair<int, const char*> cases[] = {
      {64, ""},
      {65, "elements are nested 65 levels deep; a layout holds at most 64"},
      {100000, "elements are nested 100000 levels deep; a layout holds at most 64"}};
  const std::string path = testing::TempDir() + "/deep_layout.xml";
  for (const auto& [levels, problem] : cases) {
    util::xml::Element element;
    ASSERT_EQ(element.ParseText(NestedLists(levels)), util::xml::kParsed);
    FillPlaceholders(element, {{"%A%", "a"}});
    std::string error;
    EXPECT_EQ(BuildComponent(element, &error) != nullptr, *problem == '\0') << levels;
    EXPECT_EQ(error, problem);
    std::ofstream(path) << NestedLists(levels);
    error.clear();
    EXPECT_EQ(LoadLayout(path, &error) != nullptr, *problem == '\0') << levels;
    EXPECT_EQ(error, *problem ? path + ": " + problem : "");
  }
}

TEST(Builder, ShippedLayoutsBuild) {
  // The command line shows the other shipped layouts.
  for (const char* name : {"rgw_update_subsection", "rgw_main_updatebar", "rgw_popout_product"}) {
    std::string error;
    EXPECT_NE(LoadLayout(DataRoot() + "/core/layout/" + name + ".xml", &error), nullptr) << error;
  }
  auto main = LoadLayout(DataRoot() + "/core/layout/rgw_main.xml");
  for (int id : {101, 102, 103, 110, 111, 106, 107, 108, 109, 104, 105, 119, 113, 114, 112, 115, 116, 117, 118, 135}) {
    EXPECT_NE(main->FindComponentById(id), nullptr) << id;
  }
  std::string error;
  EXPECT_EQ(LoadLayout(":/nowhere.xml", &error), nullptr);
  EXPECT_EQ(error, ":/nowhere.xml: the layout can't be read (parse result 1)");
}

}  // namespace
}  // namespace vuk::gui
