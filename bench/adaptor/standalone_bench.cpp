// The host's per-frame costs: a node written through a snapshot with key
// recording on (a take of 10,000 frames), and a ground ray against a
// 100,000-triangle terrain.
#include <benchmark/benchmark.h>

#include <random>

#include "adaptor/standalone/standaloneadaptorinterface.h"
#include "scenes/terrain.h"
#include "sdk/cextendable.h"
#include "util/messagenode.h"

namespace {

using namespace vuk;
using rgw::adaptor::standalone::StandaloneAdaptorInterface;

class Instance : public rgw::CExtendable, public util::MessageNode {
 public:
  Instance() : util::MessageNode("Bench01") {}
};

constexpr int kFrames = 10000;

void BM_SnapshotWriteWithKeys(benchmark::State& state) {
  for (auto _ : state) {
    state.PauseTiming();
    StandaloneAdaptorInterface adaptor;
    Instance instance;
    rgw::core::CoreNode* node = adaptor.CreateCameraNode(&instance, "Cam", nullptr, 0);
    adaptor.BeginUndo("Record");
    adaptor.BeginRecording();
    const double frame = adaptor.GetFrameDuration();
    util::Matrix<double> pose;
    state.ResumeTiming();
    for (int i = 0; i < kFrames; ++i) {
      rgw::CSnapshot* snapshot = node->GetSnapshot(i * frame);
      pose.SetTranslation({i * 0.01, 0.0, 0.0});
      snapshot->SetWorldTransform(pose);
      node->ReleaseSnapshot(snapshot);
    }
    state.PauseTiming();
    adaptor.EndRecording();
    adaptor.EndUndo();
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * kFrames);
  state.counters["ns_per_write"] =
      benchmark::Counter(static_cast<double>(state.iterations() * kFrames), benchmark::Counter::kIsRate |
                                                                               benchmark::Counter::kInvert);
}
BENCHMARK(BM_SnapshotWriteWithKeys)->Unit(benchmark::kMillisecond);

void BM_GroundRay(benchmark::State& state) {
  StandaloneAdaptorInterface adaptor;
  Instance instance;
  // 224 x 224 cells: 100,352 triangles.
  rgw::core::CoreNode* ground = adaptor.CreateMeshNode(&instance, "Ground", nullptr, scenes::RollingTerrain(224, 200), 0);
  rgw::CSnapshot_Mesh* mesh = ground->GetMeshSnapshot(0);
  std::mt19937 random(8);
  std::uniform_real_distribution<double> across(-95, 95);
  std::vector<rgw::Vector3> origins(4096);
  for (auto& origin : origins) origin = {across(random), 50.0, across(random)};
  const rgw::Vector3 down{0, -1, 0};
  mesh->IntersectRay(origins[0], down, nullptr, nullptr);  // builds the tree outside the timing
  std::size_t i = 0;
  double distance = 0;
  for (auto _ : state) {
    benchmark::DoNotOptimize(mesh->IntersectRay(origins[i++ & 4095], down, &distance, nullptr));
  }
  ground->ReleaseMeshSnapshot(mesh);
}
BENCHMARK(BM_GroundRay);

}  // namespace
