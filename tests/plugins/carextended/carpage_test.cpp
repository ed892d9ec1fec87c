#include "plugins/carextended/carpage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <map>
#include <ostream>
#include <memory>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "adaptor/standalone/standaloneadaptorinterface.h"
#include "core/configadaptor/elements.h"
#include "core/instance.h"
#include "tests/sdk/testplugin.h"
#include "util/xml/element.h"

namespace vuk::rgw::addon {
namespace {

using core::configadaptor::Node;
namespace element = core::configadaptor::element;

// Only the page of the 4-Wheeler, with every value it binds.
class CarPageTool : public CCamera, public CInterface::Callback {
 public:
  using CCamera::CCamera;
  std::int32_t BuildConfig() override {
    BuildCarPage(iface, this, params, inputs, settings);
    return 0;
  }
  void Changed(std::string label) override { changes.push_back(label); }

  CarParameters params;
  CarInputs inputs = DefaultCarInputs();
  CarToolSettings settings;
  std::vector<std::string> changes;
};

// A page control with the group it sits in.
struct Entry {
  Node* node;
  std::string group;
};

class CarPage {
  // Made before the instance that uses them.
  adaptor::standalone::StandaloneAdaptorInterface host;
  testing_support::TestPlugin<CarPageTool> plugin{"4WheelerExt", "Vehicle"};
  CCamera::CreateParam param{""};

 public:
  CarPage() : instance(&plugin, plugin.Create(param), "", &host) {
    tool = static_cast<CarPageTool*>(instance.GetTool());
    tool->BuildConfig();
    Collect(*instance.GetPage(), "");
  }

  // The controls in page order.
  std::vector<Entry> entries;
  std::vector<std::string> groups;
  CarPageTool* tool;
  core::Instance instance;

  Node* Find(std::int32_t id) const {
    const auto at = std::find_if(entries.begin(), entries.end(), [id](const Entry& e) { return e.node->id == id; });
    return at == entries.end() ? nullptr : at->node;
  }
  // Every value by its id.
  std::map<std::int32_t, double> Values() const {
    std::map<std::int32_t, double> values;
    for (const Entry& entry : entries) values[entry.node->id] = entry.node->GetValue();
    return values;
  }

