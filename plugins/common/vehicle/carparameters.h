#pragma once
// The 4-Wheeler's tunable values that its numerical core reads, with the
// "Start Profile" defaults. The label of each field on the tool's page is
// kept beside it.

namespace vuk::rgw::addon {

// Spring and damper of the front and the back axle. The booster scales all
// four at once, so they travel together.
struct CarSuspension {
  double dFrontStiffness = 2000;  // "Front Stiffness"
  double dFrontDamping = 200;     // "Front Damping"
  double dBackStiffness = 2000;   // "Back Stiffness"
  double dBackDamping = 200;      // "Back Damping"

  CarSuspension operator*(double f) const {
    return {dFrontStiffness * f, dFrontDamping * f, dBackStiffness * f, dBackDamping * f};
  }
};

struct CarParameters {
  // Autonomous mode: the car chooses gas and steering to follow a target,
  // and the gas and steering channels integrate a memory on top of them.
  bool bAutonomousMode = false;             // "Autonomous Mode"
  double dFollowAccelerationMult = 0.5;     // "Autonomous mode follow strength"
  double dFollowAccRespFact = 0.02;         // "Follow Strength Response Factor"
  double dAutoSteeringValueRespFact = 0.2;  // "Auto-Steering Response Factor"
  double dReverseMaxVelMult = 0.5;          // "Reverse Max Vel Mult"
  double dIgnoreSphereRadius = 0.5;         // "Ignore Sphere Radius (length relative)"

  double dVelRelMaxSteeringChangeVel = 2.0;      // "Maximum Steering Change Velocity"
  double dSpeedDependentTurnRadiusReduction = 0.2;  // "Speed Dependent Turn Radius Reduction Factor"
  double dSteeringNoise = 0;                     // "Steering Noise"
  double dTurnBaseBackWheelRel = 0;              // "Turn Base (Back Wheel Relative)"

  CarSuspension cSuspension;
  double dMaxForwardTiltAngle = 0.06;  // "Maximum Forward Tilt Angle"
  double dMaxSideTiltAngle = 0.07;     // "Maximum Side Tilt Angle"
  double dBoosterStiffnessMult = 0.3;  // "Booster Stiffness Multiplier"
  double dMassMult = 2;                // "Mass Multiplier"

  bool bUseReverseAsAbsBrake = true;          // "Use Reverse as ABS Brake"
  double dSkiddingOffsetValue = 0;            // "Skidding Offset Value"
  double dSkiddingReleaseValue = 0.04;        // "Skidding Release Value (Lateral Vel Rel)"
  double dSkiddingReleaseResponseFactor = 1;  // "Skidding Release Response Factor"
  double dGravelShakeOffsetValue = 0.5;       // "Gravel Shake Offset Value"
  double dGravelRoughness = 0.9;              // "Gravel Roughness"
  double dExternalForceOffsetValue = 0;       // "External Force Offset Value"
  double dSkidBrakeStopFactor = 1;            // "Skid Brake Stop Factor"
  double dSkidBrakeRotBrakeMult = 1;          // "Skid Brake Rot Brake Mult"
  double dBurnoutShake = 0.2;                 // "Burnout Shake"
  double dBurnoutTiltingForce = 1;            // "Burnout Tilting Force"
  double dBurnoutFadeoutFactor = 0.99;        // "Burnout Fadeout Factor"
  int iRandomSeedAdder = 0;                   // "Random Seed Adder"
  double dWorldAvoidanceSphere = 0;           // "World Avoidance Sphere (scale relative)"
  double dWheelRadiusMult = 0.95;             // "Wheel Radius Multiplier"
  double dGravity = 1;                        // "Gravity"

  double dSuspensionLengthRel = 0.5;  // "Suspension Length (Radius Relative)"
  double dAcceleration = 2;           // "Acceleration (scale relative)"

  // The core's own tunables of the air state, not on the page.
  bool bGravityOn = true;
  double dJumpGravity = 9.81;               // acceleration in the air, times L
  double dScaleRelMaxJumpVelocity = 10.0;   // air speed limit, L per second
  double dLandingNeutralizer = 0.8;         // heave and tilt fade per sub-step in the air
  double dHorizontalRestoringFactor = 0.05; // how fast the car rights itself in the air
  double dLandingSkiddingFactor = 0.05;     // skid on landing
};

}  // namespace vuk::rgw::addon
