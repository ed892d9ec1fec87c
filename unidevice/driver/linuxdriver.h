#pragma once
// The platform driver: joysticks and gamepads through SDL2 with hot-plug,
// the keyboard and a pen tablet through Qt events.

#include <SDL.h>

#include <memory>

#include "unidevice/driver.h"
#include "unidevice/driver/keyboarddevice.h"
#include "unidevice/driver/tabletdevice.h"

class QCoreApplication;

namespace vuk::unidevice::driver {

class QtInputFilter;
class SdlJoystickDevice;

class LinuxDriver : public Driver {
 public:
  static constexpr const char* kName = "linuxdriver";

  // Registers in the driver list, starts SDL's joystick side and makes the
  // keyboard device. Joysticks present now are added at once.
  LinuxDriver();
  ~LinuxDriver() override;

  // Takes joysticks that came or went, updates SDL's state, then polls.
  bool PollAll() override;

  KeyboardDevice* GetKeyboard() { return keyboard_; }
  // Made at the first tablet event; null until then.
  TabletDevice* GetTablet() { return tablet_; }
  // Key and tablet events of the whole application reach the devices.
  void InstallEventFilter(QCoreApplication* application);

 private:
  void AddJoystick(int sdlDeviceIndex);
  void RemoveJoystick(SDL_JoystickID instanceId);
  SdlJoystickDevice* FindJoystick(SDL_JoystickID instanceId);
  void TakeHotPlugEvents();
  TabletDevice* TabletOnDemand();

  bool sdlReady_ = false;
  KeyboardDevice* keyboard_ = nullptr;
  TabletDevice* tablet_ = nullptr;
  std::unique_ptr<QtInputFilter> filter_;
};

}  // namespace vuk::unidevice::driver
