#include "plugins/common/vehicle/ppquoll.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "util/matrix.h"

namespace vuk::rgw::addon {

namespace {

using util::Matrix;
using util::Quat;
using util::Vector3;

constexpr int kStates = 12;
constexpr int kControls = 4;
constexpr int kReferences = 6;
constexpr double kPi = 3.14159265358979323846;
constexpr double kTwoPi = 2 * kPi;
// The tilt's lift in the model: thrust per unit of tilt, per 1000.
constexpr double kTiltLift = 500000.0 / 1000;
constexpr double kYawCoupling = 1.3;

// Element (row, col) of a rotation matrix, 0-based, in the usual
// column-vector sense.
double element(const Matrix<double>& m, int row, int col) { return m[4 * col + row]; }

}  // namespace

Vector3<double> thrusterTorque(int thruster, const PPQuollParameters& p) {
  // Thrusters 1 and 2 at the rear (-a/2), 1 and 3 on the side of -b/2; the
  // diagonal pairs 1/4 and 2/3 turn the body about its up axis by k1 and k2.
  const double roll = p.width / 2, pitch = p.length / 2;
  const double k1 = p.rFactors[0], k2 = p.rFactors[1];
  switch (thruster) {
    case 1:
      return {-roll, pitch, k1};
    case 2:
      return {roll, pitch, -k2};
    case 3:
      return {-roll, -pitch, -k2};
    default:
      return {roll, -pitch, k1};
  }
}

Vector3<double> bodyInertia(const PPQuollParameters& p, double mass) {
  const double a2 = p.length * p.length, b2 = p.width * p.width, c2 = p.height * p.height;
  return Vector3<double>(b2 + c2, a2 + c2, a2 + b2) * (mass / 12);
}

void PPQuollRTQuatGlobLinVelocityControlWYNewNew::initialise(double x, double y, double z) {
  parameters = PPQuollParameters();
  model_ = parameters;
  for (PPMatrix* square : {&A_, &Q_, &P_, &Pprevious_}) *square = PPMatrix(kStates, kStates);
  B_ = PPMatrix(kStates, kControls);
  Bt_ = PPMatrix(kControls, kStates);
  R_ = PPMatrix(kControls, kControls);
  C_ = PPMatrix(kStates, kReferences);
  K_ = PPMatrix(kControls, kStates);
  L_ = PPMatrix(kControls, kReferences);
  x_ = PPMatrix(kStates, 1);
  r_ = PPMatrix(kReferences, 1);
  uHover_ = PPMatrix(kControls, 1);
  tilt_ = Quat<double>();
  yaw_ = 0;
  shaped_ = {};
  rounds_ = 0;
  steps_ = 0;
  headingStarted_ = false;
  heading_ = 0;
  turns_ = 0;
  random_.Seed(1);
  burstLeft_ = -1;
  burstTime_ = 0;
  burstBase_ = 0.5;
  burstSign_ = 1;
  restart({x, y, z});
}

void PPQuollRTQuatGlobLinVelocityControlWYNewNew::restart(const Vector3<double>& position) {
  firstTime_ = true;
  positionReference_ = {position.x, position.y};
}

const char* PPQuollRTQuatGlobLinVelocityControlWYNewNew::text(const char* key) const {
  if (std::strcmp(key, "CreatedBy") == 0) return "Rigworks quad-thruster regulator, LQR with quaternion attitude";
  return key;
}

double PPQuollRTQuatGlobLinVelocityControlWYNewNew::unwrappedHeading(double a1, double a2, double b1, double b2,
                                                                     double minDistance) {
  const double dx = b1 - a1, dy = b2 - a2;
  const double lengthSquared = dx * dx + dy * dy;
  if (lengthSquared <= 1e-7 || std::sqrt(lengthSquared) < minDistance) return heading_;
  double angle = std::acos(dx / std::sqrt(lengthSquared));
  if (dy < 0) angle = kTwoPi - angle;
  if (headingStarted_) {
    const double turn = turns_ * kTwoPi;
    if (angle < kPi / 2 && heading_ > turn + 1.5 * kPi) ++turns_;
    if (angle > 1.5 * kPi && heading_ < turn + kPi / 2) --turns_;
  }
  headingStarted_ = true;
  heading_ = angle + turns_ * kTwoPi;
  return heading_;
}

double PPQuollRTQuatGlobLinVelocityControlWYNewNew::randomBurst(double dt, double v1, double v2) {
  if (burstLeft_ < 0) {
    random_.Seed(burstTime_++);
    // A dt above one second still gives bursts of one step.
    const int steps = std::max(1, static_cast<int>(std::trunc(1.0 / dt)));
    burstLeft_ = random_.Next() % steps;
    burstBase_ = (random_.Next() % 1000) / 100.0 - 5;
    burstSign_ = burstBase_ < 0 ? -1 : 1;
    burstBase_ = std::max(std::fabs(burstBase_), 0.5);
  }
  --burstLeft_;
  return std::pow(burstBase_, v2) * v1 * burstSign_;
}

PPQuollRTQuatGlobLinVelocityControlWYNewNew::Output PPQuollRTQuatGlobLinVelocityControlWYNewNew::step(
    double refA, double refB, double refHeight, double refYaw, const Vector3<double>& position,
    const Vector3<double>& velocity, const Vector3<double>& angularVelocity, Quat<double> rotation,
    double positionFilter) {
  // 1. Velocities into the body. The position stays in the regulator's
  // frame: its height and horizontal components are world states.
  rotation.Normalize();
  const Matrix<double> body = Matrix<double>::FromQuat(rotation);
  const Quat<double> toBody = rotation.Conjugate();
  const Vector3<double> bodyVelocity = toBody.Rotate(velocity);
  const Vector3<double> bodyRate = toBody.Rotate(angularVelocity);
  // 2.
  yaw_ += bodyRate.z * model_.interval;
  // 3.
  for (int i = 0; i < 2; ++i) {
    const double component = i == 0 ? position.x : position.y;
    positionReference_[i] += (component - positionReference_[i]) / (positionFilter + 1);
  }
  // 4. The up axis seen from the body (the rotation's third row) gives the
  // tilt; a body exactly upside down has no defined tilt axis and counts as
  // level.
  const double r0 = element(body, 2, 0), r1 = element(body, 2, 1), r2 = element(body, 2, 2);
  const double t = std::sqrt(r0 * r0 + r1 * r1);
  tilt_ = Quat<double>();
  if (t > 1e-5) {
    double angle = -std::asin(std::min(t, 1.0));
    if (r2 < 0) angle = kPi - angle;
    tilt_ = Quat<double>::FromAxisAngle({-r1 / t, r0 / t, 0}, angle);
  }
  const Matrix<double> level = Matrix<double>::FromQuat(tilt_);
  const Vector3<double> levelVelocity = level.TransformVector(bodyVelocity);
  const Vector3<double> levelRate = level.TransformVector(bodyRate);
  const double targets[4] = {refHeight, refA, refB, refYaw};
  // 5.
  if (firstTime_) firstStep(targets, position);
  // 6. to 8.
  if (steps_++ % model_.relinearisationDivider == 0) {
    linearise();
    if (rounds_ == 0) {
      double change;
      do {
        change = riccatiRound();
      } while (change > 0.1 && rounds_ < 50);
    } else {
      riccatiRound();
    }
    computeGains();
  }
  // 9. to 11.
  shapeReferences(targets);
  return control(position, levelVelocity, levelRate);
}

void PPQuollRTQuatGlobLinVelocityControlWYNewNew::firstStep(const double (&targets)[4],
                                                           const Vector3<double>& position) {
  model_ = parameters;
  P_.setZero();
  // The hover thrusts carry the weight without turning the body: the
  // diagonal pairs' yaw arms differ, so equal thrusts would spin it and the
  // feedback, which has no yaw integrator, would hold it a little off.
  const double weight = model_.gravity * 1000;
  const double k1 = model_.rFactors[0], k2 = model_.rFactors[1];
  const double pair14 = k1 + k2 != 0 ? k2 / (k1 + k2) : 0.5;
  uHover_(1, 1) = uHover_(4, 1) = weight * pair14 / 2;
  uHover_(2, 1) = uHover_(3, 1) = weight * (1 - pair14) / 2;
  Pprevious_.setIdentity();
  Pprevious_.scale(2);
  A_.setIdentity();
  A_.diagonal = false;  // its off-diagonal terms come with each linearisation
  A_.symmetric = false;
  C_.setZero();
  const int selected[kReferences] = {1, 2, 3, 10, 11, 12};
  for (int j = 1; j <= kReferences; ++j) C_(selected[j - 1], j) = 1;
  std::copy(std::begin(targets), std::end(targets), shaped_.begin());
  positionReference_ = {position.x, position.y};
  firstTime_ = false;
}

void PPQuollRTQuatGlobLinVelocityControlWYNewNew::linearise() {
  const PPQuollParameters& p = model_;
  const Vector3<double> inertia = bodyInertia(p, 1000);
  const double h = p.modelGain * 25 * p.interval;
  const double dt = p.interval;

  Q_.setZero();
  // Height, two velocities, then nothing on the rates and the tilt, yaw and
  // the two position integrators.
  const double weights[kStates + 1] = {0,
                                       p.heightWeight,
                                       p.velocityWeights[0],
                                       p.velocityWeights[1],
                                       0,
                                       0,
                                       0,
                                       0,
                                       0,
                                       0,
                                       p.yawWeight,
                                       p.integratorWeights[0],
                                       p.integratorWeights[1]};
  for (int i = 1; i <= kStates; ++i) Q_(i, i) = weights[i] * p.qScale;
  Q_.diagonal = true;
  Q_.symmetric = true;
  R_.setIdentity();
  R_.scale(p.rFactors[0] * p.rFactors[1]);
  // R has four rows; this fifth entry lies outside it and changes nothing.
  R_(5, 5) = p.rFactors[2] * p.rFactors[0];

  const Matrix<double> level = Matrix<double>::FromQuat(tilt_);
  const double w = tilt_.w, q1 = tilt_.x, q2 = tilt_.y;
  for (int thruster = 1; thruster <= kControls; ++thruster) {
    const Vector3<double> torque = thrusterTorque(thruster, p);
    const Vector3<double> angular(torque.x * h / inertia.x, torque.y * h / inertia.y, torque.z * h / inertia.z);
    for (int j = 0; j < 3; ++j) {
      B_(2 + j, thruster) = h / 1000 * element(level, j, 2);
      B_(5 + j, thruster) = element(level, j, 0) * angular.x + element(level, j, 1) * angular.y +
                            element(level, j, 2) * angular.z;
    }
  }

  A_(1, 4) = h;
  A_(2, 9) = h * kTiltLift * 2 * w;
  A_(3, 8) = -h * kTiltLift * 2 * w;
  A_(4, 8) = h * kTiltLift / 100 * (-2 * q1);
  A_(4, 9) = h * kTiltLift / 100 * (-2 * q2);
  const double c = std::cos(yaw_), s = std::sin(yaw_);
  A_(11, 2) = h * c;
  A_(11, 3) = -h * s;
  A_(12, 2) = h * s;
  A_(12, 3) = h * c;
  // Tilt kinematics; the tilt has no third component, so its couplings vanish.
  A_(8, 5) = 2 * dt * (w / 2);
  A_(8, 7) = 2 * dt * (q2 / 2);
  A_(9, 6) = 2 * dt * (w / 2);
  A_(9, 7) = 2 * dt * (-q1 / 2);
  // Yaw follows the levelled rates through the tilt's third row.
  A_(10, 5) = dt * kYawCoupling * 3.0 * (-2 * q2 * w);
  A_(10, 6) = dt * kYawCoupling * 3.0 * (2 * q1 * w);
  A_(10, 7) = dt * kYawCoupling * 12.0 * (w * w - (q1 * q1 + q2 * q2));

  Bt_ = transpose(B_);
}

double PPQuollRTQuatGlobLinVelocityControlWYNewNew::riccatiRound() {
  const PPMatrix BtP = multiply(Bt_, P_);
  const PPMatrix S = add(congruence(B_, P_), R_);
  PPMatrix inner = subtract(P_, multiply(transpose(BtP), inverseTimesSymmetric(S, BtP)));
  inner.symmetric = true;
  const PPMatrix next = add(congruence(A_, inner), Q_);
  const double change = lowerNorm(subtract(next, P_));
  Pprevious_ = P_;
  P_ = next;
  ++rounds_;
  return change;
}

void PPQuollRTQuatGlobLinVelocityControlWYNewNew::computeGains() {
  const PPMatrix S = add(congruence(B_, P_), R_);
  K_ = inverseTimesSymmetric(S, multiply(multiply(Bt_, P_), A_));
  const PPMatrix steady = inverseTimesSymmetric(transposeSquare(B_), multiply(Bt_, A_));
  L_ = multiply(subtract(K_, steady), C_);
}

void PPQuollRTQuatGlobLinVelocityControlWYNewNew::shapeReferences(const double (&targets)[4]) {
  for (int i = 0; i < 4; ++i) {
    const double rate = model_.referenceRates[i];
    const double error = targets[i] - shaped_[i];
    const double stride = (1 / (rate + 1e-40)) * 25 * model_.interval;
    if (rate == 0 || stride >= std::fabs(error)) {
      shaped_[i] = targets[i];
    } else {
      shaped_[i] += error < 0 ? -stride : stride;
    }
  }
}

PPQuollRTQuatGlobLinVelocityControlWYNewNew::Output PPQuollRTQuatGlobLinVelocityControlWYNewNew::control(
    const Vector3<double>& position, const Vector3<double>& velocity, const Vector3<double>& angularRate) {
  const double states[kStates + 1] = {0,           position.z,    velocity.x, velocity.y, velocity.z,
                                      angularRate.x, angularRate.y, angularRate.z, tilt_.x, tilt_.y,
                                      yaw_,        position.x,    position.y};
  for (int i = 1; i <= kStates; ++i) x_(i, 1) = states[i];
  const double references[kReferences + 1] = {0,          shaped_[0], shaped_[1], shaped_[2], shaped_[3],
                                              positionReference_[0], positionReference_[1]};
  for (int i = 1; i <= kReferences; ++i) r_(i, 1) = references[i];
  const PPMatrix u = add(subtract(multiply(L_, r_), multiply(K_, x_)), uHover_);

  Output out{};
  double lift = -model_.gravity * 1000;
  for (int i = 0; i < kControls; ++i) {
    out[i] = std::clamp(u(i + 1, 1), model_.thrustMin, model_.thrustMax);
    lift += out[i];
  }
  out[4] = std::clamp(lift, -model_.yawChannelLimit, model_.yawChannelLimit);
  for (double& value : out) value *= model_.mass / 1000;
  return out;
}

}  // namespace vuk::rgw::addon
