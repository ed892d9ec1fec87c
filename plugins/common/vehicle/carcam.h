#pragma once
// The 4-Wheeler's numerical core: a kinematic base that moves along the arc
// that speed and steering give, with a sprung body (heave, pitch, roll)
// riding on it. It knows only numbers: the tool feeds the input channels and
// each wheel's ground contact, and reads poses back. The wheels are a list,
// so that other wheeled tools reuse the core with their own count.
//
// Frames: the base's frame has y up and its front towards -z (front wheels
// at negative z), right towards +x. Speeds are in car lengths L per second.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "plugins/common/vehicle/carinputs.h"
#include "plugins/common/vehicle/carparameters.h"
#include "util/quat.h"
#include "util/vector3.h"

namespace vuk::rgw::addon {

using CarVector = util::Vector3<double>;
using CarRotation = util::Quat<double>;

// What a wheel's ground detection found this frame.
struct WheelGround {
  CarVector hitPoint;        // world
  CarVector normal{0, 1, 0};  // world
  bool inTheAir = false;
  double compression = 0;     // as CCarCam::CompressionAt measures it
  double distanceDriven = 0;  // length of the wheel's move this frame
};

struct CarWheel {
  // Rig: radius, side (+ right) and length (- front) in the base's frame.
  double radius = 0.26;
  double x = 0;
  double z = 0;
  bool front = true;

  WheelGround ground;
  CarVector hitPointFormer;  // last frame's hit point, for the wheel's ground motion
  double compression = 0;
  double compressionFormer = 0;  // of the previous sub-step
  double springForce = 0;
  double yaw = 0, yawFormer = 0;
  double pitchIncrement = 0;
  double totalPitch = 0, totalPitchFormer = 0;
  double pitchTurn = 0;  // what the total pitch turned this frame, unwrapped
  double gravelTarget = 0;
  double gravelMemory = 0;
  CarVector mount;  // base frame
  CarVector mountFormer;
};

// The sprung body relative to the base: heave, pitch (about x) and roll
// (about z), each with its velocity and acceleration.
struct CarBody {
  double fRelYPos = 0, fRelYVel = 0, fRelYAcc = 0;
  double fRelXAng = 0, fRelXAngVel = 0, fRelXAngAcc = 0;
  double fRelZAng = 0, fRelZAngVel = 0, fRelZAngAcc = 0;
};

class CCarCam {
 public:
  enum WheelIndex : std::size_t { kFrontLeft, kFrontRight, kBackLeft, kBackRight };

  static constexpr double kLongestSubStep = 0.003;
  // Integrator rounds of a frame and their length.
  struct SubSteps {
    int rounds;
    double length;
  };
  static SubSteps SubStepsFor(double dt);

  // The default rig: four wheels in the order FL, FR, BL, BR.
  CCarCam();

  // A fresh run: seeds the noise counters and keeps the suspension values
  // the booster scales from.
  void Start();
  // Restores the suspension values the booster may have raised.
  void Stop();

  // Everything up to the wheels' ground detection: in autonomous mode the
  // gas and steering that follow the target, then inputs, booster, ABS,
  // gravel, and the integrator's rounds. Reads each wheel's `ground`.
  void StepA(double dt);
  // After the ground detection: the wheels' turning.
  void StepB();

  // A wheel's compression for a ground hit point: how far the ground pushes
  // the wheel up from where its mount holds it at rest.
  double CompressionAt(std::size_t wheel, const CarVector& hitPoint) const;
  CarVector WheelMountWorld(std::size_t wheel) const;
  CarRotation ChassisRotation() const;
  CarVector ChassisPosition() const;
  CarRotation WheelRotation(std::size_t wheel) const;
  // The point the car turns about lies on the line z = TurnBaseZ().
  double TurnBaseZ() const;
  double TurnRadius(double steering) const;
  // Speed of the base in world units per second.
  double Speed() const { return dLength * inputs[pcInput_GAS_PEDAL].value; }

  // Rig.
  double dLength = 3.522;
  double dRideHeight = 0.15;  // `CarBody Ground Height`: chassis above the wheel plane
  std::vector<CarWheel> wheels;

