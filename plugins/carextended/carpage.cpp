#include "plugins/carextended/carpage.h"

#include <string>

namespace vuk::rgw::addon {
namespace {

// Adds entries to the current group with the tool as their listener. The
// spinners are not inputs: the tool's channels are its nine named ones.
class CarPageWriter {
 public:
  CarPageWriter(CInterface* iface, CInterface::Callback* tool) : iface_(iface), tool_(tool) {}

  void Group(const char* label) { iface_->BeginGroup(label, ""); }
  void EndGroup() { iface_->EndGroup(); }
  void Number(const std::string& label, double& value, double minimum, double maximum, double step,
              const std::string& help = "") {
    iface_->AddSpinner(label, help, &value, minimum, maximum, step, 1, false, 0, tool_);
  }
  void Whole(const char* label, std::int32_t& value, std::int32_t minimum, std::int32_t maximum) {
    iface_->AddIntSpinner(label, "", &value, minimum, maximum, 1, 1, false, 0, tool_);
  }
  void Check(const char* label, bool& value, const char* help = "") { iface_->AddCheckBox(label, help, &value, tool_); }
  void Button(const char* label, const char* help) { iface_->AddButton(label, help, tool_); }
  void Helpers(HelperSwitches& helpers) { helpers.AddTo(iface_, tool_); }

