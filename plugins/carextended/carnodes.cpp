// The 4-Wheeler's helper nodes: their meshes, where Create puts them, and
// what each writes in a frame. The wheel's ground detection is in
// carwheel.cpp.

#include <cmath>

#include "plugins/carextended/carextendedobject.h"
#include "plugins/common/filterresponse.h"

namespace vuk::rgw::addon {

namespace {

using Matrix = CCarCamObject::Matrix;
using Vector = CCarCamObject::Vector;
using Rotation = util::Quat<double>;

constexpr double kHalfPi = 1.5707963267948966;

// Appends a mesh with every vertex put through `place`.
template <typename Place>
void Append(util::CMesh& to, const util::CMesh& part, Place place) {
  const auto base = static_cast<std::int32_t>(to.vertices.size());
  for (const Vector& vertex : part.vertices) to.vertices.push_back(place(vertex));
  for (std::int32_t index : part.faces) to.faces.push_back(base + index);
}

void AppendBox(util::CMesh& to, const Vector& size, const Vector& centre) {
  Append(to, util::CMesh_Box(size.x, size.y, size.z), [&centre](const Vector& v) { return v + centre; });
}

// The body's proportions: the default car's height and width over its length.
constexpr double kBodyWidth = 1.361 / 3.522;
constexpr double kBodyHeight = 1.002 / 3.522;

}  // namespace

Matrix CCarCamObject::Posed(const Vector& at, const Rotation& rotation, double scale) {
  Matrix pose = Matrix::FromQuat(rotation);
  for (int axis = 0; axis < 3; ++axis) pose.SetAxis(axis, pose.Axis(axis) * scale);
  pose.SetTranslation(at);
  return pose;
}

CCarCamObject::CMesh_CarBodyMesh::CMesh_CarBodyMesh() {
  // A low hull and a cabin behind its middle, above the body's origin.
  AppendBox(*this, {kBodyWidth, kBodyHeight * 0.55, 1.0}, {0, kBodyHeight * 0.3, 0});
  AppendBox(*this, {kBodyWidth * 0.85, kBodyHeight * 0.4, 0.45}, {0, kBodyHeight * 0.75, 0.08});
}

CCarCamObject::CMesh_WheelMesh::CMesh_WheelMesh() {
  // The cylinder stands on Y; a quarter turn about Z lays its axle on X. The
  // bar across its face shows the spin.
  const auto axleOnX = [](const Vector& v) { return Vector(v.y, -v.x, v.z); };
  Append(*this, util::CMesh_Cylinder(16, 1.0, kWheelWidthRel), axleOnX);
  Append(*this, util::CMesh_Box(0.25, 0.85, 1.9), axleOnX);
}

CCarCamObject::CMesh_ArrowMesh::CMesh_ArrowMesh() {
  AppendBox(*this, {0.1, 0.04, 0.6}, {0, 0, 0.1});
  const auto tip = static_cast<std::int32_t>(vertices.size());
  vertices.push_back({0, 0, -0.6});
  vertices.push_back({-0.25, 0, -0.2});
  vertices.push_back({0.25, 0, -0.2});
  faces.insert(faces.end(), {tip, tip + 1, tip + 2});
}

CCarCamObject::CMesh_GravityArrowMesh::CMesh_GravityArrowMesh() {
  // The arrow turned a quarter about X, from minus Z to minus Y.
  Append(*this, CMesh_ArrowMesh(), [](const Vector& v) { return Vector(v.x, v.z, -v.y); });
}

CCarCamObject::CMesh_BoxMesh::CMesh_BoxMesh() { Assign(util::CMesh_Box(1, 1, 1)); }

void CCarCamObject::CCarBodyNode::Create() {
  CreateHelper(CMesh_CarBodyMesh());
  const CCarCam& core = car.cCarCam;
  if (const TransformSnapshot snapshot = Transform(car.iface->GetTime())) {
    snapshot->SetWorldTransform(Posed({0, core.dRideHeight, 0}, {}, core.dLength));
  }
}

void CCarCamObject::CCarBodyNode::Update(double time) {
  const CCarCam& core = car.cCarCam;
  if (const TransformSnapshot snapshot = Transform(time)) {
    snapshot->SetWorldTransform(Posed(core.ChassisPosition(), core.ChassisRotation(), core.dLength));
  }
}

void CCarCamObject::CBaseMeshNode::Update(double time) {
  const CCarCam& core = car.cCarCam;
  if (const TransformSnapshot snapshot = Transform(time)) {
    snapshot->SetWorldTransform(Posed(core.position, core.rotation, core.dLength));
  }
}

void CCarCamObject::CChassisRelocatorNode::Create() {
  CreateHelper(CMesh_BoxMesh(), car.body.handle);
  if (const TransformSnapshot snapshot = Transform(car.iface->GetTime())) {
    snapshot->SetLocalTransform(Posed({}, {}, 0.05));
  }
}

CCarCamObject::CWheelRelocatorNode::CWheelRelocatorNode(CCarCamObject& object, std::size_t wheel)
    : CHelperNode(object, std::string("WheelRelocatorMesh") + kWheelSuffixes[wheel]), index(wheel) {}

void CCarCamObject::CWheelRelocatorNode::Create() {
  CreateHelper(CMesh_WheelMesh(), car.body.handle);
  const CarWheel& wheel = car.cCarCam.wheels[index];
  if (const TransformSnapshot snapshot = Transform(car.iface->GetTime())) {
    snapshot->SetWorldTransform(Posed({wheel.x, wheel.radius, wheel.z}, {}, wheel.radius));
  }
}

CCarCamObject::CWheelCenterNode::CWheelCenterNode(CCarCamObject& object, std::size_t wheel)
    : CHelperNode(object, std::string("WheelCenterMesh") + kWheelSuffixes[wheel]), index(wheel) {}

void CCarCamObject::CWheelCenterNode::Update(double time) {
  const CCarCam& core = car.cCarCam;
  const CWheelNode& wheel = car.wheels[index];
  const CarToolSettings& settings = car.settings;
  Rotation rotation = settings.bFixateWheelCenterNodes
                          ? core.ChassisRotation()
                          : Rotation::FromAxisAngle({0, 1, 0}, core.wheels[index].yaw) * core.ChassisRotation();
  if (settings.bAlignWheelCenterToIncline) {
    rotation = rotation * Rotation::FromTo(rotation.Rotate({0, 1, 0}), wheel.normal);
  }
  const Vector at = settings.bMoveWheelCenterToHitPoint ? wheel.hitPoint : wheel.position;
  if (const TransformSnapshot snapshot = Transform(time)) {
    snapshot->SetWorldTransform(Posed(at, rotation, core.wheels[index].radius * 0.3));
  }
}

CCarCamObject::CWheelCenterSuspensionNode::CWheelCenterSuspensionNode(CCarCamObject& object, std::size_t wheel)
    : CHelperNode(object, std::string("WheelCenterSuspensionMesh") + kWheelSuffixes[wheel]), index(wheel) {}

void CCarCamObject::CWheelCenterSuspensionNode::Update(double time) {
  const CCarCam& core = car.cCarCam;
  if (const TransformSnapshot snapshot = Transform(time)) {
    snapshot->SetWorldTransform(
        Posed(car.wheels[index].position, core.ChassisRotation(), core.wheels[index].radius * 0.2));
  }
}

void CCarCamObject::CSteeringWheelNode::Create() {
  CreateHelper(CMesh_WheelMesh(), car.body.handle);
  // In front of the driver's seat, its axle pointing at the driver.
  const Rotation facing = Rotation::FromAxisAngle({0, 1, 0}, kHalfPi);
  if (const TransformSnapshot snapshot = Transform(car.iface->GetTime())) {
    snapshot->SetLocalTransform(Posed({-kBodyWidth * 0.22, kBodyHeight * 0.8, -0.05}, facing, 0.045));
  }
}

void CCarCamObject::CSteeringWheelNode::Update(double time) {
  const double turn = car.cCarCam.inputs[pcInput_STEERING_WHEEL].value * -5.0 * car.settings.dSteeringWheelRotMult;
  if (const TransformSnapshot snapshot = Transform(time)) {
    snapshot->SetLocalTransform(Matrix::FromQuat(Rotation::FromAxisAngle({1, 0, 0}, turn)) * mInit_loc);
  }
}

void CCarCamObject::CTargetNode::Create() {
  CreateHelper(CMesh_BoxMesh());
  const double length = car.cCarCam.dLength;
  if (const TransformSnapshot snapshot = Transform(car.iface->GetTime())) {
    snapshot->SetWorldTransform(Posed({0, length * 0.25, -3 * length}, {}, length * 0.1));
  }
}

void CCarCamObject::CGravityDirectionNode::Create() {
  CreateHelper(CMesh_GravityArrowMesh());
  const double length = car.cCarCam.dLength;
  if (const TransformSnapshot snapshot = Transform(car.iface->GetTime())) {
    snapshot->SetWorldTransform(Posed({0, length, 0}, {}, length * 0.3));
  }
}

void CCarCamObject::CGravityDirectionNode::Read(double time) {
  pose = World(time);
  CCarCam& core = car.cCarCam;
  const Vector down = -pose.Axis(1);
  // A node squashed flat gives no direction: the car keeps the one it has.
  if (down.Length() > 0) core.vGravityDirection = down.Normalized();
  core.qGravityAttitude = pose.ToQuat();
}

void CCarCamObject::CGravityDirectionNode::Update(double time) {
  // Surfaces linked below it would ride along with the car.
  if (handle && handle->GetSceneChildCount() > 0) return;
  const CCarCam& core = car.cCarCam;
  Matrix above = pose;
  above.SetTranslation(core.ChassisPosition() + core.rotation.Rotate({0, core.dLength * 0.6, 0}));
  if (const TransformSnapshot snapshot = Transform(time)) snapshot->SetWorldTransform(above);
}

void CCarCamObject::CExternalForceNode::Create() {
  CreateHelper(CMesh_ArrowMesh(), car.body.handle);
  // Pushing down, to the right and back, at a point above the body; the
  // node's down axis is the direction.
  const Vector up = Vector(-1, 1, -1).Normalized();
  const Vector side = up.Cross({0, 0, 1}).Normalized();
  Matrix local;
  local.SetAxis(0, side * 0.1);
  local.SetAxis(1, up * 0.1);
  local.SetAxis(2, side.Cross(up) * 0.1);
  local.SetTranslation({0, 1, 0});
  if (const TransformSnapshot snapshot = Transform(car.iface->GetTime())) snapshot->SetLocalTransform(local);
}

void CCarCamObject::CExternalForceNode::Update(double time) {
  const Matrix local = Local(time);
  CCarCam& core = car.cCarCam;
  const Vector down = -local.Axis(1);
  if (down.Length() > 0) core.vExternalForceDirection = down.Normalized();
  core.vExternalForcePoint = local.GetTranslation();
}

void CCarCamObject::CRelativeTurnBaseNode::Create() {
  CreateHelper(CMesh_BoxMesh(), car.base.handle);
  Update(car.iface->GetTime());
}

void CCarCamObject::CRelativeTurnBaseNode::Update(double time) {
  const CCarCam& core = car.cCarCam;
  if (const TransformSnapshot snapshot = Transform(time)) {
    snapshot->SetLocalTransform(Posed({0, 0, core.TurnBaseZ() / core.dLength}, {}, 0.03));
  }
}

void CCarCamObject::CDriverCamNode::Create() {
  CreateCamera(car.body.handle);
  // The driver's eyes, looking ahead; unscaled in the world.
  const double length = car.cCarCam.dLength;
  if (const TransformSnapshot snapshot = Transform(car.iface->GetTime())) {
    snapshot->SetLocalTransform(Posed({-kBodyWidth * 0.22, kBodyHeight * 0.95, 0.05}, {}, 1 / length));
  }
}

util::QTransform<double> CCarCamObject::CFollowCamNode::Wanted() const {
  const CCarCam& core = car.cCarCam;
  const double length = core.dLength;
  // Behind and above, looking slightly down along the car.
  const Rotation rotation = Rotation::FromAxisAngle({1, 0, 0}, -0.2) * core.rotation;
  return {core.ChassisPosition() + core.rotation.Rotate({0, length * 0.6, length * 1.8}), rotation};
}

void CCarCamObject::CFollowCamNode::Settle() { inner = outer = Wanted(); }

void CCarCamObject::CFollowCamNode::Create() {
  CreateCamera();
  Settle();
  if (const TransformSnapshot snapshot = Transform(car.iface->GetTime())) {
    snapshot->SetWorldTransform(Posed(outer.translation, outer.rotation, 1));
  }
}

void CCarCamObject::CFollowCamNode::Update(double time) {
  const double dt = car.iface->GetFrameDuration();
  const util::QTransform<double> wanted = Wanted();
  filterResponseVector(inner.translation, wanted.translation, kResponse, dt);
  filterResponseQuat(inner.rotation, wanted.rotation, kResponse, dt);
  filterResponseVector(outer.translation, inner.translation, kResponse, dt);
  filterResponseQuat(outer.rotation, inner.rotation, kResponse, dt);
  if (const TransformSnapshot snapshot = Transform(time)) {
    snapshot->SetWorldTransform(Posed(outer.translation, outer.rotation, 1));
  }
}

void CCarCamObject::CTopViewCamNode::Create() {
  CreateCamera();
  Update(car.iface->GetTime());
}

void CCarCamObject::CTopViewCamNode::Update(double time) {
  const CCarCam& core = car.cCarCam;
  // Looking straight down, the car's front at the top of the picture.
  const Rotation down = Rotation::FromAxisAngle({1, 0, 0}, -kHalfPi) * core.rotation;
  if (const TransformSnapshot snapshot = Transform(time)) {
    snapshot->SetWorldTransform(Posed(core.ChassisPosition() + Vector(0, core.dLength * 4, 0), down, 1));
  }
}

}  // namespace vuk::rgw::addon
