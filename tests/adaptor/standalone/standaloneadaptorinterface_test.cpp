#include "adaptor/standalone/standaloneadaptorinterface.h"

#include <gtest/gtest.h>
#include <sys/resource.h>

#include "adaptor/standalone/standalonenode.h"
#include "sdk/cinterface.h"
#include "tests/adaptor/testinstance.h"
#include "util/base64.h"
#include "util/compressedblock.h"
#include "util/mesh.h"

namespace vuk::rgw::adaptor::standalone {
namespace {

using testing_support::TestInstance;

class Standalone : public testing::Test {
 protected:
  // Keeps what a gather hands on and the box it shows, as "caption|style|text";
  // the loader makes the tools named in `made`.
  void CatchGather() {
    adaptor.SetSceneLoader([this](const util::xml::Element& tree) {
      loaded = tree.Write("", "");
      return made;
    });
    adaptor.SetMessageBoxSink([this](const std::string& text, const std::string& caption, std::int32_t style) {
      box = caption + "|" + std::to_string(style) + "|" + text;
      return 0;
    });
  }

  StandaloneAdaptorInterface adaptor;
  Scene& scene = adaptor.GetScene();
  std::string loaded = "none";
  std::string box;
  std::vector<std::string> made;
};

// The nominal rate is the contract's; here, what the host's clock does.
TEST_F(Standalone, TimeScaleMultipliesTheClocksRate) {
  adaptor.SetTimeScale(4);
  EXPECT_EQ(scene.clock.GetFrameRate(), 120);
  // The same tick movement is a quarter of the scene time per host frame.
  EXPECT_EQ(scene.clock.GetTicksPerFrame(), 40);
  adaptor.SetTimeScale(1);
  EXPECT_EQ(scene.clock.GetFrameRate(), 30);
}

TEST_F(Standalone, SetTimeTruncatesToTicks) {
  adaptor.SetTime(0.5);
  EXPECT_EQ(scene.clock.GetTick(), 2400);
  adaptor.SetTime(1.0 / 9600);  // half a tick
  EXPECT_EQ(scene.clock.GetTick(), 0);
}

TEST_F(Standalone, HelperNodesStartAsWiresWithoutCulling) {
  TestInstance tool("Look01");
  core::CoreNode* node = adaptor.CreateMeshNode(&tool, "Target", nullptr, util::CMesh_Box(1, 2, 3), 0);
  SceneNode* host = static_cast<StandaloneNode*>(node)->GetHostNode();
  // Switching them through a helper snapshot is the tools' tests.
  EXPECT_TRUE(host->wireframe);
  EXPECT_FALSE(host->backfaceCull);
  // A mesh snapshot casts rays in the object's own space.
  CSnapshot_Mesh* mesh = node->GetMeshSnapshot(0);
  double distance = 0;
  Vector3 normal;
  ASSERT_TRUE(mesh->IntersectRay({0, 5, 0}, {0, -1, 0}, &distance, &normal));
  EXPECT_DOUBLE_EQ(distance, 4.0);
  EXPECT_EQ(normal, Vector3(0, 1, 0));
  EXPECT_TRUE(mesh->IntersectRay({0, 5, 0}, {0, -1, 0}, nullptr, nullptr));
  node->ReleaseMeshSnapshot(mesh);
}

TEST_F(Standalone, ShapeSnapshots) {
  SceneNode* host = scene.CreateNode(ObjectKind::kShape, "Path");
  host->shape.splines = {{{0, 0, 0}, {10, 0, 0}}, {{0, 0, 0}, {0, 0, 3}, {4, 0, 3}}};
  StandaloneNode wrapper(&adaptor, host);
  CSnapshot_Shape* shape = wrapper.GetShapeSnapshot(0);
  ASSERT_NE(shape, nullptr);
  EXPECT_EQ(shape->GetSplineCount(), 2);
  EXPECT_EQ(shape->SetCurrentSpline(5), 1);
  EXPECT_DOUBLE_EQ(shape->GetLength(), 7.0);
  EXPECT_NEAR(shape->GetPoint(3.0 / 7.0).z, 3.0, 1e-12);
  EXPECT_NEAR(shape->GetTangent(0.9).x, 1.0, 1e-12);
  wrapper.ReleaseShapeSnapshot(shape);
  host->shape.splines.clear();
  CSnapshot_Shape* empty = wrapper.GetShapeSnapshot(0);
  EXPECT_EQ(empty->SetCurrentSpline(5), 0);
  EXPECT_EQ(empty->GetCurrentSpline(), 0);
  wrapper.ReleaseShapeSnapshot(empty);
}

class Callback : public CInterface::Callback {
 public:
  void Changed(std::string) override {}
  void NodeLost(CNode*) override { ++lost; }
  void NodeRestored(CNode*) override { ++restored; }
  int lost = 0, restored = 0;
};

TEST_F(Standalone, UndoOfCreationTellsTheTool) {
  TestInstance tool("Tool01");
  Callback callback;
  adaptor.BeginUndo("Create");
  core::CoreNode* node = adaptor.CreateCameraNode(&tool, "Cam", nullptr, reinterpret_cast<std::intptr_t>(&callback));
  adaptor.EndUndo();
  adaptor.Undo();
  EXPECT_EQ(callback.lost, 1);
  EXPECT_EQ(adaptor.FindNode(&tool, "Cam"), nullptr);
  adaptor.Redo();
  EXPECT_EQ(callback.restored, 1);
  EXPECT_EQ(adaptor.FindNode(&tool, "Cam"), node);
}

std::string PluginText(const std::string& name, const std::string& version = "2.5") {
  return "<RGT_Plugin version=\"" + version + "\"><type>TestTool</type><name>" + name + "</name></RGT_Plugin>";
}

std::string Packed(const std::string& plugin) {
  return "<RGT_Plugin compressed=\"1\">" + util::Base64::Encode(util::CompressedBlock::Pack(plugin)) + "</RGT_Plugin>";
}

// A node's tag with the tool's state (packed, as a host keeps it, unless given).
std::string TagText(const std::string& name, const std::string& parent, int childIndex,
                    const std::string& plugin = "") {
  return "<RGT_tag><name>" + name + "</name><objectname>Cam</objectname><masternode><parent>" + parent +
         "</parent><childindex>" + std::to_string(childIndex) + "</childindex>" +
         (plugin.empty() ? Packed(PluginText(name)) : plugin) + "</masternode></RGT_tag>";
}

long PeakMemoryKb() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_maxrss;
}

// A one-symbol block of 21 bytes may claim any length: as a tool's text it is
// held to what its code can hold and dropped, not unpacked to half a gigabyte.
TEST_F(Standalone, GatherDropsABlockClaimingMoreThanItsCodeHolds) {
  util::Bytes block = util::CompressedBlock::Pack(std::string(1, '<'));
  const std::uint32_t claim = (512u << 20) - 1;
  for (const std::size_t at : {std::size_t{12}, std::size_t{17}}) {
    for (std::size_t i = 0; i < 4; ++i) block[at + i] = static_cast<std::uint8_t>(claim >> (8 * i));
  }
  scene.CreateNode(ObjectKind::kEmpty, "A")->properties["RGT_tag"] = TagText("Kept", "", 0);
  scene.CreateNode(ObjectKind::kEmpty, "B")->properties["RGT_tag"] = TagText("Claiming", "", 1, "<RGT_Plugin compressed=\"1\">" + util::Base64::Encode(block) + "</RGT_Plugin>");
  CatchGather();
  const long peakKb = PeakMemoryKb();
  adaptor.GatherScene();
  EXPECT_EQ(loaded, "<RGT>" + PluginText("Kept") + "</RGT>");
  EXPECT_LT(PeakMemoryKb() - peakKb, 64 * 1024);
}

TEST_F(Standalone, GatherUnpacksDropsRepeatsAndNestsChildren) {
  // A file merged twice, dropping the repeated tags, is the tool tree's test.
  scene.CreateNode(ObjectKind::kEmpty, "A")->properties["RGT_tag"] = TagText("Parent", "", 0);
  scene.CreateNode(ObjectKind::kEmpty, "B")->properties["RGT_tag"] = TagText("Second", "Parent", 1);
  scene.CreateNode(ObjectKind::kEmpty, "C")->properties["RGT_tag"] = TagText("First", "Parent", 0);
  CatchGather();
  adaptor.GatherScene();
  EXPECT_EQ(loaded, "<RGT><RGT_Plugin version=\"2.5\"><type>TestTool</type><name>Parent</name>" + PluginText("First") +
                        PluginText("Second") + "</RGT_Plugin></RGT>");
  // Nobody claimed the nodes: the box names each of them.
  EXPECT_EQ(box,
            "Gather error|32|Some nodes were found belonging to Quoll Rigworks, but they were never claimed. \n The "
            "following nodes were left out:\n\nA\nB\nC\n");
  scene.Walk([](SceneNode& node) { EXPECT_TRUE(node.properties["RGT_tag"].empty()); });
}

// Tools without nodes ride on the root; a tool with nodes below one finds it.
TEST_F(Standalone, GatherTakesTheToolsOfTheRoot) {
  util::xml::Element withoutNodes;
  adaptor.WriteSceneTag(withoutNodes);
  EXPECT_EQ(scene.Root().properties.count("RGT_tag"), 0u);
  withoutNodes.ParseText("<RGT>" + PluginText("Parent") + "</RGT>");
  adaptor.WriteSceneTag(withoutNodes);
  scene.CreateNode(ObjectKind::kEmpty, "A")->properties["RGT_tag"] = TagText("First", "Parent", 0);
  CatchGather();
  adaptor.GatherScene();
  EXPECT_EQ(loaded, "<RGT><RGT_Plugin version=\"2.5\"><type>TestTool</type><name>Parent</name>" + PluginText("First") +
                        "</RGT_Plugin></RGT>");
  // The root is nobody's node to claim.
  EXPECT_EQ(box.substr(box.find("\n\n")), "\n\nA\n");
  EXPECT_EQ(scene.Root().properties.count("RGT_tag"), 0u);
}

TEST_F(Standalone, GatherKeepsTagsWithoutALoaderAndHandsOnAnEmptyTreeWithoutTags) {
  SceneNode* a = scene.CreateNode(ObjectKind::kEmpty, "A");
  a->properties["RGT_tag"] = "<RGT_tag><name>T</name></RGT_tag>";
  adaptor.GatherScene();
  EXPECT_EQ(a->properties["RGT_tag"], "<RGT_tag><name>T</name></RGT_tag>");

  a->properties.erase("RGT_tag");
  CatchGather();
  adaptor.GatherScene();
  EXPECT_EQ(loaded, "<RGT/>");
  EXPECT_EQ(box, "");
}

// A tool that isn't made keeps its tags as they came, and a save puts them
// back; what the tags say of it, and why it wasn't made when they can tell.
TEST_F(Standalone, ToolsNotMadeKeepTheirTagsForTheNextSave) {
  const std::string sound = TagText("Cam01", "", 0);
  struct Case {
    const char* what;
    std::string tag;                // on the node "A"
    std::vector<std::string> made;  // by the loader
    std::string handedOn;           // to the loader
    std::string kept;               // "name|type|node|reason", empty when nothing is kept
  };
  const Case cases[] = {
      {"made", sound, {"Cam01"}, "<RGT>" + PluginText("Cam01") + "</RGT>", ""},
      {"refused by the core", sound, {}, "<RGT>" + PluginText("Cam01") + "</RGT>", "Cam01|TestTool|A|"},
      {"cut tag", sound.substr(0, sound.size() / 2), {}, "<RGT/>", "Cam01||A|its tag is damaged"},
      {"damaged state", TagText("Cam01", "", 0, "<RGT_Plugin compressed=\"1\">AQIDBAUGBwg=</RGT_Plugin>"), {},
       "<RGT/>", "Cam01||A|its saved data is damaged"},
      {"state not XML", TagText("Cam01", "", 0, Packed("<RGT_Plugin><name>Cam01")), {}, "<RGT/>",
       "Cam01||A|its saved data is damaged"},
      {"newer version", TagText("Cam01", "", 0, Packed(PluginText("Cam01", "2.10"))), {}, "<RGT/>",
       "Cam01|TestTool|A|it was saved by a newer version (2.10)"},
      {"older version", TagText("Cam01", "", 0, Packed(PluginText("Cam01", "2.4"))), {"Cam01"},
       "<RGT>" + PluginText("Cam01", "2.4") + "</RGT>", ""},
      {"parent not there", TagText("Cam01", "Gone", 0), {}, "<RGT>" + PluginText("Cam01") + "</RGT>",
       "Cam01|TestTool|A|its parent Gone is not loaded"},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.what);
    StandaloneAdaptorInterface host;
    SceneNode* node = host.GetScene().CreateNode(ObjectKind::kEmpty, "A");
    node->properties["RGT_tag"] = c.tag;
    std::string handedOn;
    TestInstance tool("Cam01");
    host.SetSceneLoader([&](const util::xml::Element& tree) {
      handedOn = tree.Write("", "");
      // A tool made claims its node; the host owns the wrapper.
      if (!c.made.empty()) new StandaloneNode(&host, &tool, "Cam", node, 0);
      return c.made;
    });
    host.GatherScene();
    EXPECT_EQ(handedOn, c.handedOn);
    EXPECT_EQ(node->properties["RGT_tag"], "");
    std::string kept;
    for (const auto& tool : host.KeptTools()) kept += tool.name + "|" + tool.type + "|" + tool.node + "|" + tool.reason;
    EXPECT_EQ(kept, c.kept);
    host.WriteSceneTag(util::xml::Element());
    EXPECT_EQ(node->properties["RGT_tag"], c.kept.empty() ? "" : c.tag);
    EXPECT_EQ(host.GetScene().Root().properties.count("RGT_tag"), 0u);
  }
}

