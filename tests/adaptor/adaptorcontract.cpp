#include "tests/adaptor/adaptorcontract.h"

#include <cmath>

#include "sdk/ccamera.h"
#include "tests/adaptor/testinstance.h"
#include "util/mesh.h"
#include "util/xml/tag.h"

namespace vuk::rgw::testing_support {
namespace {

using core::CoreNode;
using core::NodeVector;

// An undo record that counts what is done to it.
struct Counts {
  int undone = 0, redone = 0, released = 0;
};

class CountingUndo : public CUndo {
 public:
  explicit CountingUndo(Counts& counts) : counts_(counts) {}
  ~CountingUndo() override { ++counts_.released; }
  void Undo(bool) override { ++counts_.undone; }
  void Redo() override { ++counts_.redone; }

 private:
  Counts& counts_;
};

// A write of a node's pose at a time: only X is set, and the snapshot is of that time.
void WriteX(CoreNode* node, double time, double x) {
  CSnapshot* snapshot = node->GetSnapshot(time);
  EXPECT_DOUBLE_EQ(snapshot->GetTime(), time);
  util::Matrix<double> pose;
  pose.SetTranslation({x, 0, 0});
  snapshot->SetWorldTransform(pose);
  node->ReleaseSnapshot(snapshot);
}

double ReadX(CoreNode* node, double time) {
  CSnapshot* snapshot = node->GetSnapshot(time);
  const double x = snapshot->GetWorldTransform().GetTranslation().x;
  node->ReleaseSnapshot(snapshot);
  return x;
}

// One undone step: keys at frames 0 to 10, a tenth of a second apart, X the frame.
void RecordTenFrames(core::AdaptorInterface& adaptor, CoreNode* node) {
  adaptor.BeginUndo("Record");
  adaptor.BeginRecording();
  for (int frame = 0; frame <= 10; ++frame) WriteX(node, frame / 10.0, frame);
  adaptor.EndRecording();
  adaptor.EndUndo();
}

TEST_P(AdaptorContract, SpeaksTheInterfaceVersion) {
  EXPECT_EQ(adaptor->GetInterfaceVersion(), 20110);
  EXPECT_FALSE(adaptor->GetDataFolderName().empty());
  EXPECT_FALSE(adaptor->GetHostName().empty());
}

TEST_P(AdaptorContract, EndUndoOnAnEmptyStackAnswersOne) {
  EXPECT_EQ(adaptor->EndUndo(), 1);
  EXPECT_EQ(adaptor->CancelUndo(), 1);
  EXPECT_FALSE(adaptor->IsUndoActive());
}

TEST_P(AdaptorContract, PutUndoOutsideAGroupDestroysTheRecord) {
  Counts counts;
  EXPECT_EQ(adaptor->PutUndo(new CountingUndo(counts)), 1);
  EXPECT_EQ(counts.released, 1);
  EXPECT_EQ(counts.undone, 0);
}

TEST_P(AdaptorContract, AGroupIsUndoneAndRedoneAsOne) {
  Counts first, second;
  EXPECT_EQ(adaptor->BeginUndo("Outer"), 0);
  EXPECT_TRUE(adaptor->IsUndoActive());
  EXPECT_EQ(adaptor->PutUndo(new CountingUndo(first)), 0);
  adaptor->BeginUndo("Inner");
  EXPECT_EQ(adaptor->PutUndo(new CountingUndo(second)), 0);
  EXPECT_EQ(adaptor->EndUndo(), 0);
  EXPECT_TRUE(adaptor->IsUndoActive());
  EXPECT_EQ(adaptor->EndUndo(), 0);
  EXPECT_FALSE(adaptor->IsUndoActive());
  EXPECT_EQ(first.undone + second.undone, 0);

  EXPECT_TRUE(adaptor->Undo());
  EXPECT_EQ(first.undone, 1);
  EXPECT_EQ(second.undone, 1);
  EXPECT_TRUE(adaptor->Redo());
  EXPECT_EQ(first.redone, 1);
  EXPECT_EQ(second.redone, 1);
  EXPECT_EQ(first.released + second.released, 0);
  // The host frees kept records when it goes.
  adaptor.reset();
  EXPECT_EQ(first.released + second.released, 2);
}

TEST_P(AdaptorContract, AnInnerCancelCancelsTheOutermostGroup) {
  Counts counts;
  adaptor->BeginUndo("Outer");
  adaptor->PutUndo(new CountingUndo(counts));
  adaptor->BeginUndo("Inner");
  EXPECT_EQ(adaptor->CancelUndo(), 0);
  EXPECT_TRUE(adaptor->IsUndoActive());  // the outer group is still open
  EXPECT_EQ(adaptor->EndUndo(), 0);
  EXPECT_FALSE(adaptor->IsUndoActive());
  // Cancelling took the change back and kept nothing to undo.
  EXPECT_EQ(counts.undone, 1);
  EXPECT_EQ(counts.released, 1);
  adaptor->Undo();
  EXPECT_EQ(counts.undone, 1);
}

TEST_P(AdaptorContract, TimeScaleKeepsTheNominalRate) {
  const double nominal = adaptor->GetFrameRate();
  ASSERT_GT(nominal, 0);
  adaptor->SetTime(1.0);
  EXPECT_DOUBLE_EQ(adaptor->GetTime(), 1.0);
  adaptor->SetTimeScale(4);
  EXPECT_EQ(adaptor->GetFrameRate(), nominal);
  EXPECT_DOUBLE_EQ(adaptor->GetFrameDuration(), 1.0 / nominal);
}

TEST_P(AdaptorContract, CreateOtherNodeGivesNull) {
  TestInstance instance("Tool01");
  EXPECT_EQ(adaptor->CreateOtherNode(&instance, "X", nullptr, util::CMesh(), 0), nullptr);
}

TEST_P(AdaptorContract, FindNodeMatchesOwnerAndNameExactly) {
  TestInstance a("CarCam01"), b("CarCam02");
  CoreNode* body = adaptor->CreateMeshNode(&a, "Body", nullptr, util::CMesh_Box(1, 1, 1), 0);
  CoreNode* other = adaptor->CreateMeshNode(&b, "Body", nullptr, util::CMesh_Box(1, 1, 1), 0);
  ASSERT_NE(body, nullptr);
  EXPECT_EQ(adaptor->FindNode(&a, "Body"), body);
  EXPECT_EQ(adaptor->FindNode(&b, "Body"), other);
  EXPECT_EQ(adaptor->FindNode(&a, "body"), nullptr);
  EXPECT_EQ(body->GetHostName(), "CarCam01_Body");
  EXPECT_EQ(body->owner, &a);
  EXPECT_FALSE(body->IsExternal());
}

TEST_P(AdaptorContract, InstanceNodesComeInCreationOrder) {
  TestInstance a("A"), b("B");
  CoreNode* first = adaptor->CreateCameraNode(&a, "Cam", nullptr, 0);
  CoreNode* foreign = adaptor->CreateCameraNode(&b, "Cam", nullptr, 0);
  CoreNode* second = adaptor->CreateMeshNode(&a, "Target", first, util::CMesh_Box(1, 1, 1), 0);
  NodeVector mine, all;
  adaptor->GetInstanceNodes(&a, mine);
  adaptor->GetAllNodes(all);
  EXPECT_EQ(mine.nodes, (std::vector<CoreNode*>{first, second}));
  EXPECT_EQ(all.nodes, (std::vector<CoreNode*>{first, foreign, second}));
}

TEST_P(AdaptorContract, AnInstanceWithoutStateWritesNoTag) {
  TestInstance silent("Silent01");
  adaptor->CreateCameraNode(&silent, "Cam", nullptr, 0);
  adaptor->WriteNodeTags(&silent);
  // Gathering finds nothing to hand on, so the node is not claimed by a tag.
  NodeVector resolved;
  util::xml::Element nodes;
  nodes.ParseText("<nodeinfo><node name=\"Cam\"/></nodeinfo>");
  adaptor->ResolveNodes("Silent01", nodes, resolved);
  ASSERT_EQ(resolved.nodes.size(), 1u);
  EXPECT_EQ(resolved.nodes[0], nullptr);
}

TEST_P(AdaptorContract, TaggedNodesResolveByInstanceAndNodeName) {
  TestInstance tool("Heli01");
  tool.master.ParseText("<masternode><childindex>0</childindex><RGT_Plugin version=\"2.5\"><name>Heli01</name>"
                        "</RGT_Plugin></masternode>");
  adaptor->CreateMeshNode(&tool, "Body", nullptr, util::CMesh_Box(1, 1, 1), 0);
  adaptor->CreateCameraNode(&tool, "Cam", nullptr, 0);
  adaptor->WriteNodeTags(&tool);
  util::xml::Element nodes;
  nodes.ParseText("<nodeinfo><node name=\"Cam\"/><node name=\"Missing\"/><node name=\"Body\"/></nodeinfo>");
  NodeVector resolved;
  adaptor->ResolveNodes("Heli01", nodes, resolved);
  ASSERT_EQ(resolved.nodes.size(), 3u);
  ASSERT_NE(resolved.nodes[0], nullptr);
  EXPECT_EQ(resolved.nodes[0]->GetHostName(), "Heli01_Cam");
  EXPECT_EQ(resolved.nodes[1], nullptr);
  ASSERT_NE(resolved.nodes[2], nullptr);
  EXPECT_EQ(resolved.nodes[2]->GetHostName(), "Heli01_Body");
}

TEST_P(AdaptorContract, SnapshotsReadAndWriteAtTheirOwnTime) {
  TestInstance tool("Cam01");
  CoreNode* node = adaptor->CreateCameraNode(&tool, "Cam", nullptr, 0);
  RecordTenFrames(*adaptor, node);
  // The clock did not move: each read is of its own time.
  CSnapshot* at03 = node->GetSnapshot(0.3);
  CSnapshot* at07 = node->GetSnapshot(0.7);
  EXPECT_NE(at03, at07);
  EXPECT_NEAR(at03->GetWorldTransform().GetTranslation().x, 3.0, 1e-9);
  EXPECT_NEAR(at07->GetWorldTransform().GetTranslation().x, 7.0, 1e-9);
  node->ReleaseSnapshot(at03);
  node->ReleaseSnapshot(at07);

  // Keys from a time on go away, and the last key before holds.
  adaptor->BeginUndo("Resimulate");
  node->InvalidateFrom(0.5);
  adaptor->EndUndo();
  EXPECT_NEAR(ReadX(node, 0.9), 4.0, 1e-9);

  // Undo brings the removed keys back, and one more undo the whole recording.
  adaptor->Undo();
  CSnapshot* restored = node->GetSnapshot(0.9);
  EXPECT_NEAR(restored->GetWorldTransform().GetTranslation().x, 9.0, 1e-9);
  adaptor->Undo();
  EXPECT_NEAR(restored->GetWorldTransform().GetTranslation().x, 0.0, 1e-9);
  node->ReleaseSnapshot(restored);
}

// Outside a recording a write moves the node live and writes no key: the
// written pose shows at its time, and past the last key at any later time,
// until a read at an earlier time brings the keys' pose back.
TEST_P(AdaptorContract, AWriteOutsideARecordingIsLiveAndWritesNoKey) {
  TestInstance tool("Cam01");
  CoreNode* node = adaptor->CreateCameraNode(&tool, "Cam", nullptr, 0);
  // Without keys the pose holds at all times.
  WriteX(node, 0.2, -3.0);
  EXPECT_NEAR(ReadX(node, 0.9), -3.0, 1e-9);
  RecordTenFrames(*adaptor, node);

  WriteX(node, 0.45, 42.0);
  EXPECT_NEAR(ReadX(node, 0.45), 42.0, 1e-9);
  EXPECT_NEAR(ReadX(node, 0.3), 3.0, 1e-9);
  EXPECT_NEAR(ReadX(node, 0.45), 4.5, 1e-9);  // no key at 0.45

  WriteX(node, 1.5, 7.0);
  EXPECT_NEAR(ReadX(node, 1.5), 7.0, 1e-9);
  EXPECT_NEAR(ReadX(node, 2.5), 7.0, 1e-9);  // a fresh live value stays past the last key
  EXPECT_NEAR(ReadX(node, 0.3), 3.0, 1e-9);
  EXPECT_NEAR(ReadX(node, 1.5), 10.0, 1e-9);  // back to the last key: no key at 1.5
}

TEST_P(AdaptorContract, SnapshotsComeFromAPool) {
  TestInstance tool("Cam01");
  CoreNode* node = adaptor->CreateCameraNode(&tool, "Cam", nullptr, 0);
  CSnapshot* a = node->GetSnapshot(0);
  CSnapshot* b = node->GetSnapshot(0);
  EXPECT_NE(a, b);
  node->ReleaseSnapshot(b);
  EXPECT_EQ(node->GetSnapshot(1.0), b);
  node->ReleaseSnapshot(a);
  node->ReleaseSnapshot(b);
  node->ReleaseSnapshot(nullptr);
  EXPECT_NE(node->GetLensSnapshot(0), nullptr);
  EXPECT_EQ(node->GetShapeSnapshot(0), nullptr);
}

TEST_P(AdaptorContract, NodeMessagesOutsideTheRangeAnswerZero) {
  TestInstance tool("T");
  CoreNode* node = adaptor->CreateCameraNode(&tool, "Cam", nullptr, 0);
  EXPECT_EQ(node->Extension(9, nullptr), 0);
  EXPECT_EQ(node->Extension(58, nullptr), 0);
  EXPECT_EQ(node->ExtensionIds(), (std::vector<std::int32_t>{10, 11, 17, 37, 31, 32}));
  EXPECT_EQ(node->Extension(10, nullptr), 1);
  EXPECT_EQ(node->Extension(10, nullptr), 0);
  EXPECT_EQ(node->Extension(11, nullptr), 1);
  EXPECT_EQ(node->Extension(11, nullptr), 0);
}

// Unplugged (the scene object kept) or deleted, a node leaves the list;
// undo puts the same node back in its place, with its keys.
TEST_P(AdaptorContract, ANodeTakenOffTheListComesBackInItsPlace) {
  for (const bool withHost : {false, true}) {
    SCOPED_TRACE(withHost ? "deleted" : "unplugged");
    TestInstance tool("T");
    CoreNode* first = adaptor->CreateCameraNode(&tool, "First", nullptr, 0);
    CoreNode* middle = adaptor->CreateCameraNode(&tool, "Middle", nullptr, 0);
    CoreNode* last = adaptor->CreateCameraNode(&tool, "Last", nullptr, 0);
    RecordTenFrames(*adaptor, middle);
    const auto expectListed = [&](bool listed) {
      NodeVector all;
      adaptor->GetAllNodes(all);
      const std::vector<CoreNode*> expected =
          listed ? std::vector<CoreNode*>{first, middle, last} : std::vector<CoreNode*>{first, last};
      EXPECT_EQ(all.nodes, expected);
      EXPECT_EQ(adaptor->FindNode(&tool, "Middle"), listed ? middle : nullptr);
      EXPECT_EQ(middle->IsExternal(), !listed);
    };
    adaptor->BeginUndo("Take off");
    middle->Delete(withHost);
    adaptor->EndUndo();
    expectListed(false);
    adaptor->Undo();
    expectListed(true);
    adaptor->Redo();
    expectListed(false);
    adaptor->Undo();
    expectListed(true);
    EXPECT_EQ(ReadX(middle, 0.5), 5);
    for (CoreNode* node : {first, middle, last}) node->Delete(true);
  }
}

// What the vehicle tools ask about their ground: the surfaces below a node,
// whether a surface is the car or below it, and whether it moves.
class SceneFamily {
 public:
  explicit SceneFamily(core::AdaptorInterface& adaptor) : tool("Ground01") {
    const util::CMesh_Box box(1, 1, 1);
    parent = adaptor.CreateMeshNode(&tool, "Parent", nullptr, box, 0);
    first = adaptor.CreateMeshNode(&tool, "First", parent, box, 0);
    second = adaptor.CreateCameraNode(&tool, "Second", parent, 0);
    grandchild = adaptor.CreateMeshNode(&tool, "Grandchild", first, box, 0);
    apart = adaptor.CreateMeshNode(&tool, "Apart", nullptr, box, 0);
  }

