// The helicopter's per-frame costs: one regulator step (model, one Riccati
// round, gains, control) and one second of plant flight at 30 fps.
#include <benchmark/benchmark.h>

#include "plugins/common/vehicle/helicopterplant.h"

namespace {

using namespace vuk::rgw::addon;

void RegulatorStep(benchmark::State& state) {
  PPQuollRTQuatGlobLinVelocityControlWYNewNew regulator;
  regulator.step(0, 0, 2, 0, {0, 0, 2}, {}, {}, {}, 0);
  for (auto _ : state) {
    benchmark::DoNotOptimize(regulator.step(1.0, 0.5, 2.5, 0.1, {0, 0, 2}, {0.1, 0, 0}, {0, 0, 0.1}, {}, 1));
  }
}
BENCHMARK(RegulatorStep);

void PlantSecond(benchmark::State& state) {
  HelicopterPlant plant;
  const PoseRecord pose{{0, 5, 0}, {}};
  PlantInputRecord record;
  record.heightReference = 5;
  plant.reset(pose, pose, pose, record, 1.0 / 30);
  plant.channels[HelicopterPlant::kForward].raw = 0.2;
  for (auto _ : state) {
    for (int frame = 0; frame < 30; ++frame) plant.advance(1.0 / 30);
    benchmark::DoNotOptimize(plant.position());
  }
}
BENCHMARK(PlantSecond)->Unit(benchmark::kMicrosecond);

}  // namespace