 private:
  CInterface* iface_;
  CInterface::Callback* tool_;
};

// Gauges (read only)
void AddGauges(CarPageWriter& page, CarGauges& gauges) {
  page.Group("Gauges (read only)");
  page.Number("Initital Velocity (% of max)", gauges.dInitialVelocityPercent, 0, 1000, 1);
  page.Number(carpage::kMultiplier, gauges.dMultiplier, 0.001, 10000000, 0.001);
  page.Number("World Space Maximum Velocity Gauge", gauges.dMaxVelocity, 0, 100000, 1);
  page.Number("Current Velocity", gauges.dCurrentVelocity, -10000000, 10000000, 0.01);
  page.Number("Current Velocity (% of max)", gauges.dCurrentVelocityPercent, -10000000, 10000000, 0.01);
  page.Number("World Space Acceleration Gauge (seconds from 0 to 100)", gauges.dSecondsTo100, 0, 1000000, 0.01);
  page.Number("World Space Acceleration Gauge (seconds from 0 to 60)", gauges.dSecondsTo60, 0, 1000000, 0.01);
  page.EndGroup();
}

void AddGeneralModes(CarPageWriter& page, CarToolSettings& settings) {
  page.Group("General Modes");
  page.Button(carpage::kReinitialize, "Press to enable re-initialization of the car's physical attributes");
  page.Helpers(settings.helpers);
  page.Check(carpage::kHideFollowCamera, settings.bHideFollowCam);
  page.Check(carpage::kHideDriverCamera, settings.bHideDriverCam);
  page.Check(carpage::kHideTopViewCamera, settings.bHideTopViewCam);
  page.Check("Enable Seamless Transitions", settings.bEnableSeamlessTransitions,
             "Enable Seamless Transitions requires more memory usage.");
  page.Check("Keyframe only essential objects", settings.bKeyframeOnlyEssentialObjects,
             "Only the the body, the wheels and the gravityDirectionMesh will be keyframed.");
  page.EndGroup();
}

void AddAutonomousMode(CarPageWriter& page, CarParameters& params, CarToolSettings& settings) {
  page.Group("Autonomous Mode Properties");
  page.Check("Autonomous Mode", params.bAutonomousMode,
             "In Autonomous mode the 4-wheeler will automatically follow the TargetMesh.\n"
             "Constrain the TargetMesh to a path/spline.\n"
             "Use an input device to apply features and to deviate from the follow path in real-time.");
  page.Number("Autonomous mode follow strength", settings.dFollowAccelerationMult, 0.01, 30, 0.01);
  page.Number("Follow Strength Response Factor", settings.dFollowAccRespFact, 0.0001, 1, 0.001);
  page.Number("Auto-Steering Response Factor", settings.dAutoSteeringValueRespFact, 0.0001, 1, 0.001);
  page.Number("Reverse Max Vel Mult", settings.dReverseMaxVelMult, 0, 1000, 0.001);
  page.Number("Ignore Sphere Radius (length relative)", settings.dIgnoreSphereRadius, 0.001, 100, 0.001);
  page.EndGroup();
}

void AddSteering(CarPageWriter& page, CarParameters& params, CarToolSettings& settings) {
  page.Group("Steering Properties");
  page.Number("Maximum Steering Change Velocity", params.dVelRelMaxSteeringChangeVel, 0.001, 100, 0.001);
  page.Number("Speed Dependent Turn Radius Reduction Factor", params.dSpeedDependentTurnRadiusReduction, 0, 10,
              0.001);
  page.Number("Steering Noise", params.dSteeringNoise, 0, 1000, 0.001);
  page.Number("Steering Wheel Rot Mult", settings.dSteeringWheelRotMult, 0, 1000, 0.001);
  page.Number(carpage::kTurnBase, params.dTurnBaseBackWheelRel, -2, 2, 0.001);
  page.EndGroup();
}

void AddSuspension(CarPageWriter& page, CarParameters& params, CarToolSettings& settings) {
  page.Group("Suspension Properties");
  page.Number("Front Stiffness", params.cSuspension.dFrontStiffness, 0, 10000, 1);
  page.Number("Front Damping", params.cSuspension.dFrontDamping, 0, 10000, 0.1);
  page.Number("Back Stiffness", params.cSuspension.dBackStiffness, 0, 10000, 1);
  page.Number("Back Damping", params.cSuspension.dBackDamping, 0, 10000, 0.1);
  page.Number("Tire Pressure", settings.fSurfaceEdgeResponseFactor, 0, 1000, 0.001);
  page.Number("Maximum Forward Tilt Angle", params.dMaxForwardTiltAngle, 0, 1.5, 0.0001);
  page.Number("Maximum Side Tilt Angle", params.dMaxSideTiltAngle, 0, 1.5, 0.0001);
  page.Number("Booster Stiffness Multiplier", params.dBoosterStiffnessMult, 0, 10, 0.001);
  page.Number("Mass Multiplier", params.dMassMult, 0, 1000, 0.001);
  page.EndGroup();
}

void AddGeneralProperties(CarPageWriter& page, CarParameters& params, CarToolSettings& settings) {
  page.Group("General Properties");
  page.Check("Fixate Wheel Center Nodes", settings.bFixateWheelCenterNodes);
  page.Check("Move WheelCenterMesh to ground hit point", settings.bMoveWheelCenterToHitPoint);
  page.Check("Align WheelCenterMesh to ground incline", settings.bAlignWheelCenterToIncline);
  page.Check("Use Reverse as ABS Brake", params.bUseReverseAsAbsBrake);
  page.Number("Skidding Offset Value", params.dSkiddingOffsetValue, 0, 100, 0.001);
  page.Number("Skidding Release Value (Lateral Vel Rel)", params.dSkiddingReleaseValue, 0, 100, 0.001);
  page.Number("Skidding Release Response Factor", params.dSkiddingReleaseResponseFactor, 1e-08, 1, 0.001);
  page.Number("Gravel Shake Offset Value", params.dGravelShakeOffsetValue, 0, 100, 0.001);
  page.Number("Gravel Roughness", params.dGravelRoughness, 0, 1, 0.001);
  page.Number("External Force Offset Value", params.dExternalForceOffsetValue, 0, 10000, 0.001);
  page.Number("Skid Brake Stop Factor", params.dSkidBrakeStopFactor, 1e-08, 100, 0.001);
  page.Number("Skid Brake Rot Brake Mult", params.dSkidBrakeRotBrakeMult, 0, 1000, 0.001);
  page.Number("Burnout Shake", params.dBurnoutShake, 0, 100, 0.01);
  page.Number("Burnout Tilting Force", params.dBurnoutTiltingForce, 0, 100, 0.01);
  page.Number("Burnout Fadeout Factor", params.dBurnoutFadeoutFactor, 0, 1, 0.001);
  page.Whole("Random Seed Adder", params.iRandomSeedAdder, 0, 10000);
  page.Number("World Avoidance Sphere (scale relative)", params.dWorldAvoidanceSphere, 0, 2000000000, 1);
  page.Number("Wheel Radius Multiplier", params.dWheelRadiusMult, 0.01, 10, 0.01);
  page.Number("Gravity", params.dGravity, 0, 10000, 0.001);
  page.EndGroup();
}

void AddRayCast(CarPageWriter& page, CarToolSettings& settings) {
  page.Group("Ray Cast Properties");
  page.Whole("Ray Multiplier", settings.iRayMultiplier, 1, 100);
  page.Check("Cast Rays at Wheel Edges", settings.bCastRaysAtWheelEdges);
  page.Number("Degrees Per Ray", settings.dDegreesPerRay, 0.1, 89, 0.01);
  page.Check(carpage::kUseFastRayCast, settings.bUseFastRayCast);
  page.Check(carpage::kStoreGroundMeshData, settings.bStoreGroundMeshData);
  page.EndGroup();
}

// The channels' response factors reach past 1 ("Boat" steers with 1.4), and
// a maximum is a speed, an angle or a strength: never below 0.
void AddInputProperties(CarPageWriter& page, CarParameters& params, CarInputs& inputs) {
  page.Group("Input Property Parameters");
  page.Number(carpage::kAcceleration, params.dAcceleration, 0.001, 1000000, 0.01);
  for (std::size_t i = 0; i < kCarInputCount; ++i) {
    const std::string name = kCarChannelTexts[i].name;
    const std::string help = *kCarChannelTexts[i].help ? kCarChannelTexts[i].help : name;
    page.Number(name + carpage::kResponseSuffix, inputs[i].responseFactor, 0, 100, 0.001, help + ": Response Factor");
    page.Number(name + carpage::kMaximumSuffix, inputs[i].maximum, 0, 1000000, 0.001, help + ": Maximum");
  }
  page.EndGroup();
}

// These three came to the page after the profiles had their ids: they go
// last, so that every earlier id stays where the profiles expect it.
void AddWheelGroundRelease(CarPageWriter& page, CarParameters& params, CarToolSettings& settings) {
  page.Group("Wheel Ground Release Properties");
  page.Check("Enable Wheel Ground Release", settings.bEnableWheelGroundRelease);
  page.Number("Suspension Length (Radius Relative)", params.dSuspensionLengthRel, 0, 100, 0.001);
  page.Number("Maximum Wheel Extension Velocity (Radius Rel)", settings.dMaxWheelExtensionVelRel, 0, 100, 0.001);
  page.EndGroup();
}

}  // namespace

void BuildCarPage(CInterface* iface, CInterface::Callback* tool, CarParameters& params, CarInputs& inputs,
                  CarToolSettings& settings) {
  CarPageWriter page(iface, tool);
  iface->BeginConfig();
  AddGauges(page, settings.gauges);
  AddGeneralModes(page, settings);
  AddAutonomousMode(page, params, settings);
  AddSteering(page, params, settings);
  AddSuspension(page, params, settings);
  AddGeneralProperties(page, params, settings);
  AddRayCast(page, settings);
  AddInputProperties(page, params, inputs);
  AddWheelGroundRelease(page, params, settings);
  iface->EndConfig();
}

}  // namespace vuk::rgw::addon
