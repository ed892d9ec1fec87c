#include "plugins/common/vehicle/carcam.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <vector>

#include "plugins/common/spinkeys.h"
#include "plugins/common/vehicle/carnoise.h"
#include "tests/plugins/common/vehicle/flatground.h"
#include "tests/support/allocationcount.h"

namespace vuk::rgw::addon {
namespace {

// Rounding of the interpolation, far below any visible turn.
constexpr double kKeyRounding = 1e-12;

using test::Apply;
using test::Drive;
using test::StartedCar;
using test::TestGround;

constexpr double kPi = 3.141592653589793;

// Drives for `seconds` and answers the base's positions, one per frame.
std::vector<CarVector> DriveFor(CCarCam& car, const TestGround& ground, const Drive& drive, double dt, double seconds) {
  std::vector<CarVector> path;
  const int frames = static_cast<int>(std::lround(seconds / dt));
  for (int i = 0; i < frames; ++i) {
    Apply(car, drive);
    ground.Frame(car, dt);
    path.push_back(car.position);
  }
  return path;
}

// The point on the line the car turns about, below the base's centre line.
CarVector TurnBasePoint(const CCarCam& car) { return car.position + car.rotation.Rotate({0, 0, car.TurnBaseZ()}); }

TEST(CarCam, StaysAtRestWithoutInput) {
  const TestGround ground;
  CCarCam car = StartedCar(ground);
  const CarRotation start = car.rotation;
  DriveFor(car, ground, {}, 0.04, 10.0);
  EXPECT_LT(car.position.Length(), 1e-6 * car.dLength);
  EXPECT_NEAR(car.rotation.Dot(start), 1.0, 1e-12);
  EXPECT_NEAR(car.cCarBody.fRelYPos, 0.0, 1e-9);
  EXPECT_NEAR(car.cCarBody.fRelXAng, 0.0, 1e-9);
  EXPECT_NEAR(car.cCarBody.fRelZAng, 0.0, 1e-9);
}

TEST(CarCam, DrivesStraightAtTheSpeedTheGasAsksTowardsItsFrontWheels) {
  const TestGround ground;
  CCarCam car = StartedCar(ground);
  const double dt = 0.04;
  std::vector<double> driven(car.wheels.size(), 0.0), turned(car.wheels.size(), 0.0);
  const int frames = 1000;
  std::vector<CarVector> path;
  for (int i = 0; i < frames; ++i) {
    Apply(car, {1.0, 0, 0});
    ground.Frame(car, dt);
    path.push_back(car.position);
    // Below a thousandth of L per second the wheels don't roll.
    if (car.Speed() < 0.001 * car.dLength) continue;
    for (std::size_t w = 0; w < car.wheels.size(); ++w) {
      driven[w] += car.wheels[w].ground.distanceDriven;
      turned[w] += car.wheels[w].pitchTurn;
    }
  }
  // Gas 1 of a maximum of 3: three car lengths per second, along -z.
  const CarVector lastSecond = path.back() - path[frames - 26];
  EXPECT_NEAR(-lastSecond.z / car.dLength, 3.0, 3.0 * 0.002);
  EXPECT_LT(std::fabs(car.position.x), 1e-9 * car.dLength);
  EXPECT_LT(car.position.z, 0.0);
  // At a steady speed the springs have brought the body back to level.
  EXPECT_LT(std::fabs(car.cCarBody.fRelXAng), 0.01 * car.params.dMaxForwardTiltAngle);
  EXPECT_LT(std::fabs(car.cCarBody.fRelYPos), 1e-3 * car.dRideHeight);
  const double travelled = car.position.Length();
  ASSERT_GT(travelled, 50 * car.dLength);
  for (std::size_t w = 0; w < car.wheels.size(); ++w) {
    const double rolling = car.wheels[w].radius * car.params.dWheelRadiusMult;
    SCOPED_TRACE(w);
    // Rolling forward turns a wheel negatively about its axle.
    EXPECT_NEAR(turned[w], -driven[w] / rolling, 1e-9 * driven[w] / rolling);
    EXPECT_NEAR(driven[w], travelled, 1e-3 * travelled);
  }
}

TEST(CarCam, ConstantSteeringClosesACircleOfTheTurnRadius) {
  const TestGround ground;
  CCarCam car = StartedCar(ground);
  const Drive drive{0.3, 0.5, 0};
  const double dt = 0.04;
  DriveFor(car, ground, drive, dt, 30.0);
  const double steering = car.inputs[pcInput_STEERING_WHEEL].value;
  const double b = 0 - car.wheels[CCarCam::kBackLeft].z / (car.dLength * 0.5);
  const double radius = (1 - b) * (-car.dLength / 2) / std::tan(steering);
  ASSERT_LT(radius, 0.0);  // positive steering turns right

  // One lap of the turn base point, sampled each frame.
  const double speed = car.Speed();
  const int lap = static_cast<int>(2 * kPi * std::fabs(radius) / speed / dt);
  std::vector<CarVector> points;
  for (int i = 0; i <= lap; ++i) {
    Apply(car, drive);
    ground.Frame(car, dt);
    points.push_back(TurnBasePoint(car));
  }
  // The centre: the mean of points spread evenly over the lap.
  CarVector centre;
  for (int i = 0; i < lap; ++i) centre += points[i] / lap;
  double farthest = 0;
  for (const CarVector& p : points) {
    farthest = std::max(farthest, std::fabs((p - centre).Length() - std::fabs(radius)));
  }
  EXPECT_LT(farthest, 0.01 * std::fabs(radius));
  // It closes: a lap brings the car back to where it was, short of one frame.
  EXPECT_LT((points.back() - points.front()).Length(), speed * dt * 1.01);
}

TEST(CarCam, MirroredSteeringGivesAMirroredPathAndOppositeRoll) {
  const TestGround ground;
  CCarCam right = StartedCar(ground);
  CCarCam left = StartedCar(ground);
  double largestRoll = 0;
  for (int i = 0; i < 250; ++i) {
    const double steer = 0.6 * std::sin(i * 0.05);
    Apply(right, {0.8, steer, 0});
    Apply(left, {0.8, -steer, 0});
    ground.Frame(right, 0.04);
    ground.Frame(left, 0.04);
    ASSERT_NEAR(right.position.x, -left.position.x, 1e-9 * right.dLength) << i;
    ASSERT_NEAR(right.position.z, left.position.z, 1e-9 * right.dLength) << i;
    ASSERT_NEAR(right.cCarBody.fRelZAng, -left.cCarBody.fRelZAng, 1e-9) << i;
    ASSERT_NEAR(right.cCarBody.fRelXAng, left.cCarBody.fRelXAng, 1e-9) << i;
    largestRoll = std::max(largestRoll, std::fabs(right.cCarBody.fRelZAng));
  }
  EXPECT_GT(largestRoll, 1e-3);
}

TEST(CarCam, RightTurnLeansTheBodyOutwards) {
  const TestGround ground;
  CCarCam car = StartedCar(ground);
  DriveFor(car, ground, {0.5, 0.5, 0}, 0.04, 5.0);
  // Rolled about +z: the right side, inside the turn, rises.
  EXPECT_GT(car.cCarBody.fRelZAng, 1e-3);
}

struct AirCase {
  bool gravityOn;
  double expectedFallSpeed;  // along gravity after a second, L per second
};

class InTheAir : public testing::TestWithParam<AirCase> {};

// A car driving off an edge: with gravity it falls at a quarter of the jump
// gravity (L g / 4 per second), without it it keeps its increment.
TEST_P(InTheAir, FallsByTheJumpGravityOrKeepsItsIncrement) {
  TestGround ground;
  CCarCam car = StartedCar(ground);
  car.params.bGravityOn = GetParam().gravityOn;
  DriveFor(car, ground, {1.0, 0, 0}, 0.04, 3.0);
  ground.inTheAir = true;
  ground.Feed(car);
  const double sideways = car.vTransCarAbsIncr.z;
  const double dt = 0.04;
  DriveFor(car, ground, {1.0, 0, 0}, dt, 1.0);
  EXPECT_TRUE(car.bCarInTheAir);
  const double h = CCarCam::SubStepsFor(dt).length;
  EXPECT_NEAR(-car.vTransCarAbsIncr.y / h / car.dLength, GetParam().expectedFallSpeed, 1e-9);
  EXPECT_DOUBLE_EQ(car.vTransCarAbsIncr.z, sideways);
}

INSTANTIATE_TEST_SUITE_P(Gravity, InTheAir,
                         testing::Values(AirCase{true, 9.81 * 0.25}, AirCase{false, 0.0}));

// Frames of one sub-step each, so that each frame shows every sub-step.
TEST(CarCam, HeavePitchAndRollStayWithinTheirLimitsOnEverySubStep) {
  TestGround ground;
  ground.stepZ = -8.0;  // a kerb ahead
  ground.stepHeight = 0.2;
  CCarCam car = StartedCar(ground);
  car.params.cSuspension = car.params.cSuspension * 0.2;
  car.Start();
  const double dt = 0.0025;
  ASSERT_EQ(CCarCam::SubStepsFor(dt).rounds, 1);
  const double heaveLimit = 0.9 * car.wheels[0].radius * car.params.dSuspensionLengthRel * car.params.dWheelRadiusMult;
  bool reachedPitch = false;
  for (int i = 0; i < 4000; ++i) {
    const double t = i * dt;
    Apply(car, {t < 3 ? 1.0 : -1.0, 0.7 * std::sin(3 * t), t > 1 && t < 2 ? 1.0 : 0.0});
    ground.Frame(car, dt);
    const CarBody& body = car.cCarBody;
    ASSERT_LE(std::fabs(body.fRelYPos), heaveLimit) << i;
    ASSERT_LE(std::fabs(body.fRelXAng), car.params.dMaxForwardTiltAngle) << i;
    ASSERT_LE(std::fabs(body.fRelZAng), car.params.dMaxSideTiltAngle) << i;
    reachedPitch = reachedPitch || std::fabs(body.fRelXAng) == car.params.dMaxForwardTiltAngle;
  }
  EXPECT_TRUE(reachedPitch);
}

TEST(CarCam, OneSecondEndsAlikeAt25And50FramesPerSecond) {
  const TestGround ground;
  CCarCam at25 = StartedCar(ground);
  CCarCam at50 = StartedCar(ground);
  // A livelier pedal than the default, so that the second is spent moving.
  at25.inputs[pcInput_GAS_PEDAL].responseFactor = at50.inputs[pcInput_GAS_PEDAL].responseFactor = 0.2;
  const Drive drive{1.0, 0.3, 0};
  DriveFor(at25, ground, drive, 1.0 / 25, 1.0);
  DriveFor(at50, ground, drive, 1.0 / 50, 1.0);
  EXPECT_GT(at25.position.Length(), 0.5 * at25.dLength);
  // The pedal's rate limit and filter act once a frame, so the slower rate
  // lags by about half a frame's travel.
  EXPECT_LT((at25.position - at50.position).Length(), 0.05 * at25.dLength);
}

TEST(CarCam, ARigScaledByTwoDrivesTheTrajectoryScaledByTwo) {
  const TestGround ground;
  CCarCam single = StartedCar(ground);
  CCarCam twice = StartedCar(ground, 2.0);
  for (int i = 0; i < 200; ++i) {
    const Drive drive{1.0, 0.5 * std::sin(i * 0.03), 0};
    Apply(single, drive);
    Apply(twice, drive);
    ground.Frame(single, 0.04);
    ground.Frame(twice, 0.04);
    const CarVector scaled = single.position * 2.0;
    ASSERT_LT((twice.position - scaled).Length(), 1e-9 * twice.dLength) << i;
    ASSERT_NEAR(twice.cCarBody.fRelXAng, single.cCarBody.fRelXAng, 1e-9) << i;
    ASSERT_NEAR(twice.wheels[0].totalPitch, single.wheels[0].totalPitch, 1e-9) << i;
  }
}

TEST(CarCam, AFastWheelsKeysNeverTurnMoreThanTheLargestTurn) {
  const TestGround ground;
  CCarCam car = StartedCar(ground);
  car.inputs[pcInput_GAS_PEDAL].maximum = 15.0;
  car.params.dAcceleration = 100;
  int extraKeys = 0;
  for (int i = 0; i < 400; ++i) {
    Apply(car, {1.0, 0.2, 0});
    ground.Frame(car, 0.04);
    for (const CarWheel& wheel : car.wheels) {
      const SpinKeys extra = spinKeys(wheel.pitchTurn);
      double former = wheel.totalPitchFormer;
      for (int k = 0; k < extra.count; ++k) {
        const double pitch = wheel.totalPitchFormer + extra.keys[k].turn;
        ASSERT_LE(std::fabs(pitch - former), kLargestTurnPerKey + kKeyRounding) << i;
        former = pitch;
      }
      const double real = wheel.totalPitchFormer + wheel.pitchTurn;
      ASSERT_LE(std::fabs(real - former), kLargestTurnPerKey + kKeyRounding) << i;
      // The frame's own key is the wheel's pitch, up to whole turns.
      ASSERT_NEAR(std::remainder(real - wheel.totalPitch, 2 * kPi), 0.0, 1e-9);
      extraKeys += extra.count;
    }
  }
  EXPECT_GT(extraKeys, 100);
}

TEST(CarCam, SubStepsOfAFrame) {
  struct Case {
    double dt;
    int rounds;
    double length;
  };
  for (const Case& c : {Case{0.0025, 1, 0.0025}, Case{0.003, 1, 0.003}, Case{0.04, 13, 0.04 / 13},
                        Case{1.0 / 30, 11, 1.0 / 30 / 11}, Case{0.1, 33, 0.1 / 33}}) {
    const CCarCam::SubSteps steps = CCarCam::SubStepsFor(c.dt);
    EXPECT_EQ(steps.rounds, c.rounds) << c.dt;
    EXPECT_DOUBLE_EQ(steps.length, c.length) << c.dt;
  }
}

TEST(CarCam, Noise01HashesTheAdvancedCounter) {
  struct Case {
    std::uint32_t counter;
    double expected;  // the hash of counter + 1, worked out separately
  };
  for (const Case& c : {Case{0, 0.6131865256465971}, Case{1, 0.3531835596077144}, Case{1000, 0.847361306194216},
                        Case{10000, 0.5007767998613417}, Case{100000, 0.07681705290451646}}) {
    std::uint32_t counter = c.counter;
    EXPECT_DOUBLE_EQ(noise01(counter), c.expected) << c.counter;
    EXPECT_EQ(counter, c.counter + 1);
  }
}

// A frame driven by hand, or in autonomous mode following a target that
// circles ahead; the raw inputs act on top of the target's in both.
void NoisyFrame(CCarCam& car, const TestGround& ground, int i) {
  Apply(car, {1.0, 0.4 * std::sin(i * 0.1), i > 160 && i < 250 ? 1.0 : 0.0});
  car.inputs[pcInput_BURNOUT].raw = i > 100 && i < 150 ? 1.0 : 0.0;
  car.vAutonomousTarget = {10 * std::sin(i * 0.01), 0, -10 * std::cos(i * 0.01)};
  ground.Frame(car, 0.04);
}

CCarCam NoisyCar(const TestGround& ground, bool autonomous) {
  CCarCam car = StartedCar(ground);
  car.params.dSteeringNoise = 0.3;
  car.params.bAutonomousMode = autonomous;
  return car;
}

class Mode : public testing::TestWithParam<bool> {};

// Everything noisy switched on: gravel, steering noise, burnout; and the
// booster.
TEST_P(Mode, TwoRunsAreBitIdentical) {
  const TestGround ground;
  CCarCam first = NoisyCar(ground, GetParam());
  CCarCam second = NoisyCar(ground, GetParam());
  for (int i = 0; i < 300; ++i) {
    NoisyFrame(first, ground, i);
    NoisyFrame(second, ground, i);
  }
  ASSERT_GT(first.position.Length(), first.dLength);
  EXPECT_EQ(std::memcmp(&first.position, &second.position, sizeof first.position), 0);
  EXPECT_EQ(std::memcmp(&first.rotation, &second.rotation, sizeof first.rotation), 0);
  EXPECT_EQ(std::memcmp(&first.cCarBody, &second.cCarBody, sizeof first.cCarBody), 0);
  for (std::size_t w = 0; w < first.wheels.size(); ++w) {
    EXPECT_EQ(first.wheels[w].totalPitch, second.wheels[w].totalPitch);
    EXPECT_EQ(first.wheels[w].gravelMemory, second.wheels[w].gravelMemory);
  }
  EXPECT_NE(first.randomValue_gravelShake, 1000u);
  EXPECT_EQ(first.randomValue_gravelShake, second.randomValue_gravelShake);
  EXPECT_EQ(first.randomValue_burnout, second.randomValue_burnout);
  EXPECT_EQ(first.randomValue_steeringNoise, second.randomValue_steeringNoise);
  EXPECT_EQ(first.dFollowAccMem, second.dFollowAccMem);
  EXPECT_EQ(first.dAutoSteeringValueMem, second.dAutoSteeringValueMem);
  EXPECT_EQ(first.dGasPedalInputFilterMem, second.dGasPedalInputFilterMem);
  EXPECT_EQ(first.dInputFilterMem, second.dInputFilterMem);
  EXPECT_EQ(first.dFollowAccMem != 0, GetParam());
}

TEST_P(Mode, AFrameAllocatesNothingOnceWarm) {
  const TestGround ground;
  CCarCam car = NoisyCar(ground, GetParam());
  for (int i = 0; i < 10; ++i) NoisyFrame(car, ground, i);
  vuk::test::AllocationCount count;
  for (int i = 10; i < 200; ++i) NoisyFrame(car, ground, i);
  EXPECT_EQ(count.Made(), 0u);
}

INSTANTIATE_TEST_SUITE_P(CarCam, Mode, testing::Bool(),
                         [](const testing::TestParamInfo<bool>& info) {
                           return info.param ? "Autonomous" : "Driven";
                         });

}  // namespace
}  // namespace vuk::rgw::addon
