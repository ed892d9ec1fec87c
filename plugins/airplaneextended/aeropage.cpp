#include "plugins/airplaneextended/aeropage.h"

#include <string>

namespace vuk::rgw::addon {
namespace {

constexpr double kHuge = 1e16;

// Adds entries to the current group with the tool as their listener. The
// spinners are not inputs: the tool's channels are its eleven named ones.
class AeroPageWriter {
 public:
  AeroPageWriter(CInterface* iface, CInterface::Callback* tool) : iface_(iface), tool_(tool) {}

  void Group(const char* label, const char* help = "") { iface_->BeginGroup(label, help); }
  void EndGroup() { iface_->EndGroup(); }
  void Number(const std::string& label, double& value, double minimum, double maximum, double step,
              const std::string& help = "") {
    iface_->AddSpinner(label, help.empty() ? label : help, &value, minimum, maximum, step, 1, false, 0, tool_);
  }
  void Check(const char* label, bool& value, const char* help = "") {
    iface_->AddCheckBox(label, *help ? help : label, &value, tool_);
  }
  void Button(const char* label, const char* help) { iface_->AddButton(label, help, tool_); }
  void Helpers(HelperSwitches& helpers) { helpers.AddTo(iface_, tool_); }

 private:
  CInterface* iface_;
  CInterface::Callback* tool_;
};

constexpr char kInitialVelocityHelp[] =
    "This is the first of three ways to have an initial velocity. It is specified as a percentage of the maximum "
    "velocity. If this parameter is zero it will be ignored. (The second way is to use a keyframed initial velocity. "
    "The third way is to use a non-zero input value - moving your joystick forward slightly - and then pressing rec.)";

void AddGauges(AeroPageWriter& page, AeroSettings& settings) {
  page.Group("Gauges");
  page.Number("Initital Velocity (% of max)", settings.dInitialVelocityPercent, 0, 1000, 1, kInitialVelocityHelp);
  page.Number(aeropage::kMultiplier, settings.dMultiplier, 0.001, 1e7, 0.001,
              "Converts the velocity in scene units per second to the gauges' unit (3.6 gives km/h from m/s).");
  page.Number("Current Velocity", settings.dCurrentVelocity, -1e7, 1e7, 0.01);
  page.Number("Current Velocity (% of max)", settings.dCurrentVelocityPercent, -1e7, 1e7, 0.01,
              "The current velocity of the vehicle in percent of the maximum velocity.");
  page.EndGroup();
}

void AddGeneralModes(AeroPageWriter& page, AeroSettings& settings) {
  page.Group("General Modes");
  page.Button(aeropage::kInitialize,
              "Resets the plane. When pressed the input device value is read and used as the initial forward "
              "velocity of the airplane.");
  page.Helpers(settings.helpers);
  page.Check(aeropage::kHideCockpitCamera, settings.bHideCockpitCam);
  page.Check(aeropage::kHideFollowCamera, settings.bHideFollowCam);
  page.Check("FollowCam w all directions", settings.bFollowCamAllDirections,
             "The FollowCam will follow all orientations of the airplane");
  page.EndGroup();
}

void AddAirplaneModes(AeroPageWriter& page, AeroParameters& params) {
  page.Group("Airplane Modes");
  page.Check("Realistic Airplane Control", params.bRealisticControl,
             "The horizontal regulator works while its input is held, and autonomous steering leaves the rudder "
             "alone.");
  page.Check("Use relative forward velocity", params.bRelativeVelocityMode,
             "In this mode the airplane will stand still in the forward direction.");
  page.EndGroup();
}

void AddAutonomousMode(AeroPageWriter& page, AeroParameters& params) {
  page.Group("Autonomous Mode", "In Autonomous mode the Airplane will automatically follow the TargetMesh.");
  page.Check("Enable Autonomous Mode", params.bAutonomousMode,
             "In this mode the Airplane automatically follows the TargetMesh.");
  page.Check("Roll with the Target", params.bRollWithTarget, "The airplane banks as the TargetMesh does.");
  page.Number("Follow Strength", params.dFollowStrength, 0, 1000, 0.01,
              "This factor decides how tightly the Airplane follows the target");
  page.Number("Follow Strength Response Factor", params.dFollowResponse, 0, 1, 0.001);
  page.Number("Yaw Strength", params.dYawStrength, 0, 1000, 0.01,
              "This factor decides how strong the yaw is when following the target");
  page.Number("Pitch Strength", params.dPitchStrength, 0, 1000, 0.01,
              "This factor decides how strong the pitch is when following the target");
  page.Number("Roll Strength", params.dRollStrength, 0, 1000, 0.01,
              "This factor decides how strong the roll is when following the target");
  page.Number("Auto-Steering Response Factor", params.dSteeringResponse, 0, 1, 0.001);
  page.EndGroup();
}

void AddAirplaneParameters(AeroPageWriter& page, AeroParameters& params) {
  page.Group("Airplane Parameters");
  page.Number("Shake Offset Value", params.dShakeOffset, -kHuge, kHuge, 0.001,
              "This value is added to the input device value for 'Shake Amplitude' as an offset.");
  page.Number("Turbulence Offset Value", params.dTurbulenceOffset, -kHuge, kHuge, 0.001,
              "This value is added to the input device value for 'Turbulence Amplitude' as an offset.");
  page.Number("Wind Strength", params.dWindStrength, 0, kHuge, 0.001, "Random wind gusts.");
  page.Number("Virtual Mass", params.dVirtualMass, 0, kHuge, 0.01);
  page.Number("Shaker Fade Out Factor", params.dShakerFadeOut, 1e-08, kHuge, 0.001);
  page.Number("Turbulence Fade Out Factor", params.dTurbulenceFadeOut, 1e-08, kHuge, 0.001);
  page.Number("Turbulence Frequency", params.dTurbulenceFrequency, 1e-08, kHuge, 0.1);
  page.EndGroup();
}

void AddActuatorMultipliers(AeroPageWriter& page, AeroSettings& settings) {
  page.Group("Actuator Multipliers");
  const std::pair<std::string, double*> multipliers[] = {{"Rudder", &settings.dRudderAngleMult},
                                                         {"Elevator", &settings.dElevatorAngleMult},
                                                         {"Right Aileron", &settings.dRightAileronAngleMult},
                                                         {"Left Aileron", &settings.dLeftAileronAngleMult}};
  for (const auto& [part, multiplier] : multipliers) {
    page.Number(part + " Angle Mult", *multiplier, -kHuge, kHuge, 0.001, "Multiplies the " + part + " by this factor");
  }
  page.EndGroup();
}

void AddInputProperties(AeroPageWriter& page, CAeroCam& core) {
  page.Group("Input Property Parameters");
  for (std::size_t i = 0; i < kAeroChannelCount; ++i) {
    InputChannel& channel = core.channels[i];
    const std::string help = *kAeroChannelTexts[i].help ? kAeroChannelTexts[i].help : channel.name;
    page.Number(channel.name + aeropage::kResponseSuffix, channel.responseFactor, 0, 1, 0.001, help);
    page.Number(channel.name + aeropage::kMaximumSuffix, channel.maximum, -kHuge, kHuge, 0.001, help);
  }
  page.EndGroup();
}

void AddMiscellaneous(AeroPageWriter& page, AeroParameters& params, AeroSettings& settings) {
  page.Group("Miscellaneous Parameters");
  page.Check("Use constant Propeller Speed", settings.bConstantPropellerSpeed,
             "The propellers turn at the rotation speed whatever the airplane's speed.");
  page.Number("Propeller Rotation Speed", settings.dPropellerSpeed, -kHuge, kHuge, 0.1,
              "Sets how fast the propeller should rotate (degrees/frame).");
  page.Check("Reverse first propeller", settings.bReverseFirstPropeller, "Reverses the first propeller rotation.");
  page.Number("Shaker Roughness", params.dShakerRoughness, 0, 1, 0.001,
              "The smaller the value the smoother the shake is.");
  page.EndGroup();
}

}  // namespace

void BuildAeroPage(CInterface* iface, CInterface::Callback* tool, CAeroCam& core, AeroSettings& settings) {
  AeroPageWriter page(iface, tool);
  iface->BeginConfig();
  AddGauges(page, settings);
  AddGeneralModes(page, settings);
  AddAirplaneModes(page, core.params);
  AddAutonomousMode(page, core.params);
  AddAirplaneParameters(page, core.params);
  AddActuatorMultipliers(page, settings);
  AddInputProperties(page, core);
  AddMiscellaneous(page, core.params, settings);
  iface->EndConfig();
}

}  // namespace vuk::rgw::addon
