#include "core/instancemanager.h"

#include <gtest/gtest.h>

#include "adaptor/standalone/gltffile.h"
#include "adaptor/standalone/standaloneadaptorinterface.h"
#include "adaptor/standalone/standalonenode.h"
#include "core/messagebox.h"
#include "plugins/tools.h"
#include "plugins/lookatcam/lookatcamobject.h"

namespace vuk::rgw::core {
namespace {

using adaptor::standalone::GltfFile;
using adaptor::standalone::StandaloneAdaptorInterface;
using adaptor::standalone::StandaloneNode;
using addon::CLookAtCamObject;

CLookAtCamObject& LookAt(InstanceReference& item) { return *static_cast<CLookAtCamObject*>(item.instance->tool); }

std::vector<adaptor::standalone::TransformKey> CameraKeys(InstanceReference& item) {
  return static_cast<StandaloneNode*>(LookAt(item).cameraNode.handle)->GetHostNode()->track.Keys();
}

// Saves the tools with the scene, as the host does at a scene save: tags on
// the nodes for the file, gone from the scene after.
void SaveScene(StandaloneAdaptorInterface& host, InstanceManager& tools, const std::string& path) {
  tools.WriteNodeTags();
  GltfFile file;
  std::string error;
  ASSERT_TRUE(file.Save(path, host.GetScene(), &error)) << error;
  host.GetScene().Walk([](adaptor::standalone::SceneNode& node) { node.properties.erase("RGT_tag"); });
}

void LoadScene(StandaloneAdaptorInterface& host, InstanceManager& tools, const std::string& path) {
  GltfFile file;
  std::string error;
  ASSERT_TRUE(file.Load(path, host.GetScene(), &error)) << error;
  host.SetSceneLoader([&tools](const util::xml::Element& tree) { tools.LoadToolTree(tree); });
  host.GatherScene();
}

class ToolsInScenes : public testing::Test {
 protected:
  void TearDown() override { SetMessageBoxSink(nullptr); }
  LibraryManager library{addon::BuiltInTools()};
};

TEST_F(ToolsInScenes, TwoToolsOneBelowTheOtherComeBackWithSettingsAndKeys) {
  const std::string path = testing::TempDir() + "/two_tools.gltf";
  std::vector<adaptor::standalone::TransformKey> keys;
  {
    StandaloneAdaptorInterface host;
    InstanceManager tools(&host, &library);
    InstanceReference* parent = tools.Create("LookAtCam");
    InstanceReference* child = tools.Create("LookAtCam", "", parent);
    ASSERT_NE(child, nullptr);
    LookAt(*child).hideCamera = true;
    child->states[TreeItem::kChecked] = 0;
    RecordManager recorder(&host, nullptr, &tools);
    recorder.StartResimulation(0, 1);
    while (!recorder.ResimStep()) {
    }
    recorder.FinishResimulation();
    keys = CameraKeys(*parent);
    ASSERT_EQ(keys.size(), 31u);
    SaveScene(host, tools, path);
    host.GetScene().Walk([](adaptor::standalone::SceneNode& node) { EXPECT_EQ(node.properties.count("RGT_tag"), 0u); });
  }
  StandaloneAdaptorInterface host;
  InstanceManager tools(&host, &library);
  LoadScene(host, tools, path);
  ASSERT_EQ(tools.Root().GetChildCount(), 1u);
  auto& parent = static_cast<InstanceReference&>(*tools.Root().GetChild(0));
  ASSERT_EQ(parent.GetChildCount(), 1u);
  auto& child = static_cast<InstanceReference&>(*parent.GetChild(0));
  EXPECT_EQ(parent.GetLabel(), "LookAtCam_01");
  EXPECT_EQ(child.GetLabel(), "LookAtCam_02");
  EXPECT_TRUE(LookAt(child).hideCamera);
  EXPECT_FALSE(LookAt(parent).hideCamera);
  EXPECT_EQ(child.states[TreeItem::kChecked], 0);
  EXPECT_EQ(tools.CheckedInstances().size(), 1u);
  ASSERT_NE(LookAt(parent).cameraNode.handle, nullptr);
  const auto back = CameraKeys(parent);
  ASSERT_EQ(back.size(), keys.size());
  for (std::size_t i = 0; i < keys.size(); ++i) {
    EXPECT_EQ(back[i].tick, keys[i].tick);
    EXPECT_NEAR(back[i].rotation.Dot(keys[i].rotation), 1.0, 1e-6);
  }
  // The tags were read from the file and are gone from the scene.
  host.GetScene().Walk([](adaptor::standalone::SceneNode& node) { EXPECT_TRUE(node.properties["RGT_tag"].empty()); });
}

TEST_F(ToolsInScenes, ATagWhoseNodeIsGoneGivesTheBoxAndLosesNothingElse) {
  const std::string path = testing::TempDir() + "/gone_node.gltf";
  {
    StandaloneAdaptorInterface host;
    InstanceManager tools(&host, &library);
    tools.Create("LookAtCam");
    InstanceReference* second = tools.Create("LookAtCam");
    SaveScene(host, tools, path);
    // The second tool's camera loses its tag in the file, as if it had gone.
    GltfFile file;
    StandaloneAdaptorInterface edit;
    std::string error;
    ASSERT_TRUE(file.Load(path, edit.GetScene(), &error)) << error;
    edit.GetScene().Walk([&](adaptor::standalone::SceneNode& node) {
      if (node.hostName == second->GetLabel() + "_LookAtCam") node.properties.erase("RGT_tag");
    });
    ASSERT_TRUE(file.Save(path, edit.GetScene(), &error)) << error;
  }
  std::string box;
  SetMessageBoxSink([&](const std::string& text, const std::string& caption, std::int32_t style) {
    box = caption + "|" + std::to_string(style) + "|" + text;
    return 0;
  });
  StandaloneAdaptorInterface host;
  InstanceManager tools(&host, &library);
  LoadScene(host, tools, path);
  EXPECT_EQ(tools.AllInstances().size(), 1u);
  EXPECT_EQ(box.substr(0, box.find('\n')),
            "Error loading plugin|32|Some nodes required for this plugin was not found in the scene. Please make sure "
            "all required nodes are present.");
  EXPECT_NE(box.find("LookAtCam_02_LookAtCam"), std::string::npos) << box;
}

TEST_F(ToolsInScenes, ASerializedToolReadsBackAsATemplate) {
  StandaloneAdaptorInterface host;
  InstanceManager tools(&host, &library);
  InstanceReference* item = tools.Create("LookAtCam");
  const util::xml::Element plugin = item->Serialize(0);
  EXPECT_EQ(plugin.GetAttribute("version"), "2.5");
  EXPECT_EQ(plugin.GetChild("type").GetText(), "LookAtCam");
  EXPECT_EQ(plugin.GetChild("name").GetText(), "LookAtCam_01");
  EXPECT_TRUE(plugin.GetChild("checked").IsEmpty());
  EXPECT_EQ(plugin.GetChild("nodeinfo").CountChildren("node"), 2u);
  EXPECT_TRUE(plugin.GetChild("savedata").IsEmpty());  // not full content
  const util::xml::Element compressed = item->Serialize(InstanceReference::kForScene);
  EXPECT_EQ(compressed.GetAttribute("compressed"), "1");
  // A clone is a template of the tool without its saved bytes: new nodes.
  EXPECT_EQ(tools.LoadToolTree(plugin), 1);
  EXPECT_EQ(tools.AllInstances().size(), 2u);
  EXPECT_EQ(tools.AllInstances()[1]->util::MessageNode::GetName(), "LookAtCam_02");
}

}  // namespace
}  // namespace vuk::rgw::core

