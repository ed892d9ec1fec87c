// The wheels' ground rays of one 4-Wheeler frame on the rolling terrain of
// 131,072 triangles, through each caster: the host's mesh ray (with the
// frame's mesh and transform snapshots), the stored tree, and Bullet.
// Rays per wheel: the centre ray alone ("Ray Multiplier" 1), or with
// "Ray Multiplier" 10 at 9 degrees the centre and 2 x 9 rim rays, or those
// on the wheel's two edges as well: 1 + 3 x 19 - 1 = 57.
#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>
#include <vector>

#include "adaptor/standalone/standaloneadaptorinterface.h"
#include "plugins/common/vehicle/ground/bulletground.h"
#include "plugins/common/vehicle/ground/groundmeshtree.h"
#include "plugins/common/vehicle/ground/hostsurfacecaster.h"
#include "scenes/terrain.h"
#include "util/messagenode.h"

namespace {

using namespace vuk;
using namespace vuk::rgw::addon;

constexpr int kCells = 256;  // 2 x 256 x 256 = 131,072 triangles
constexpr double kTerrainSize = 400;
constexpr double kFps = 30;
constexpr int kFrames = 300;
constexpr double kRadius = 0.35;
constexpr double kWheelWidth = 0.25;
const double kDegreesPerRay = 9 * M_PI / 180;

enum class Caster { kHost, kTree, kBullet };
enum RimRays { kCentreOnly = 0, kRim = 1, kRimAndEdges = 2 };

class Instance : public rgw::CExtendable, public util::MessageNode {
 public:
  Instance() : util::MessageNode("Car01") {}
};

// The rays of kFrames frames of a car on a circle of 120 m at 15 m/s.
std::vector<std::vector<GroundRay>> DriveRays(int rimRays) {
  const int n = rimRays == kCentreOnly ? 0 : 9;
  const int firstSide = rimRays == kRimAndEdges ? -1 : 0, lastSide = -firstSide;
  const double length = GroundRayLength(1.0, kRadius);
  std::vector<std::vector<GroundRay>> frames(kFrames);
  for (int frame = 0; frame < kFrames; ++frame) {
    const double heading = frame * (15.0 / kFps) / 120.0;
    const Vector3 centre{120 * std::cos(heading), 0, 120 * std::sin(heading)};
    const Vector3 forward{-std::sin(heading), 0, std::cos(heading)}, right{std::cos(heading), 0, std::sin(heading)};
    for (const auto& [across, along] : {std::pair{-0.8, 1.3}, {0.8, 1.3}, {-0.8, -1.3}, {0.8, -1.3}}) {
      Vector3 wheel = centre + right * across + forward * along;
      wheel.y = scenes::RollingHeight(wheel.x, wheel.z) + 1.2;
      for (int side = firstSide; side <= lastSide; ++side) {
        // Side 0 at i = 0 is the centre ray.
        for (int i = -n; i <= n; ++i) {
          const double angle = i * kDegreesPerRay;
          const Vector3 direction = Vector3{0, -std::cos(angle), 0} + forward * std::sin(angle);
          frames[frame].push_back({wheel + right * (kWheelWidth * 0.5 * side), direction, length});
        }
      }
    }
  }
  return frames;
}

struct Terrain {
  Terrain() : mesh(scenes::RollingTerrain(kCells, kTerrainSize)) {
    node = adaptor.CreateMeshNode(&instance, "Ground", nullptr, mesh, 0);
  }
  util::CMesh mesh;
  rgw::adaptor::standalone::StandaloneAdaptorInterface adaptor;
  Instance instance;
  rgw::core::CoreNode* node = nullptr;
};

Terrain& SharedTerrain() {
  static Terrain terrain;
  return terrain;
}

void GroundFrame(benchmark::State& state) {
  const auto caster = static_cast<Caster>(state.range(0));
  const auto frames = DriveRays(static_cast<int>(state.range(1)));
  Terrain& terrain = SharedTerrain();
  GroundMeshTree tree(terrain.mesh, Matrix());
  BulletGround bullet({{"Ground", &terrain.mesh, Matrix(), false}}, 9.81, 4.0);
  HostSurfaceCaster host;
  GroundHit hit;
  std::size_t frame = 0, hits = 0, rays = 0;
  for (auto _ : state) {
    const std::vector<GroundRay>& wheelRays = frames[frame];
    const double time = static_cast<double>(frame) / kFps;
    frame = (frame + 1) % frames.size();
    GroundCaster* cast = caster == Caster::kTree ? static_cast<GroundCaster*>(&tree) : &bullet;
    rgw::CSnapshot_Mesh* mesh = nullptr;
    if (caster == Caster::kHost) {
      mesh = terrain.node->GetMeshSnapshot(time);
      rgw::CSnapshot* transform = terrain.node->GetSnapshot(time);
      host.Bind(mesh, transform->GetWorldTransform());
      terrain.node->ReleaseSnapshot(transform);
      cast = &host;
    }
    for (const GroundRay& ray : wheelRays) hits += cast->Cast(ray, hit);
    rays += wheelRays.size();
    if (mesh) terrain.node->ReleaseMeshSnapshot(mesh);
  }
  state.counters["rays/frame"] = static_cast<double>(rays) / static_cast<double>(state.iterations());
  state.counters["hit share"] = static_cast<double>(hits) / static_cast<double>(rays);
  state.counters["x realtime"] = benchmark::Counter(static_cast<double>(state.iterations()) / kFps,
                                                    benchmark::Counter::kIsRate);
}
BENCHMARK(GroundFrame)
    ->ArgNames({"caster", "rim"})
    ->ArgsProduct({{static_cast<int>(Caster::kHost), static_cast<int>(Caster::kTree),
                    static_cast<int>(Caster::kBullet)},
                   {kCentreOnly, kRim, kRimAndEdges}})
    ->Unit(benchmark::kMicrosecond);

}  // namespace
