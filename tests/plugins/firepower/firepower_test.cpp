#include "plugins/firepower/firepowerobject.h"

#include <gtest/gtest.h>

#include <cmath>

#include "adaptor/standalone/scenenode.h"
#include "adaptor/standalone/ticks.h"
#include "tests/plugins/toolharness.h"

namespace vuk::rgw::addon {
namespace {

using testing_support::ToolHarness;

// A gun at the origin, one press at frame 1 held for `held` frames.
class Gun {
 public:
  explicit Gun(int frames, int held = 1) : frames_(frames), held_(held) {}
  void Fire() {
    harness.Record(0, frames_, [this](std::size_t channel, int k) { return channel == 0 && k <= held_ ? 1.0 : 0.0; });
  }

  ToolHarness harness{"Firepower"};
  Firepower& tool = harness.Tool<Firepower>();

 private:
  int frames_, held_;
};

// Every round leaves within the spread cone about the gun's minus Z; with
// no spread exactly along it, at the muzzle velocity.
TEST(Firepower, RoundsLeaveWithinTheSpreadCone) {
  for (double spread : {0.0, 5.0, 30.0}) {
    Gun gun(1);
    gun.tool.settings.dSpreadAngle = spread;
    gun.tool.settings.iRateOfFire = 0;
    gun.tool.settings.iBulletsPerDischarge = 50;
    gun.Fire();
    ASSERT_EQ(gun.tool.bullets.size(), 50u) << spread;
    double widest = 0;
    for (const Bullet& bullet : gun.tool.bullets) {
      const Vector3 v = bullet.velocities.records.front().value;
      if (spread == 0) {
        ASSERT_EQ(v, Vector3(0, 0, -300));
      }
      widest = std::max(widest, std::acos(-v.z / v.Length()) * 180 / 3.141592653589793);
    }
    EXPECT_LE(widest, spread + 1e-9);
    if (spread > 0) {
      EXPECT_GT(widest, spread / 2) << "50 rounds fill the cone";
    }
  }
}

// Without air or surfaces a bullet keeps to p0 + v0 t + g t^2 / 2.
TEST(Firepower, AFreeBulletFollowsTheParabola) {
  Gun gun(40);
  gun.tool.settings.iRateOfFire = 0;
  gun.tool.settings.dMuzzleVelocity = 50;
  gun.Fire();
  ASSERT_EQ(gun.tool.bullets.size(), 1u);
  const Bullet& bullet = gun.tool.bullets.front();
  const Vector3 p0 = bullet.positions.records.front().value, v0(0, 0, -50);
  for (const auto& record : bullet.positions.records) {
    const double t = record.time - bullet.birth;
    const Vector3 expected = p0 + v0 * t + Vector3(0, -5 * t * t, 0);
    ASSERT_NEAR((record.value - expected).Length(), 0.0, 1e-9) << "at " << t;
  }
  EXPECT_EQ(bullet.positions.records.size(), 40u);
}

// Rounds fired down at a slab that the template bullet is linked to come to
// rest on it or bounce off it, never below it; the hit flags show.
TEST(Firepower, BulletsNeverEndBelowTheGround) {
  for (double elasticity : {0.0, 60.0}) {
    Gun gun(60, 30);
    adaptor::standalone::SceneNode* ground = gun.harness.AddSceneNode("Ground");
    ground->SetMesh(util::CMesh_Box(200, 1, 200));
    util::Matrix<double> below;
    below.SetTranslation({0, -3.5, 0});  // top face at y = -3
    gun.harness.host.GetScene().WriteWorld(ground, 0, below);
    gun.harness.Link(gun.tool.templateNode.handle, ground);
    // Aimed 30 degrees down.
    util::Matrix<double> aim = util::Matrix<double>::FromQuat(Quat::FromAxisAngle({1, 0, 0}, -0.5236));
    gun.harness.Transform(gun.tool.gunNode.handle, 0)->SetWorldTransform(aim);
    gun.tool.settings.dElasticity = elasticity;
    gun.tool.settings.dMuzzleVelocity = 40;
    gun.Fire();
    ASSERT_GT(gun.tool.bullets.size(), 5u);
    int hits = 0;
    for (const Bullet& bullet : gun.tool.bullets) {
      for (const auto& record : bullet.positions.records) ASSERT_GE(record.value.y, -3.0) << elasticity;
      hits += bullet.collided;
    }
    EXPECT_GT(hits, 0) << elasticity;
  }
}

// A bullet past its lifetime gets no more keys.
TEST(Firepower, ALifetimeEndsTheKeys) {
  Gun gun(60);
  gun.tool.settings.iRateOfFire = 0;
  gun.tool.settings.dLifetime = 0.5;
  gun.Fire();
  ASSERT_EQ(gun.tool.bullets.size(), 1u);
  const auto& keys = ToolHarness::KeysOf(gun.tool.bullets.front().node);
  ASSERT_FALSE(keys.empty());
  // At 30 frames a second: the birth frame and 15 frames after it.
  EXPECT_EQ(keys.size(), 16u);
  EXPECT_LE(adaptor::standalone::SecondsFromTicks(keys.back().tick), gun.tool.bullets.front().birth + 0.5 + 1e-9);
}

// A tool made from the saved bytes knows its bullets by name, and takes
// their nodes up once every tool of the load exists.
TEST(Firepower, BulletsAreFoundAgainAfterALoad) {
  Gun gun(20, 20);
  gun.Fire();
  ASSERT_GT(gun.tool.bullets.size(), 3u);
  gun.harness.Save();
  CCamera::CreateParam param(gun.harness.Instance().InstanceName());
  auto* fresh = static_cast<Firepower*>(gun.harness.Instance().GetToolPlugin()->Create(param));
  fresh->iface = &gun.harness.Instance();
  ASSERT_EQ(fresh->BuildConfig(), 0);
  ASSERT_EQ(fresh->Load(), 0);
  ASSERT_EQ(fresh->bullets.size(), gun.tool.bullets.size());
  EXPECT_EQ(fresh->bullets.front().node, nullptr);
  EXPECT_EQ(fresh->Extension(extension::kConnectTools, nullptr), 1);
  for (std::size_t i = 0; i < fresh->bullets.size(); ++i) {
    EXPECT_EQ(fresh->bullets[i].name, gun.tool.bullets[i].name);
    EXPECT_EQ(fresh->bullets[i].node, gun.tool.bullets[i].node);
    EXPECT_NE(fresh->bullets[i].node, nullptr);
  }
  fresh->Release();
}

}  // namespace
}  // namespace vuk::rgw::addon
