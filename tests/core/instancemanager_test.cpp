#include "core/instancemanager.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <functional>
#include <sstream>

#include "adaptor/standalone/gltffile.h"
#include "adaptor/standalone/standaloneadaptorinterface.h"
#include "adaptor/standalone/standalonenode.h"
#include "core/messagebox.h"
#include "core/recordmanager.h"
#include "tests/core/scopedenv.h"
#include "tests/core/testtools.h"
#include "util/xml/tag.h"

namespace vuk::rgw::core {
namespace {

using adaptor::standalone::GltfFile;
using adaptor::standalone::SceneNode;
using adaptor::standalone::StandaloneAdaptorInterface;
using adaptor::standalone::StandaloneNode;
using testing_support::TestTool;

template <typename Kind = TestTool>
Kind& Tool(InstanceReference& item) {
  return *static_cast<Kind*>(item.instance->GetTool());
}

// A tool that makes no node: a count kept in its saved bytes.
class CounterTool : public CCamera, public CInterface::Callback {
 public:
  using CCamera::CCamera;
  std::int32_t BuildConfig() override {
    iface->BeginConfig();
    iface->AddSpinner("Rate", "Counts per second", &rate, 0, 100, 1, 0, false, 0, this);
    iface->EndConfig();
    return 0;
  }
  std::int32_t Save() override {
    iface->SetSaveData(&count, sizeof count);
    return 0;
  }
  std::int32_t Load() override {
    std::int32_t length = 0;
    const std::uint8_t* bytes = iface->GetSaveData(&length);
    if (!bytes || length != sizeof count) return 1;
    std::memcpy(&count, bytes, sizeof count);
    return 0;
  }
  void Changed(std::string) override {}

  double rate = 1;
  std::int32_t count = 0;
};

const ToolTable& Tools() {
  static const ToolTable table = [] {
    ToolTable entries = testing_support::TestTools();
    entries[1] = []() -> CCameraPlugin* { return new testing_support::TestPlugin<CounterTool>("Counter", "Accessory"); };
    return entries;
  }();
  return table;
}

CoreNode* NodeOf(InstanceReference& item, const std::string& name) {
  return static_cast<CoreNode*>(item.instance->FindNode(name));
}

SceneNode* HostOf(CNode* node) { return static_cast<StandaloneNode*>(node)->GetHostNode(); }

// A scene file with the host and the tool tree that go with it.
struct Scene {
  // Saves the tools with the scene, as the host does at a scene save: tags
  // on the nodes for the file, gone from the scene after. The node named
  // `untagged` loses its tag first, as if it had gone.
  void Save(const std::string& path, const std::string& untagged = "") {
    tools.WriteNodeTags();
    host.WriteSceneTag(tools.SaveToolTreeForScene());
    host.GetScene().Walk([&](SceneNode& node) {
      if (node.hostName == untagged) node.properties.erase("RGT_tag");
    });
    std::string error;
    ASSERT_TRUE(GltfFile().Save(path, host.GetScene(), &error)) << error;
    host.GetScene().Walk([](SceneNode& node) { node.properties.erase("RGT_tag"); });
  }
  // Reads the file as many times as asked, then rebuilds the tools of its tags.
  void Load(const std::string& path, int times = 1) {
    std::string error;
    for (int i = 0; i < times; ++i) ASSERT_TRUE(GltfFile().Load(path, host.GetScene(), &error)) << error;
    host.SetSceneLoader([this](const util::xml::Element& tree) {
      tools.LoadToolTree(tree);
      return tools.InstanceNames();
    });
    host.GatherScene();
  }
  InstanceReference& Top(std::size_t index) { return static_cast<InstanceReference&>(*tools.Root().GetChild(index)); }

