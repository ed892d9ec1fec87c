#pragma once
// The body the regulator steers: a rigid box under four thrusters, gravity,
// air resistance and wind, advanced in sub-steps of at most 0.013 s from six
// filtered input channels. Position and rotation are the scene's (Y up, the
// tool's units); velocities are in model units, the angular velocity in the
// body's own axes.

#include <array>

#include "plugins/common/posering.h"
#include "plugins/common/toolrandom.h"
#include "plugins/common/vehicle/ppquoll.h"
#include "util/quat.h"
#include "util/vector3.h"

namespace vuk::rgw::addon {

struct PlantChannel {
  PlantChannel(const char* channelName, double response, double max)
      : name(channelName), responseFactor(response), maximum(max) {}

  const char* name;
  double raw = 0;
  double value = 0;
  double memory = 0;
  double responseFactor;
  double currentResponse = 0;
  double maximum;
};

// What a restart takes over from the run before it.
struct PlantInputRecord {
  struct Channel {
    double value = 0;
    double memory = 0;
  };
  std::array<Channel, 6> channels{};
  double heightReference = 0;  // model units
  double yawReference = 0;
  double yaw = 0;  // the regulator's integrated yaw
};

class HelicopterPlant {
 public:
  enum ChannelIndex { kForward, kRight, kUpDown, kYaw, kBrake, kWind, kChannelCount };
  static constexpr double kMaxStep = 0.013;

  HelicopterPlant();

  // Rebuilds the plant from three past poses (newest first), dt apart. The
  // wind starts over: its filters and its generator.
  void reset(const PoseRecord& now, const PoseRecord& before, const PoseRecord& earlier,
             const PlantInputRecord& record, double dt);
  // One frame in equal sub-steps of at most 0.013 s.
  void advance(double dt);
  static int subStepCount(double dt);
  void stepOnce(double dt);
  // Raw inputs, external force and torque to zero.
  void clearInputs();
  // Back to a fresh plant.
  void dispose();

  // Scene units per model unit, kept within 1e-08 and 1e+16.
  void setScale(double scale);
  double scale() const { return scale_; }

  const util::Vector3<double>& position() const { return position_; }
  const util::Quat<double>& rotation() const { return rotation_; }
  const util::Vector3<double>& velocity() const { return velocity_; }
  const util::Vector3<double>& angularVelocity() const { return angularVelocity_; }
  double heightReference() const { return heightReference_; }
  double yawReference() const { return yawReference_; }
  const PoseRing& poses() const { return poses_; }
  const PPQuollRTQuatGlobLinVelocityControlWYNewNew::Output& thrusters() const { return thrusters_; }

  PPQuollRTQuatGlobLinVelocityControlWYNewNew regulator;
  std::array<PlantChannel, kChannelCount> channels;
  util::Vector3<double> externalForce;   // world
  util::Vector3<double> externalTorque;  // world
  // The drag is this times the speed, times the velocity.
  double airResistance = 0.003;
  // The wind's noise is raised to this power, sign kept: above 1 most gusts
  // fade and a few stay strong.
  double windIrregularity = 1.0;

 private:
  void inputStage(double dt);
  PPQuollRTQuatGlobLinVelocityControlWYNewNew::Output runRegulator(double positionFilter);

  PoseRing poses_;
  util::Vector3<double> position_;
  util::Quat<double> rotation_;
  util::Vector3<double> velocity_;
  util::Vector3<double> angularVelocity_;
  PPQuollRTQuatGlobLinVelocityControlWYNewNew::Output thrusters_{};
  std::array<double, 4> wind_{};
  double heightReference_ = 0;
  double yawReference_ = 0;
  double scale_ = 1.0;
  ToolRandom random_;
};

}  // namespace vuk::rgw::addon
