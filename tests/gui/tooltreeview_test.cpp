#include "gui/tooltree/tooltreeview.h"

#include <gtest/gtest.h>

#include "adaptor/standalone/standaloneadaptorinterface.h"
#include "core/instancemanager.h"
#include "gui/component/tree.h"
#include "tests/core/testtools.h"

namespace vuk::gui::tooltree {
namespace {

namespace core = rgw::core;

class ToolTree : public testing::Test {
 protected:
  ToolTree() : tree(Markup()), tools(&host, &library), view(tools.Root()) {}
  static util::xml::Element Markup() {
    util::xml::Element element;
    element.ParseText("<tree><flag/><flag/><flag/></tree>");
    return element;
  }
  componentinterface::Tree::Node& Shown(std::size_t index) { return *tree.root->GetNode(index); }

  component::Tree tree;
  rgw::adaptor::standalone::StandaloneAdaptorInterface host;
  core::LibraryManager library{rgw::testing_support::TestTools()};
  core::InstanceManager tools;
  ToolTreeView view;
};

TEST_F(ToolTree, ShowsEachToolBelowItsParentWithItsStatesAndFollowsChanges) {
  core::InstanceReference* parent = tools.Create("TestTool");
  core::InstanceReference* child = tools.Create("TestTool", "", parent);
  view.Show(tree);
  ASSERT_NE(tree.root, nullptr);
  ASSERT_EQ(tree.root->GetNodeCount(), 1u);
  EXPECT_EQ(Shown(0).GetLabel(), "TestTool_01");
  ASSERT_EQ(Shown(0).GetNodeCount(), 1u);
  EXPECT_EQ(Shown(0).GetNode(0)->GetLabel(), "TestTool_02");
  EXPECT_EQ(Shown(0).GetNode(1), nullptr);
  EXPECT_EQ(view.ItemOf(Shown(0).GetNode(0)), child);
  EXPECT_EQ(view.ItemOf(tree.root), &tools.Root());
  EXPECT_EQ(view.ItemOf(nullptr), nullptr);

  // The flags are the tool's check state and its two visibility states.
  Shown(0).SetFlag(core::TreeItem::kChecked, 0);
  Shown(0).SetFlag(core::TreeItem::kLowPoly, 2);
  Shown(0).SetFlag(3, 0);
  EXPECT_EQ(parent->states, (std::array<std::int32_t, 3>{0, 1, 2}));
  parent->states[core::TreeItem::kHighPoly] = 0;
  EXPECT_EQ(Shown(0).GetFlag(core::TreeItem::kHighPoly), 0);
  EXPECT_EQ(Shown(0).GetFlag(3), 0);

  // Showing again follows the tools made and deleted.
  const componentinterface::Tree::Node* before = &Shown(0);
  tools.Create("TestTool");
  tools.Delete(parent, false);
  view.Show(tree);
  ASSERT_EQ(tree.root->GetNodeCount(), 1u);
  EXPECT_EQ(Shown(0).GetLabel(), "TestTool_03");
  EXPECT_EQ(view.ItemOf(before), nullptr);
}

}  // namespace
}  // namespace vuk::gui::tooltree
