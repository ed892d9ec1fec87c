#include "plugins/common/meshparts.h"

#include <cstdint>

namespace vuk::rgw::addon {

void AppendPart(util::CMesh& mesh, const util::CMesh& part, const util::Matrix<double>& placement) {
  const auto base = static_cast<std::int32_t>(mesh.vertices.size());
  const auto textureBase = static_cast<std::int32_t>(mesh.textureVertices.size());
  for (const util::Vector3<double>& vertex : part.vertices) mesh.vertices.push_back(placement.TransformPoint(vertex));
  for (std::int32_t index : part.faces) mesh.faces.push_back(base + index);
  mesh.textureVertices.insert(mesh.textureVertices.end(), part.textureVertices.begin(), part.textureVertices.end());
  for (std::int32_t index : part.textureFaces) mesh.textureFaces.push_back(textureBase + index);
}

util::Matrix<double> Placed(const util::Vector3<double>& offset, const util::Vector3<double>& scale) {
  util::Matrix<double> placement;
  const double lengths[3] = {scale.x, scale.y, scale.z};
  for (int axis = 0; axis < 3; ++axis) placement.SetAxis(axis, placement.Axis(axis) * lengths[axis]);
  placement.SetTranslation(offset);
  return placement;
}

CMesh_Diamond::CMesh_Diamond(double radius) {
  vertices = {{radius, 0, 0}, {-radius, 0, 0}, {0, radius, 0}, {0, -radius, 0}, {0, 0, radius}, {0, 0, -radius}};
  // Each face winds outwards: one corner on each axis.
  faces = {0, 2, 4, 2, 1, 4, 1, 3, 4, 3, 0, 4, 2, 0, 5, 1, 2, 5, 3, 1, 5, 0, 3, 5};
  textureVertices = {{0.5, 1, 0}, {0, 0, 0}, {1, 0, 0}};
  for (std::size_t face = 0; face < faces.size() / 3; ++face) textureFaces.insert(textureFaces.end(), {0, 1, 2});
}

}  // namespace vuk::rgw::addon
