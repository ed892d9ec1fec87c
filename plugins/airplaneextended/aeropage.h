#pragma once
// The airplane's configuration page and the settings it binds that live in
// the tool rather than in the core. Profiles address the page's entries by
// their place on it: an entry added anywhere but at the end moves every id
// after it.

#include "plugins/airplaneextended/aerocam.h"
#include "plugins/common/hideswitch.h"
#include "sdk/cinterface.h"

namespace vuk::rgw::addon {

// Labels the tool reacts to when they change.
namespace aeropage {
inline constexpr char kInitialize[] = "Initialize";
inline constexpr char kMultiplier[] = "Multiplier";
inline constexpr char kHideCockpitCamera[] = "Hide Cockpit Camera";
inline constexpr char kHideFollowCamera[] = "Hide Follow Camera";
inline constexpr char kResponseSuffix[] = ": Response Factor";
inline constexpr char kMaximumSuffix[] = ": Maximum";
}  // namespace aeropage

struct AeroSettings {
  double dInitialVelocityPercent = 0;  // "Initital Velocity (% of max)"
  double dMultiplier = 3.6;            // "Multiplier": scene units per second to the gauge's unit
  double dCurrentVelocity = 0;         // read-outs
  double dCurrentVelocityPercent = 0;

  HelperSwitches helpers;
  bool bHideCockpitCam = false;
  bool bHideFollowCam = false;
  bool bFollowCamAllDirections = false;  // "FollowCam w all directions"

  double dRudderAngleMult = 1;
  double dElevatorAngleMult = 1;
  double dRightAileronAngleMult = 1;
  double dLeftAileronAngleMult = 1;

  bool bConstantPropellerSpeed = false;  // "Use constant Propeller Speed"
  double dPropellerSpeed = 90;           // "Propeller Rotation Speed", degrees per frame
  bool bReverseFirstPropeller = false;   // "Reverse first propeller"
};

// The whole page, from BeginConfig to EndConfig, each entry bound to its
// field. Entries report their changes to `tool`, except "Hide Helpers
// During Recording", which changes nothing at once.
void BuildAeroPage(CInterface* iface, CInterface::Callback* tool, CAeroCam& core, AeroSettings& settings);

}  // namespace vuk::rgw::addon