  TestInstance tool;
  CoreNode *parent, *first, *second, *grandchild, *apart;
};

TEST_P(AdaptorContract, SceneChildrenAreHandedOutInHostOrder) {
  SceneFamily family(*adaptor);
  ASSERT_EQ(family.parent->GetSceneChildCount(), 2);
  const CoreNode* expected[] = {family.first, family.second};
  for (std::int32_t i = 0; i < 2; ++i) {
    auto* child = static_cast<CoreNode*>(family.parent->GetSceneChild(i));
    ASSERT_NE(child, nullptr);
    EXPECT_TRUE(child->IsSameNode(const_cast<CoreNode*>(expected[i])));
    EXPECT_NE(child, expected[i]);  // a wrapper of its own
    family.parent->ReleaseWrapper(child);
  }
  EXPECT_EQ(family.parent->GetSceneChild(2), nullptr);
  EXPECT_EQ(family.parent->GetSceneChild(-1), nullptr);
  EXPECT_EQ(family.second->GetSceneChildCount(), 0);
  EXPECT_EQ(family.first->GetSceneChildCount(), 1);
}

TEST_P(AdaptorContract, SameOrBelowFollowsTheSceneTree) {
  SceneFamily family(*adaptor);
  const struct {
    CoreNode* node;
    CoreNode* other;
    bool below;
  } cases[] = {
      {family.first, family.parent, true},       {family.grandchild, family.parent, true},
      {family.first, family.first, true},        {family.parent, family.first, false},
      {family.second, family.first, false},      {family.grandchild, family.second, false},
      {family.apart, family.parent, false},      {family.first, nullptr, false},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(c.node->IsSameOrBelow(c.other), c.below)
        << c.node->GetHostName() << " below " << (c.other ? c.other->GetHostName() : "null");
  }
  // A wrapper stands for the same object as the node.
  CNode* wrapper = family.parent->GetSceneChild(0);
  EXPECT_TRUE(wrapper->IsSameOrBelow(family.first));
  EXPECT_TRUE(family.first->IsSameOrBelow(wrapper));
  family.parent->ReleaseWrapper(wrapper);
}

TEST_P(AdaptorContract, AnimatedIsKeysThatMoveTheNodeOrAnAncestor) {
  SceneFamily family(*adaptor);
  // A live write outside a recording moves nothing over time.
  WriteX(family.first, 0.0, 5.0);
  for (CoreNode* node : {family.parent, family.first, family.grandchild, family.apart}) {
    EXPECT_FALSE(node->IsAnimated()) << node->GetHostName();
  }
  RecordTenFrames(*adaptor, family.first);
  EXPECT_TRUE(family.first->IsAnimated());
  EXPECT_TRUE(family.grandchild->IsAnimated());  // carried by its parent
  EXPECT_FALSE(family.parent->IsAnimated());
  EXPECT_FALSE(family.second->IsAnimated());
  EXPECT_FALSE(family.apart->IsAnimated());
}

}  // namespace
}  // namespace vuk::rgw::testing_support
