#include "plugins/common/filterspring.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <ostream>

namespace vuk::rgw::addon {
namespace {

using Vector3 = util::Vector3<double>;
using Quat = util::Quat<double>;
constexpr double kPi = 3.141592653589793;

void ExpectNear(const Vector3& a, const Vector3& b, double tolerance) {
  EXPECT_NEAR(a.x, b.x, tolerance);
  EXPECT_NEAR(a.y, b.y, tolerance);
  EXPECT_NEAR(a.z, b.z, tolerance);
}

// One frame of the position spring, worked out by hand from p = (1, 0, 0),
// v = (0, 2, 0) towards the origin with k = 4, d = 1: the position moves with
// the old velocity, p = (1, 0.2, 0); then v += (-4 p - v) dt = (-0.4, 1.72, 0).
struct VectorStepCase {
  const char* what;
  double k;
  double maxVelocity;
  double dt;
  Vector3 position;
  Vector3 velocity;
};
void PrintTo(const VectorStepCase& c, std::ostream* out) { *out << c.what; }

class SpringVectorStep : public testing::TestWithParam<VectorStepCase> {};

TEST_P(SpringVectorStep, FromHandWorkedValues) {
  const VectorStepCase& c = GetParam();
  Vector3 position{1, 0, 0}, velocity{0, 2, 0};
  filterSpringVector(position, velocity, {0, 0, 0}, c.k, 1.0, c.maxVelocity, c.dt);
  ExpectNear(position, c.position, 1e-15);
  ExpectNear(velocity, c.velocity, 1e-15);
}

INSTANTIATE_TEST_SUITE_P(
    FilterSpring, SpringVectorStep,
    testing::Values(
        VectorStepCase{"one step", 4, 0, 0.1, {1, 0.2, 0}, {-0.4, 1.72, 0}},
        VectorStepCase{"a limit out of reach", 4, 5, 0.1, {1, 0.2, 0}, {-0.4, 1.72, 0}},
        VectorStepCase{"the velocity is cut to the limit", 4, 1, 0.1, {1, 0.2, 0},
                       Vector3{-0.4, 1.72, 0} / std::sqrt(0.16 + 1.72 * 1.72)},
        VectorStepCase{"stiffness 0 is a hard follow that keeps the velocity", 0, 1, 0.1, {0, 0, 0}, {0, 2, 0}},
        VectorStepCase{"a step of 0 changes nothing", 4, 0, 0.0, {1, 0, 0}, {0, 2, 0}}));

// The spring the runs below use: stiffness 20 per second squared, damping 6
// per second, two thirds of critical damping.
constexpr double kStiffness = 20, kDamping = 6;

struct VectorRun {
  Vector3 position{5, -3, 2}, velocity{1, 0, 0};
  double fastest = 0;  // the largest velocity after any frame
  double longestMove = 0;
};

VectorRun RunVector(int fps, double seconds, double maxVelocity, const Vector3& target) {
  VectorRun run;
  for (int frame = 0; frame < std::lround(seconds * fps); ++frame) {
    const Vector3 before = run.position;
    filterSpringVector(run.position, run.velocity, target, kStiffness, kDamping, maxVelocity, 1.0 / fps);
    run.fastest = std::max(run.fastest, run.velocity.Length());
    run.longestMove = std::max(run.longestMove, (run.position - before).Length());
  }
  return run;
}

struct QuatRun {
  Quat rotation;
  Vector3 angularVelocity{0, 0.5, 0};
  double fastest = 0;
  double largestTurn = 0;
  double worstNorm = 0;  // the largest deviation of the rotation's norm from 1
};

QuatRun RunQuat(int fps, double seconds, double maxVelocity, const Quat& start, const Quat& target) {
  QuatRun run;
  run.rotation = start;
  for (int frame = 0; frame < std::lround(seconds * fps); ++frame) {
    const Quat before = run.rotation;
    filterSpringQuat(run.rotation, run.angularVelocity, target, kStiffness, kDamping, maxVelocity, 1.0 / fps);
    run.fastest = std::max(run.fastest, run.angularVelocity.Length());
    run.largestTurn = std::max(run.largestTurn, Quat::AngleBetween(before, run.rotation));
    run.worstNorm = std::max(run.worstNorm, std::abs(run.rotation.Norm() - 1));
  }
  return run;
}

class SpringAtFrameRate : public testing::TestWithParam<int> {};

TEST_P(SpringAtFrameRate, VectorReachesATargetAtRest) {
  const Vector3 target{1, 1, 1};
  const VectorRun run = RunVector(GetParam(), 10, 0, target);
  EXPECT_LT((run.position - target).Length(), 1e-6);
  EXPECT_LT(run.velocity.Length(), 1e-6);
}

TEST_P(SpringAtFrameRate, VectorVelocityLimitHolds) {
  const double limit = 2, dt = 1.0 / GetParam();
  const Vector3 target{1, 1, 1};
  const VectorRun run = RunVector(GetParam(), 10, limit, target);
  EXPECT_LE(run.fastest, limit * (1 + 1e-15));
  EXPECT_LE(run.longestMove, limit * dt * (1 + 1e-12));
  EXPECT_GT(run.fastest, 0.99 * limit);
  EXPECT_LT((run.position - target).Length(), 1e-6);
}

TEST_P(SpringAtFrameRate, QuatVelocityLimitHolds) {
  const double limit = 1.5, dt = 1.0 / GetParam();
  const QuatRun run = RunQuat(GetParam(), 10, limit, Quat(), Quat::FromAxisAngle({1, 1, 0}, 2.5));
  EXPECT_LE(run.fastest, limit * (1 + 1e-15));
  EXPECT_LE(run.largestTurn, limit * dt * (1 + 1e-12));
  EXPECT_GT(run.fastest, 0.99 * limit);
  EXPECT_LT(run.worstNorm, 1e-15);
}

INSTANTIATE_TEST_SUITE_P(FilterSpring, SpringAtFrameRate, testing::Values(25, 30, 50, 100));

// Rotations far from each other and from the identity: with the error taken
// in another frame than the velocity, the spring would push the wrong way.
struct TurnCase {
  const char* what;
  Quat start;
  Quat target;
};
void PrintTo(const TurnCase& c, std::ostream* out) { *out << c.what; }

class SpringTurn : public testing::TestWithParam<TurnCase> {};

TEST_P(SpringTurn, ReachesATargetAtRestAndStaysUnit) {
  const TurnCase& c = GetParam();
  const QuatRun run = RunQuat(25, 10, 0, c.start, c.target);
  EXPECT_LT(Quat::AngleBetween(run.rotation, c.target), 1e-6);
  EXPECT_LT(run.angularVelocity.Length(), 1e-5);
  EXPECT_LT(run.worstNorm, 1e-15);
}

// One second at 25 and at 50 fps ends within a few hundredths of the turn.
TEST_P(SpringTurn, HardlyDependsOnTheFrameRate) {
  const TurnCase& c = GetParam();
  const Quat at25 = RunQuat(25, 1, 0, c.start, c.target).rotation;
  const Quat at50 = RunQuat(50, 1, 0, c.start, c.target).rotation;
  EXPECT_LT(Quat::AngleBetween(at25, at50), 0.03 * Quat::AngleBetween(c.start, c.target));
}

INSTANTIATE_TEST_SUITE_P(
    FilterSpring, SpringTurn,
    testing::Values(TurnCase{"from the identity", Quat(), Quat::FromAxisAngle({0, 0, 1}, 1.0)},
                    TurnCase{"a target given with w < 0", Quat(), -Quat::FromAxisAngle({1, 0, 2}, 2.0)},
                    TurnCase{"upside down to a quarter turn", Quat::FromAxisAngle({1, 0, 0}, 3.0),
                             Quat::FromAxisAngle({0, 1, 0}, kPi / 2)},
                    TurnCase{"two half turns", Quat::FromAxisAngle({0, 0, 1}, kPi),
                             Quat::FromAxisAngle({1, 0, 0}, kPi)},
                    TurnCase{"nearly there", Quat::FromAxisAngle({1, 2, 3}, 2.0),
                             Quat::FromAxisAngle({1, 2, 3}, 2.001)}));

TEST(FilterSpring, VectorFromTheSameStartHardlyDependsOnTheFrameRate) {
  const Vector3 target{1, 1, 1};
  const Vector3 at25 = RunVector(25, 1, 0, target).position;
  const Vector3 at50 = RunVector(50, 1, 0, target).position;
  EXPECT_LT((at25 - at50).Length(), 0.03 * (VectorRun().position - target).Length());
}

// The angular velocity turns the body about its own axes. Without a pull
// (k tiny, d 0) each of the ten sub-steps of h = 0.05 s turns by
// 2 atan(|w| h / 2) about the body's Y axis, which normalising q + (h/2) q w
// amounts to. So the body's Z axis, which the quarter turn about X laid along
// the world's -Y, swings towards the world's X (about the world's Z); a turn
// about the world's Y would have left it where it was.
TEST(FilterSpring, QuatAngularVelocityIsInTheBodyFrame) {
  const Quat start = Quat::FromAxisAngle({1, 0, 0}, kPi / 2);
  Quat rotation = start;
  Vector3 angularVelocity{0, 1, 0};
  filterSpringQuat(rotation, angularVelocity, start, 1e-12, 0, 0, 0.5);
  const Quat bodyTurn = Quat::FromAxisAngle({0, 1, 0}, 20 * std::atan(0.025));
  EXPECT_NEAR(std::abs(rotation.Dot(bodyTurn * start)), 1.0, 1e-15);
  ExpectNear(angularVelocity, {0, 1, 0}, 1e-12);
  ExpectNear(rotation.Rotate({0, 0, 1}), {std::sin(0.5), -std::cos(0.5), 0}, 2e-4);
}

TEST(FilterSpring, QuatStiffnessZeroIsAHardFollowThatKeepsTheVelocity) {
  const Quat target = Quat::FromAxisAngle({0, 1, 0}, 0.7);
  Quat rotation;
  Vector3 angularVelocity{1, 2, 3};
  filterSpringQuat(rotation, angularVelocity, target, 0, kDamping, 1, 0.04);
  EXPECT_EQ(rotation, target);
  EXPECT_EQ(angularVelocity, Vector3(1, 2, 3));
}

}  // namespace
}  // namespace vuk::rgw::addon
