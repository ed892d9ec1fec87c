#pragma once
// A plain triangle mesh. Tools give one to a helper node for its look; fixed
// shapes derive from it and fill the arrays in their constructor.

#include <cstdint>
#include <vector>

#include "util/matrix.h"
#include "util/vector3.h"

namespace vuk::util {

class CMesh {
 public:
  CMesh() = default;
  CMesh(const CMesh&) = default;
  CMesh& operator=(const CMesh&) = default;
  // A copy with every vertex put through the matrix: the vehicle tools hand
  // ground meshes to Bullet in world space this way.
  CMesh(const CMesh& source, const Matrix<double>& transform);
  virtual ~CMesh() = default;

  virtual void Assign(const CMesh& other);

  std::vector<Vector3<double>> vertices;
  std::vector<Vector3<double>> textureVertices;
  // Three indices per triangle.
  std::vector<std::int32_t> faces;
  std::vector<std::int32_t> textureFaces;
};

// Centred on the origin; x changes fastest over the eight corners, then y, then z.
class CMesh_Box : public CMesh {
 public:
  CMesh_Box(double width, double height, double depth);
};

// The vehicle tools' wheel meshes. Rings about the Y axis at plus and minus
// half the height, with caps.
// Vertices: the upper ring (0 to segments - 1), the lower ring, then the
// upper and the lower cap centre.
class CMesh_Cylinder : public CMesh {
 public:
  CMesh_Cylinder(int segments, double radius, double height);
};

}  // namespace vuk::util
