// The 4-Wheeler core in autonomous mode: it chooses gas and steering from a
// target's position and follows it, forwards or in reverse. Determinism and
// allocations are tested with the driven mode's.

#include <gtest/gtest.h>

#include <cmath>
#include <optional>

#include "plugins/common/vehicle/carcam.h"
#include "tests/plugins/common/vehicle/flatground.h"

namespace vuk::rgw::addon {
namespace {

using test::Apply;
using test::StartedCar;
using test::TestGround;

constexpr double kPi = 3.141592653589793;

CCarCam AutonomousCar(const TestGround& ground) {
  CCarCam car = StartedCar(ground);
  car.params.bAutonomousMode = true;
  return car;
}

// One frame with no device input: the car only follows the target.
void FollowFrame(CCarCam& car, const TestGround& ground, const CarVector& target, double dt) {
  Apply(car, {});
  car.vAutonomousTarget = target;
  ground.Frame(car, dt);
}

// The point the car measures the target from: half a length ahead of the body.
CarVector FrontPoint(const CCarCam& car) {
  return car.ChassisPosition() + car.ChassisRotation().Rotate({0, 0, -0.5 * car.dLength});
}

bool Finite(const CarVector& v) { return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z); }

// The first frame from rest, target given relative to the front point (the
// car faces -z, its right is +x). Worked out by hand with the defaults
// (L = 3.522, sphere 0.5 L, strength 0.5, reverse 0.5, gas maximum 3, look
// ahead 1 x 3, steering maximum 0.7, rate 2 per second) and a frame of
// 0.02 s, which is half a slice of each response filter: the speed memory
// moves 0.01 of the way, the steering memory 0.1, the rate limit 0.04.
struct FirstFrameCase {
  const char* name;
  double x, z;
  double sphere;       // length relative
  double gas;          // the speed memory: 0.01 x w
  double steering;     // the steering memory: 0.1 x the limited wanted angle
  bool insideSphere;  // ABS raw 1, the steering channel keeps its value
};

class FirstFrame : public testing::TestWithParam<FirstFrameCase> {};

TEST_P(FirstFrame, ChoosesGasAndSteeringFromTheTargetsPlace) {
  const FirstFrameCase& c = GetParam();
  const TestGround ground;
  CCarCam car = AutonomousCar(ground);
  car.params.dIgnoreSphereRadius = c.sphere;
  const double kept = 0.1;
  car.inputs[pcInput_STEERING_WHEEL].value = kept;
  FollowFrame(car, ground, FrontPoint(car) + CarVector{c.x, 0, c.z}, 0.02);

  EXPECT_NEAR(car.dFollowAccMem, c.gas, 1e-15);
  EXPECT_NEAR(car.dAutoSteeringValueMem, c.steering, 1e-15);
  EXPECT_EQ(car.inputs[pcInput_ABS_BRAKE].raw, c.insideSphere ? 1.0 : 0.0);
  EXPECT_NEAR(car.inputs[pcInput_STEERING_WHEEL].value, c.insideSphere ? kept : c.steering, 1e-15);
  if (!c.insideSphere) {
    EXPECT_NEAR(car.inputs[pcInput_GAS_PEDAL].value, c.gas, 1e-15);
  }
}

// w = -u.z x 0.5 x (|d| - 1.761) / 3.522 x 3.5, halved when negative;
// steering = sign(w) x u.x x 0.7 / (|0.01 w| x 0.1 + 1), limited to 0.04.
INSTANTIATE_TEST_SUITE_P(
    Targets, FirstFrame,
    testing::Values(FirstFrameCase{"Ahead", 0, -2.5, 0.5, 0.0036719193639977296, 0, false},
                    // |d| is held to 3: the speed it asks for stops growing.
                    FirstFrameCase{"FarAhead", 0, -10, 0.5, 0.006156303236797275, 0, false},
                    FirstFrameCase{"Behind", 0, 2.5, 0.5, -0.0018359596819988648, 0, false},
                    FirstFrameCase{"SlightlyRight", 0.1, -2.5, 0.5, 0.003678910975182072, 0.0027967337909571895,
                                   false},
                    // The wanted angle 0.42 is held to the rate limit.
                    FirstFrameCase{"AheadRight", 1.5, -2, 0.5, 0.0029375354911981835, 0.004, false},
                    // Reversing steers the other way.
                    FirstFrameCase{"BehindRight", 1.5, 2, 0.5, -0.0014687677455990917, -0.004, false},
                    // Inside the sphere: no speed; the steering memory still
                    // moves, but the wheels keep their angle.
                    FirstFrameCase{"InsideTheSphere", 0.3, -1, 0.5, 0, 0.004, true},
                    // No direction at all: no NaN, nothing moves.
                    FirstFrameCase{"AtTheFrontPoint", 0, 0, 0.5, 0, 0, true},
                    FirstFrameCase{"SphereLargerThanAnyDistance", 0, -10, 100, 0, 0, true}),
    [](const testing::TestParamInfo<FirstFrameCase>& info) { return info.param.name; });

// A target that moves along a straight line at a constant speed V (L per
// second). Once settled the car drives on the line at V, and the target
// leads the front point by the sphere plus the lag e that asks for V:
// V = 0.5 x e / L x 3.5 forwards, halved in reverse. So the body's origin,
// half a length behind the front point, trails by L + V L / 1.75 forwards;
// in reverse the front point trails the origin, which is V L / 0.875 behind
// the target. Beyond the look-ahead
// of 3 the car can't keep up and drives at the speed the look-ahead asks:
// 0.5 x 3.5 x (3 - 1.761) / 3.522 forwards, half of that in reverse.
struct LineCase {
  const char* name;
  double heading;  // of the line from the car's front, radians, towards its right
  double side;     // where the line starts beside the front point
  double speed;    // of the target along the line, L per second
  double carSpeed;                 // L per second, negative in reverse
  std::optional<double> trailing;  // of the body's origin behind the target, along its motion
};

class FollowsALine : public testing::TestWithParam<LineCase> {};

TEST_P(FollowsALine, AtASteadyLagOnTheLine) {
  const LineCase& c = GetParam();
  const TestGround ground;
  CCarCam car = AutonomousCar(ground);
  const double L = car.dLength;
  const double dt = 0.04;
  const CarVector along{std::sin(c.heading), 0, -std::cos(c.heading)};
  const CarVector across{-along.z, 0, along.x};
  const CarVector start = FrontPoint(car) + CarVector{c.side, 0, 0} + along * L;
  // The body's origin behind the target, as the frame that followed it saw.
  CarVector trailing;
  for (int i = 0; i < 1500; ++i) {
    const CarVector target = start + along * (c.speed * L * i * dt);
    trailing = target - car.ChassisPosition();
    FollowFrame(car, ground, target, dt);
    ASSERT_TRUE(Finite(car.position)) << i;
  }
  EXPECT_NEAR(car.Speed() / L, c.carSpeed, 1e-6);
  // Nose or tail towards the target, on the line.
  EXPECT_NEAR(std::fabs(car.rotation.Rotate({0, 0, -1}).Dot(along)), 1.0, 1e-9);
  if (c.trailing) {
    EXPECT_NEAR(trailing.Dot(along), *c.trailing, 1e-6 * L);
    EXPECT_LT(std::fabs(trailing.Dot(across)), 1e-6 * L);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Lines, FollowsALine,
    testing::Values(LineCase{"Ahead", 0, 0, 0.4, 0.4, 4.3270285714285714},
                    LineCase{"ToTheRight", 0.5, 1.0, 0.4, 0.4, 4.3270285714285714},
                    LineCase{"ToTheLeftSlower", -0.3, -0.5, 0.2, 0.2, 3.9245142857142854},
                    LineCase{"TooFastAhead", 0, 0, 2.0, 0.6156303236797275, std::nullopt},
                    // Straight behind: the lag that asks for 0.4 ahead asks
                    // for 0.2 here.
                    LineCase{"Behind", kPi, 0, 0.2, -0.2, 0.8050285714285714},
                    LineCase{"TooFastBehind", kPi, 0, 2.0, -0.30781516183986374, std::nullopt}),
    [](const testing::TestParamInfo<LineCase>& info) { return info.param.name; });

// The target drives ahead and stops; the car comes up to it, enters the
// sphere, brakes and stands, never producing a NaN.
TEST(CarAutonomous, ATargetInsideTheSphereStopsTheCar) {
  const TestGround ground;
  CCarCam car = AutonomousCar(ground);
  const double L = car.dLength;
  const double dt = 0.04;
  const CarVector start = FrontPoint(car) + CarVector{0, 0, -L};
  int framesBraking = 0;
  for (int i = 0; i < 1500; ++i) {
    const double t = std::min(i * dt, 20.0);
    FollowFrame(car, ground, start + CarVector{0, 0, -0.4 * L * t}, dt);
    ASSERT_TRUE(Finite(car.position) && std::isfinite(car.dFollowAccMem) && std::isfinite(car.dAutoSteeringValueMem))
        << i;
    framesBraking += car.inputs[pcInput_ABS_BRAKE].raw == 1.0 ? 1 : 0;
  }
  EXPECT_GT(framesBraking, 500);
  EXPECT_EQ(car.inputs[pcInput_ABS_BRAKE].raw, 1.0);
  // The core never lets the speed reach 0 exactly.
  EXPECT_LE(std::fabs(car.Speed()), 1e-8 * L);
  EXPECT_LT((car.vAutonomousTarget - FrontPoint(car)).Length(), car.params.dIgnoreSphereRadius * L);
  EXPECT_LT(std::fabs(car.position.x), 1e-9 * L);
}

}  // namespace
}  // namespace vuk::rgw::addon
