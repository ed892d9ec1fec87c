#include "app/rgw/bindingwords.h"

#include <gtest/gtest.h>

namespace vuk::app {
namespace {

// A "control" element as an input profile saves it; a direction marks a
// source of a two-control axis.
std::string Saved(const std::string& type, int index, const std::string& device, const std::string& description,
                  const std::string& direction = "") {
  return "<control type=\"" + type + "\" index=\"" + std::to_string(index) + "\" device=\"" + device + "\"" +
         (direction.empty() ? "" : " te_direction=\"" + direction + "\"") + "><description>" + device + ": " +
         description + "</description></control>";
}

// Two saved controls made into one axis, in the order given.
std::string Emulated(const std::string& first, const std::string& second) {
  return "<control type=\"Axis\" index=\"0\" device=\"TrinaryEmulator\"><description>TrinaryEmulator: Emulated axis "
         "1</description>" +
         first + second + "</control>";
}

struct BindingCase {
  std::string name;
  std::string saved;
  std::string words;
};

class Bindings : public testing::TestWithParam<BindingCase> {};

TEST_P(Bindings, NameTheKeysOrControlsBound) {
  util::xml::Element control;
  if (!GetParam().saved.empty()) {
    ASSERT_EQ(control.ParseText(GetParam().saved), util::xml::kParsed);
  }
  EXPECT_EQ(BindingWords(control), GetParam().words);
}

INSTANTIATE_TEST_SUITE_P(
    SavedControls, Bindings,
    testing::Values(
        BindingCase{"Unbound", "", ""}, BindingCase{"OneKey", Saved("Key", 32, "Keyboard", "Space"), "Space key"},
        BindingCase{"TwoKeysAsAnAxis",
                    Emulated(Saved("Key", 38, "Keyboard", "Up", "positive"), Saved("Key", 40, "Keyboard", "Down", "negative")),
                    "Up and Down keys"},
        BindingCase{"TwoKeysNegativeFirst",
                    Emulated(Saved("Key", 37, "Keyboard", "Left", "negative"), Saved("Key", 39, "Keyboard", "Right", "positive")),
                    "Right and Left keys"},
        BindingCase{"TwoButtonsAsAnAxis",
                    Emulated(Saved("Button", 0, "Gamepad", "Button 1", "positive"),
                             Saved("Button", 1, "Gamepad", "Button 2", "negative")),
                    "Button 1 of Gamepad and Button 2 of Gamepad"},
        BindingCase{"JoystickAxis", Saved("Axis", 0, "Gamepad", "Axis 1 (X)"), "Axis 1 (X) of Gamepad"},
        BindingCase{"SecondDeviceOfOneName",
                    R"(<control type="Axis" index="1" device="Gamepad" devindex="1"><description>Gamepad: Axis 2 (Y)</description></control>)",
                    "Axis 2 (Y) of Gamepad 2"},
        BindingCase{"TabletPressure", Saved("Axis", 4, "Tablet", "Pen pressure"), "Pen pressure of Tablet"},
        BindingCase{"AnotherToolsGauge", Saved("Gauge", 2, "CarCam_01", "Speed"), "Speed of CarCam_01"},
        BindingCase{"WithoutDescription", R"(<control type="Slider" index="0" device="Pedals"/>)", "Slider 0 of Pedals"}),
    [](const testing::TestParamInfo<BindingCase>& info) { return info.param.name; });

}  // namespace
}  // namespace vuk::app
