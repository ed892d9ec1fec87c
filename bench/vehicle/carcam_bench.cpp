#include <benchmark/benchmark.h>

#include "plugins/common/vehicle/carcam.h"
#include "tests/plugins/common/vehicle/flatground.h"

namespace vuk::rgw::addon {
namespace {

// One 4-Wheeler frame at 30 fps, driving and steering, on a flat ground fed
// in as the wheel nodes would.
void BM_CarFrame30Fps(benchmark::State& state) {
  const test::TestGround ground;
  CCarCam car = test::StartedCar(ground);
  int frame = 0;
  for (auto _ : state) {
    car.inputs[pcInput_GAS_PEDAL].raw = 1.0;
    car.inputs[pcInput_STEERING_WHEEL].raw = (frame++ / 90) % 2 ? 0.4 : -0.4;
    ground.Frame(car, 1.0 / 30);
    benchmark::DoNotOptimize(car.position);
  }
}
BENCHMARK(BM_CarFrame30Fps);

// The same in autonomous mode, following a target that drives ahead and
// swerves now and then.
void BM_CarFrameAutonomous30Fps(benchmark::State& state) {
  const test::TestGround ground;
  CCarCam car = test::StartedCar(ground);
  car.params.bAutonomousMode = true;
  int frame = 0;
  for (auto _ : state) {
    const double side = (frame / 90) % 2 ? 2.0 : -2.0;
    car.vAutonomousTarget = {side, 0, -5.0 - 0.05 * frame++};
    ground.Frame(car, 1.0 / 30);
    benchmark::DoNotOptimize(car.position);
  }
}
BENCHMARK(BM_CarFrameAutonomous30Fps);

}  // namespace
}  // namespace vuk::rgw::addon
