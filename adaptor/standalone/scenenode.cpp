#include "adaptor/standalone/scenenode.h"

#include <algorithm>

namespace vuk::rgw::adaptor::standalone {

using util::Vector3;

double ShapeData::Length(const std::vector<Vector3<double>>& spline) {
  double length = 0;
  for (std::size_t i = 1; i < spline.size(); ++i) length += (spline[i] - spline[i - 1]).Length();
  return length;
}

Vector3<double> ShapeData::PointAt(const std::vector<Vector3<double>>& spline, double u) {
  if (spline.empty()) return {};
  const double wanted = std::clamp(u, 0.0, 1.0) * Length(spline);
  double walked = 0;
  for (std::size_t i = 1; i < spline.size(); ++i) {
    const double segment = (spline[i] - spline[i - 1]).Length();
    if (segment > 0 && walked + segment >= wanted) {
      return spline[i - 1] + (spline[i] - spline[i - 1]) * ((wanted - walked) / segment);
    }
    walked += segment;
  }
  return spline.back();
}

util::Matrix<double> SceneNode::World(Tick tick) const {
  util::Matrix<double> world = Local(tick);
  for (const SceneNode* up = parent; up && !up->isRoot; up = up->parent) world = up->Local(tick) * world;
  return world;
}

bool SceneNode::IsInScene() const {
  const SceneNode* node = this;
  while (node->parent) node = node->parent;
  return node->isRoot;
}

void SceneNode::SetMesh(const util::CMesh& newMesh) {
  mesh.Assign(newMesh);
  ++meshRevision;
  rayTree_.reset();
}

const MeshRayTree& SceneNode::RayTree() const {
  if (!rayTree_) rayTree_ = std::make_unique<MeshRayTree>(mesh);
  return *rayTree_;
}

}  // namespace vuk::rgw::adaptor::standalone
