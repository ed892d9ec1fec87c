#include <gtest/gtest.h>

#include <filesystem>

#include "app/rgw/session.h"
#include "scenes/samplescene.h"
#include "tests/core/scopedenv.h"

namespace vuk::app {
namespace {

using rgw::adaptor::standalone::SceneNode;
using rgw::testing_support::ScopedEnv;

SceneNode* Named(Session& session, const std::string& name) {
  SceneNode* found = nullptr;
  session.host.GetScene().Walk([&](SceneNode& node) {
    if (node.hostName == name) found = &node;
  });
  return found;
}

// A LookAt camera's target linked to the demo's camera, which moves and
// stands away from where the target is made; saved, and simulated by the
// next session as the command line does it.
class LinkedTarget : public testing::TestWithParam<bool> {
 protected:
  LinkedTarget()
      : folder(testing::TempDir() + "/linkedtarget_" + std::to_string(GetParam())),
        dataHome("XDG_DATA_HOME", (folder + "/user").c_str()) {
    std::filesystem::create_directories(folder);
    std::string error;
    {
      Session demo;
      scenes::BuildSampleScene(demo.host.GetScene());
      EXPECT_TRUE(demo.Save(folder + "/demo.gltf", error)) << error;
    }
    {
      Session create;
      EXPECT_TRUE(create.Open(folder + "/demo.gltf", error)) << error;
      rgw::core::InstanceReference* item = create.tools.Create("LookAtCam");
      EXPECT_NE(item, nullptr);
      EXPECT_TRUE(create.Link(*item->instance, "TargetMesh", "Camera", GetParam(), error)) << error;
      EXPECT_TRUE(create.Save(folder + "/made.gltf", error)) << error;
    }
    EXPECT_TRUE(run.Open(folder + "/made.gltf", error)) << error;
    run.Resimulate(0, run.DefaultEnd());
    node = Named(run, "Camera");
    target = Named(run, "LookAtCam_01_TargetMesh");
  }

  std::string folder;
  ScopedEnv dataHome;
  Session run;
  SceneNode* node = nullptr;
  SceneNode* target = nullptr;
};

TEST_P(LinkedTarget, FollowsTheSceneNodeOnItOrAtItsOffset) {
  ASSERT_NE(node, nullptr);
  ASSERT_NE(target, nullptr);
  const bool keepOffset = GetParam();
  ASSERT_GT(node->track.Keys().size(), 1u);
  const auto first = node->track.Keys().front().tick;
  const util::Vector3<double> offset = node->World(first).Inverse().TransformPoint(target->World(first).GetTranslation());
  // Where it stood when it was made: away from the node.
  EXPECT_EQ(offset.Length() > 1.0, keepOffset) << offset.x << ", " << offset.y << ", " << offset.z;
  for (const auto& key : node->track.Keys()) {
    const util::Vector3<double> expected = node->World(key.tick).TransformPoint(offset);
    const util::Vector3<double> actual = target->World(key.tick).GetTranslation();
    EXPECT_NEAR(actual.x, expected.x, 1e-9) << "at tick " << key.tick;
    EXPECT_NEAR(actual.y, expected.y, 1e-9) << "at tick " << key.tick;
    EXPECT_NEAR(actual.z, expected.z, 1e-9) << "at tick " << key.tick;
  }
}

INSTANTIATE_TEST_SUITE_P(OnTheNodeOrKeepingTheOffset, LinkedTarget, testing::Bool());

// What `create --move` and `--child` do to a fresh LookAt camera in the demo
// scene: its nodes move together; a scene node put below one of them keeps
// where it stands, then goes where that node goes.
class MadeTool : public testing::Test {
 protected:
  MadeTool() : dataHome("XDG_DATA_HOME", (testing::TempDir() + "/madetool/user").c_str()) {
    scenes::BuildSampleScene(session.host.GetScene());
    session.host.GatherScene();
    item = session.tools.Create("LookAtCam");
  }
  util::Vector3<double> WorldAt(const std::string& name) {
    return Named(session, name)->World(0).GetTranslation();
  }

  ScopedEnv dataHome;
  Session session;
  rgw::core::InstanceReference* item = nullptr;
};

TEST_F(MadeTool, MovesAllItsNodesByTheOffset) {
  ASSERT_NE(item, nullptr);
  const std::vector<std::string> nodes{"LookAtCam_01_TargetMesh", "LookAtCam_01_LookAtCam"};
  std::vector<util::Vector3<double>> before;
  for (const std::string& node : nodes) before.push_back(WorldAt(node));
  session.Move(*item->instance, {1, 2, -3});
  for (std::size_t i = 0; i < nodes.size(); ++i) {
    const util::Vector3<double> moved = WorldAt(nodes[i]) - before[i];
    EXPECT_NEAR(moved.x, 1, 1e-12) << nodes[i];
    EXPECT_NEAR(moved.y, 2, 1e-12) << nodes[i];
    EXPECT_NEAR(moved.z, -3, 1e-12) << nodes[i];
  }
}

TEST_F(MadeTool, AChildSceneNodeKeepsItsPlaceThenFollowsTheToolNode) {
  ASSERT_NE(item, nullptr);
  std::string error;
  const util::Vector3<double> ground = WorldAt("Ground");
  ASSERT_TRUE(session.Adopt(*item->instance, "TargetMesh", "Ground", error)) << error;
  EXPECT_EQ(Named(session, "Ground")->parent, Named(session, "LookAtCam_01_TargetMesh"));
  EXPECT_NEAR((WorldAt("Ground") - ground).Length(), 0, 1e-12);
  session.Move(*item->instance, {0, 0, 5});
  EXPECT_NEAR((WorldAt("Ground") - ground - util::Vector3<double>(0, 0, 5)).Length(), 0, 1e-12);
  EXPECT_FALSE(session.Adopt(*item->instance, "Target", "Ground", error));
  EXPECT_EQ(error, "LookAtCam_01 has no node \"Target\"; its nodes are TargetMesh, LookAtCam");
}

TEST_F(MadeTool, ASolidIsAMeshOfItsHelpersShapeBelowIt) {
  ASSERT_NE(item, nullptr);
  std::string error;
  ASSERT_TRUE(session.Solidify(*item->instance, "TargetMesh", error)) << error;
  const SceneNode* helper = Named(session, "LookAtCam_01_TargetMesh");
  const SceneNode* solid = Named(session, "LookAtCam_01_TargetMesh_Solid");
  ASSERT_TRUE(helper && solid);
  EXPECT_EQ(solid->parent, helper);
  EXPECT_EQ(solid->kind, rgw::adaptor::standalone::ObjectKind::kMesh);
  EXPECT_FALSE(solid->mesh.faces.empty());
  EXPECT_EQ(solid->mesh.faces, helper->mesh.faces);
  EXPECT_EQ(solid->mesh.vertices.size(), helper->mesh.vertices.size());
  EXPECT_NEAR((solid->World(0).GetTranslation() - helper->World(0).GetTranslation()).Length(), 0, 1e-12);
}

}  // namespace
}  // namespace vuk::app
