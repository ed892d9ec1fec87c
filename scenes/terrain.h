#pragma once
// Ground meshes shared by tests, benchmarks and the demo: a grid over X and
// Z with a gentle rolling height, deterministic for a given size.

#include "util/mesh.h"

namespace vuk::scenes {

// cells x cells squares of `size` metres in all, two triangles each, centred
// on the origin, facing up.
util::CMesh RollingTerrain(int cells, double size);

// The terrain's height at (x, z), as its vertices sample it.
double RollingHeight(double x, double z);

}  // namespace vuk::scenes
