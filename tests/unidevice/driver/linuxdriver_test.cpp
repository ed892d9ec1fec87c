#include "unidevice/driver/linuxdriver.h"

#include <gtest/gtest.h>

#include <tuple>

#include "unidevice/driver/sdljoystickdevice.h"
#include "unidevice/driverlist.h"
#include "unidevice/ffeffect.h"
#include "unidevice/propertyhandler.h"

namespace vuk::unidevice::driver {
namespace {

// SDL's virtual joysticks stand in for hardware: eight axes (six axes and two
// sliders), four buttons and one hat.
class VirtualJoystick : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(SDL_WasInit(SDL_INIT_JOYSTICK)) << SDL_GetError();
    sdlIndex = SDL_JoystickAttachVirtual(SDL_JOYSTICK_TYPE_GAMECONTROLLER, 8, 4, 1);
    ASSERT_GE(sdlIndex, 0) << SDL_GetError();
    driver.PollAll();
    device = Joystick();
    ASSERT_NE(device, nullptr);
    handle = SDL_JoystickFromInstanceID(SDL_JoystickGetDeviceInstanceID(sdlIndex));
    ASSERT_NE(handle, nullptr);
  }

  void TearDown() override {
    if (SDL_JoystickIsVirtual(sdlIndex)) SDL_JoystickDetachVirtual(sdlIndex);
    driver.PollAll();
  }

  SdlJoystickDevice* Joystick() {
    for (Device* d : driver.devices) {
      if (auto* joystick = dynamic_cast<SdlJoystickDevice*>(d)) return joystick;
    }
    return nullptr;
  }

  Control* Named(const std::string& description) {
    for (int i = 0; i < device->GetControlCount(); ++i) {
      if (device->GetControl(i)->description == description) return device->GetControl(i);
    }
    return nullptr;
  }

  LinuxDriver driver;
  int sdlIndex = -1;
  SdlJoystickDevice* device = nullptr;
  SDL_Joystick* handle = nullptr;
};

TEST_F(VirtualJoystick, ControlsInTheirOrderWithTheirNames) {
  std::vector<std::string> controls;
  for (int i = 0; i < device->GetControlCount(); ++i) {
    controls.push_back(device->GetControl(i)->type + ": " + device->GetControl(i)->description);
  }
  EXPECT_EQ(controls, (std::vector<std::string>{
                          "Axis: Axis 1 (X)", "Axis: Axis 2 (Y)", "Axis: Axis 3 (Z)", "Axis: Axis 4", "Axis: Axis 5",
                          "Axis: Axis 6", "Slider: Slider 1", "Slider: Slider 2", "Hat: Hat 1 (X axis)",
                          "Hat: Hat 1 (Y axis)", "Button: Button 1", "Button: Button 2", "Button: Button 3",
                          "Button: Button 4"}));
  EXPECT_EQ(Named("Axis 1 (X)")->changeThreshold, 0.1);
  EXPECT_EQ(Named("Slider 2")->saveIndex, 1);
  // No haptic device: no effect.
  EXPECT_EQ(Named("Axis 1 (X)")->CreateForceFeedbackEffect(FFEffect::kSine), nullptr);
}

TEST_F(VirtualJoystick, AxesSlidersAndButtonsReadTheirRanges) {
  SDL_JoystickSetVirtualAxis(handle, 0, 32767);
  SDL_JoystickSetVirtualAxis(handle, 1, -32768);
  SDL_JoystickSetVirtualAxis(handle, 6, 16384);
  SDL_JoystickSetVirtualButton(handle, 2, 1);
  driver.PollAll();
  EXPECT_EQ(Named("Axis 1 (X)")->value, 1.0);
  EXPECT_EQ(Named("Axis 2 (Y)")->value, -1.0);
  EXPECT_NEAR(Named("Slider 1")->value, 0.5, 1e-4);
  EXPECT_EQ(Named("Button 3")->value, 1.0);
}

TEST_F(VirtualJoystick, HatsReadLikeTheSineAndCosineRule) {
  const std::tuple<Uint8, double, double> positions[] = {{SDL_HAT_CENTERED, 0, 0}, {SDL_HAT_UP, 0, 1},
                                                         {SDL_HAT_RIGHT, 1, 0},    {SDL_HAT_RIGHTUP, 1, 1},
                                                         {SDL_HAT_DOWN, 0, -1},    {SDL_HAT_LEFTDOWN, -1, -1}};
  for (const auto& [position, x, y] : positions) {
    SDL_JoystickSetVirtualHat(handle, 0, position);
    driver.PollAll();
    EXPECT_EQ(Named("Hat 1 (X axis)")->value, x) << int(position);
    EXPECT_EQ(Named("Hat 1 (Y axis)")->value, y) << int(position);
  }
}

TEST_F(VirtualJoystick, UnplugLeavesTheOffsetAndReplugBindsAgain) {
  PropertyHandler handler;
  Property* gas = handler.Add("Gas");
  gas->offset = 0.5;
  gas->Bind(Named("Axis 3 (Z)"));
  SDL_JoystickDetachVirtual(sdlIndex);
  driver.PollAll();
  EXPECT_EQ(Joystick(), nullptr);
  EXPECT_EQ(gas->source, nullptr);
  EXPECT_EQ(gas->Evaluate(), 0.5);

  sdlIndex = SDL_JoystickAttachVirtual(SDL_JOYSTICK_TYPE_GAMECONTROLLER, 8, 4, 1);
  driver.PollAll();
  device = Joystick();
  ASSERT_NE(device, nullptr);
  EXPECT_EQ(gas->source, Named("Axis 3 (Z)"));
  EXPECT_FALSE(DriverList::Instance().IsWaiting(gas));
}

}  // namespace
}  // namespace vuk::unidevice::driver
