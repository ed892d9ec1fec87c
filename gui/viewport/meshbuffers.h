#pragma once
// One node's mesh on the graphics card: its triangles apart, each corner with
// its face's normal, for flat shading; and for a mesh that may be drawn as
// wires, each edge once.

#include <QOpenGLBuffer>
#include <QOpenGLFunctions>
#include <cstdint>

#include "util/mesh.h"

namespace vuk::gui::viewport {

// Where the drawing program takes a vertex's position and normal.
struct Attributes {
  int position = -1;
  int normal = -1;
};

class MeshBuffers {
 public:
  // With the drawing context current. Triangles with an index outside the
  // vertices are left out.
  void Upload(const util::CMesh& mesh, std::uint64_t revision, bool withEdges);
  // The mesh revision uploaded, and whether its edges were.
  bool Holds(std::uint64_t revision, bool withEdges) const {
    return uploaded_ && revision_ == revision && (hasEdges_ || !withEdges);
  }

  void DrawFaces(QOpenGLFunctions& gl, const Attributes& attributes);
  void DrawEdges(QOpenGLFunctions& gl, const Attributes& attributes);

 private:
  QOpenGLBuffer faces_{QOpenGLBuffer::VertexBuffer};
  QOpenGLBuffer edges_{QOpenGLBuffer::VertexBuffer};
  int faceVertices_ = 0;
  int edgeVertices_ = 0;
  std::uint64_t revision_ = 0;
  bool uploaded_ = false;
  bool hasEdges_ = false;
};

// Draws what a bound buffer holds: lines of positions alone, or triangles of
// positions and normals interleaved. Outside a buffer's normals, the normal
// is constant, so that lines light as their plain colour.
void DrawBound(QOpenGLFunctions& gl, const Attributes& attributes, GLenum mode, int vertices, bool withNormals);

}  // namespace vuk::gui::viewport