  CarParameters params;
  CarInputs inputs = DefaultCarInputs();

  // The base's pose and the increments of the current sub-step.
  CarVector position;
  CarRotation rotation;
  CarVector vTransCarAbsIncr;
  CarRotation qRotCarAbsIncr;
  CarVector vTransCarAbsIncrFormer;  // at the start of the frame
  CarRotation qRotCarAbsIncrFormer;
  CarVector vWantedIncr;
  double fCarLocalYawIncr = 0;
  CarVector vLocalAcceleration;

  CarBody cCarBody;
  CarVector vChassisOffset{0, 0.15, 0};  // base frame

  // Given by the gravity and external force nodes.
  CarVector vGravityDirection{0, -1, 0};
  CarRotation qGravityAttitude;
  CarVector vExternalForceDirection{1, -1, 1};
  CarVector vExternalForcePoint{0, 1, 0};

  bool bCarInTheAir = false;
  bool bJustLanded = false;
  CarRotation qAttitudeMem;

  bool bSkidBreakingOn = false;
  bool bSkidBreakingOnDisableFeatures = false;
  bool bSkidFirstTime = true;
  bool bSkiddingOn = false;
  double dSkidBrakeLocalYawIncr = 0;
  CarVector vSkidBrakePosIncr;
  CarVector vSkidBrakeSpeed;
  double dSkidBrakeYawSpeed = 0;
  double dSkidBrakeSigns = 1;  // sign(speed) x sign(-steering) at the brake's start
  double dVelocityFollowFactor = 1.0;

  bool bBoosterOn = false;
  bool bSuspensionBoosted = false;
  CarSuspension cSuspensionRecording;

  bool bIsReverseVelAbsBraking = false;
  bool bAbsIdle = true;
  double dAbsReference = 0;  // the gas value the braking started from
  double dAbsFormerGasRaw = 0;
  double dAbsFormerGasValue = 0;  // the gas value this stage left last frame
  // Former raws of the rate limits, and the autonomous mode's memories.
  double dGasRawFormer = 0, dSteeringRawFormer = 0;
  double dGasPedalInputFilterMem = 0, dInputFilterMem = 0;

  // Autonomous mode. In: the target's world position one frame ago (final
  // whatever order the host evaluates in), and the body's scale, the length
  // of its matrix's third row, which bounds how far ahead the car looks.
  // Out: the gas value (L per second) and the steering angle it chose.
  CarVector vAutonomousTarget;
  double dBodyScale = 1;
  double dFollowAccMem = 0;
  double dAutoSteeringValueMem = 0;
  double dAutoSteeringWantedFormer = 0;  // for its rate limit

  bool bBurnoutOn = false;
  double dBurnoutSavedSteeringResponse = 0;
  double dBurnoutTorque = 0;

  std::uint32_t randomValue_gravelShake = 1000;
  std::uint32_t randomValue_burnout = 10000;
  std::uint32_t randomValue_steeringNoise = 100000;

 private:
  void UpdateAirState(double h, double dt);
  void UpdateSkidBrake(double h, double dt);
  void StopDriving();
  void DecaySkidYaw(double loss);
  void UpdateSkiddingFlag();
  void FollowTarget(double dt);
  void RunInputStage(double dt);
  void RunGasInput(double dt);
  void RunSteeringInput(double dt);
  void RunSkiddingInput(double dt);
  void RunBooster(double dt);
  void RunAbs(double dt);
  void RunGravel(double dt);

  // One integrator round.
  void Round(double h, double dt);
  void MoveOnArc(double h, double dt, double speed, double steering, double radius);
  void RunBurnout(double h, double dt);
  void UpdateWheelYaws(double h, double speed, double radius);
  void UpdateBody(double h);
  void UpdateMounts();

  CarVector BackAxis() const;
  // The chassis's pitch and roll in the base's frame.
  CarRotation Tilt() const;
  double WheelRadius(const CarWheel& wheel) const { return wheel.radius * params.dWheelRadiusMult; }
};

}  // namespace vuk::rgw::addon
