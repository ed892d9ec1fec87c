#pragma once
// Helper shapes put together from simple parts: each part placed by a
// matrix and appended, texture faces and all.

#include "util/matrix.h"
#include "util/mesh.h"

namespace vuk::rgw::addon {

// Appends `part` to `mesh`, each vertex put through `placement`.
void AppendPart(util::CMesh& mesh, const util::CMesh& part, const util::Matrix<double>& placement);
// A placement: scale along each axis, then a move.
util::Matrix<double> Placed(const util::Vector3<double>& offset, const util::Vector3<double>& scale = {1, 1, 1});

// A double pyramid of six corners: a round-looking marker of that radius.
class CMesh_Diamond : public util::CMesh {
 public:
  explicit CMesh_Diamond(double radius);
};

}  // namespace vuk::rgw::addon
