#pragma once
// The ground the demo drives on: the rolling terrain, 200 m square in
// 256 x 256 cells (131,072 triangles), with a jump ramp on the line the cars
// start on (x = 0, heading -Z), and a camera overlooking both.

#include "adaptor/standalone/scene.h"

namespace vuk::scenes {

constexpr int kDrivingTerrainCells = 256;
constexpr double kDrivingTerrainSize = 200;

void BuildDrivingScene(rgw::adaptor::standalone::Scene& scene);

// A wedge rising from the ground over `length` along -Z to `height`, then
// dropping off: its slope and sides face outwards.
util::CMesh RampMesh(double width, double length, double height);

}  // namespace vuk::scenes
