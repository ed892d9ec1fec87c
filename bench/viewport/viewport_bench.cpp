// The viewport's redraw of the demo terrain (131,072 triangles, with its ramp
// and camera) at 1280 by 720, finished on the graphics side; meshes uploaded
// before timing, as a viewport has them once warm. Needs OpenGL: run it
// under xvfb-run -a for Mesa's software rasteriser.
#include <benchmark/benchmark.h>

#include <QGuiApplication>
#include <cstdio>

#include "gui/viewport/offscreenview.h"
#include "scenes/drivingscene.h"

namespace {

using namespace vuk::gui::viewport;

void Redraw(benchmark::State& state, bool throughCamera) {
  Scene scene;
  vuk::scenes::BuildDrivingScene(scene);
  ViewPoint viewPoint;
  viewPoint.orbit.Fit(scene, 0);
  if (throughCamera) {
    scene.Walk([&](SceneNode& node) {
      if (node.hostName == "Overview") viewPoint.LookThrough(&node);
    });
  }
  OffscreenView view(1280, 720);
  if (!view.Problem().empty()) {
    state.SkipWithError(view.Problem().c_str());
    return;
  }
  view.Redraw(&scene, 0, viewPoint);
  for (auto _ : state) view.Redraw(&scene, 0, viewPoint);
}

void BM_RedrawDemoFromTheOrbit(benchmark::State& state) { Redraw(state, false); }
void BM_RedrawDemoThroughItsCamera(benchmark::State& state) { Redraw(state, true); }

BENCHMARK(BM_RedrawDemoFromTheOrbit)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_RedrawDemoThroughItsCamera)->Unit(benchmark::kMillisecond);

}  // namespace

int main(int argc, char** argv) {
  QGuiApplication application(argc, argv);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}