  LibraryManager library{Tools()};
  StandaloneAdaptorInterface host;
  InstanceManager tools{&host, &library};
};

// Two tools whose nodes hang on each other and on a plain scene object:
// the first's target on the floor, the first's camera and the second's
// camera on the first's target.
struct LinkedTools {
  explicit LinkedTools(Scene& scene)
      : first(scene.tools.Create("TestTool")),
        second(scene.tools.Create("TestTool")),
        floor(scene.host.GetScene().CreateNode(adaptor::standalone::ObjectKind::kEmpty, "Floor")) {
    StandaloneNode floorNode(&scene.host, floor);
    CoreNode* target = NodeOf(*first, "Target");
    target->SetParent(&floorNode);
    NodeOf(*first, "Camera")->SetParent(target);
    NodeOf(*second, "Camera")->SetParent(target);
  }
  InstanceReference* first;
  InstanceReference* second;
  SceneNode* floor;
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
  scene.host.GetScene().Walk([](SceneNode& node) { EXPECT_TRUE(node.properties["RGT_tag"].empty()); });
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

// Tools nest to 64 levels; deeper ones are left out with a box, not a crash.
TEST_F(ToolsInScenes, ToolsNestedTooDeepAreLeftOutWithABox) {
  for (const int levels : {64, 65, 100000}) {
    std::string text;
    for (int i = 0; i < levels; ++i) text += "<RGT_Plugin><type>Counter</type>";
    for (int i = 0; i < levels; ++i) text += "</RGT_Plugin>";
    util::xml::Element tree;
    ASSERT_EQ(tree.ParseText(text), util::xml::kParsed);
    CatchBox();
    box.clear();
    Scene scene;
    EXPECT_EQ(scene.tools.LoadToolTree(tree), 64) << levels;
    EXPECT_EQ(box, levels == 64 ? "" : "Error loading plugin|32|Tools are nested " + std::to_string(levels) +
                                           " levels deep here; those below level 64 were not loaded.");
    EXPECT_EQ(scene.tools.AllInstances().size(), 64u);
  }
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

// Everything an undo must bring back, one line each: the tools in the tree
// with their nodes and the tool's own handles, the host's list of nodes, and
// every scene object with its keys.
std::string StateOf(Scene& scene) {
  std::ostringstream state;
  const std::function<void(InstanceReference&, int)> tools = [&](InstanceReference& item, int depth) {
    for (std::size_t i = 0; i < item.GetChildCount(); ++i) {
      auto& child = static_cast<InstanceReference&>(*item.GetChild(i));
      state << "tool " << std::string(static_cast<std::size_t>(depth), '>') << child.GetLabel() << " target "
            << Tool(child).target << " camera " << Tool(child).camera << " nodes";
      NodeVector nodes;
      scene.host.GetInstanceNodes(child.instance.get(), nodes);
      for (CoreNode* node : nodes.nodes) state << " " << node->name << "@" << node;
      state << "\n";
      tools(child, depth + 1);
    }
  };
  tools(scene.tools.Root(), 0);
  for (StandaloneNode* node : scene.host.Nodes()) {
    state << "listed " << node << (node->IsExternal() ? " external" : "") << "\n";
  }
  scene.host.GetScene().Walk([&](SceneNode& object) {
    state << "object " << object.hostName << " keys " << object.track.Keys().size() << "\n";
  });
  return state.str();
}

// A take of a few frames of every checked tool, from the host's time on.
void RecordTake(Scene& scene) {
  RecordManager recorder(&scene.host, nullptr, &scene.tools);
  std::int64_t nowMs = 0;
  recorder.clock = [&] { return nowMs; };
  recorder.processEvents = [] {};
  recorder.countdownSeconds = 0;
  scene.host.GetScene().clock.onTimeChanged = [&](double time) { recorder.OnTimeChanged(time); };
  recorder.StartRecording();
  for (nowMs = 0; nowMs <= 200; nowMs += 40) recorder.Tick(nowMs);
  recorder.StopRecording();
  scene.host.GetScene().clock.onTimeChanged = nullptr;
}

struct TreeUndoCase {
  const char* name;
  std::function<void(Scene&)> apply;
  // How many scene objects the operation adds (or, below zero, takes away).
  int objectsAdded;
};

class TreeOperationUndo : public ToolsInScenes, public testing::WithParamInterface<TreeUndoCase> {};

// Two tools at the top, the first with one below it: unplug, undo, redo,
// undo leaves tools, nodes and keys as they were, and the tools record again.
TEST_P(TreeOperationUndo, UndoRedoUndoLeavesEverythingAsBefore) {
  Scene scene;
  InstanceReference* first = scene.tools.Create("TestTool");
  scene.tools.Create("TestTool", "", first);
  scene.tools.Create("TestTool");
  RecordTake(scene);
  const auto objects = [&] { return static_cast<int>(scene.host.GetScene().Root().children.size()); };
  const int objectsBefore = objects();
  const std::string before = StateOf(scene);

  GetParam().apply(scene);
  const std::string after = StateOf(scene);
  EXPECT_NE(after, before);
  EXPECT_EQ(objects(), objectsBefore + GetParam().objectsAdded);
  ASSERT_TRUE(scene.host.Undo());
  EXPECT_EQ(StateOf(scene), before);
  ASSERT_TRUE(scene.host.Redo());
  EXPECT_EQ(StateOf(scene), after);
  ASSERT_TRUE(scene.host.Undo());
  EXPECT_EQ(StateOf(scene), before);

  // Every tool drives its own nodes again: a new speed shows in the new keys.
  for (Instance* instance : scene.tools.AllInstances()) static_cast<TestTool*>(instance->GetTool())->speed = 7;
  RecordTake(scene);
  for (Instance* instance : scene.tools.AllInstances()) {
    SCOPED_TRACE(instance->InstanceName());
    const auto& keys = HostOf(static_cast<TestTool*>(instance->GetTool())->target)->track.Keys();
    ASSERT_FALSE(keys.empty());
    EXPECT_NEAR(keys.back().position.x, 7 * adaptor::standalone::SecondsFromTicks(keys.back().tick), 1e-9);
  }
}

// One undo group for what is unplugged, as the main window makes it.
void Unplug(Scene& scene, InstanceReference& item) {
  scene.host.BeginUndo("Unplug tool");
  scene.tools.Delete(&item, true);
  scene.host.EndUndo();
}

void UnplugAll(Scene& scene) {
  scene.host.BeginUndo("Unplug tool");
  for (std::size_t count = scene.tools.Root().GetChildCount(); count > 0; --count) Unplug(scene, scene.Top(count - 1));
  scene.host.EndUndo();
}

INSTANTIATE_TEST_SUITE_P(
    Operations, TreeOperationUndo,
    testing::Values(TreeUndoCase{"UnplugOne", [](Scene& scene) { Unplug(scene, scene.Top(1)); }, 0},
                    TreeUndoCase{"UnplugATree", [](Scene& scene) { Unplug(scene, scene.Top(0)); }, 0},
                    TreeUndoCase{"UnplugAll", UnplugAll, 0},
                    TreeUndoCase{"DeleteATree", [](Scene& scene) { scene.tools.Delete(&scene.Top(0), false); }, -4},
                    TreeUndoCase{"CloneATree", [](Scene& scene) { scene.tools.Clone(&scene.Top(0)); }, 4}),
    [](const testing::TestParamInfo<TreeUndoCase>& info) { return std::string(info.param.name); });

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

// A node's parent is saved by its name in the tool, with the other tool's
// name when it lies in another, and not at all when it is a plain object.
TEST_F(ToolsInScenes, NodeInformationNamesParentsAndKeepsMeshes) {
  Scene scene;
  LinkedTools tools(scene);
  struct Case {
    InstanceReference* tool;
    std::size_t node;
    const char* external;
    const char* parent;
  };
  for (const Case& expected : {Case{tools.first, 0, "", ""}, Case{tools.first, 1, "", "Target"},
                               Case{tools.second, 0, "", ""}, Case{tools.second, 1, "TestTool_01", "Target"}}) {
    const util::xml::Element info = expected.tool->Serialize(0).GetChild("nodeinfo").GetChild("node", expected.node);
    SCOPED_TRACE(info.Write("", ""));
    EXPECT_EQ(info.GetChild("parent").GetAttribute("external"), expected.external);
    EXPECT_EQ(info.GetChild("parent").GetText(), expected.parent);
  }
  const util::xml::Element nodes = tools.first->Serialize(0).GetChild("nodeinfo");
  util::CMesh mesh;
  ASSERT_TRUE(ReadMeshElement(nodes.GetChild("node", 0).GetChild("mesh"), mesh));
  const util::CMesh_Box box(0.5, 0.5, 0.5);
  EXPECT_EQ(mesh.vertices, box.vertices);
  EXPECT_EQ(mesh.faces, box.faces);
  EXPECT_EQ(mesh.textureFaces, box.textureFaces);
  // A camera has no mesh form.
  EXPECT_TRUE(nodes.GetChild("node", 1).GetChild("mesh").IsEmpty());
}

TEST(MeshElement, ADamagedOneLeavesTheMeshAlone) {
  util::CMesh mesh;
  ASSERT_TRUE(ReadMeshElement(MeshElement(util::CMesh_Box(1, 1, 1)), mesh));
  // A corner that isn't there.
  util::CMesh broken = mesh;
  broken.faces[4] = 8;
  util::CMesh kept;
  EXPECT_FALSE(ReadMeshElement(MeshElement(broken), kept));
  EXPECT_TRUE(kept.faces.empty());
  // Vertices cut short.
  util::xml::Tag damaged("mesh");
  damaged.AddChild(util::xml::TagWithData("vertices", "AAAA"));
  EXPECT_FALSE(ReadMeshElement(damaged, kept));
  EXPECT_TRUE(kept.vertices.empty());
}

// Tools saved as a model come back with new nodes, linked as they were:
// a link to a tool made later in the load waits for that tool.
TEST_F(ToolsInScenes, LoadedToolsTakeTheirSavedParentsAndMeshes) {
  Scene scene;
  LinkedTools tools(scene);
  util::CMesh bigger = util::CMesh_Box(2, 2, 2);
  CSnapshot_Mesh* look = tools.first->instance->GetMeshSnapshot(NodeOf(*tools.first, "Target"), 0);
  look->SetMesh(bigger);
  tools.first->instance->ReleaseMeshSnapshot(look);

  util::xml::Tag model("RGT");
  model.AddChild(tools.second->Serialize(0));
  model.AddChild(tools.first->Serialize(0));
  ASSERT_EQ(scene.tools.LoadToolTree(model), 2);
  InstanceReference& secondCopy = scene.Top(2);
  InstanceReference& firstCopy = scene.Top(3);
  SceneNode* target = HostOf(NodeOf(firstCopy, "Target"));
  EXPECT_EQ(HostOf(NodeOf(firstCopy, "Camera"))->parent, target);
  // Below the copy of the first tool, not the first tool that has its saved name.
  EXPECT_EQ(HostOf(NodeOf(secondCopy, "Camera"))->parent, target);
  EXPECT_EQ(target->mesh.vertices, bigger.vertices);
  // A plain object isn't part of the model.
  EXPECT_TRUE(target->parent->isRoot);
}

TEST_F(ToolsInScenes, ACloneKeepsItsSourcesOutsideParentAndCopiesOtherToolsBelow) {
  Scene scene;
  LinkedTools tools(scene);
  InstanceReference* copy = scene.tools.Clone(tools.first);
  ASSERT_NE(copy, nullptr);
  SceneNode* target = HostOf(NodeOf(*copy, "Target"));
  EXPECT_EQ(target->parent, tools.floor);
  ASSERT_EQ(target->children.size(), 2u);
  EXPECT_EQ(target->children[0], HostOf(NodeOf(*copy, "Camera")));
  SceneNode* copied = target->children[1];
  EXPECT_EQ(copied->hostName, "TestTool_02_Camera_copy");
  // The other tool's node stays where it was, and the copy is nobody's.
  EXPECT_EQ(HostOf(NodeOf(*tools.second, "Camera"))->parent, HostOf(NodeOf(*tools.first, "Target")));
  EXPECT_EQ(scene.host.FindOwnedOver(copied), nullptr);
  scene.host.Undo();
  EXPECT_FALSE(copied->IsInScene());
  EXPECT_EQ(HostOf(NodeOf(*tools.first, "Target"))->children.size(), 2u);
}

// Tools without nodes travel with the scene's root, and those with nodes
// below them find them again.
TEST_F(ToolsInScenes, AToolWithoutNodesSurvivesTheSceneFile) {
  {
    Scene scene;
    InstanceReference* counter = scene.tools.Create("Counter");
    ASSERT_NE(counter, nullptr);
    Tool<CounterTool>(*counter).count = 42;
    scene.tools.Create("TestTool", "", counter);
    scene.tools.Create("TestTool");
    scene.Save(Path("no_nodes.gltf"));
    // The scene holds no tags after the save.
    EXPECT_EQ(scene.host.GetScene().Root().properties.count("RGT_tag"), 0u);
  }
  Scene scene;
  scene.Load(Path("no_nodes.gltf"));
  ASSERT_EQ(scene.tools.AllInstances().size(), 3u);
  InstanceReference* counter = scene.tools.Find("Counter_01");
  ASSERT_NE(counter, nullptr);
  EXPECT_EQ(Tool<CounterTool>(*counter).count, 42);
  ASSERT_EQ(counter->GetChildCount(), 1u);
  EXPECT_EQ(static_cast<InstanceReference*>(counter->GetChild(0))->GetLabel(), "TestTool_01");
  EXPECT_EQ(scene.host.GetScene().Root().properties.count("RGT_tag"), 0u);
}

// A loaded tool keeps the tool's own values as "Factory Settings" and
// "Start Profile" beside the saved values it runs with.
TEST_F(ToolsInScenes, ALoadedToolMakesTheFactoryAndStartProfiles) {
  const std::string home = testing::TempDir() + "/loaded_profiles";
  std::filesystem::remove_all(home);
  testing_support::ScopedEnv dataHome("XDG_DATA_HOME", home.c_str());
  util::xml::Element saved;
  {
    Scene scene;
    InstanceReference* item = scene.tools.Create("Counter");
    Tool<CounterTool>(*item).rate = 7;
    saved = item->Serialize(InstanceReference::kFullContent);
  }
  Scene scene;
  ASSERT_EQ(scene.tools.LoadToolTree(saved), 1);
  EXPECT_EQ(Tool<CounterTool>(scene.Top(0)).rate, 7);
  Plugin* plugin = scene.library.FindTool("Counter");
  for (XMLFileManager* manager : {&plugin->ConfigProfiles(), &plugin->InputProfiles()}) {
    for (const char* name : {Plugin::kFactorySettings, Plugin::kStartProfile}) {
      EXPECT_NE(manager->Find(name), nullptr) << name;
    }
    EXPECT_TRUE(manager->IsReadOnly(Plugin::kFactorySettings));
  }
  const util::xml::Element* factory = plugin->ConfigProfiles().Find(Plugin::kFactorySettings);
  ASSERT_NE(factory, nullptr);
  EXPECT_EQ(factory->GetChild("item").GetText(), "AAAAAAAA8D8=");  // the rate, 1.0, as little-endian bytes
}

TEST_F(ToolsInScenes, AToolWithAnOlderProfileWarnsOnLoad) {
  Scene scene;
  util::xml::Element saved = scene.tools.Create("TestTool")->Serialize(0);
  for (auto& child : saved.children) {
    if (child->name == "name") child->children.clear();
    if (child->name == "configprofile") {
      child->ParseText("<configprofile version=\"1.0\" name=\"Old\"><spinner id=\"0\">4</spinner></configprofile>");
    }
  }
  CatchBox();
  ASSERT_EQ(scene.tools.LoadToolTree(saved), 1);
  EXPECT_EQ(Tool(scene.Top(1)).speed, 4);
  EXPECT_EQ(box, "Quoll Rigworks|48|This profile has been saved in an older version of Test Tool. Some old settings "
                 "might not work well in the current version. Use it with caution.");
  // A current profile brings no box.
  box.clear();
  ASSERT_EQ(scene.tools.LoadToolTree(scene.Top(1).Serialize(0)), 1);
  EXPECT_EQ(box, "");
}

}  // namespace
}  // namespace vuk::rgw::core
