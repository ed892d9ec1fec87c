#include "plugins/common/vehicle/helicopterplant.h"

#include <algorithm>
#include <cmath>

#include "plugins/common/filterresponse.h"

namespace vuk::rgw::addon {

namespace {

using util::Quat;
using util::Vector3;

constexpr double kMinScale = 1e-08;
constexpr double kMaxScale = 1e+16;
constexpr double kWindFilter = 0.01;
constexpr int kSettleRuns = 100;
constexpr std::uint32_t kWindSeed = 1;

// The regulator's frame is the scene's X, Y, Z turned to (-Z, -X, Y): its
// first axis is the body's nose (-Z), its third is up.
Vector3<double> toRegulator(const Vector3<double>& v) { return {-v.z, -v.x, v.y}; }
Vector3<double> fromRegulator(const Vector3<double>& v) { return {-v.y, v.z, -v.x}; }
Quat<double> toRegulator(const Quat<double>& q) { return {-q.z, -q.x, q.y, q.w}; }

double uniformNoise(ToolRandom& random) { return (random.Next() - 16383) / 16383.0; }

}  // namespace

HelicopterPlant::HelicopterPlant()
    : channels{PlantChannel("Forw/Backw Speed", 0.1, 20), PlantChannel("Right/Left Speed", 0.1, 15),
               PlantChannel("Up/Down Speed", 0.06, 5), PlantChannel("Yaw Speed (Right/Left)", 0.4, 0.7),
               PlantChannel("Brake All", 0.02, 50), PlantChannel("Wind Turbulence Strength", 0.1, 10)} {}

void HelicopterPlant::setScale(double scale) { scale_ = std::clamp(scale, kMinScale, kMaxScale); }

void HelicopterPlant::reset(const PoseRecord& now, const PoseRecord& before, const PoseRecord& earlier,
                            const PlantInputRecord& record, double dt) {
  poses_.Fill({earlier.position, earlier.rotation.Normalized()});
  poses_.Next() = {before.position, before.rotation.Normalized()};
  poses_.Advance();
  poses_.Next() = {now.position, now.rotation.Normalized()};
  poses_.Advance();
  position_ = poses_.Current().position;
  rotation_ = poses_.Current().rotation;

  wind_ = {};
  random_.Seed(kWindSeed);
  const Vector3<double> modelPosition = toRegulator(position_ / scale_);
  regulator.restart(modelPosition);
  for (int i = 0; i < kChannelCount; ++i) {
    channels[i].value = record.channels[i].value;
    channels[i].memory = record.channels[i].memory;
    // The lags start soft and grow to their factors.
    channels[i].currentResponse = channels[i].responseFactor / 100;
  }
  heightReference_ = record.heightReference;
  if (std::fabs(modelPosition.z - heightReference_) > 1.0) heightReference_ = modelPosition.z;
  yawReference_ = record.yawReference;

  velocity_ = (now.position - before.position) / dt / scale_;
  // now x conjugate(before) is the turn since before in the body's own axes,
  // which is where the plant integrates its angular velocity.
  Quat<double> turn = poses_.Current().rotation * before.rotation.Normalized().Conjugate();
  if (turn.w < 0) turn = -turn;
  const Vector3<double> axis(turn.x, turn.y, turn.z);
  const double sine = axis.Length();
  angularVelocity_ = sine > 0 ? axis * (2 * std::atan2(sine, turn.w) / sine / dt) : Vector3<double>();

  for (int i = 0; i < kSettleRuns; ++i) thrusters_ = runRegulator(0);
  regulator.setYaw(record.yaw);
}

int HelicopterPlant::subStepCount(double dt) {
  // trunc(dt / 0.013), plus one where a remainder is left, so that no step
  // exceeds 0.013 s: the regulator's model is tuned for its 1/75 s interval,
  // and its yaw loop overshoots into a spin at the 1/60 s steps that a plain
  // trunc would give a 30 fps frame.
  const double whole = std::trunc(dt / kMaxStep);
  return std::max(1, static_cast<int>(whole) + (dt > whole * kMaxStep ? 1 : 0));
}

void HelicopterPlant::advance(double dt) {
  const int count = subStepCount(dt);
  const double step = dt / count;
  for (int i = 0; i < count; ++i) {
    inputStage(step);
    stepOnce(step);
  }
}

void HelicopterPlant::inputStage(double dt) {
  PlantChannel& brake = channels[kBrake];
  const bool braking = brake.raw != 0;
  if (braking) {
    channels[kForward].raw = 0;
    channels[kRight].raw = 0;
  } else {
    filterResponse(brake.value, 0, std::min(1.0, 2 * brake.currentResponse), dt);
  }
  // Wind acts on the first four channels. It is added to what the lags see,
  // not stored into the raws, which the owner sets once a frame: otherwise
  // it would pile up over the sub-steps.
  double input[kChannelCount];
  for (int i = 0; i < kChannelCount; ++i) input[i] = channels[i].raw;
  for (int i = 0; i < 4; ++i) {
    double noise = 0;
    if (!braking) {
      noise = channels[kWind].value * (i == kUpDown ? 0.3 : 1.0);
      double gust = 1;
      for (int draw = 0; draw < 5; ++draw) gust *= uniformNoise(random_);
      noise *= std::copysign(std::pow(std::fabs(gust), windIrregularity), gust);
    }
    filterResponse(wind_[i], noise, kWindFilter, dt);
    input[i] += wind_[i];
  }
  for (int i = 0; i < kChannelCount; ++i) {
    PlantChannel& channel = channels[i];
    filterResponse(channel.currentResponse, channel.responseFactor, 0.04, dt);
    filterResponse(channel.memory, input[i] * channel.maximum, channel.currentResponse, dt);
    filterResponse(channel.value, channel.memory, channel.currentResponse, dt);
  }
}

PPQuollRTQuatGlobLinVelocityControlWYNewNew::Output HelicopterPlant::runRegulator(double positionFilter) {
  const Vector3<double> worldRate = rotation_.Rotate(angularVelocity_);
  // The regulator's second axis points left (host minus X); the channel, as
  // its name and the yaw channel say, is positive to the right.
  return regulator.step(channels[kForward].value, -channels[kRight].value, heightReference_, yawReference_,
                        toRegulator(position_ / scale_), toRegulator(velocity_), toRegulator(worldRate),
                        toRegulator(rotation_), positionFilter);
}

void HelicopterPlant::stepOnce(double dt) {
  // 1.
  heightReference_ += dt * channels[kUpDown].value;
  yawReference_ += dt * -channels[kYaw].value;
  thrusters_ = runRegulator(channels[kBrake].value);
  const PPQuollParameters& p = regulator.model();

  // 2. The thrust acts along the body's up axis.
  const double lift = thrusters_[0] + thrusters_[1] + thrusters_[2] + thrusters_[3];
  Vector3<double> acceleration = rotation_.Rotate({0, lift / p.mass, 0}) + externalForce / p.mass;
  acceleration -= velocity_ * (airResistance * velocity_.Length());
  acceleration.y -= p.gravity;
  velocity_ += acceleration * dt;

  // 3. Torques about the regulator's body axes, then into the plant's.
  Vector3<double> torque = toRegulator(rotation_.Conjugate().Rotate(externalTorque));
  for (int i = 0; i < 4; ++i) torque += thrusterTorque(i + 1, p) * thrusters_[i];
  const Vector3<double> inertia = bodyInertia(p, p.mass);
  const Vector3<double> angularAcceleration(torque.x / inertia.x, torque.y / inertia.y, torque.z / inertia.z);
  angularVelocity_ += fromRegulator(angularAcceleration) * dt;

  // 4. A turn in the body's own axes acts before the rotation.
  rotation_ = (Quat<double>::FromRotationVector(angularVelocity_ * dt) * rotation_).Normalize();
  // 5. and 6.
  position_ += velocity_ * dt * scale_;
  poses_.Next() = {position_, rotation_};
  poses_.Advance();
}

void HelicopterPlant::clearInputs() {
  for (PlantChannel& channel : channels) channel.raw = 0;
  externalForce = {};
  externalTorque = {};
}

void HelicopterPlant::dispose() { *this = HelicopterPlant(); }

}  // namespace vuk::rgw::addon
