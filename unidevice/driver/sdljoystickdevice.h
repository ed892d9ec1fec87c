#pragma once
// A joystick or gamepad through SDL's joystick interface: axes, sliders,
// hats and buttons in that order, read raw (no game-controller remapping).

#include <SDL.h>

#include <memory>
#include <vector>

#include "unidevice/control.h"
#include "unidevice/device.h"

namespace vuk::unidevice::driver {

class SdlJoystickDevice : public Device {
 public:
  // Axes beyond six are sliders, as on other platforms.
  static constexpr int kMaxAxes = 6;

  // Opens the joystick at SDL's device index; without it the device has no
  // controls and reads nothing.
  explicit SdlJoystickDevice(int deviceIndex);
  ~SdlJoystickDevice() override;

  std::string GetTypeName() const override { return "SdlJoystickDevice"; }
  std::int32_t GetControlCount() override { return static_cast<std::int32_t>(controls_.size()); }
  Control* GetControl(std::int32_t index) override;
  // Reads the state SDL last updated; false, values unchanged, once unplugged.
  bool Poll(DeviceContext context) override;
  // Settles the controls so that the first read is no jump.
  bool Open(DeviceContext context) override;

  SDL_JoystickID GetInstanceId() const { return instanceId_; }
  bool IsAttached() const { return joystick_ && SDL_JoystickGetAttached(joystick_); }
  SDL_Haptic* GetHaptic() const { return haptic_; }

 private:
  enum class Kind { kAxis, kSlider, kHat, kButton };
  struct Source {
    Kind kind;
    int sdlIndex;   // axis, hat or button number in SDL
    bool yControl;  // for hats: the second control of the pair
  };

  void AddControl(const std::string& type, const std::string& description, int saveIndex, double threshold,
                  Source source);
  double Read(const Source& source) const;

  SDL_Joystick* joystick_ = nullptr;
  SDL_Haptic* haptic_ = nullptr;
  SDL_JoystickID instanceId_ = -1;
  std::vector<std::unique_ptr<Control>> controls_;
  std::vector<Source> sources_;
};

}  // namespace vuk::unidevice::driver
