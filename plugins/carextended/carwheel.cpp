// Where a wheel stands: once a frame each wheel casts a ray down from above
// its mount onto every round of the ground, keeps the nearest ground, and
// hands the core its hit point, compression and the distance it rolled.

#include <cmath>
#include <limits>

#include "plugins/carextended/carextendedobject.h"
#include "plugins/common/filterresponse.h"
#include "plugins/common/vehicle/wheelkeys.h"

namespace vuk::rgw::addon {

namespace {

using Vector = CCarCamObject::Vector;
using Rotation = util::Quat<double>;

// A slot that found no ground.
constexpr double kNoGround = std::numeric_limits<double>::max();
// Where the ray starts above the mount, in car lengths, besides the ride height.
constexpr double kRayStartRel = 0.2742857142857143;

}  // namespace

CCarCamObject::CWheelNode::CWheelNode(CCarCamObject& object, std::size_t wheel)
    : CHelperNode(object, std::string("WheelMesh") + kWheelSuffixes[wheel]), index(wheel) {}

void CCarCamObject::CWheelNode::Create() {
  CreateHelper(CMesh_WheelMesh());
  const CarWheel& wheel = car.cCarCam.wheels[index];
  WritePose(car.iface->GetTime(), {wheel.x, wheel.radius, wheel.z}, {});
}

void CCarCamObject::CWheelNode::Reset() {
  CCarCam& core = car.cCarCam;
  CarWheel& wheel = core.wheels[index];
  const Vector up = core.rotation.Rotate({0, 1, 0});
  // At rest the wheel stands the ride height below its mount, its shrunk
  // radius above the base.
  heightAboveGround = -core.dRideHeight;
  position = formerPosition = core.WheelMountWorld(index) - up * heightAboveGround;
  hitPoint = position - up * (wheel.radius * core.params.dWheelRadiusMult);
  normal = up;
  formerYaw = wheel.yaw;
  wheel.ground = {hitPoint, normal, false, core.CompressionAt(index, hitPoint), 0};
  wheel.hitPointFormer = hitPoint;
}

bool CCarCamObject::CWheelNode::CastCentre(std::size_t round, const Vector& mount, const Vector& up, double radius,
                                           Slot& slot) const {
  const CCarCam& core = car.cCarCam;
  const double start = core.dLength * kRayStartRel + core.dRideHeight - radius;
  // A rig whose wheels stand above that start still rises by a radius per miss.
  const double rise = start > 0 ? start : radius;
  Vector origin = mount + up * start;
  double offset = start;
  // A car that rose far above where its wheel was casts from nearer the wheel.
  const double above = (origin - formerPosition).Dot(up) - start;
  if (above > 2 * radius) {
    origin -= up * (2 * above);
    offset -= 2 * above;
  }
  const Vector down = -up;
  const double length = (core.params.dSuspensionLengthRel + 1.0) * radius * 1000.0;
  double distance = 0;
  Vector hitNormal;
  // A miss may mean the ground rose above the origin: try again higher, up
  // to two car lengths.
  for (double risen = 0; !car.CastGround(round, origin, down, length, distance, hitNormal); risen += rise) {
    if (!(risen < 2 * core.dLength)) return false;
    origin += up * rise;
    offset += rise;
  }
  slot = {distance - offset - radius, origin + down * distance, hitNormal};
  return true;
}

void CCarCamObject::CWheelNode::Update(double time) {
  (void)time;
  CCarCam& core = car.cCarCam;
  CarWheel& wheel = core.wheels[index];
  formerPosition = position;
  const Vector up = core.rotation.Rotate({0, 1, 0});
  const double radius = wheel.radius * core.params.dWheelRadiusMult;
  const Vector mount = core.WheelMountWorld(index);
  Slot nearest{kNoGround, {}, {}};
  Slot slot{};
  for (std::size_t round = 0; round < car.GroundRounds(); ++round) {
    if (CastCentre(round, mount, up, radius, slot) && slot.height < nearest.height) nearest = slot;
  }
  const bool onGround = nearest.height < kNoGround;
  if (onGround) {
    heightAboveGround = nearest.height;
    // "Tire Pressure": how fast the wheel follows the ground's edges.
    filterResponseVectorClamped(position, mount - up * nearest.height, car.settings.fSurfaceEdgeResponseFactor,
                                car.iface->GetFrameDuration());
    hitPoint = nearest.hitPoint;
    normal = nearest.normal;
  } else {
    // Hanging free at full extension.
    heightAboveGround = radius * core.params.dSuspensionLengthRel;
    position = mount - up * heightAboveGround;
    normal = up;
    hitPoint = position - up * radius;
  }
  const Vector chassisUp = core.ChassisRotation().Rotate({0, 1, 0});
  wheel.ground = {hitPoint, normal, !onGround, core.CompressionAt(index, position - chassisUp * radius),
                  (position - formerPosition).Length()};
}

void CCarCamObject::CWheelNode::WritePose(double time, const Vector& at, const Rotation& rotation) const {
  if (const TransformSnapshot snapshot = Transform(time)) {
    snapshot->SetWorldTransform(Posed(at, rotation, car.cCarCam.wheels[index].radius));
  }
}

void CCarCamObject::CWheelNode::WriteTurn(double time) {
  const CCarCam& core = car.cCarCam;
  const CarWheel& wheel = core.wheels[index];
  const double dt = car.iface->GetFrameDuration();
  const ExtraWheelKeys extra = extraWheelKeys(wheel.totalPitchFormer, wheel.pitchTurn, formerYaw, wheel.yaw);
  for (int k = 0; k < extra.count; ++k) {
    const WheelKey& key = extra.keys[k];
    const Rotation turned = Rotation::FromAxisAngle({1, 0, 0}, key.pitch) *
                            Rotation::FromAxisAngle({0, 1, 0}, key.yaw) * core.ChassisRotation();
    WritePose(time - dt * (1 - key.fraction), formerPosition + (position - formerPosition) * key.fraction, turned);
  }
  WritePose(time, position, core.WheelRotation(index));
  formerYaw = wheel.yaw;
}

}  // namespace vuk::rgw::addon
