// Where a wheel stands: once a frame each wheel casts a ray down from above
// its mount onto every round of the ground and keeps the nearest ground,
// fans rays about its axle so that a ground cutting into the rim lifts it,
// and hands the core its hit point, compression and the distance it rolled.

#include <cmath>
#include <limits>

#include "plugins/carextended/carextendedobject.h"
#include "plugins/common/filterresponse.h"
#include "plugins/common/spinkeys.h"

namespace vuk::rgw::addon {

namespace {

using Vector = CCarCamObject::Vector;
using Rotation = util::Quat<double>;

// A slot that found no ground.
constexpr double kNoGround = std::numeric_limits<double>::max();
// Where the ray starts above the mount, in car lengths, besides the ride height.
constexpr double kRayStartRel = 0.2742857142857143;
constexpr double kHalfPi = 1.5707963267948966;
constexpr double kRadiansPerDegree = kHalfPi / 90;

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
  KeepDrop();
}

void CCarCamObject::CWheelNode::KeepDrop() {
  const CCarCam& core = car.cCarCam;
  formerDrop = (core.WheelMountWorld(index) - position).Dot(core.rotation.Rotate({0, 1, 0}));
}

bool CCarCamObject::CWheelNode::CastNearest(const GroundRay& ray, GroundHit& nearest) const {
  nearest.distance = kNoGround;
  GroundHit hit;
  for (std::size_t round = 0; round < car.ground.Rounds(); ++round) {
    if (car.ground.Cast(round, ray, hit) && hit.distance < nearest.distance) nearest = hit;
  }
  return nearest.distance < kNoGround;
}

bool CCarCamObject::CWheelNode::CastCentre(std::size_t round, const Vector& mount, const Vector& up, double radius,
                                           Stand& stand) const {
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
  GroundRay ray{origin, -up, GroundRayLength(core.params.dSuspensionLengthRel, radius)};
  GroundHit hit;
  // A miss may mean the ground rose above the origin: try again higher, up
  // to two car lengths.
  for (double risen = 0; !car.ground.Cast(round, ray, hit); risen += rise) {
    if (!(risen < 2 * core.dLength)) return false;
    ray.origin += up * rise;
    offset += rise;
  }
  const double height = hit.distance - offset - radius;
  stand = {mount - up * height, height, ray.origin + ray.direction * hit.distance, hit.normal, false};
  return true;
}

void CCarCamObject::CWheelNode::CastRimRays(const Vector& up, double radius, Stand& stand) const {
  const CarToolSettings& settings = car.settings;
  const double step = settings.dDegreesPerRay * kRadiansPerDegree;
  int n = settings.iRayMultiplier - 1;
  // The highest ray stays short of the wheel's side.
  if (n * step > kHalfPi) n = static_cast<int>(kHalfPi / step);
  const int side = settings.bCastRaysAtWheelEdges ? 1 : 0;
  const Vector axle = car.cCarCam.WheelRotation(index).Rotate({1, 0, 0});
  const Vector forward = up.Cross(axle).Normalized();
  const double halfWidth = car.cCarCam.wheels[index].radius * kWheelWidthRel * 0.5;
  GroundHit hit;
  for (int k = -side; k <= side; ++k) {
    for (int i = -n; i <= n; ++i) {
      if (k == 0 && i == 0) continue;  // the centre ray's
      const double angle = i * step;
      const GroundRay ray{stand.centre + axle * (halfWidth * k), -up * std::cos(angle) + forward * std::sin(angle),
                          radius};
      if (!CastNearest(ray, hit) || !(hit.distance < radius)) continue;
      const double across = std::sin(angle) * hit.distance;
      const double lift = std::sqrt(radius * radius - across * across) - std::cos(angle) * hit.distance;
      stand.centre += up * lift;
      stand.height -= lift;
      stand.hitPoint = ray.origin + ray.direction * hit.distance;
      stand.normal = hit.normal;
      stand.inTheAir = false;
    }
  }
}

void CCarCamObject::CWheelNode::ReleaseFromGround(const Vector& mount, const Vector& up, double radius,
                                                  Stand& stand) const {
  const double extension = radius * car.cCarCam.params.dSuspensionLengthRel;
  const double velocity = car.settings.dMaxWheelExtensionVelRel;
  double drop = (mount - stand.centre).Dot(up);
  if (extension != 0 && drop >= extension) {
    drop = extension;
    stand.inTheAir = true;
  }
  const double reach = radius * velocity * car.iface->GetFrameDuration();
  if (velocity != 0 && drop > formerDrop + reach) {
    drop = formerDrop + reach;
    stand.inTheAir = true;
  }
  stand.centre = mount - up * drop;
  // Hanging free, it stands on nothing: the base isn't laid on the ground
  // it let go of.
  if (stand.inTheAir) stand.hitPoint = stand.centre - up * radius;
}

void CCarCamObject::CWheelNode::Update(double time) {
  (void)time;
  CCarCam& core = car.cCarCam;
  CarWheel& wheel = core.wheels[index];
  formerPosition = position;
  const Vector up = core.rotation.Rotate({0, 1, 0});
  const double radius = wheel.radius * core.params.dWheelRadiusMult;
  const Vector mount = core.WheelMountWorld(index);
  // Hanging free at full extension, unless a ray finds ground.
  const double hanging = radius * core.params.dSuspensionLengthRel;
  Stand stand{mount - up * hanging, hanging, mount - up * (hanging + radius), up, true};
  Stand found{};
  for (std::size_t round = 0; round < car.ground.Rounds(); ++round) {
    if (CastCentre(round, mount, up, radius, found) && (stand.inTheAir || found.height < stand.height)) {
      stand = found;
    }
  }
  const bool release = car.settings.bEnableWheelGroundRelease;
  if (car.settings.iRayMultiplier > 1) CastRimRays(up, radius, stand);
  if (release) ReleaseFromGround(mount, up, radius, stand);
  heightAboveGround = stand.height;
  hitPoint = stand.hitPoint;
  normal = stand.normal;
  if (stand.inTheAir) {
    position = stand.centre;
  } else {
    // "Tire Pressure": how fast the wheel follows the ground's edges.
    filterResponseVectorClamped(position, stand.centre, car.settings.fSurfaceEdgeResponseFactor,
                                car.iface->GetFrameDuration());
  }
  const Vector chassisUp = core.ChassisRotation().Rotate({0, 1, 0});
  wheel.ground = {hitPoint, normal, stand.inTheAir, core.CompressionAt(index, position - chassisUp * radius),
                  (position - formerPosition).Length()};
  KeepDrop();
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
  const SpinKeys extra = spinKeys(wheel.pitchTurn);
  for (int k = 0; k < extra.count; ++k) {
    const SpinKey& key = extra.keys[k];
    const double yaw = formerYaw + key.fraction * (wheel.yaw - formerYaw);
    const Rotation turned = Rotation::FromAxisAngle({1, 0, 0}, wheel.totalPitchFormer + key.turn) *
                            Rotation::FromAxisAngle({0, 1, 0}, yaw) * core.ChassisRotation();
    WritePose(time - dt * (1 - key.fraction), formerPosition + (position - formerPosition) * key.fraction, turned);
  }
  WritePose(time, position, core.WheelRotation(index));
  formerYaw = wheel.yaw;
}

}  // namespace vuk::rgw::addon
