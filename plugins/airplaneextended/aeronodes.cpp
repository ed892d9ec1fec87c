// The airplane's nodes: their meshes, where Create puts them, and what each
// writes in a frame.

#include <cmath>

#include "plugins/airplaneextended/airplaneextendedobject.h"
#include "plugins/common/filterresponse.h"
#include "plugins/common/spinkeys.h"

namespace vuk::rgw::addon {

namespace {

using Matrix = CAeroCamObject::Matrix;
using Vector = CAeroCamObject::Vector;
using Quat = CAeroCamObject::Quat;

// Adds a box of that size about the centre.
void AddBox(util::CMesh& mesh, const Vector& size, const Vector& centre) {
  const util::CMesh_Box box(size.x, size.y, size.z);
  const auto first = static_cast<std::int32_t>(mesh.vertices.size());
  for (const Vector& corner : box.vertices) mesh.vertices.push_back(corner + centre);
  for (std::int32_t corner : box.faces) mesh.faces.push_back(first + corner);
}

// A node's local pose at a time with its scale, as the snapshot gives it.
void WriteLocal(const ToolNode& node, double time, const Matrix& local) {
  if (const TransformSnapshot snapshot = node.Transform(time)) snapshot->SetLocalTransform(local);
}

Matrix Placed(const Vector& at) {
  Matrix pose;
  pose.SetTranslation(at);
  return pose;
}

}  // namespace

CAeroCamObject::CMesh_PlaneBodyMesh::CMesh_PlaneBodyMesh() {
  AddBox(*this, {0.3, 0.3, 2.0}, {});                 // fuselage
  AddBox(*this, {3.6, 0.05, 0.5}, {0, 0, 0.1});       // wings
  AddBox(*this, {1.0, 0.04, 0.3}, {0, 0, 0.85});      // tailplane
  AddBox(*this, {0.04, 0.45, 0.3}, {0, 0.3, 0.85});   // fin
}

CAeroCamObject::CMesh_AttachToMesh::CMesh_AttachToMesh(double size) {
  AddBox(*this, {size, 0.05 * size, 0.05 * size}, {});
  AddBox(*this, {0.05 * size, size, 0.05 * size}, {});
  AddBox(*this, {0.05 * size, 0.05 * size, size}, {});
}

CAeroCamObject::CMesh_PropellerMesh::CMesh_PropellerMesh() {
  AddBox(*this, {0.9, 0.1, 0.03}, {});
  AddBox(*this, {0.08, 0.08, 0.15}, {});  // hub
}

CAeroCamObject::CMesh_RudderMesh::CMesh_RudderMesh() { AddBox(*this, {0.03, 0.35, 0.2}, {0, 0, 0.1}); }

CAeroCamObject::CMesh_ElevatorMesh::CMesh_ElevatorMesh() { AddBox(*this, {0.5, 0.03, 0.15}, {0, 0, 0.075}); }

CAeroCamObject::CMesh_AileronRightMesh::CMesh_AileronRightMesh() { AddBox(*this, {0.9, 0.03, 0.15}, {0.45, 0, 0.075}); }

CAeroCamObject::CMesh_AileronLeftMesh::CMesh_AileronLeftMesh() { AddBox(*this, {0.9, 0.03, 0.15}, {-0.45, 0, 0.075}); }

void CAeroCamObject::CPlaneBodyNode::Create() {
  CreateHelper(CMesh_PlaneBodyMesh());
  WriteLocal(*this, plane.iface->GetTime(), Matrix());
}

void CAeroCamObject::CPlaneBodyNode::Update(double time) {
  Matrix pose = plane.cAeroCam.ring.CurrentMatrix();
  const double scale = plane.cAeroCam.params.dRelativeScale;
  for (int axis = 0; axis < 3; ++axis) pose.SetAxis(axis, pose.Axis(axis) * scale);
  WriteLocal(*this, time, pose);
}

void CAeroCamObject::CBodyRelocatorNode::Create() {
  // Drawn half again the body's size, so it stays in reach around it.
  CreateHelper(CMesh_AttachToMesh(1.5), plane.body.handle);
  WriteLocal(*this, plane.iface->GetTime(), Matrix());
}

PoseRecord CAeroCamObject::CBodyRelocatorNode::Read(double time, double& answeredTime) const {
  const TransformSnapshot snapshot = Transform(time);
  answeredTime = snapshot ? snapshot->GetTime() : time;
  Matrix pose = snapshot ? snapshot->GetWorldTransform() : Matrix();
  for (int axis = 0; axis < 3; ++axis) pose.SetAxis(axis, pose.Axis(axis).Normalized());
  return {pose.GetTranslation(), pose.ToQuat()};
}

void CAeroCamObject::CTargetNode::Create() {
  CreateHelper(CMesh_AttachToMesh());
  // Ahead of the airplane, where autonomous mode has something to follow.
  WriteLocal(*this, owner->iface->GetTime(), Placed({0, 0, -30}));
}

void CAeroCamObject::CTurningNode::CreatePart(const util::CMesh& mesh) {
  CreateHelper(mesh, plane.body.handle);
  WriteLocal(*this, plane.iface->GetTime(), Placed(offset));
}

CAeroCamObject::Quat CAeroCamObject::CTurningNode::AxisTurn(double angle) const {
  Vector unit;
  (axis == 0 ? unit.x : axis == 1 ? unit.y : unit.z) = 1;
  return Quat::FromAxisAngle(unit, angle);
}

void CAeroCamObject::CTurningNode::Measure(double time, double angle) {
  const Matrix local = Local(time);
  base = AxisTurn(angle).Conjugate() * local.ToQuat();
  scale = {local.Axis(0).Length(), local.Axis(1).Length(), local.Axis(2).Length()};
}

void CAeroCamObject::CTurningNode::Turn(double time, double angle, const Vector& place) const {
  Matrix local = Matrix::FromQuat(AxisTurn(angle) * base);
  local.SetAxis(0, local.Axis(0) * scale.x);
  local.SetAxis(1, local.Axis(1) * scale.y);
  local.SetAxis(2, local.Axis(2) * scale.z);
  local.SetTranslation(place);
  WriteLocal(*this, time, local);
}

void CAeroCamObject::CTurningNode::Spin(double time, double dt, double former, double angle,
                                        double largestTurn) const {
  const SpinKeys extra = spinKeys(angle - former, largestTurn);
  const Vector from = Place(time - dt), to = Place(time);
  for (int i = 0; i < extra.count; ++i) {
    const SpinKey& key = extra.keys[i];
    Turn(time - dt * (1 - key.fraction), former + key.turn, from + (to - from) * key.fraction);
  }
  Turn(time, angle, to);
}

void CAeroCamObject::CCockpitCamNode::Create() {
  CreateCamera(plane.body.handle);
  WriteLocal(*this, plane.iface->GetTime(), Placed({0, 0.35, -0.5}));
}

void CAeroCamObject::CFollowCamNode::Create() {
  CreateCamera();
  present = {{0, 2, dDistance}, {}};
  present = stage = Wanted();
  const double now = plane.iface->GetTime();
  if (const TransformSnapshot snapshot = Transform(now)) snapshot->SetWorldTransform(Matrix::FromPose(present));
  if (const LensSnapshot lens = Lens(now)) lens->SetFOV(dFieldOfView);
}

void CAeroCamObject::CFollowCamNode::Settle(double time) {
  Matrix pose = World(time);
  for (int axis = 0; axis < 3; ++axis) pose.SetAxis(axis, pose.Axis(axis).Normalized());
  present = stage = pose.ToPose();
}

util::QTransform<double> CAeroCamObject::CFollowCamNode::Wanted() const {
  const PoseRecord& body = plane.cAeroCam.Pose();
  const double scale = plane.cAeroCam.params.dRelativeScale;
  if (plane.settings.bFollowCamAllDirections) {
    Vector behind = body.rotation.Rotate({0, 0.2 * dDistance, dDistance});
    behind.y *= 0.8;
    return {body.position + behind * scale, body.rotation};
  }
  const Vector away = (present.translation - body.position).Normalized();
  if (std::fabs(away.y) == 1) return present;
  // Level sideways, with the world's up on the camera's upper side.
  Vector side = Vector(away.z, 0, -away.x).Normalized();
  Vector up = away.Cross(side);
  if (up.y < 0) {
    side = side * -1.0;
    up = up * -1.0;
  }
  Matrix look;
  look.SetAxis(0, side);
  look.SetAxis(1, up);
  look.SetAxis(2, away);
  Quat rotation = look.ToQuat();
  const Quat& now = present.rotation;
  if (std::fabs(rotation.x - now.x) + std::fabs(rotation.y - now.y) + std::fabs(rotation.z - now.z) +
          std::fabs(rotation.w - now.w) >
      1) {
    rotation = -rotation;
  }
  return {body.position + away * (scale * dDistance) + Vector(0, 2 * scale, 0), rotation};
}

void CAeroCamObject::CFollowCamNode::Update(double time) {
  const double dt = plane.iface->GetFrameDuration();
  const bool all = plane.settings.bFollowCamAllDirections;
  const double turn = all ? dAllDirectionsRotation : dPlainRotation;
  const double move = all ? dAllDirectionsTranslation : dPlainTranslation;
  const util::QTransform<double> wanted = Wanted();
  filterResponseQuatClamped(stage.rotation, wanted.rotation, turn, dt);
  filterResponseQuatClamped(present.rotation, stage.rotation, turn, dt);
  filterResponseVector(stage.translation, wanted.translation, move, dt);
  filterResponseVector(present.translation, stage.translation, move, dt);
  if (const TransformSnapshot snapshot = Transform(time)) snapshot->SetWorldTransform(Matrix::FromPose(present));
}

}  // namespace vuk::rgw::addon
