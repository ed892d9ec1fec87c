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

}  // namespace
}  // namespace vuk::app
