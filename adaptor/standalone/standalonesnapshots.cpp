#include "adaptor/standalone/standalonesnapshots.h"

#include <algorithm>

#include "adaptor/standalone/standaloneadaptorinterface.h"
#include "adaptor/standalone/standalonenode.h"

namespace vuk::rgw::adaptor::standalone {

SceneNode& SnapshotState::Host() const { return *node->GetHostNode(); }

namespace {

Scene& SceneOf(const SnapshotState& state) { return state.node->GetAdaptor()->GetScene(); }

}  // namespace

void StandaloneSnapshot::SetLocalTransform(const Matrix& matrix) { SceneOf(*this).WriteLocal(&Host(), tick, matrix); }

Matrix StandaloneSnapshot::GetLocalTransform() { return Host().Local(tick); }

Matrix StandaloneSnapshot::GetWorldTransform() { return Host().World(tick); }

void StandaloneSnapshot::SetWorldTransform(const Matrix& matrix) { SceneOf(*this).WriteWorld(&Host(), tick, matrix); }

void StandaloneSnapshot_Helper::SetMesh(const util::CMesh& mesh) { Host().SetMesh(mesh); }

util::CMesh StandaloneSnapshot_Helper::GetMesh() { return Host().mesh; }

void StandaloneSnapshot_Helper::SetWireframe(bool wireframe) { Host().wireframe = wireframe; }

void StandaloneSnapshot_Helper::SetBackfaceCull(bool cull) { Host().backfaceCull = cull; }

void StandaloneSnapshot_Mesh::SetMesh(const util::CMesh& mesh) { Host().SetMesh(mesh); }

util::CMesh StandaloneSnapshot_Mesh::GetMesh() { return Host().mesh; }

bool StandaloneSnapshot_Mesh::IntersectRay(const Vector3& origin, const Vector3& direction, double* distance,
                                           Vector3* normal) {
  RayHit hit;
  if (!Host().RayTree().Intersect(origin, direction, hit)) return false;
  if (distance) *distance = hit.distance;
  if (normal) *normal = hit.normal;
  return true;
}

void StandaloneSnapshot_Lens::SetFOV(double degrees) {
  SceneOf(*this).WriteLens(&Host(), &CameraData::fovDegrees, tick, degrees);
}

double StandaloneSnapshot_Lens::GetFOV() { return Host().camera.fovDegrees.At(tick).value; }

std::int32_t StandaloneSnapshot_Lens::GetFOVType() { return Host().camera.fovType; }

void StandaloneSnapshot_Lens::SetFOVType(std::int32_t type) {
  if (type >= 0 && type <= 2) Host().camera.fovType = type;
}

void StandaloneSnapshot_Lens::SetTargetDistance(double distance) {
  SceneOf(*this).WriteLens(&Host(), &CameraData::targetDistance, tick, distance);
}

double StandaloneSnapshot_Lens::GetTargetDistance() { return Host().camera.targetDistance.At(tick).value; }

std::int32_t StandaloneSnapshot_Shape::GetSplineCount() {
  return static_cast<std::int32_t>(Host().shape.splines.size());
}

std::int32_t StandaloneSnapshot_Shape::SetCurrentSpline(std::int32_t index) {
  currentSpline = std::max(0, std::min(index, GetSplineCount() - 1));
  return currentSpline;
}

double StandaloneSnapshot_Shape::GetLength() {
  const auto& splines = Host().shape.splines;
  return splines.empty() ? 0.0 : ShapeData::Length(splines[static_cast<std::size_t>(currentSpline)]);
}

Vector3 StandaloneSnapshot_Shape::GetPoint(double u) {
  const auto& splines = Host().shape.splines;
  return splines.empty() ? Vector3() : ShapeData::PointAt(splines[static_cast<std::size_t>(currentSpline)], u);
}

Vector3 StandaloneSnapshot_Shape::GetTangent(double u) {
  const Vector3 ahead = GetPoint(std::clamp(u + 0.001, 0.0, 1.0));
  const Vector3 behind = GetPoint(std::clamp(u - 0.001, 0.0, 1.0));
  return (ahead - behind).Normalized();
}

}  // namespace vuk::rgw::adaptor::standalone