 private:
  void Collect(Node& node, const std::string& group) {
    for (std::size_t i = 0; i < node.GetChildCount(); ++i) {
      Node* child = node.GetChild(i);
      if (dynamic_cast<element::Group*>(child)) {
        groups.push_back(child->label);
        Collect(*child, child->label);
      } else {
        entries.push_back({child, group});
      }
    }
  }
};

enum class Kind { kNumber, kWhole, kCheck, kButton };

// One entry as the page must hold it, and the field it must be bound to.
struct Expected {
  std::int32_t id;
  const char* label;
  Kind kind;
  double value, minimum, maximum, step;
  double (*field)(const CarPageTool&);
};

#define FIELD(expr) [](const CarPageTool& t) { return static_cast<double>(t.expr); }
constexpr Kind D = Kind::kNumber, I = Kind::kWhole, B = Kind::kCheck;

const Expected kEntries[] = {
    {0, "Initital Velocity (% of max)", D, 0, 0, 1000, 1, FIELD(settings.gauges.dInitialVelocityPercent)},
    {1, "Multiplier", D, 3.6, 0.001, 10000000, 0.001, FIELD(settings.gauges.dMultiplier)},
    {2, "World Space Maximum Velocity Gauge", D, 0, 0, 100000, 1, FIELD(settings.gauges.dMaxVelocity)},
    {3, "Current Velocity", D, 0, -10000000, 10000000, 0.01, FIELD(settings.gauges.dCurrentVelocity)},
    {4, "Current Velocity (% of max)", D, 0, -10000000, 10000000, 0.01, FIELD(settings.gauges.dCurrentVelocityPercent)},
    {5, "World Space Acceleration Gauge (seconds from 0 to 100)", D, 0, 0, 1000000, 0.01,
     FIELD(settings.gauges.dSecondsTo100)},
    {6, "World Space Acceleration Gauge (seconds from 0 to 60)", D, 0, 0, 1000000, 0.01,
     FIELD(settings.gauges.dSecondsTo60)},
    {7, "Re-Initialize Car Attributes", Kind::kButton, 0, 0, 0, 0, nullptr},
    {8, "Hide Helpers", B, 0, 0, 1, 0, FIELD(settings.helpers.hide)},
    {9, "Hide Helpers During Recording", B, 0, 0, 1, 0, FIELD(settings.helpers.hideDuringRecording)},
    {10, "Hide Follow Camera", B, 1, 0, 1, 0, FIELD(settings.bHideFollowCam)},
    {11, "Hide Driver Camera", B, 1, 0, 1, 0, FIELD(settings.bHideDriverCam)},
    {12, "Hide TopView Camera", B, 1, 0, 1, 0, FIELD(settings.bHideTopViewCam)},
    {13, "Enable Seamless Transitions", B, 1, 0, 1, 0, FIELD(settings.bEnableSeamlessTransitions)},
    {14, "Keyframe only essential objects", B, 0, 0, 1, 0, FIELD(settings.bKeyframeOnlyEssentialObjects)},
    {15, "Autonomous Mode", B, 0, 0, 1, 0, FIELD(params.bAutonomousMode)},
    {16, "Autonomous mode follow strength", D, 0.5, 0.01, 30, 0.01, FIELD(settings.dFollowAccelerationMult)},
    {17, "Follow Strength Response Factor", D, 0.02, 0.0001, 1, 0.001, FIELD(settings.dFollowAccRespFact)},
    {18, "Auto-Steering Response Factor", D, 0.2, 0.0001, 1, 0.001, FIELD(settings.dAutoSteeringValueRespFact)},
    {19, "Reverse Max Vel Mult", D, 0.5, 0, 1000, 0.001, FIELD(settings.dReverseMaxVelMult)},
    {20, "Ignore Sphere Radius (length relative)", D, 0.5, 0.001, 100, 0.001, FIELD(settings.dIgnoreSphereRadius)},
    {21, "Maximum Steering Change Velocity", D, 2, 0.001, 100, 0.001, FIELD(params.dVelRelMaxSteeringChangeVel)},
    {22, "Speed Dependent Turn Radius Reduction Factor", D, 0.2, 0, 10, 0.001,
     FIELD(params.dSpeedDependentTurnRadiusReduction)},
    {23, "Steering Noise", D, 0, 0, 1000, 0.001, FIELD(params.dSteeringNoise)},
    {24, "Steering Wheel Rot Mult", D, 1, 0, 1000, 0.001, FIELD(settings.dSteeringWheelRotMult)},
    {25, "Turn Base (Back Wheel Relative)", D, 0, -2, 2, 0.001, FIELD(params.dTurnBaseBackWheelRel)},
    {26, "Front Stiffness", D, 2000, 0, 10000, 1, FIELD(params.cSuspension.dFrontStiffness)},
    {27, "Front Damping", D, 200, 0, 10000, 0.1, FIELD(params.cSuspension.dFrontDamping)},
    {28, "Back Stiffness", D, 2000, 0, 10000, 1, FIELD(params.cSuspension.dBackStiffness)},
    {29, "Back Damping", D, 200, 0, 10000, 0.1, FIELD(params.cSuspension.dBackDamping)},
    {30, "Tire Pressure", D, 0.8, 0, 1000, 0.001, FIELD(settings.fSurfaceEdgeResponseFactor)},
    {31, "Maximum Forward Tilt Angle", D, 0.06, 0, 1.5, 0.0001, FIELD(params.dMaxForwardTiltAngle)},
    {32, "Maximum Side Tilt Angle", D, 0.07, 0, 1.5, 0.0001, FIELD(params.dMaxSideTiltAngle)},
    {33, "Booster Stiffness Multiplier", D, 0.3, 0, 10, 0.001, FIELD(params.dBoosterStiffnessMult)},
    {34, "Mass Multiplier", D, 2, 0, 1000, 0.001, FIELD(params.dMassMult)},
    {35, "Fixate Wheel Center Nodes", B, 0, 0, 1, 0, FIELD(settings.bFixateWheelCenterNodes)},
    {36, "Move WheelCenterMesh to ground hit point", B, 0, 0, 1, 0, FIELD(settings.bMoveWheelCenterToHitPoint)},
    {37, "Align WheelCenterMesh to ground incline", B, 0, 0, 1, 0, FIELD(settings.bAlignWheelCenterToIncline)},
    {38, "Use Reverse as ABS Brake", B, 1, 0, 1, 0, FIELD(params.bUseReverseAsAbsBrake)},
    {39, "Skidding Offset Value", D, 0, 0, 100, 0.001, FIELD(params.dSkiddingOffsetValue)},
    {40, "Skidding Release Value (Lateral Vel Rel)", D, 0.04, 0, 100, 0.001, FIELD(params.dSkiddingReleaseValue)},
    {41, "Skidding Release Response Factor", D, 1, 1e-08, 1, 0.001, FIELD(params.dSkiddingReleaseResponseFactor)},
    {42, "Gravel Shake Offset Value", D, 0.5, 0, 100, 0.001, FIELD(params.dGravelShakeOffsetValue)},
    {43, "Gravel Roughness", D, 0.9, 0, 1, 0.001, FIELD(params.dGravelRoughness)},
    {44, "External Force Offset Value", D, 0, 0, 10000, 0.001, FIELD(params.dExternalForceOffsetValue)},
    {45, "Skid Brake Stop Factor", D, 1, 1e-08, 100, 0.001, FIELD(params.dSkidBrakeStopFactor)},
    {46, "Skid Brake Rot Brake Mult", D, 1, 0, 1000, 0.001, FIELD(params.dSkidBrakeRotBrakeMult)},
    {47, "Burnout Shake", D, 0.2, 0, 100, 0.01, FIELD(params.dBurnoutShake)},
    {48, "Burnout Tilting Force", D, 1, 0, 100, 0.01, FIELD(params.dBurnoutTiltingForce)},
    {49, "Burnout Fadeout Factor", D, 0.99, 0, 1, 0.001, FIELD(params.dBurnoutFadeoutFactor)},
    {50, "Random Seed Adder", I, 0, 0, 10000, 1, FIELD(params.iRandomSeedAdder)},
    {51, "World Avoidance Sphere (scale relative)", D, 0, 0, 2000000000, 1, FIELD(params.dWorldAvoidanceSphere)},
    {52, "Wheel Radius Multiplier", D, 0.95, 0.01, 10, 0.01, FIELD(params.dWheelRadiusMult)},
    {53, "Gravity", D, 1, 0, 10000, 0.001, FIELD(params.dGravity)},
    {54, "Ray Multiplier", I, 10, 1, 100, 1, FIELD(settings.iRayMultiplier)},
    {55, "Cast Rays at Wheel Edges", B, 1, 0, 1, 0, FIELD(settings.bCastRaysAtWheelEdges)},
    {56, "Degrees Per Ray", D, 2, 0.1, 89, 0.01, FIELD(settings.dDegreesPerRay)},
    {57, "Use Fast Ray Cast", B, 1, 0, 1, 0, FIELD(settings.bUseFastRayCast)},
    {58, "Store Ground Mesh Data", B, 0, 0, 1, 0, FIELD(settings.bStoreGroundMeshData)},
    {59, "Acceleration (scale relative)", D, 2, 0.001, 1000000, 0.01, FIELD(params.dAcceleration)},
    {60, "Gas Pedal (Forw/Backw) Response Factor", D, 0.01, 0, 100, 0.001, FIELD(inputs[0].responseFactor)},
    {61, "Gas Pedal (Forw/Backw) Maximum", D, 3, 0, 1000000, 0.001, FIELD(inputs[0].maximum)},
    {62, "Steering Wheel (Right/Left) Response Factor", D, 0.1, 0, 100, 0.001, FIELD(inputs[1].responseFactor)},
    {63, "Steering Wheel (Right/Left) Maximum", D, 0.7, 0, 1000000, 0.001, FIELD(inputs[1].maximum)},
    {64, "Booster Response Factor", D, 0.02, 0, 100, 0.001, FIELD(inputs[2].responseFactor)},
    {65, "Booster Maximum", D, 6, 0, 1000000, 0.001, FIELD(inputs[2].maximum)},
    {66, "ABS Brake Response Factor", D, 1, 0, 100, 0.001, FIELD(inputs[3].responseFactor)},
    {67, "ABS Brake Maximum", D, 0.03, 0, 1000000, 0.001, FIELD(inputs[3].maximum)},
    {68, "Skidding Response Factor", D, 0.1, 0, 100, 0.001, FIELD(inputs[4].responseFactor)},
    {69, "Skidding Maximum", D, 0.9, 0, 1000000, 0.001, FIELD(inputs[4].maximum)},
    {70, "Skid Brake Response Factor", D, 0.1, 0, 100, 0.001, FIELD(inputs[5].responseFactor)},
    {71, "Skid Brake Maximum", D, 1, 0, 1000000, 0.001, FIELD(inputs[5].maximum)},
    {72, "Gravel Shake Amplitude Response Factor", D, 1, 0, 100, 0.001, FIELD(inputs[6].responseFactor)},
    {73, "Gravel Shake Amplitude Maximum", D, 0.05, 0, 1000000, 0.001, FIELD(inputs[6].maximum)},
    {74, "Burnout Response Factor", D, 0.03, 0, 100, 0.001, FIELD(inputs[7].responseFactor)},
    {75, "Burnout Maximum", D, 3, 0, 1000000, 0.001, FIELD(inputs[7].maximum)},
    {76, "External Force Response Factor", D, 1, 0, 100, 0.001, FIELD(inputs[8].responseFactor)},
    {77, "External Force Maximum", D, 100, 0, 1000000, 0.001, FIELD(inputs[8].maximum)},
    {78, "Enable Wheel Ground Release", B, 0, 0, 1, 0, FIELD(settings.bEnableWheelGroundRelease)},
    {79, "Suspension Length (Radius Relative)", D, 0.5, 0, 100, 0.001, FIELD(params.dSuspensionLengthRel)},
    {80, "Maximum Wheel Extension Velocity (Radius Rel)", D, 3, 0, 100, 0.001,
     FIELD(settings.dMaxWheelExtensionVelRel)},
};
#undef FIELD

void PrintTo(const Expected& expected, std::ostream* out) { *out << expected.id << " \"" << expected.label << '"'; }

// The kind of a control, with its range and step where it has them.
std::tuple<Kind, double, double, double> ShapeOf(Node& node) {
  if (auto* s = dynamic_cast<element::Spinner*>(&node)) return {Kind::kNumber, s->minimum, s->maximum, s->step};
  if (auto* s = dynamic_cast<element::Spinner_Int*>(&node)) return {Kind::kWhole, s->minimum, s->maximum, s->step};
  if (dynamic_cast<element::CheckBox*>(&node)) return {Kind::kCheck, 0, 1, 0};
  EXPECT_NE(dynamic_cast<element::Button*>(&node), nullptr) << node.label;
  return {Kind::kButton, 0, 0, 0};
}

class CarPageEntry : public testing::TestWithParam<Expected> {
 protected:
  CarPage page;
};

TEST_P(CarPageEntry, HasItsLabelKindDefaultRangeAndField) {
  const Expected& expected = GetParam();
  Node* node = page.Find(expected.id);
  ASSERT_NE(node, nullptr);
  EXPECT_EQ(node->label, expected.label);
  EXPECT_EQ(ShapeOf(*node), std::make_tuple(expected.kind, expected.minimum, expected.maximum, expected.step));
  EXPECT_EQ(node->GetValue(), expected.value);
  if (!expected.field) return;
  EXPECT_EQ(expected.field(*page.tool), expected.value);
  // A value set on the page reaches the bound field: the far end of the
  // range, as no default sits there and the field then differs from it.
  const double other = expected.value == expected.maximum ? expected.minimum : expected.maximum;
  node->SetValue(other);
  EXPECT_EQ(expected.field(*page.tool), other);
}

INSTANTIATE_TEST_SUITE_P(Ids, CarPageEntry, testing::ValuesIn(kEntries),
                         [](const testing::TestParamInfo<Expected>& info) {
                           return "Id" + std::to_string(info.param.id);
                         });

struct CarPageLayout : testing::Test { CarPage page; };

TEST_F(CarPageLayout, EveryIdOnceInItsGroupInOrder) {
  EXPECT_EQ(page.groups, (std::vector<std::string>{"Gauges (read only)", "General Modes",
                                                   "Autonomous Mode Properties", "Steering Properties",
                                                   "Suspension Properties", "General Properties",
                                                   "Ray Cast Properties", "Input Property Parameters",
                                                   "Wheel Ground Release Properties"}));
  // Each group's first and last id; the page counts ids in page order.
  const std::map<std::string, std::pair<int, int>> spans = {
      {"Gauges (read only)", {0, 6}},         {"General Modes", {7, 14}},
      {"Autonomous Mode Properties", {15, 20}}, {"Steering Properties", {21, 25}},
      {"Suspension Properties", {26, 34}},    {"General Properties", {35, 53}},
      {"Ray Cast Properties", {54, 58}},      {"Input Property Parameters", {59, 77}},
      {"Wheel Ground Release Properties", {78, 80}}};
  ASSERT_EQ(page.entries.size(), std::size(kEntries));
  std::set<std::string> labels;
  for (std::size_t i = 0; i < page.entries.size(); ++i) {
    const Entry& entry = page.entries[i];
    EXPECT_EQ(entry.node->id, static_cast<std::int32_t>(i));
    const auto& span = spans.at(entry.group);
    EXPECT_GE(entry.node->id, span.first) << entry.node->label;
    EXPECT_LE(entry.node->id, span.second) << entry.node->label;
    // The command line and the tool's callback find values by label.
    EXPECT_TRUE(labels.insert(entry.node->label).second) << entry.node->label;
  }
}

TEST_F(CarPageLayout, DefaultsLieInTheirRanges) {
  for (const core::Instance::Value& value : page.instance.Values()) {
    EXPECT_GE(value.value, value.minimum) << value.label;
    EXPECT_LE(value.value, value.maximum) << value.label;
    EXPECT_LT(value.minimum, value.maximum) << value.label;
  }
}

TEST_F(CarPageLayout, HelpTexts) {
  const std::map<std::int32_t, std::string> help = {
      {7, "Press to enable re-initialization of the car's physical attributes"},
      {13, "Enable Seamless Transitions requires more memory usage."},
      {14, "Only the the body, the wheels and the gravityDirectionMesh will be keyframed."},
      {60, "How strong and fast the engine is. 0.0 gives an instant velocity.: Response Factor"},
      {61, "How strong and fast the engine is. 0.0 gives an instant velocity.: Maximum"},
      {71, "Locks the wheels: Maximum"},
      {72, "Gravel Shake Amplitude: Response Factor"},
      {77, "This input will apply a force in the direction of the 'ExternalForceMesh' direction: Maximum"}};
  for (const auto& [id, text] : help) EXPECT_EQ(page.Find(id)->tooltip, text) << id;
}

// The tool hears of every entry but the one that changes nothing at once.
TEST_F(CarPageLayout, EntriesReportToTheTool) {
  for (const Entry& entry : page.entries) {
    const bool silent = entry.node->label == HelperSwitches::kHideDuringRecording;
    EXPECT_EQ(entry.node->callback, silent ? nullptr : page.tool) << entry.node->label;
  }
}

// The factory profiles, each with the values it changes from "Start Profile".
struct FactoryProfile {
  const char* name;
  std::map<std::int32_t, double> changes;
};

void PrintTo(const FactoryProfile& profile, std::ostream* out) { *out << '"' << profile.name << '"'; }

const FactoryProfile kProfiles[] = {
    {"Start Profile", {}},
    {"F1", {{26, 8000}, {27, 400}, {28, 8000}, {29, 400}, {31, 0.03}, {32, 0.03}, {52, 0.98}, {59, 5}, {61, 15}}},
    {"Truck", {{26, 4000}, {27, 600}, {28, 4000}, {29, 600}, {34, 6}, {59, 0.2}, {61, 2}, {62, 0.05}}},
    {"Bus", {{27, 600}, {29, 600}, {32, 0.1}, {34, 6}, {59, 0.2}, {61, 2}, {62, 0.05}}},
    {"Boat",
     {{26, 200}, {27, 20}, {28, 200}, {29, 20}, {31, 1}, {32, 1}, {39, 0.1}, {40, 10}, {43, 0.05}, {59, 0.1},
      {62, 1.4}, {63, 0.02}}},
    {"Moon Buggy", {{25, 0.5}, {26, 800}, {28, 800}, {30, 0.2}, {53, 0.165}, {54, 20}}},
    {"Toony Car", {{26, 600}, {28, 600}, {31, 0.2}, {32, 0.2}, {38, 0}, {59, 100}}},
    {"Rally Car", {{26, 3000}, {27, 300}, {28, 3000}, {29, 300}, {39, 0.05}, {40, 0.1}, {59, 4}, {61, 8}}},
    {"Autonomous mode - tight", {{15, 1}, {16, 3}, {20, 0.2}, {26, 4000}, {28, 4000}, {59, 10}, {61, 15}}},
    {"Autonomous mode - standard", {{15, 1}, {20, 1}}},
    {"Autonomous mode - loose", {{15, 1}, {16, 0.2}, {20, 1}}},
    {"Autonomous mode - slippery", {{15, 1}, {40, 0}}},
};

const std::string kProfileFolder = std::string(RGW_TOOL_SOURCES) + "/carextended/data/configprofiles/";

util::xml::Element LoadProfile(const std::string& name) {
  util::xml::Element profile;
  EXPECT_EQ(profile.Parse(kProfileFolder + name + ".ccp"), util::xml::kParsed) << name;
  return profile;
}

// The label of every item, by id, through the groups.
void CollectItems(const util::xml::Element& element, std::map<std::int32_t, std::string>& labels) {
  for (const auto& child : element.children) {
    if (child->name == "item") {
      EXPECT_TRUE(labels.emplace(std::stoi(child->GetAttribute("id")), child->GetAttribute("label")).second);
    }
    if (child->name == "group") CollectItems(*child, labels);
  }
}

TEST(CarFactoryProfiles, AreTheTwelveNamed) {
  std::set<std::string> files, named;
  for (const auto& file : std::filesystem::directory_iterator(kProfileFolder)) {
    EXPECT_EQ(file.path().extension(), ".ccp");
    files.insert(file.path().stem().string());
  }
  for (const FactoryProfile& profile : kProfiles) named.insert(profile.name);
  EXPECT_EQ(files, named);
  EXPECT_EQ(files.size(), 12u);
}

class CarFactoryProfile : public testing::TestWithParam<FactoryProfile> {
 protected:
  const util::xml::Element profile = LoadProfile(GetParam().name);
  CarPage defaults;
  CarPage page;
};

TEST_P(CarFactoryProfile, ChangesExactlyItsIds) {
  page.instance.ApplyConfigProfile(profile);
  EXPECT_EQ(page.instance.ConfigProfile().GetAttribute("name"), GetParam().name);
  std::map<std::int32_t, double> changed;
  const std::map<std::int32_t, double> before = defaults.Values();
  for (const auto& [id, value] : page.Values()) {
    if (value != before.at(id)) changed[id] = value;
  }
  EXPECT_EQ(changed, GetParam().changes);
}

// Every stored value of the page, under the page's label; the computed
// gauges, the button and the ground release entries are in no profile, and
// id 38 keeps the label older profiles gave it, as items match by id.
TEST_P(CarFactoryProfile, HoldsEveryStoredValueOfThePage) {
  EXPECT_EQ(profile.name, "configprofile");
  EXPECT_EQ(profile.GetAttribute("version"), "2.0");
  EXPECT_EQ(profile.GetAttribute("name"), GetParam().name);
  EXPECT_EQ(profile.GetAttribute("converted"), "");
  std::map<std::int32_t, std::string> items, expected;
  CollectItems(profile, items);
  for (const Entry& entry : page.entries) {
    const std::int32_t id = entry.node->id;
    if ((id >= 2 && id <= 7) || id >= 78) continue;
    expected[id] = id == 38 ? "Use Reverse As ABS Brake" : entry.node->label;
  }
  EXPECT_EQ(items, expected);
}

TEST_P(CarFactoryProfile, StartProfileRestoresTheDefaults) {
  page.instance.ApplyConfigProfile(profile);
  page.instance.ApplyConfigProfile(LoadProfile("Start Profile"));
  EXPECT_EQ(page.Values(), defaults.Values());
}

INSTANTIATE_TEST_SUITE_P(Profiles, CarFactoryProfile, testing::ValuesIn(kProfiles),
                         [](const testing::TestParamInfo<FactoryProfile>& info) {
                           std::string name = info.param.name;
                           name.erase(std::remove_if(name.begin(), name.end(), [](char c) { return !std::isalnum(c); }),
                                      name.end());
                           return name;
                         });

// No profile holds them, so whatever else was loaded, they stay.
TEST(CarFactoryProfiles, StartProfileLeavesTheGroundReleaseValuesAtTheirDefaults) {
  CarPage page;
  for (const FactoryProfile& profile : kProfiles) page.instance.ApplyConfigProfile(LoadProfile(profile.name));
  page.instance.ApplyConfigProfile(LoadProfile("Start Profile"));
  EXPECT_FALSE(page.tool->settings.bEnableWheelGroundRelease);
  EXPECT_EQ(page.tool->params.dSuspensionLengthRel, 0.5);
  EXPECT_EQ(page.tool->settings.dMaxWheelExtensionVelRel, 3);
}

}  // namespace
}  // namespace vuk::rgw::addon
