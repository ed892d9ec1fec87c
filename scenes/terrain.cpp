#include "scenes/terrain.h"

#include <cmath>

namespace vuk::scenes {

double RollingHeight(double x, double z) { return 0.5 * std::sin(0.21 * x) * std::cos(0.17 * z) + 0.02 * x; }

util::CMesh RollingTerrain(int cells, double size) {
  util::CMesh mesh;
  if (cells < 1) return mesh;
  const int side = cells + 1;
  const double step = size / cells;
  mesh.vertices.reserve(static_cast<std::size_t>(side) * static_cast<std::size_t>(side));
  for (int row = 0; row < side; ++row) {
    for (int column = 0; column < side; ++column) {
      const double x = -size / 2 + column * step, z = -size / 2 + row * step;
      mesh.vertices.push_back({x, RollingHeight(x, z), z});
    }
  }
  mesh.faces.reserve(static_cast<std::size_t>(cells) * static_cast<std::size_t>(cells) * 6);
  for (int row = 0; row < cells; ++row) {
    for (int column = 0; column < cells; ++column) {
      const std::int32_t a = row * side + column, b = a + 1, c = a + side, d = c + 1;
      // Wound so that the faces look up (+Y).
      mesh.faces.insert(mesh.faces.end(), {a, c, b, b, c, d});
    }
  }
  return mesh;
}

}  // namespace vuk::scenes
