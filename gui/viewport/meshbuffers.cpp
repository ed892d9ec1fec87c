#include "gui/viewport/meshbuffers.h"

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace vuk::gui::viewport {

namespace {

struct Corner {
  float position[3];
  float normal[3];
};

bool Valid(const util::CMesh& mesh, std::size_t face) {
  for (std::size_t k = 0; k < 3; ++k) {
    const std::int32_t index = mesh.faces[3 * face + k];
    if (index < 0 || static_cast<std::size_t>(index) >= mesh.vertices.size()) return false;
  }
  return true;
}

void Put(float (&out)[3], const util::Vector3<double>& v) {
  out[0] = static_cast<float>(v.x);
  out[1] = static_cast<float>(v.y);
  out[2] = static_cast<float>(v.z);
}

std::vector<Corner> FlatCorners(const util::CMesh& mesh) {
  std::vector<Corner> corners;
  corners.reserve(mesh.faces.size());
  for (std::size_t face = 0; face < mesh.faces.size() / 3; ++face) {
    if (!Valid(mesh, face)) continue;
    const auto& a = mesh.vertices[static_cast<std::size_t>(mesh.faces[3 * face])];
    const auto& b = mesh.vertices[static_cast<std::size_t>(mesh.faces[3 * face + 1])];
    const auto& c = mesh.vertices[static_cast<std::size_t>(mesh.faces[3 * face + 2])];
    const util::Vector3<double> normal = (b - a).Cross(c - a).Normalized();
    for (const auto* vertex : {&a, &b, &c}) {
      Corner corner;
      Put(corner.position, *vertex);
      Put(corner.normal, normal);
      corners.push_back(corner);
    }
  }
  return corners;
}

// Each edge of the valid triangles once, as pairs of positions.
std::vector<float> EdgeLines(const util::CMesh& mesh) {
  std::vector<std::pair<std::int32_t, std::int32_t>> edges;
  for (std::size_t face = 0; face < mesh.faces.size() / 3; ++face) {
    if (!Valid(mesh, face)) continue;
    for (std::size_t k = 0; k < 3; ++k) {
      const std::int32_t from = mesh.faces[3 * face + k];
      const std::int32_t to = mesh.faces[3 * face + (k + 1) % 3];
      edges.emplace_back(std::min(from, to), std::max(from, to));
    }
  }
  std::sort(edges.begin(), edges.end());
  edges.erase(std::unique(edges.begin(), edges.end()), edges.end());
  std::vector<float> lines;
  lines.reserve(edges.size() * 6);
  for (const auto& [from, to] : edges) {
    for (const std::int32_t index : {from, to}) {
      const auto& v = mesh.vertices[static_cast<std::size_t>(index)];
      lines.insert(lines.end(), {static_cast<float>(v.x), static_cast<float>(v.y), static_cast<float>(v.z)});
    }
  }
  return lines;
}

template <typename T>
void Fill(QOpenGLBuffer& buffer, const std::vector<T>& data) {
  if (!buffer.isCreated()) buffer.create();
  buffer.bind();
  buffer.allocate(data.data(), static_cast<int>(data.size() * sizeof(T)));
  buffer.release();
}

}  // namespace

void MeshBuffers::Upload(const util::CMesh& mesh, std::uint64_t revision, bool withEdges) {
  const std::vector<Corner> corners = FlatCorners(mesh);
  Fill(faces_, corners);
  faceVertices_ = static_cast<int>(corners.size());
  hasEdges_ = withEdges;
  if (withEdges) {
    const std::vector<float> lines = EdgeLines(mesh);
    Fill(edges_, lines);
    edgeVertices_ = static_cast<int>(lines.size() / 3);
  }
  revision_ = revision;
  uploaded_ = true;
}

void MeshBuffers::DrawFaces(QOpenGLFunctions& gl, const Attributes& attributes) {
  faces_.bind();
  DrawBound(gl, attributes, GL_TRIANGLES, faceVertices_, true);
  faces_.release();
}

void MeshBuffers::DrawEdges(QOpenGLFunctions& gl, const Attributes& attributes) {
  edges_.bind();
  DrawBound(gl, attributes, GL_LINES, edgeVertices_, false);
  edges_.release();
}

void DrawBound(QOpenGLFunctions& gl, const Attributes& attributes, GLenum mode, int vertices, bool withNormals) {
  const GLuint position = static_cast<GLuint>(attributes.position);
  const GLuint normal = static_cast<GLuint>(attributes.normal);
  const GLsizei stride = withNormals ? sizeof(Corner) : 3 * sizeof(float);
  gl.glEnableVertexAttribArray(position);
  gl.glVertexAttribPointer(position, 3, GL_FLOAT, GL_FALSE, stride, nullptr);
  if (withNormals) {
    gl.glEnableVertexAttribArray(normal);
    gl.glVertexAttribPointer(normal, 3, GL_FLOAT, GL_FALSE, stride,
                             reinterpret_cast<const void*>(offsetof(Corner, normal)));
  } else {
    gl.glDisableVertexAttribArray(normal);
    gl.glVertexAttrib3f(normal, 0, 1, 0);
  }
  gl.glDrawArrays(mode, 0, vertices);
}

}  // namespace vuk::gui::viewport
