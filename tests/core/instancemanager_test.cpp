#include "core/instancemanager.h"

#include <gtest/gtest.h>

#include "adaptor/standalone/gltffile.h"
#include "adaptor/standalone/standaloneadaptorinterface.h"
#include "core/messagebox.h"
#include "tests/core/testtools.h"

namespace vuk::rgw::core {
namespace {

using adaptor::standalone::GltfFile;
using adaptor::standalone::StandaloneAdaptorInterface;
using testing_support::TestTool;

TestTool& Tool(InstanceReference& item) { return *static_cast<TestTool*>(item.instance->GetTool()); }

// A scene file with the host and the tool tree that go with it.
struct Scene {
  // Saves the tools with the scene, as the host does at a scene save: tags
  // on the nodes for the file, gone from the scene after. The node named
  // `untagged` loses its tag first, as if it had gone.
  void Save(const std::string& path, const std::string& untagged = "") {
    tools.WriteNodeTags();
    host.GetScene().Walk([&](adaptor::standalone::SceneNode& node) {
      if (node.hostName == untagged) node.properties.erase("RGT_tag");
    });
    std::string error;
    ASSERT_TRUE(GltfFile().Save(path, host.GetScene(), &error)) << error;
    host.GetScene().Walk([](adaptor::standalone::SceneNode& node) { node.properties.erase("RGT_tag"); });
  }
  // Reads the file as many times as asked, then rebuilds the tools of its tags.
  void Load(const std::string& path, int times = 1) {
    std::string error;
    for (int i = 0; i < times; ++i) ASSERT_TRUE(GltfFile().Load(path, host.GetScene(), &error)) << error;
    host.SetSceneLoader([this](const util::xml::Element& tree) { tools.LoadToolTree(tree); });
    host.GatherScene();
  }
  InstanceReference& Top(std::size_t index) { return static_cast<InstanceReference&>(*tools.Root().GetChild(index)); }