// Tools without nodes that weren't made go back on the root, still packed,
// after those written now.
TEST_F(Standalone, ToolsOfTheRootNotMadeGoBackThere) {
  const std::string refused = Packed(PluginText("Gone01"));
  scene.Root().properties["RGT_tag"] = "<RGT>" + refused + PluginText("Here01") + "</RGT>";
  made = {"Here01"};
  CatchGather();
  adaptor.GatherScene();
  ASSERT_EQ(adaptor.KeptTools().size(), 1u);
  EXPECT_EQ(adaptor.KeptTools()[0].name, "Gone01");
  EXPECT_EQ(adaptor.KeptTools()[0].node, "");
  util::xml::Element now;
  now.ParseText("<RGT>" + PluginText("Here01") + "</RGT>");
  adaptor.WriteSceneTag(now);
  EXPECT_EQ(scene.Root().properties["RGT_tag"], "<RGT>" + PluginText("Here01") + refused + "</RGT>");
}

TEST_F(Standalone, RecordingPinsAKeyOnEveryLiveNodeOfTheInstances) {
  TestInstance tool("Car01"), other("Car02");
  core::CoreNode* body = adaptor.CreateCameraNode(&tool, "Body", nullptr, 0);
  core::CoreNode* idle = adaptor.CreateCameraNode(&other, "Body", nullptr, 0);
  adaptor.SetTime(2.0);
  adaptor.BeginUndo("Record");
  adaptor.BeginRecordingInstances({&tool});
  adaptor.EndRecording();
  adaptor.EndUndo();
  EXPECT_EQ(static_cast<StandaloneNode*>(body)->GetHostNode()->track.Keys().size(), 1u);
  EXPECT_EQ(static_cast<StandaloneNode*>(body)->GetHostNode()->track.Keys()[0].tick, 9600);
  EXPECT_TRUE(static_cast<StandaloneNode*>(idle)->GetHostNode()->track.Keys().empty());
  // Undoing the recording puts the clock back where it started.
  adaptor.SetTime(5.0);
  adaptor.Undo();
  EXPECT_EQ(adaptor.GetTime(), 2.0);
}

}  // namespace
}  // namespace vuk::rgw::adaptor::standalone
