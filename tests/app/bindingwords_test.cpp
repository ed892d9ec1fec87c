#include "app/rgw/bindingwords.h"

#include <gtest/gtest.h>

namespace vuk::app {
namespace {

struct BindingCase {
  const char* name;
  const char* saved;  // the "control" element as an input profile holds it
  const char* words;
};

class Bindings : public testing::TestWithParam<BindingCase> {};

TEST_P(Bindings, NameTheKeysOrControlsBound) {
  util::xml::Element control;
  if (*GetParam().saved) {
    ASSERT_EQ(control.ParseText(GetParam().saved), util::xml::kParsed);
  }
  EXPECT_EQ(BindingWords(control), GetParam().words);
}

INSTANTIATE_TEST_SUITE_P(
    SavedControls, Bindings,
    testing::Values(
        BindingCase{"Unbound", "", ""},
        BindingCase{"OneKey",
                    R"(<control type="Key" index="32" device="Keyboard"><description>Keyboard: Space</description></control>)",
                    "Space key"},
        BindingCase{"TwoKeysAsAnAxis",
                    R"(<control type="Axis" index="0" device="TrinaryEmulator">
                         <description>TrinaryEmulator: Emulated axis 1</description>
                         <control type="Key" index="38" device="Keyboard" te_direction="positive"><description>Keyboard: Up</description></control>
                         <control type="Key" index="40" device="Keyboard" te_direction="negative"><description>Keyboard: Down</description></control>
                       </control>)",
                    "Up and Down keys"},
        BindingCase{"TwoKeysNegativeFirst",
                    R"(<control type="Axis" index="0" device="TrinaryEmulator">
                         <control type="Key" index="37" device="Keyboard" te_direction="negative"><description>Keyboard: Left</description></control>
                         <control type="Key" index="39" device="Keyboard" te_direction="positive"><description>Keyboard: Right</description></control>
                       </control>)",
                    "Right and Left keys"},
        BindingCase{"TwoButtonsAsAnAxis",
                    R"(<control type="Axis" index="1" device="TrinaryEmulator">
                         <control type="Button" index="0" device="Gamepad" te_direction="positive"><description>Gamepad: Button 1</description></control>
                         <control type="Button" index="1" device="Gamepad" te_direction="negative"><description>Gamepad: Button 2</description></control>
                       </control>)",
                    "Button 1 of Gamepad and Button 2 of Gamepad"},
        BindingCase{"JoystickAxis",
                    R"(<control type="Axis" index="0" device="Gamepad"><description>Gamepad: Axis 1 (X)</description></control>)",
                    "Axis 1 (X) of Gamepad"},
        BindingCase{"SecondDeviceOfOneName",
                    R"(<control type="Axis" index="1" device="Gamepad" devindex="1"><description>Gamepad: Axis 2 (Y)</description></control>)",
                    "Axis 2 (Y) of Gamepad 2"},
        BindingCase{"TabletPressure",
                    R"(<control type="Axis" index="4" device="Tablet"><description>Tablet: Pen pressure</description></control>)",
                    "Pen pressure of Tablet"},
        BindingCase{"AnotherToolsGauge",
                    R"(<control type="Gauge" index="2" device="CarCam_01"><description>CarCam_01: Speed</description></control>)",
                    "Speed of CarCam_01"},
        BindingCase{"WithoutDescription", R"(<control type="Slider" index="0" device="Pedals"/>)", "Slider 0 of Pedals"}),
    [](const testing::TestParamInfo<BindingCase>& info) { return std::string(info.param.name); });

}  // namespace
}  // namespace vuk::app
