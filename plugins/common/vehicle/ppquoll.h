#pragma once
// The discrete linear-quadratic regulator of a body lifted by four
// thrusters: real-time, quaternion attitude, global linear velocity control,
// with yaw (W) and height (Y) as further references. It relinearises its
// model around the current tilt, advances the Riccati solution one round a
// step and turns the references and the state into four thrusts.
//
// Its frame: host X, Y, Z turned to (-Z, -X, Y), so the third axis is up
// and the body's thrust axis is its third axis.

#include <array>

#include "plugins/common/toolrandom.h"
#include "plugins/common/vehicle/ppmatrix.h"
#include "util/quat.h"
#include "util/vector3.h"

namespace vuk::rgw::addon {

// The regulator's tunable values. The initialiser sets these defaults; the
// first step copies them into the working model.
struct PPQuollParameters {
  double length = 1.64;  // body box a, b, c in model units
  double width = 0.93;
  double height = 0.73;
  double mass = 2.0;  // in units of 1000, like every force below
  double gravity = 9.81;
  double interval = 1.0 / 75;
  int relinearisationDivider = 1;
  // Height, velocity a, velocity b, yaw: seconds to travel one unit; 0 jumps.
  std::array<double, 4> referenceRates{1.0, 0.0, 0.0, 3.0};
  double qScale = 600.0;
  std::array<double, 2> velocityWeights{2500.0, 5000.0};
  double heightWeight = 1.5e9;
  double yawWeight = 1.55e9;
  std::array<double, 2> integratorWeights{1000000.0, 1000000.0};
  // The first two are also the yaw arms k1, k2 of the thruster pairs 1/4 and
  // 2/3. They stay non-zero: with 0 no thruster makes a yaw torque, and the
  // reference gain inverts a singular B'B.
  std::array<double, 3> rFactors{3.0, 1.5, 0.0};
  double thrustMax = 35000.0;
  double thrustMin = -35000.0;
  double yawChannelLimit = 50000.0;
  // h = modelGain x 25 x interval scales the model's actuator paths. With
  // 0.04 h is the interval itself, so the model's thrust and torque act as
  // strongly as the plant's; at 1/75 (h a third of the interval) the plant
  // answers three times harder than the gains expect and the yaw loop
  // overshoots into a spin.
  double modelGain = 0.04;
};

// The torque about the body's three axes of one unit of thrust from
// thruster 1 to 4; the model and the plant share it.
util::Vector3<double> thrusterTorque(int thruster, const PPQuollParameters& p);
// The body's inertias about its three axes for a mass.
util::Vector3<double> bodyInertia(const PPQuollParameters& p, double mass);

class PPQuollBase {
 public:
  virtual void initialise(double x, double y, double z) = 0;
  // "CreatedBy" gives one line of authorship; any other key comes back.
  virtual const char* text(const char* key) const = 0;
  // The angle of the line a to b in the plane, unwrapped across full turns.
  virtual double unwrappedHeading(double a1, double a2, double b1, double b2, double minDistance) = 0;
  // pow(base, v2) x v1 with a random base and sign that hold for a burst of
  // random length up to one second of dt steps.
  virtual double randomBurst(double dt, double v1, double v2) = 0;
  virtual ~PPQuollBase() = default;
};

class PPQuollRTQuatGlobLinVelocityControlWYNewNew : public PPQuollBase {
 public:
  // Thrusters 1 to 4, then the total lift beyond the weight; all times m / 1000.
  using Output = std::array<double, 5>;

  PPQuollRTQuatGlobLinVelocityControlWYNewNew() { initialise(0, 0, 0); }

  void initialise(double x, double y, double z) override;
  const char* text(const char* key) const override;
  double unwrappedHeading(double a1, double a2, double b1, double b2, double minDistance) override;
  double randomBurst(double dt, double v1, double v2) override;

  // Vectors and rotation in the regulator's frame, in model units.
  Output step(double refA, double refB, double refHeight, double refYaw, const util::Vector3<double>& position,
              const util::Vector3<double>& velocity, const util::Vector3<double>& angularVelocity,
              util::Quat<double> rotation, double positionFilter);

  // Starts over from the first step (zero Riccati solution, references set
  // to the targets) with the position references at a position.
  void restart(const util::Vector3<double>& position);

  PPQuollParameters parameters;

  const PPQuollParameters& model() const { return model_; }
  double yaw() const { return yaw_; }
  void setYaw(double yaw) { yaw_ = yaw; }
  const util::Quat<double>& tilt() const { return tilt_; }
  const PPMatrix& stateTransition() const { return A_; }
  const PPMatrix& controlInput() const { return B_; }
  const PPMatrix& controlWeight() const { return R_; }
  const PPMatrix& riccatiSolution() const { return P_; }
  const PPMatrix& feedbackGain() const { return K_; }
  const PPMatrix& referenceGain() const { return L_; }
  int riccatiRounds() const { return rounds_; }

 private:
  void firstStep(const double (&targets)[4], const util::Vector3<double>& position);
  void linearise();
  double riccatiRound();
  void computeGains();
  void shapeReferences(const double (&targets)[4]);
  Output control(const util::Vector3<double>& position, const util::Vector3<double>& velocity,
                 const util::Vector3<double>& angularRate);

  PPQuollParameters model_;
  PPMatrix A_, B_, Bt_, Q_, R_, P_, Pprevious_, C_, K_, L_, x_, r_, uHover_;
  util::Quat<double> tilt_;
  double yaw_ = 0;
  std::array<double, 4> shaped_{};  // height, velocity a, velocity b, yaw
  std::array<double, 2> positionReference_{};
  bool firstTime_ = true;
  int rounds_ = 0;
  int steps_ = 0;

  // Unwrapped heading.
  bool headingStarted_ = false;
  double heading_ = 0;
  int turns_ = 0;

  // Random burst: the generator is the regulator's own, so a take
  // resimulates bit for bit; it is reseeded from a counting time value.
  ToolRandom random_;
  int burstLeft_ = -1;
  unsigned burstTime_ = 0;
  double burstBase_ = 0.5;
  double burstSign_ = 1;
};

}  // namespace vuk::rgw::addon
