#pragma once
// The 4-Wheeler's configuration page: the settings of the tool itself that
// the numerical core doesn't read, the names of its nine input channels, and
// the one call that registers every group and entry in page order.
//
// The page gives each control its id by the order of registration, and the
// factory profiles address values by those ids. So the order below is part
// of the saved profiles: an entry added anywhere but at the end moves every
// id after it.

#include <array>
#include <cstdint>

#include "plugins/common/hideswitch.h"
#include "plugins/common/vehicle/carinputs.h"
#include "plugins/common/vehicle/carparameters.h"
#include "sdk/cinterface.h"

namespace vuk::rgw::addon {

// Labels the tool reacts to when they change.
namespace carpage {
inline constexpr char kReinitialize[] = "Re-Initialize Car Attributes";
inline constexpr char kMultiplier[] = "Multiplier";
inline constexpr char kHideFollowCamera[] = "Hide Follow Camera";
inline constexpr char kHideDriverCamera[] = "Hide Driver Camera";
inline constexpr char kHideTopViewCamera[] = "Hide TopView Camera";
inline constexpr char kTurnBase[] = "Turn Base (Back Wheel Relative)";
inline constexpr char kUseFastRayCast[] = "Use Fast Ray Cast";
inline constexpr char kStoreGroundMeshData[] = "Store Ground Mesh Data";
inline constexpr char kAcceleration[] = "Acceleration (scale relative)";
inline constexpr char kResponseSuffix[] = " Response Factor";
inline constexpr char kMaximumSuffix[] = " Maximum";
}  // namespace carpage

// A channel's name (its input's name, and the start of its two page labels)
// and its help; empty help where the channel has none.
struct CarChannelText {
  const char* name;
  const char* help;
};

inline constexpr std::array<CarChannelText, kCarInputCount> kCarChannelTexts = {{
    {"Gas Pedal (Forw/Backw)", "How strong and fast the engine is. 0.0 gives an instant velocity."},
    {"Steering Wheel (Right/Left)", "How much and how smoothly the wheels turn"},
    {"Booster", "How much and how fast the velocity will multiply"},
    {"ABS Brake", "Brakes as strong as possible until a full stop"},
    {"Skidding", "How much skidding and how fast it applies"},
    {"Skid Brake", "Locks the wheels"},
    {"Gravel Shake Amplitude", ""},
    {"Burnout", "Creates a burnout where the back wheel(s) spin"},
    {"External Force", "This input will apply a force in the direction of the 'ExternalForceMesh' direction"},
}};

// The read-only numbers at the top of the page. The first two are set by
// the user; the others the tool computes, and a profile's values for them
// are overwritten at the next update.
struct CarGauges {
  double dInitialVelocityPercent = 0;  // "Initital Velocity (% of max)"
  double dMultiplier = 3.6;            // "Multiplier": scene units per second to the gauge's unit
  double dMaxVelocity = 0;             // "World Space Maximum Velocity Gauge"
  double dCurrentVelocity = 0;         // "Current Velocity"
  double dCurrentVelocityPercent = 0;  // "Current Velocity (% of max)"
  double dSecondsTo100 = 0;            // "World Space Acceleration Gauge (seconds from 0 to 100)"
  double dSecondsTo60 = 0;             // "World Space Acceleration Gauge (seconds from 0 to 60)"
};

// The page's values that live in the tool rather than in the core, with the
// "Start Profile" defaults.
struct CarToolSettings {
  CarGauges gauges;

  HelperSwitches helpers;  // "Hide Helpers", "Hide Helpers During Recording"
  bool bHideFollowCam = true;                 // "Hide Follow Camera"
  bool bHideDriverCam = true;                 // "Hide Driver Camera"
  bool bHideTopViewCam = true;                // "Hide TopView Camera"
  bool bEnableSeamlessTransitions = true;     // "Enable Seamless Transitions"
  bool bKeyframeOnlyEssentialObjects = false;  // "Keyframe only essential objects"

  double dFollowAccelerationMult = 0.5;     // "Autonomous mode follow strength"
  double dFollowAccRespFact = 0.02;         // "Follow Strength Response Factor"
  double dAutoSteeringValueRespFact = 0.2;  // "Auto-Steering Response Factor"
  double dReverseMaxVelMult = 0.5;          // "Reverse Max Vel Mult"
  double dIgnoreSphereRadius = 0.5;         // "Ignore Sphere Radius (length relative)"

  double dSteeringWheelRotMult = 1;  // "Steering Wheel Rot Mult"

  // The response factor of the wheel's ground contact filter.
  double fSurfaceEdgeResponseFactor = 0.8;  // "Tire Pressure"

  bool bFixateWheelCenterNodes = false;      // "Fixate Wheel Center Nodes"
  bool bMoveWheelCenterToHitPoint = false;   // "Move WheelCenterMesh to ground hit point"
  bool bAlignWheelCenterToIncline = false;   // "Align WheelCenterMesh to ground incline"

  bool bEnableWheelGroundRelease = false;   // "Enable Wheel Ground Release"
  double dMaxWheelExtensionVelRel = 3;      // "Maximum Wheel Extension Velocity (Radius Rel)"

  std::int32_t iRayMultiplier = 10;   // "Ray Multiplier"
  bool bCastRaysAtWheelEdges = true;  // "Cast Rays at Wheel Edges"
  double dDegreesPerRay = 2;          // "Degrees Per Ray"
  bool bUseFastRayCast = true;        // "Use Fast Ray Cast"
  bool bStoreGroundMeshData = false;  // "Store Ground Mesh Data"
};

// The whole page, from BeginConfig to EndConfig, each entry bound to its
// field. Entries report their changes to `tool`, except "Hide Helpers
// During Recording", which changes nothing at once.
void BuildCarPage(CInterface* iface, CInterface::Callback* tool, CarParameters& params, CarInputs& inputs,
                  CarToolSettings& settings);

}  // namespace vuk::rgw::addon
