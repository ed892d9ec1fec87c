// The 4-Wheeler core's frame-level states: skid brake, reverse as ABS,
// booster, burnout and gravel. Expectations are worked out from the state
// before a frame, through the response filters where a channel passes one.

#include <gtest/gtest.h>

#include <cmath>

#include "plugins/common/filterresponse.h"
#include "plugins/common/vehicle/carcam.h"
#include "plugins/common/vehicle/carnoise.h"
#include "tests/plugins/common/vehicle/flatground.h"

namespace vuk::rgw::addon {
namespace {

using test::Apply;
using test::Drive;
using test::StartedCar;
using test::TestGround;

constexpr double kPi = 3.141592653589793;
constexpr double kDt = 0.04;

void DriveFrames(CCarCam& car, const TestGround& ground, const Drive& drive, int frames) {
  for (int i = 0; i < frames; ++i) {
    Apply(car, drive);
    ground.Frame(car, kDt);
  }
}

// A channel's value after this frame's filter.
double Filtered(double value, double wanted, double k) {
  filterResponseClamped(value, wanted, k, kDt);
  return value;
}

// A car that has driven a right turn for three seconds.
template <typename Base = testing::Test>
class OnATurn : public Base {
 protected:
  OnATurn() {
    car.inputs[pcInput_GAS_PEDAL].responseFactor = 0.2;
    DriveFrames(car, ground, {1.0, 0.3, 0}, 75);
  }
  void SkidBrakeFrame(const Drive& drive, double brake) {
    Apply(car, drive);
    car.inputs[pcInput_SKID_BRAKE].raw = brake;
    ground.Frame(car, kDt);
  }
  const TestGround ground;
  CCarCam car = StartedCar(ground);
};
using CarSkidBrake = OnATurn<>;
using CarBooster = OnATurn<>;

TEST_F(CarSkidBrake, TheFirstFrameCapturesSpeedAndYawSpeed) {
  const CarVector increment = car.vTransCarAbsIncr;
  const double yaw = car.fCarLocalYawIncr;
  ASSERT_LT(yaw, 0.0);  // a right turn forwards
  SkidBrakeFrame({1.0, 0.3, 0}, 1.0);

  EXPECT_TRUE(car.bSkidBreakingOn);
  EXPECT_TRUE(car.bSkidBreakingOnDisableFeatures);
  EXPECT_FALSE(car.bSkidFirstTime);
  EXPECT_EQ(car.vSkidBrakeSpeed, increment / kDt);
  EXPECT_EQ(car.dSkidBrakeYawSpeed, -yaw / kDt);
  // Forwards (+1) and steering right (sign of -steering: -1).
  EXPECT_EQ(car.dSkidBrakeSigns, -1.0);
  // The brake's filtered value was still 0: nothing decayed yet.
  EXPECT_LT((car.vSkidBrakePosIncr - increment).Length(), 1e-15 * car.dLength);
  EXPECT_NEAR(car.dSkidBrakeLocalYawIncr, yaw, 1e-15);
  // The car slides on with the frozen increment.
  EXPECT_EQ(car.vTransCarAbsIncr, car.vSkidBrakePosIncr);
}

TEST_F(CarSkidBrake, FrozenIncrementsDecayByTheHeldBrake) {
  car.params.dSkidBrakeRotBrakeMult = 2;
  SkidBrakeFrame({1.0, 0.3, 0}, 1.0);
  bool yawStopped = false;
  // Short of the frames that stop the car.
  for (int i = 0; i < 30; ++i) {
    const CarVector position = car.vSkidBrakePosIncr;
    const double yaw = car.dSkidBrakeLocalYawIncr;
    // The decay uses the brake's value as the last frame left it.
    const double loss = 0.001 * car.inputs[pcInput_SKID_BRAKE].value * kDt * 30.0;
    SkidBrakeFrame({1.0, 0.3, 0}, 1.0);
    ASSERT_LT((car.vSkidBrakePosIncr - (position - car.vSkidBrakeSpeed * loss)).Length(), 1e-15 * car.dLength) << i;
    const double decayed = yaw - car.dSkidBrakeYawSpeed * car.dSkidBrakeSigns * 2 * loss;
    // The yaw stops at 0 and doesn't turn the other way.
    if (decayed >= 0) {
      ASSERT_EQ(car.dSkidBrakeLocalYawIncr, 0.0) << i;
      yawStopped = true;
    } else {
      ASSERT_NEAR(car.dSkidBrakeLocalYawIncr, decayed, 1e-15) << i;
    }
  }
  EXPECT_TRUE(yawStopped);
}

// Held long enough, the frozen translation would point against the
// captured speed: it started as speed x dt, so the frame in which the summed
// losses pass dt stops the car.
TEST_F(CarSkidBrake, HeldItStopsTheCarWhenTheLossesSumToTheCapturedSpeed) {
  SkidBrakeFrame({1.0, 0.3, 0}, 1.0);
  double lost = 0;
  int frame = 0;
  for (; frame < 2000 && lost <= kDt; ++frame) {
    lost += 0.001 * car.inputs[pcInput_SKID_BRAKE].value * kDt * 30.0;
    ASSERT_NE(car.vSkidBrakePosIncr, CarVector()) << frame;
    SkidBrakeFrame({1.0, 0.3, 0}, 1.0);
  }
  ASSERT_GT(lost, kDt);
  EXPECT_EQ(car.vSkidBrakePosIncr, CarVector());
  EXPECT_EQ(car.dSkidBrakeLocalYawIncr, 0.0);
  EXPECT_EQ(car.inputs[pcInput_SKID_BRAKE].raw, 0.0);
  const CarVector stopped = car.position;
  SkidBrakeFrame({1.0, 0.3, 0}, 1.0);
  SkidBrakeFrame({1.0, 0.3, 0}, 1.0);
  EXPECT_EQ(car.position, stopped);
}

// What the release frame gives the gas before its channel filter, from the
// car's velocity in its own frame and the raw pedal.
struct ReleaseCase {
  const char* name;
  double gas;      // raw pedal while releasing
  double booster;  // raw
  bool stopFirst;  // brake until the car stands before releasing
  enum { kPedalTimesVelocity, kNone, kFullVelocity, kUntouched } expectedGas;
};

class SkidBrakeRelease : public OnATurn<testing::TestWithParam<ReleaseCase>> {};

TEST_P(SkidBrakeRelease, PutsGasAndSkiddingBackAsTheCarStillMoves) {
  const ReleaseCase& c = GetParam();
  const Drive drive{c.gas, 0.3, c.booster};
  // Braked gently, or to a stop; long enough for the pedal's rate limit to
  // bring the raw to the case's.
  const double brake = c.stopFirst ? 1.0 : 0.25;
  SkidBrakeFrame(drive, brake);
  for (int i = 0; i < (c.stopFirst ? 2000 : 70) && car.vSkidBrakePosIncr != CarVector(); ++i) {
    SkidBrakeFrame(drive, brake);
  }
  ASSERT_EQ(car.vSkidBrakePosIncr == CarVector(), c.stopFirst);
  ASSERT_EQ(car.dGasRawFormer, c.gas);

  const double h = CCarCam::SubStepsFor(kDt).length;
  const double forward = -car.rotation.Conjugate().Rotate(car.vTransCarAbsIncr / h).z;
  CarChannel& gas = car.inputs[pcInput_GAS_PEDAL];
  const CarChannel& skid = car.inputs[pcInput_SKIDDING];
  double gasBefore = gas.value;
  switch (c.expectedGas) {
    case ReleaseCase::kPedalTimesVelocity: gasBefore = std::fabs(c.gas) * forward / car.dLength; break;
    case ReleaseCase::kNone: gasBefore = 0; break;
    case ReleaseCase::kFullVelocity: gasBefore = forward / car.dLength; break;
    case ReleaseCase::kUntouched: break;
  }
  const double skidBefore = c.stopFirst ? skid.value : 1.0;
  double expectedGas = Filtered(gasBefore, c.gas * gas.maximum, gas.responseFactor);
  if (c.booster != 0) {
    filterResponse(expectedGas, car.inputs[pcInput_BOOSTER].maximum * gas.maximum,
                   car.inputs[pcInput_BOOSTER].responseFactor, kDt);
  }
  const double expectedSkid = Filtered(skidBefore, 0, skid.responseFactor);

  SkidBrakeFrame(drive, 0.0);
  EXPECT_FALSE(car.bSkidBreakingOn);
  EXPECT_FALSE(car.bSkidBreakingOnDisableFeatures);
  EXPECT_TRUE(car.bSkidFirstTime);
  EXPECT_NEAR(gas.value, expectedGas, 1e-14);
  EXPECT_NEAR(skid.value, expectedSkid, 1e-14);
}

INSTANTIATE_TEST_SUITE_P(
    Releases, SkidBrakeRelease,
    testing::Values(ReleaseCase{"PedalWithTheMotion", 0.5, 0, false, ReleaseCase::kPedalTimesVelocity},
                    ReleaseCase{"PedalAgainstTheMotion", -0.5, 0, false, ReleaseCase::kNone},
                    ReleaseCase{"BoosterForwards", 0.5, 1.0, false, ReleaseCase::kFullVelocity},
                    // Nothing frozen is left to slide on: gas and skid stay.
                    ReleaseCase{"OnAStoppedCar", 0.5, 0, true, ReleaseCase::kUntouched}),
    [](const testing::TestParamInfo<ReleaseCase>& info) { return info.param.name; });

// `bIsReverseVelAbsBraking` from (state, gas value, raw gas, former raw gas).
// The value passes its channel filter before the state sees it, which keeps
// its sign here except for a car at rest, which the raw pulls to its side.
struct AbsCase {
  bool state;
  double value, raw, formerRaw;
  bool next;
  double absRaw = 0;
};

class ReverseAsAbs : public testing::TestWithParam<AbsCase> {};

TEST_P(ReverseAsAbs, SwitchesAndBrakesFromTheLatchedValue) {
  const AbsCase& c = GetParam();
  const TestGround ground;
  CCarCam car = StartedCar(ground);
  CarChannel& gas = car.inputs[pcInput_GAS_PEDAL];
  Apply(car, {c.raw, 0, 0});
  car.inputs[pcInput_ABS_BRAKE].raw = c.absRaw;
  car.bIsReverseVelAbsBraking = c.state;
  gas.value = c.value;
  car.dGasRawFormer = c.raw;  // no rate limit on the pedal
  car.dAbsFormerGasRaw = c.formerRaw;
  car.dAbsFormerGasValue = c.value;
  ASSERT_TRUE(car.bAbsIdle);
  const double filtered = Filtered(c.value, c.raw * gas.maximum, gas.responseFactor);
  car.StepA(kDt);

  EXPECT_EQ(car.bIsReverseVelAbsBraking, c.next);
  EXPECT_EQ(car.dAbsFormerGasRaw, c.raw);
  // Braking starts from last frame's value by a share of the filtered one.
  const double strength = c.absRaw > 0 ? c.absRaw : (c.next ? c.raw : 0.0);
  const double braked = c.value - std::fabs(strength * car.inputs[pcInput_ABS_BRAKE].maximum) * filtered * kDt * 30.0;
  EXPECT_EQ(car.bAbsIdle, strength == 0);
  EXPECT_NEAR(gas.value, strength == 0 ? filtered : braked, 1e-15);
}

INSTANTIATE_TEST_SUITE_P(
    States, ReverseAsAbs,
    testing::Values(AbsCase{false, 1.0, -0.5, 0, true},      // reverse pressed while going forwards
                    AbsCase{false, -1.0, 0.5, 0, true},      // forwards pressed while reversing
                    AbsCase{false, 1.0, 0.5, 0, false},      // pedal with the motion
                    AbsCase{false, 1.0, 0, 0, false},        // no pedal
                    AbsCase{false, 0, -0.5, 0, false},       // at rest: reverses
                    AbsCase{true, 1.0, -0.5, -0.5, true},    // held
                    AbsCase{true, -1.0, -0.5, -0.5, true},   // held though the value turned
                    AbsCase{true, 1.0, 0.5, -0.5, false},    // the pedal changed sides
                    AbsCase{true, 1.0, 0, -0.5, false},      // released
                    AbsCase{true, 1.0, 0, 0, false},         // no pedal, though 0 counts as +1
                    AbsCase{false, 1.0, 0.5, 0, false, 1.0},  // the ABS button brakes by itself
                    AbsCase{true, 1.0, 0, -0.5, true, 1.0}));  // and leaves the state alone

// A lively pedal: its filter alone would carry the value through 0 in one
// frame once the raw has crossed.
using CarReverseAsAbs = OnATurn<>;

TEST_F(CarReverseAsAbs, BrakesToAStandstillThenAFreshPressReverses) {
  const CarChannel& gas = car.inputs[pcInput_GAS_PEDAL];
  // The pedal's rate limit brings the raw down to the other side first.
  int frames = 0;
  while (!car.bIsReverseVelAbsBraking && frames++ < 100) DriveFrames(car, ground, {-1.0, 0, 0}, 1);
  ASSERT_TRUE(car.bIsReverseVelAbsBraking);
  double former = gas.value;
  for (int i = 0; i < 100; ++i) {
    DriveFrames(car, ground, {-1.0, 0, 0}, 1);
    ASSERT_TRUE(car.bIsReverseVelAbsBraking) << i;
    ASSERT_GT(gas.value, 0.0) << i;
    ASSERT_LE(gas.value, former) << i;
    former = gas.value;
  }
  // Held at rest: the core's smallest speed.
  EXPECT_EQ(gas.value, 1e-08);
  DriveFrames(car, ground, {0, 0, 0}, 1);
  EXPECT_FALSE(car.bIsReverseVelAbsBraking);
  DriveFrames(car, ground, {-1.0, 0, 0}, 100);
  EXPECT_FALSE(car.bIsReverseVelAbsBraking);
  EXPECT_LT(gas.value, -0.5 * gas.maximum);
  EXPECT_GE(gas.value, -gas.maximum);
}

TEST_F(CarBooster, PullsTheGasBeyondItsMaximumAndStiffensTheSuspension) {
  const CarSuspension recording = car.params.cSuspension;
  const CarChannel& gas = car.inputs[pcInput_GAS_PEDAL];
  const CarChannel& booster = car.inputs[pcInput_BOOSTER];
  for (int i = 0; i < 10; ++i) {
    double expected = Filtered(gas.value, gas.maximum, gas.responseFactor);
    filterResponse(expected, booster.maximum * gas.maximum, booster.responseFactor, kDt);
    DriveFrames(car, ground, {1.0, 0.3, 1.0}, 1);
    ASSERT_TRUE(car.bBoosterOn);
    ASSERT_NEAR(gas.value, expected, 1e-14) << i;
    ASSERT_GT(gas.value, gas.maximum * 1.001) << i;
    const double e = (gas.value - gas.maximum) * car.params.dBoosterStiffnessMult + 1;
    const CarSuspension& s = car.params.cSuspension;
    ASSERT_NEAR(s.dFrontStiffness, recording.dFrontStiffness * e, 1e-9) << i;
    ASSERT_NEAR(s.dFrontDamping, recording.dFrontDamping * e, 1e-10) << i;
    ASSERT_NEAR(s.dBackStiffness, recording.dBackStiffness * e, 1e-9) << i;
    ASSERT_NEAR(s.dBackDamping, recording.dBackDamping * e, 1e-10) << i;
  }
  CCarCam stopped = car;
  stopped.Stop();
  EXPECT_EQ(stopped.params.cSuspension.dFrontStiffness, recording.dFrontStiffness);
  EXPECT_EQ(stopped.params.cSuspension.dBackDamping, recording.dBackDamping);
  // Let go: the values return to the recording's at once, with the gas
  // still above its maximum.
  DriveFrames(car, ground, {1.0, 0.3, 0}, 1);
  EXPECT_FALSE(car.bBoosterOn);
  EXPECT_GT(gas.value, gas.maximum * 1.001);
  EXPECT_EQ(car.params.cSuspension.dFrontStiffness, recording.dFrontStiffness);
  EXPECT_EQ(car.params.cSuspension.dBackDamping, recording.dBackDamping);
}

TEST_F(CarBooster, IsOffWhileTheSkidBrakeDisablesFeatures) {
  SkidBrakeFrame({1.0, 0.3, 1.0}, 1.0);
  EXPECT_FALSE(car.bBoosterOn);
  EXPECT_EQ(car.params.cSuspension.dFrontStiffness, CarParameters().cSuspension.dFrontStiffness);
}

// One frame split around the wheels' ground, to see the pitch increments
// the integrator left before the wheels roll.
void BurnoutStepA(CCarCam& car, double raw) {
  Apply(car, {1.0, 0.3, 0});
  car.inputs[pcInput_BURNOUT].raw = raw;
  car.StepA(kDt);
}

using CarBurnout = OnATurn<>;

TEST_F(CarBurnout, SpinsTheBackWheelsMakesTheSteeringHeavyAndFadesOut) {
  CarChannel& burnout = car.inputs[pcInput_BURNOUT];
  CarChannel& steering = car.inputs[pcInput_STEERING_WHEEL];
  const double response = steering.responseFactor;
  const int rounds = CCarCam::SubStepsFor(kDt).rounds;
  double formerResponse = response;
  for (int i = 0; i < 40; ++i) {
    BurnoutStepA(car, 1.0);
    SCOPED_TRACE(i);
    if (burnout.value > 0.001) {
      // Held, the value stays over the frame's rounds, which sum to the frame.
      for (std::size_t w : {CCarCam::kBackLeft, CCarCam::kBackRight}) {
        ASSERT_NEAR(car.wheels[w].pitchIncrement, burnout.value * -kPi * 0.49, 1e-12);
      }
      ASSERT_EQ(car.wheels[CCarCam::kFrontLeft].pitchIncrement, 0.0);
      ASSERT_LT(steering.responseFactor, formerResponse);
      ASSERT_GT(steering.responseFactor, 0.05);
      formerResponse = steering.responseFactor;
    }
    ground.Feed(car);
    car.StepB();
  }
  ASSERT_TRUE(car.bBurnoutOn);
  EXPECT_EQ(car.dBurnoutSavedSteeringResponse, response);

  // Let go: each round takes the fade-out factor off the filtered value.
  const double filtered = Filtered(burnout.value, 0, burnout.responseFactor);
  BurnoutStepA(car, 0.0);
  const double fade = car.params.dBurnoutFadeoutFactor;
  EXPECT_NEAR(burnout.value, filtered * std::pow(fade, rounds), 1e-14);
  const double spun = filtered * fade * (1 - std::pow(fade, rounds)) / (1 - fade) / rounds;
  EXPECT_NEAR(car.wheels[CCarCam::kBackRight].pitchIncrement, spun * -kPi * 0.49, 1e-12);
  EXPECT_EQ(steering.responseFactor, formerResponse);
  ground.Feed(car);
  car.StepB();

  int frames = 0;
  while (car.bBurnoutOn && frames++ < 500) DriveFrames(car, ground, {1.0, 0.3, 0}, 1);
  EXPECT_FALSE(car.bBurnoutOn);
  EXPECT_LE(burnout.value, 0.001);
  EXPECT_EQ(steering.responseFactor, response);
  EXPECT_EQ(car.dBurnoutTorque, 0.0);
}

struct GravelCase {
  double amplitude;  // raw Gravel Shake Amplitude
  double roughness;
  bool shakes;
};

class Gravel : public OnATurn<testing::TestWithParam<GravelCase>> {};

TEST_P(Gravel, EachWheelsMemoryFollowsItsNoiseWithTheRoughness) {
  const GravelCase& c = GetParam();
  car.params.dGravelRoughness = c.roughness;
  car.params.dGravelShakeOffsetValue = 0;
  // The offset's shake of the drive so far dies away.
  DriveFrames(car, ground, {1.0, 0.3, 0}, 10);
  for (int i = 0; i < 30; ++i) {
    std::uint32_t counter = car.randomValue_gravelShake;
    double memories[4];
    for (std::size_t w = 0; w < 4; ++w) memories[w] = car.wheels[w].gravelMemory;
    Apply(car, {1.0, 0.3, 0});
    car.inputs[pcInput_GRAVEL_SHAKE].raw = c.amplitude;
    ground.Frame(car, kDt);

    const double amplitude = std::fabs(car.inputs[pcInput_GRAVEL_SHAKE].value);
    ASSERT_EQ(amplitude > 1e-05, c.shakes);
    for (std::size_t w = 0; w < 4; ++w) {
      double target = 0;
      if (c.shakes) {
        const double g = std::sqrt(std::fabs(car.Speed())) * (noise01(counter) - 0.5) * amplitude;
        target = g < 0 ? -g * g : g * g;
      }
      filterResponse(memories[w], target, c.roughness, kDt);
      ASSERT_EQ(car.wheels[w].gravelTarget, target) << i << " " << w;
      ASSERT_EQ(car.wheels[w].gravelMemory, memories[w]) << i << " " << w;
    }
    ASSERT_EQ(car.randomValue_gravelShake, counter);
  }
}

INSTANTIATE_TEST_SUITE_P(Shakes, Gravel,
                         testing::Values(GravelCase{1.0, 0.9, true}, GravelCase{0.5, 0.2, true},
                                         GravelCase{1.0, 1.0, true}, GravelCase{0, 0.9, false}));

// The seed adder moves each noise counter's start; the same adder gives the
// same noise.
TEST(CarNoise, StartsFromTheSeedAdder) {
  const TestGround ground;
  CCarCam first = StartedCar(ground);
  first.params.iRandomSeedAdder = 7;
  first.Start();
  EXPECT_EQ(first.randomValue_gravelShake, 1007u);
  EXPECT_EQ(first.randomValue_burnout, 10007u);
  EXPECT_EQ(first.randomValue_steeringNoise, 100007u);
  CCarCam second = first;
  CCarCam other = StartedCar(ground);
  for (CCarCam* car : {&first, &second, &other}) {
    Apply(*car, {1.0, 0, 0});
    car->inputs[pcInput_GRAVEL_SHAKE].raw = 1.0;
    ground.Frame(*car, kDt);
  }
  EXPECT_EQ(first.wheels[0].gravelTarget, second.wheels[0].gravelTarget);
  EXPECT_NE(first.wheels[0].gravelTarget, other.wheels[0].gravelTarget);
}

}  // namespace
}  // namespace vuk::rgw::addon
