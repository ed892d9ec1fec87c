// The helicopter's nodes: their meshes, where Create puts them, and what
// each writes in a frame.

#include <cmath>

#include "plugins/common/filterresponse.h"
#include "plugins/common/spinkeys.h"
#include "plugins/helicopter/helicopterobject.h"

namespace vuk::rgw::addon {

namespace {

using Matrix = CHeliCamObject::Matrix;
using Vector = CHeliCamObject::Vector;
using Rotation = CHeliCamObject::Rotation;
using Pose = util::QTransform<double>;

constexpr double kPi = 3.141592653589793;
// The chase's factors of rotation and translation, in each mode.
constexpr double kAllDirectionsRotation = 0.2, kAllDirectionsTranslation = 0.3;
constexpr double kPlainRotation = 0.3, kPlainTranslation = 0.2;

void AppendBox(util::CMesh& to, const Vector& size, const Vector& centre) {
  const util::CMesh_Box box(size.x, size.y, size.z);
  const auto base = static_cast<std::int32_t>(to.vertices.size());
  for (const Vector& vertex : box.vertices) to.vertices.push_back(vertex + centre);
  for (std::int32_t index : box.faces) to.faces.push_back(base + index);
}

// Two crossed blades of a rotor of that radius, turning about Y or else X.
void AppendBlades(util::CMesh& to, double radius, bool aboutY) {
  const double span = 2 * radius, chord = radius * 0.08, depth = radius * 0.015;
  if (aboutY) {
    AppendBox(to, {span, depth, chord}, {});
    AppendBox(to, {chord, depth, span}, {});
  } else {
    AppendBox(to, {depth, span, chord}, {});
    AppendBox(to, {depth, chord, span}, {});
  }
}

Matrix Posed(const Pose& pose) { return Matrix::FromPose(pose); }

// The sum of the components' differences: how far apart two quaternions
// are, as the chase tells the two covers of one rotation apart.
double Apart(const Rotation& a, const Rotation& b) {
  return std::fabs(a.x - b.x) + std::fabs(a.y - b.y) + std::fabs(a.z - b.z) + std::fabs(a.w - b.w);
}

}  // namespace

// The regulator's box is 1.64 long, 0.93 wide and 0.73 high.
CHeliCamObject::CMesh_HelicopterBodyMesh::CMesh_HelicopterBodyMesh() {
  AppendBox(*this, {0.93, 0.5, 1.64}, {0, 0, 0});
  AppendBox(*this, {0.7, 0.23, 0.8}, {0, 0.365, -0.1});
  AppendBox(*this, {0.12, 0.12, 1.0}, {0, 0.12, 1.3});
  AppendBox(*this, {0.04, 0.4, 0.25}, {0, 0.3, 1.7});
}

CHeliCamObject::CMesh_MainRotorMesh::CMesh_MainRotorMesh() { AppendBlades(*this, 1.2, true); }

CHeliCamObject::CMesh_TailRotorMesh::CMesh_TailRotorMesh() { AppendBlades(*this, 0.25, false); }

void CHeliCamObject::CHelicopterBodyNode::Create() {
  CreateHelper(CMesh_HelicopterBodyMesh());
  if (const TransformSnapshot snapshot = Transform(heli.iface->GetTime())) snapshot->SetLocalTransform(Matrix());
}

PoseRecord CHeliCamObject::CHelicopterBodyNode::Read(double time) const {
  const Matrix pose = World(time);
  return {pose.GetTranslation(), pose.ToQuat()};
}

void CHeliCamObject::CHelicopterBodyNode::Update(double time) {
  Matrix pose = heli.plant.poses().CurrentMatrix();
  for (int axis = 0; axis < 3; ++axis) pose.SetAxis(axis, pose.Axis(axis) * heli.dRelativeScale);
  if (const TransformSnapshot snapshot = Transform(time)) snapshot->SetLocalTransform(pose);
}

void CHeliCamObject::CRotorNode::Place(const util::CMesh& mesh) {
  CreateHelper(mesh, heli.body.handle);
  if (const TransformSnapshot snapshot = Transform(heli.iface->GetTime())) {
    snapshot->SetLocalTransform(Posed({offset, {}}));
  }
}

void CHeliCamObject::CRotorNode::Update(double time) {
  const double dt = heli.iface->GetFrameDuration();
  const double angle = speed * kPi / 180;
  // The turn goes on from last frame's key, which is final.
  const Matrix former = Local(time - dt);
  const auto write = [&](double at, double turn) {
    if (const TransformSnapshot snapshot = Transform(at)) {
      snapshot->SetLocalTransform(former * Matrix::FromQuat(Rotation::FromAxisAngle(axis, turn)));
    }
  };
  const SpinKeys extra = spinKeys(angle);
  for (int k = 0; k < extra.count; ++k) write(time - dt * (1 - extra.keys[k].fraction), extra.keys[k].turn);
  write(time, angle);
}

void CHeliCamObject::CCockpitCamNode::Create() {
  CreateCamera(heli.body.handle);
  // The pilot's eyes in the cabin, looking ahead along the nose.
  if (const TransformSnapshot snapshot = Transform(heli.iface->GetTime())) {
    snapshot->SetLocalTransform(Posed({{0, 0.35, -0.45}, {}}));
  }
}

void CHeliCamObject::CFollowCamNode::Create() {
  CreateCamera();
  // Behind the body and above it, looking along the nose.
  const double height = 0.2 * kFollowDistance;
  if (const TransformSnapshot snapshot = Transform(heli.iface->GetTime())) {
    snapshot->SetWorldTransform(Posed({{0, height, kFollowDistance}, {}}));
  }
}

void CHeliCamObject::CFollowCamNode::ReadPresent(double time) {
  present = World(time - heli.iface->GetFrameDuration()).ToPose();
  if (Apart(present.rotation, heli.plant.rotation()) > 1.0) present.rotation = -present.rotation;
}

void CHeliCamObject::CFollowCamNode::Prepare(double time, bool fresh) {
  ReadPresent(time);
  firstStage = fresh ? present : heli.history.FollowCamAt(time - heli.iface->GetFrameDuration());
}

Pose CHeliCamObject::CFollowCamNode::Wanted() const {
  const double scale = heli.dRelativeScale;
  const Vector body = heli.plant.position();
  const Rotation& rotation = heli.plant.rotation();
  if (heli.bFollowAllDirections) {
    Vector behind = rotation.Rotate({0, 0.2 * kFollowDistance, kFollowDistance});
    behind.y *= 0.8;
    return {body + behind * scale, rotation};
  }
  // Looking at the body from where the camera is, its up on the world's side.
  const Vector back = (present.translation - body).Normalized();
  if (std::fabs(back.y) == 1) return present;
  // Up x back lies in the XZ plane, and back x side then always points up.
  const Vector side = Vector(back.z, 0, -back.x).Normalized();
  Matrix look;
  look.SetAxis(0, side);
  look.SetAxis(1, back.Cross(side).Normalized());
  look.SetAxis(2, back);
  Rotation turn = look.ToQuat();
  if (Apart(turn, present.rotation) > 1.0) turn = -turn;
  return {body + back * (scale * kFollowDistance) + Vector(0, 2 * scale, 0), turn};
}

void CHeliCamObject::CFollowCamNode::Update(double time) {
  const double dt = heli.iface->GetFrameDuration();
  ReadPresent(time);
  const Pose wanted = Wanted();
  const bool all = heli.bFollowAllDirections;
  const double rotation = all ? kAllDirectionsRotation : kPlainRotation;
  const double translation = all ? kAllDirectionsTranslation : kPlainTranslation;
  filterResponseQuatClamped(firstStage.rotation, wanted.rotation, rotation, dt);
  filterResponseQuatClamped(present.rotation, firstStage.rotation, rotation, dt);
  filterResponseVector(firstStage.translation, wanted.translation, translation, dt);
  filterResponseVector(present.translation, firstStage.translation, translation, dt);
  if (const TransformSnapshot snapshot = Transform(time)) snapshot->SetWorldTransform(Posed(present));
}

}  // namespace vuk::rgw::addon
