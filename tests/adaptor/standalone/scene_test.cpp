#include "adaptor/standalone/scene.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace vuk::rgw::adaptor::standalone {
namespace {

using util::Matrix;
using util::Quat;
using util::Vector3;

Matrix<double> Pose(const Vector3<double>& position, const Quat<double>& rotation = {}) {
  Matrix<double> m = Matrix<double>::FromQuat(rotation);
  m.SetTranslation(position);
  return m;
}

TEST(Ticks, FrameTimesLandOnTheirTick) {
  for (int frame = 0; frame < 10000; ++frame) {
    EXPECT_EQ(TicksFromSeconds(frame / 30.0), 160 * frame) << frame;
    EXPECT_EQ(TicksFromSeconds(frame * (1.0 / 30)), 160 * frame) << frame;
  }
  EXPECT_EQ(TicksFromSeconds(1.0 / 4800 * 0.5), 0);
  EXPECT_EQ(TicksFromSeconds(-0.5), -2400);
}

// One box in a scene that records keys, as during a take.
class Keys : public testing::Test {
 protected:
  Keys() { scene.animate = true; }
  Scene scene;
  SceneNode* node = scene.CreateNode(ObjectKind::kEmpty, "Box");
};

TEST_F(Keys, TwoTimesWithinOneTickWriteOne) {
  scene.WriteWorld(node, TicksFromSeconds(1.0), Pose({1, 0, 0}));
  scene.WriteWorld(node, TicksFromSeconds(1.0 + 1e-5), Pose({2, 0, 0}));
  ASSERT_EQ(node->track.Keys().size(), 1u);
  EXPECT_EQ(node->World(4800).GetTranslation().x, 2.0);
}

TEST_F(Keys, PositionIsLinearAndRotationSphericalBetween) {
  const Quat<double> quarter = Quat<double>::FromAxisAngle({0, 1, 0}, M_PI / 2);
  scene.WriteWorld(node, 0, Pose({0, 0, 0}));
  scene.WriteWorld(node, 4800, Pose({2, 4, 0}, quarter));
  const Matrix<double> middle = node->World(2400);
  EXPECT_NEAR(middle.GetTranslation().x, 1.0, 1e-12);
  EXPECT_NEAR(middle.GetTranslation().y, 2.0, 1e-12);
  const Quat<double> eighth = Quat<double>::FromAxisAngle({0, 1, 0}, M_PI / 4);
  EXPECT_NEAR(std::fabs(middle.ToQuat().Dot(eighth)), 1.0, 1e-12);
  // Held before the first key (after the last is the adaptor contract's).
  EXPECT_NEAR(node->World(-100).GetTranslation().x, 0.0, 1e-12);
}

TEST_F(Keys, NoneAreWrittenOutsideATakeButTheStaticPoseMoves) {
  scene.animate = false;
  scene.WriteWorld(node, 960, Pose({5, 0, 0}));
  EXPECT_TRUE(node->track.Keys().empty());
  EXPECT_EQ(node->World(0).GetTranslation().x, 5.0);
}

TEST_F(Keys, OutsideATakeAKeyedNodeMovesLiveAndKeepsItsKeys) {
  scene.WriteWorld(node, 0, Pose({0, 0, 0}));
  scene.WriteWorld(node, 4800, Pose({10, 0, 0}));
  scene.animate = false;
  const std::vector<TransformKey> keys = node->track.Keys();
  // Within the keys the live pose shows at its tick only.
  scene.WriteWorld(node, 2400, Pose({42, 0, 0}));
  EXPECT_EQ(node->World(2400).GetTranslation().x, 42.0);
  EXPECT_NEAR(node->World(1200).GetTranslation().x, 2.5, 1e-12);
  EXPECT_NEAR(node->World(2400).GetTranslation().x, 5.0, 1e-12);
  // Past the last key it stays there, until an earlier tick is shown.
  scene.WriteWorld(node, 9600, Pose({7, 0, 0}));
  EXPECT_EQ(node->World(9600).GetTranslation().x, 7.0);
  EXPECT_EQ(node->World(12000).GetTranslation().x, 7.0);
  EXPECT_NEAR(node->World(2400).GetTranslation().x, 5.0, 1e-12);
  EXPECT_EQ(node->World(9600).GetTranslation().x, 10.0);
  EXPECT_EQ(node->track.Keys(), keys);
  // Keys that change drop the live pose.
  scene.WriteWorld(node, 9600, Pose({7, 0, 0}));
  scene.InvalidateFrom(node, 4800);
  EXPECT_EQ(node->World(9600).GetTranslation().x, 0.0);
}

TEST(Scene, ChildWorldFollowsItsParent) {
  Scene scene;
  SceneNode* parent = scene.CreateNode(ObjectKind::kEmpty, "Parent");
  SceneNode* child = scene.CreateNode(ObjectKind::kEmpty, "Child", parent);
  scene.WriteWorld(parent, 0, Pose({10, 0, 0}, Quat<double>::FromAxisAngle({0, 0, 1}, M_PI / 2)));
  scene.WriteWorld(child, 0, Pose({10, 1, 0}));
  // One unit along the world Y is one unit along the parent's local X.
  EXPECT_NEAR(child->Local(0).GetTranslation().x, 1.0, 1e-12);
  EXPECT_NEAR(child->Local(0).GetTranslation().y, 0.0, 1e-12);
  EXPECT_NEAR(child->World(0).GetTranslation().y, 1.0, 1e-12);
  // Unlinking keeps the world pose.
  scene.SetParent(child, nullptr, 0);
  EXPECT_NEAR(child->World(0).GetTranslation().x, 10.0, 1e-12);
  EXPECT_NEAR(child->World(0).GetTranslation().y, 1.0, 1e-12);
  EXPECT_EQ(child->parent, &scene.Root());
}

TEST_F(Keys, OneUndoTakesBackAHoldOfWritesOrADeletionAndRedoBringsThem) {
  scene.WriteWorld(node, 0, Pose({-1, 0, 0}));
  scene.undo.Begin();
  for (int frame = 0; frame < 100; ++frame) scene.WriteWorld(node, 160 * frame, Pose({double(frame), 0, 0}));
  scene.undo.Accept("Record");
  scene.undo.Begin();
  scene.DeleteNode(node);
  scene.undo.Accept("Delete");
  EXPECT_FALSE(node->IsInScene());
  ASSERT_TRUE(scene.undo.Undo());
  EXPECT_TRUE(node->IsInScene());
  EXPECT_EQ(node->track.Keys().size(), 100u);
  ASSERT_TRUE(scene.undo.Undo());
  ASSERT_EQ(node->track.Keys().size(), 1u);
  EXPECT_EQ(node->World(0).GetTranslation().x, -1.0);
  ASSERT_TRUE(scene.undo.Redo());
  EXPECT_EQ(node->World(160 * 99).GetTranslation().x, 99.0);
}

TEST(MeshRayTree, AgreesWithBruteForce) {
  std::mt19937 random(4);
  std::uniform_real_distribution<double> uniform(-5, 5);
  util::CMesh mesh;
  for (int i = 0; i < 600; ++i) mesh.vertices.push_back({uniform(random), uniform(random), uniform(random)});
  for (int i = 0; i < 3 * 600; ++i) mesh.faces.push_back(static_cast<std::int32_t>(random() % 600));
  const MeshRayTree tree(mesh);
  util::CMesh single;
  single.faces = {0, 1, 2};
  int hits = 0;
  for (int ray = 0; ray < 300; ++ray) {
    const Vector3<double> origin{uniform(random), uniform(random), uniform(random)};
    const Vector3<double> direction = Vector3<double>{uniform(random), uniform(random), uniform(random)}.Normalized();
    double nearest = 1e300;
    for (std::size_t f = 0; f < mesh.faces.size(); f += 3) {
      single.vertices = {mesh.vertices[mesh.faces[f]], mesh.vertices[mesh.faces[f + 1]], mesh.vertices[mesh.faces[f + 2]]};
      RayHit one;
      if (MeshRayTree(single).Intersect(origin, direction, one)) nearest = std::min(nearest, one.distance);
    }
    RayHit hit;
    const bool found = tree.Intersect(origin, direction, hit);
    ASSERT_EQ(found, nearest < 1e300) << "ray " << ray;
    if (found) {
      ++hits;
      EXPECT_NEAR(hit.distance, nearest, 1e-9);
      EXPECT_NEAR(hit.normal.Length(), 1.0, 1e-12);
      EXPECT_LE(hit.normal.Dot(direction), 0.0);
    }
  }
  EXPECT_GT(hits, 50);
}

TEST(MeshRayTree, BadFaceIndicesAreSkipped) {
  util::CMesh mesh;
  mesh.vertices = {{0, 0, 0}, {1, 0, 0}, {0, 0, 1}};
  mesh.faces = {0, 1, 2, 0, 1, 7, -1, 0, 1};
  const MeshRayTree tree(mesh);
  EXPECT_EQ(tree.TriangleCount(), 1u);
  RayHit hit;
  ASSERT_TRUE(tree.Intersect({0.2, 5, 0.2}, {0, -1, 0}, hit));
  EXPECT_DOUBLE_EQ(hit.distance, 5.0);
  EXPECT_EQ(hit.normal, Vector3<double>(0, 1, 0));
}

}  // namespace
}  // namespace vuk::rgw::adaptor::standalone