  LibraryManager library{testing_support::TestTools()};
  StandaloneAdaptorInterface host;
  InstanceManager tools{&host, &library};
};

class ToolsInScenes : public testing::Test {
 protected:
  void TearDown() override { SetMessageBoxSink(nullptr); }
  // The user's boxes, as "caption|style|text".
  void CatchBox() {
    SetMessageBoxSink([this](const std::string& text, const std::string& caption, std::int32_t style) {
      box = caption + "|" + std::to_string(style) + "|" + text;
      return 0;
    });
  }
  std::string Path(const char* name) { return testing::TempDir() + "/" + name; }
  std::string box;
};

// The keys are the scene file's own; the tools come back from their tags.
TEST_F(ToolsInScenes, TwoToolsOneBelowTheOtherComeBackWithSettingsAndTakes) {
  {
    Scene scene;
    InstanceReference* parent = scene.tools.Create("TestTool");
    InstanceReference* child = scene.tools.Create("TestTool", "", parent);
    ASSERT_NE(child, nullptr);
    Tool(*child).hideHelpers = true;
    child->states[TreeItem::kChecked] = 0;
    child->instance->TrackOf("Lift")->Set(0.5, 0.25);
    scene.Save(Path("two_tools.gltf"));
  }
  Scene scene;
  scene.Load(Path("two_tools.gltf"));
  ASSERT_EQ(scene.tools.Root().GetChildCount(), 1u);
  InstanceReference& parent = scene.Top(0);
  ASSERT_EQ(parent.GetChildCount(), 1u);
  auto& child = static_cast<InstanceReference&>(*parent.GetChild(0));
  EXPECT_EQ(parent.GetLabel(), "TestTool_01");
  EXPECT_EQ(child.GetLabel(), "TestTool_02");
  EXPECT_TRUE(Tool(child).hideHelpers);
  EXPECT_FALSE(Tool(parent).hideHelpers);
  EXPECT_EQ(child.states[TreeItem::kChecked], 0);
  EXPECT_EQ(scene.tools.CheckedInstances().size(), 1u);
  const std::vector<Instance::Channel> channels = child.instance->Channels();
  ASSERT_NE(channels[0].take, nullptr);
  EXPECT_EQ(channels[0].take->Get(0.5), 0.25);
  // The tags were read from the file and are gone from the scene.
  scene.host.GetScene().Walk(
      [](adaptor::standalone::SceneNode& node) { EXPECT_TRUE(node.properties["RGT_tag"].empty()); });
}

TEST_F(ToolsInScenes, ATagWhoseNodeIsGoneGivesTheBoxAndLosesNothingElse) {
  {
    Scene scene;
    scene.tools.Create("TestTool");
    scene.tools.Create("TestTool");
    scene.Save(Path("gone_node.gltf"), "TestTool_02_Camera");
  }
  CatchBox();
  Scene scene;
  scene.Load(Path("gone_node.gltf"));
  EXPECT_EQ(scene.tools.AllInstances().size(), 1u);
  EXPECT_EQ(box.substr(0, box.find('\n')),
            "Error loading plugin|32|Some nodes required for this plugin was not found in the scene. Please make sure "
            "all required nodes are present.");
  EXPECT_NE(box.find("TestTool_02_Camera"), std::string::npos) << box;
}

TEST_F(ToolsInScenes, ASerializedToolReadsBackAsATemplate) {
  Scene scene;
  InstanceReference* item = scene.tools.Create("TestTool");
  const util::xml::Element plugin = item->Serialize(0);
  EXPECT_EQ(plugin.GetAttribute("version"), "2.5");
  EXPECT_EQ(plugin.GetChild("type").GetText(), "TestTool");
  EXPECT_EQ(plugin.GetChild("name").GetText(), "TestTool_01");
  EXPECT_TRUE(plugin.GetChild("checked").IsEmpty());
  EXPECT_EQ(plugin.GetChild("nodeinfo").CountChildren("node"), 2u);
  EXPECT_TRUE(plugin.GetChild("savedata").IsEmpty());  // not full content
  EXPECT_EQ(item->Serialize(InstanceReference::kForScene).GetAttribute("compressed"), "1");
  // A clone is a template of the tool without its saved bytes: new nodes.
  EXPECT_EQ(scene.tools.LoadToolTree(plugin), 1);
  ASSERT_EQ(scene.tools.AllInstances().size(), 2u);
  EXPECT_EQ(scene.tools.AllInstances()[1]->InstanceName(), "TestTool_02");
}

TEST_F(ToolsInScenes, DeleteUnplugAndCloneGoThroughTheHostsUndo) {
  Scene scene;
  InstanceReference* parent = scene.tools.Create("TestTool");
  scene.tools.Create("TestTool", "", parent);
  CNode* camera = Tool(*parent).camera;

  scene.tools.Delete(parent, false);
  EXPECT_TRUE(scene.tools.AllInstances().empty());
  scene.host.Undo();
  ASSERT_EQ(scene.tools.AllInstances().size(), 2u);
  EXPECT_EQ(scene.tools.Root().GetChild(0), parent);
  EXPECT_EQ(parent->GetChildCount(), 1u);
  scene.host.Redo();
  EXPECT_TRUE(scene.tools.AllInstances().empty());
  scene.host.Undo();

  // Unplugged, the nodes stay in the scene without their tool.
  scene.tools.Delete(static_cast<InstanceReference*>(parent->GetChild(0)), true);
  EXPECT_EQ(scene.tools.AllInstances().size(), 1u);
  EXPECT_TRUE(camera->IsVisible());

  Instance& source = *parent->instance;
  CSnapshot* snapshot = source.GetTransformSnapshot(camera, 0);
  util::Matrix<double> pose;
  pose.SetTranslation({3, 4, 5});
  snapshot->SetWorldTransform(pose);
  source.ReleaseTransformSnapshot(snapshot);
  InstanceReference* copy = scene.tools.Clone(parent);
  ASSERT_NE(copy, nullptr);
  // The unplugged TestTool_02 lives on in its undo record: its name stays taken.
  EXPECT_EQ(copy->GetLabel(), "TestTool_03");
  CSnapshot* copied = copy->instance->GetTransformSnapshot(Tool(*copy).camera, 0);
  EXPECT_EQ(copied->GetWorldTransform().GetTranslation(), util::Vector3<double>(3, 4, 5));
  copy->instance->ReleaseTransformSnapshot(copied);
  scene.host.Undo();
  EXPECT_EQ(scene.tools.AllInstances().size(), 1u);
}

TEST_F(ToolsInScenes, AFileMergedTwiceKeepsOneTool) {
  {
    Scene scene;
    scene.tools.Create("TestTool");
    scene.Save(Path("merged.gltf"));
  }
  Scene scene;
  bool boxShown = false;
  scene.host.SetMessageBoxSink([&](const std::string&, const std::string&, std::int32_t) {
    boxShown = true;
    return 0;
  });
  scene.Load(Path("merged.gltf"), 2);
  ASSERT_EQ(scene.tools.AllInstances().size(), 1u);
  EXPECT_EQ(scene.tools.AllInstances()[0]->InstanceName(), "TestTool_01");
  // The second copy's nodes were never claimed, and the user hears of them.
  EXPECT_TRUE(boxShown);
}

}  // namespace
}  // namespace vuk::rgw::core
