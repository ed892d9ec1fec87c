#include "util/mesh.h"

#include <cmath>

namespace vuk::util {

CMesh::CMesh(const CMesh& source, const Matrix<double>& transform) : CMesh(source) {
  for (Vector3<double>& vertex : vertices) vertex = transform.TransformPoint(vertex);
}

void CMesh::Assign(const CMesh& other) {
  vertices = other.vertices;
  textureVertices = other.textureVertices;
  faces = other.faces;
  textureFaces = other.textureFaces;
}

namespace {

void AddTriangle(std::vector<std::int32_t>& list, std::int32_t a, std::int32_t b, std::int32_t c) {
  list.insert(list.end(), {a, b, c});
}

}  // namespace

CMesh_Box::CMesh_Box(double width, double height, double depth) {
  const double hx = width * 0.5, hy = height * 0.5, hz = depth * 0.5;
  for (int corner = 0; corner < 8; ++corner) {
    vertices.push_back({corner & 1 ? hx : -hx, corner & 2 ? hy : -hy, corner & 4 ? hz : -hz});
  }
  // Two triangles per side, wound counter-clockwise seen from outside.
  const std::int32_t sides[6][4] = {
      {0, 2, 3, 1},  // -z
      {4, 5, 7, 6},  // +z
      {0, 1, 5, 4},  // -y
      {2, 6, 7, 3},  // +y
      {0, 4, 6, 2},  // -x
      {1, 3, 7, 5},  // +x
  };
  textureVertices = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
  for (const auto& side : sides) {
    AddTriangle(faces, side[0], side[1], side[2]);
    AddTriangle(faces, side[0], side[2], side[3]);
    AddTriangle(textureFaces, 0, 1, 2);
    AddTriangle(textureFaces, 0, 2, 3);
  }
}

CMesh_Cylinder::CMesh_Cylinder(int segments, double radius, double height) {
  if (segments < 1) return;
  // The circle is 6.28318, short of two pi: existing rigs were built with it.
  const double turn = 6.28318;
  for (int ring = 0; ring < 2; ++ring) {
    const double y = ring == 0 ? height * 0.5 : height * -0.5;
    for (int i = 0; i < segments; ++i) {
      const double angle = i * turn / segments;
      vertices.push_back({std::sin(angle) * radius, y, std::cos(angle) * radius});
    }
  }
  const std::int32_t topCentre = 2 * segments;
  const std::int32_t bottomCentre = topCentre + 1;
  vertices.push_back({0, height * 0.5, 0});
  vertices.push_back({0, height * -0.5, 0});

  // The side unrolls onto the unit square with a seam column at u = 1, so
  // the texture does not run backwards across the last segment. Each cap is
  // a disc in the square, mirrored between top and bottom so that neither
  // reads mirror-inverted from outside.
  const std::int32_t sideTop = 0;
  const std::int32_t sideBottom = segments + 1;
  const std::int32_t capTop = 2 * (segments + 1);
  const std::int32_t capBottom = capTop + segments;
  const std::int32_t capCentre = capBottom + segments;
  for (int ring = 0; ring < 2; ++ring) {
    for (int i = 0; i <= segments; ++i) textureVertices.push_back({double(i) / segments, ring == 0 ? 1.0 : 0.0, 0});
  }
  for (int cap = 0; cap < 2; ++cap) {
    const double mirror = cap == 0 ? -0.5 : 0.5;
    for (int i = 0; i < segments; ++i) {
      const double angle = i * turn / segments;
      textureVertices.push_back({0.5 + mirror * std::sin(angle), 0.5 + 0.5 * std::cos(angle), 0});
    }
  }
  textureVertices.push_back({0.5, 0.5, 0});

  for (std::int32_t i = 0; i < segments; ++i) {
    const std::int32_t next = (i + 1) % segments;
    const std::int32_t top = i, topNext = next, bottom = segments + i, bottomNext = segments + next;
    AddTriangle(faces, top, bottom, bottomNext);
    AddTriangle(textureFaces, sideTop + i, sideBottom + i, sideBottom + i + 1);
    AddTriangle(faces, top, bottomNext, topNext);
    AddTriangle(textureFaces, sideTop + i, sideBottom + i + 1, sideTop + i + 1);
    AddTriangle(faces, topCentre, top, topNext);
    AddTriangle(textureFaces, capCentre, capTop + i, capTop + next);
    AddTriangle(faces, bottomCentre, bottomNext, bottom);
    AddTriangle(textureFaces, capCentre, capBottom + next, capBottom + i);
  }
}

}  // namespace vuk::util