namespace vuk::rgw::core {
namespace {

TEST_F(ToolsInScenes, DeleteUnplugAndCloneGoThroughTheHostsUndo) {
  StandaloneAdaptorInterface host;
  InstanceManager tools(&host, &library);
  InstanceReference* parent = tools.Create("LookAtCam");
  tools.Create("LookAtCam", "", parent);
  CNode* camera = LookAt(*parent).cameraNode.handle;

  tools.Delete(parent, false);
  EXPECT_TRUE(tools.AllInstances().empty());
  EXPECT_EQ(host.FindNode(static_cast<CInterface*>(nullptr), "LookAtCam"), nullptr);
  host.Undo();
  ASSERT_EQ(tools.AllInstances().size(), 2u);
  EXPECT_EQ(tools.Root().GetChild(0), parent);
  EXPECT_EQ(parent->GetChildCount(), 1u);
  host.Redo();
  EXPECT_TRUE(tools.AllInstances().empty());
  host.Undo();

  // Unplugged, the nodes stay in the scene without their tool.
  tools.Delete(static_cast<InstanceReference*>(parent->GetChild(0)), true);
  EXPECT_EQ(tools.AllInstances().size(), 1u);
  EXPECT_TRUE(camera->IsVisible());

  CSnapshot* snapshot = LookAt(*parent).iface->GetTransformSnapshot(camera, 0);
  util::Matrix<double> pose;
  pose.SetTranslation({3, 4, 5});
  snapshot->SetWorldTransform(pose);
  LookAt(*parent).iface->ReleaseTransformSnapshot(snapshot);
  InstanceReference* copy = tools.Clone(parent);
  ASSERT_NE(copy, nullptr);
  // The unplugged LookAtCam_02 lives on in its undo record: its name stays taken.
  EXPECT_EQ(copy->GetLabel(), "LookAtCam_03");
  CSnapshot* copied = copy->instance->GetTransformSnapshot(LookAt(*copy).cameraNode.handle, 0);
  EXPECT_EQ(copied->GetWorldTransform().GetTranslation(), util::Vector3<double>(3, 4, 5));
  copy->instance->ReleaseTransformSnapshot(copied);
  host.Undo();
  EXPECT_EQ(tools.AllInstances().size(), 1u);
}

}  // namespace
}  // namespace vuk::rgw::core

namespace vuk::rgw::core {
namespace {

TEST_F(ToolsInScenes, AFileMergedTwiceKeepsOneTool) {
  const std::string path = testing::TempDir() + "/merged.gltf";
  {
    StandaloneAdaptorInterface host;
    InstanceManager tools(&host, &library);
    tools.Create("LookAtCam");
    SaveScene(host, tools, path);
  }
  StandaloneAdaptorInterface host;
  InstanceManager tools(&host, &library);
  GltfFile first, second;
  std::string error;
  ASSERT_TRUE(first.Load(path, host.GetScene(), &error)) << error;
  ASSERT_TRUE(second.Load(path, host.GetScene(), &error)) << error;
  bool boxShown = false;
  host.SetMessageBoxSink([&](const std::string&, const std::string&, std::int32_t) {
    boxShown = true;
    return 0;
  });
  host.SetSceneLoader([&tools](const util::xml::Element& tree) { tools.LoadToolTree(tree); });
  host.GatherScene();
  ASSERT_EQ(tools.AllInstances().size(), 1u);
  EXPECT_EQ(tools.AllInstances()[0]->util::MessageNode::GetName(), "LookAtCam_01");
  // The second copy's nodes were never claimed, and the user hears of them.
  EXPECT_TRUE(boxShown);
}

}  // namespace
}  // namespace vuk::rgw::core
