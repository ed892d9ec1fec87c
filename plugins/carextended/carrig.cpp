// The 4-Wheeler's rig: what a fresh run measures from the body and the
// relocators, where its base stands, how fast it starts, and how the base
// is laid on the ground the wheels found.

#include <cmath>

#include "plugins/carextended/carextendedobject.h"

namespace vuk::rgw::addon {

namespace {

using Matrix = CCarCamObject::Matrix;
using Vector = CCarCamObject::Vector;
using Rotation = util::Quat<double>;

constexpr char kWarning[] = "Warning";
constexpr char kNonUniformBody[] =
    "Nonuniform scaling is not allowed on the body since it would affect children.\nThe 4-wheeler body will now "
    "rescale to become uniform.\nWhen scaling only the length of the dummy is of importance.\nModify the shape by "
    "editing the mesh.";
constexpr char kWheelsDisplaced[] =
    "In the rigging process the wheels should be moved and scaled with the WheelRelocatorMesh:es.\nUse the "
    "WheelCenterMesh:es for suspension and particles.";

bool Usable(const Vector& v) { return std::isfinite(v.Length()) && v.Length() > 0; }

// The rotation whose up is `up` and whose front (minus Z) lies along
// `forward` as near as it can; none when the two don't span a plane.
bool FrameFrom(const Vector& forward, const Vector& up, Rotation& rotation) {
  const Vector right = up.Cross(-forward);
  if (!Usable(right) || !Usable(up)) return false;
  const Vector y = up.Normalized();
  const Vector x = right.Normalized();
  Matrix axes;
  axes.SetAxis(0, x);
  axes.SetAxis(1, y);
  axes.SetAxis(2, x.Cross(y));
  rotation = axes.ToQuat();
  return true;
}

Vector Midpoint(const Vector& a, const Vector& b) { return (a + b) * 0.5; }

}  // namespace

void CCarCamObject::ResetCore() {
  // A fresh run starts from rest with the rig and the settings it has.
  CCarCam fresh;
  fresh.params = cCarCam.params;
  for (std::size_t i = 0; i < kCarInputCount; ++i) {
    fresh.inputs[i].responseFactor = cCarCam.inputs[i].responseFactor;
    fresh.inputs[i].maximum = cCarCam.inputs[i].maximum;
  }
  fresh.dLength = cCarCam.dLength;
  fresh.dRideHeight = cCarCam.dRideHeight;
  for (std::size_t i = 0; i < kWheels; ++i) {
    const CarWheel& rig = cCarCam.wheels[i];
    fresh.wheels[i].radius = rig.radius;
    fresh.wheels[i].x = rig.x;
    fresh.wheels[i].z = rig.z;
  }
  cCarCam = fresh;
}

void CCarCamObject::MeasureRig(double time) {
  CCarCam& core = cCarCam;
  Matrix bodyPose = body.World(time);
  const double length = bodyPose.Axis(2).Length();
  // A body squashed to nothing has no rig to measure: the car keeps its own.
  if (!(length > 0) || !std::isfinite(length)) return;
  bool uniform = true;
  for (int axis = 0; axis < 2; ++axis) uniform = uniform && std::fabs(bodyPose.Axis(axis).Length() / length - 1.0) <= 0.001;
  if (!uniform) {
    iface->MessageBox(kNonUniformBody, kWarning, box::kWarning);
    for (int axis = 0; axis < 2; ++axis) bodyPose.SetAxis(axis, bodyPose.Axis(axis).Normalized() * length);
    if (const TransformSnapshot snapshot = body.Transform(time)) snapshot->SetWorldTransform(bodyPose);
  }
  core.dLength = length;
  const Rotation bodyRotation = bodyPose.ToQuat();
  const Vector bodyAt = bodyPose.GetTranslation();
  const Rotation toBody = bodyRotation.Conjugate();

  std::array<Vector, kWheels> centres;
  std::array<double, kWheels> radii{};
  bool displaced = false;
  for (std::size_t i = 0; i < kWheels; ++i) {
    const Matrix relocator = wheelRelocators[i].World(time);
    radii[i] = relocator.Axis(1).Length();
    centres[i] = toBody.Rotate(relocator.GetTranslation() - bodyAt);
    // A wheel level with the chassis origin is nudged along its axle.
    if (centres[i].y < radii[i] * 1e-05) {
      centres[i] = toBody.Rotate(relocator.GetTranslation() - relocator.Axis(0) * 0.001 - bodyAt);
    }
    displaced = displaced || (wheels[i].World(time).GetTranslation() - relocator.GetTranslation()).Length() > 0.01 * length;
  }
  if (displaced) iface->MessageBox(kWheelsDisplaced, kWarning, box::kWarning);

  // The base, in the body's frame: its front from the back axle's middle to
  // the front axle's, its up across that, its plane through the wheels'
  // lowest points.
  using W = CCarCam::WheelIndex;
  const Vector forward = Midpoint(centres[W::kFrontLeft], centres[W::kFrontRight]) -
                         Midpoint(centres[W::kBackLeft], centres[W::kBackRight]);
  const Vector across = Midpoint(centres[W::kFrontRight], centres[W::kBackRight]) -
                        Midpoint(centres[W::kFrontLeft], centres[W::kBackLeft]);
  Rotation baseInBody;
  if (!FrameFrom(forward, across.Cross(forward), baseInBody)) baseInBody = {};
  const Vector up = baseInBody.Rotate({0, 1, 0});
  Vector lowest;
  for (std::size_t i = 0; i < kWheels; ++i) lowest += (centres[i] - up * radii[i]) * 0.25;
  core.dRideHeight = -lowest.Dot(up);
  const Vector baseInBodyAt = up * -core.dRideHeight;
  const Rotation toBase = baseInBody.Conjugate();
  for (std::size_t i = 0; i < kWheels; ++i) {
    const Vector wheelInBase = toBase.Rotate(centres[i] - baseInBodyAt);
    core.wheels[i].radius = radii[i];
    core.wheels[i].x = wheelInBase.x;
    core.wheels[i].z = wheelInBase.z;
  }
  core.rotation = baseInBody * bodyRotation;
  core.position = bodyAt + bodyRotation.Rotate(baseInBodyAt);
  if (const TransformSnapshot snapshot = chassisRelocator.Transform(time)) {
    snapshot->SetWorldTransform(Posed(bodyAt, core.rotation, 0.05 * length));
  }
}

double CCarCamObject::StartVelocity(double time) {
  const CarChannel& gas = cCarCam.inputs[pcInput_GAS_PEDAL];
  CInterface::Property* pedal = inputControls[pcInput_GAS_PEDAL];
  // A slight push on the stick before the run.
  const double raw = pedal ? pedal->Evaluate() : 0.0;
  if (std::fabs(raw) > 0.01) return raw * gas.maximum;
  // A body keyed in motion keeps its speed.
  const double dt = iface->GetFrameDuration();
  const Vector moved = body.World(time).GetTranslation() - body.World(time - dt).GetTranslation();
  const double keyed = moved.Dot(cCarCam.rotation.Rotate({0, 0, -1})) / dt / cCarCam.dLength;
  if (std::fabs(keyed) > 0.01) return keyed;
  return settings.gauges.dInitialVelocityPercent / 100 * gas.maximum;
}

void CCarCamObject::LayBaseOnGround() {
  CCarCam& core = cCarCam;
  if (core.bCarInTheAir) return;
  using W = CCarCam::WheelIndex;
  const Vector back = Midpoint(core.wheels[W::kBackLeft].ground.hitPoint, core.wheels[W::kBackRight].ground.hitPoint);
  const Vector frontLeft = core.wheels[W::kFrontLeft].ground.hitPoint;
  const Vector frontRight = core.wheels[W::kFrontRight].ground.hitPoint;
  const Vector toLeft = frontLeft - back, toRight = frontRight - back;
  if (!Usable(toLeft) || !Usable(toRight)) return;
  const Vector up = toRight.Normalized().Cross(toLeft.Normalized());
  if (!Usable(up)) return;
  const Vector newUp = up.Normalized();
  core.rotation = (core.rotation * Rotation::FromTo(core.rotation.Rotate({0, 1, 0}), newUp)).Normalized();
  // Where the chassis's down line meets the plane of the three points.
  const Vector chassis = core.ChassisPosition();
  const Vector down = -core.ChassisRotation().Rotate({0, 1, 0});
  const double along = down.Dot(newUp);
  if (std::fabs(along) < 1e-12) return;
  const double s = (back - chassis).Dot(newUp) / along;
  core.position = chassis + down * s;
}

}  // namespace vuk::rgw::addon
