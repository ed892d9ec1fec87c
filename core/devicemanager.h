#pragma once
// The input side of the core: the driver of emulated devices with the
// two-key axis device, and the platform driver with the keyboard, joysticks
// and tablet.

#include <memory>

#include "core/adaptorinterface.h"
#include "unidevice/dummydriver.h"
#include "unidevice/emulatedtrinarydevice.h"

// The platform driver stays out of this header, so that the input libraries
// behind it stay out of everything that includes the core.
namespace vuk::unidevice::driver {
class LinuxDriver;
}

namespace vuk::rgw::core {

class DeviceManager {
 public:
  // Makes the drivers, hands the platform driver the main window and opens
  // every device; key and tablet events are taken when an application runs.
  explicit DeviceManager(WindowHandle mainWindow);
  ~DeviceManager();

  // Once per tick, before the tools step.
  void PollAll();
  // Takes the devices for a recording, and lets them go after it.
  bool Acquire();
  bool Unacquire();

  unidevice::DummyDriver& GetDummyDriver() { return *dummy_; }
  unidevice::driver::LinuxDriver& GetPlatformDriver() { return *platform_; }
  unidevice::EmulatedTrinaryDevice& GetEmulator() { return *emulator_; }

 private:
  std::unique_ptr<unidevice::DummyDriver> dummy_;
  std::unique_ptr<unidevice::driver::LinuxDriver> platform_;
  unidevice::EmulatedTrinaryDevice* emulator_;  // owned by the dummy driver
};

}  // namespace vuk::rgw::core
