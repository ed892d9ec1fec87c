#pragma once
// The keyboard as a device of 256 controls, one per virtual-key code, so
// that bindings name keys the same way on every platform. Key events write
// the values between polls; a poll changes nothing.

#include <array>
#include <cstdint>
#include <string>

#include "unidevice/control.h"
#include "unidevice/device.h"

namespace vuk::unidevice::driver {

class KeyboardDevice : public Device {
 public:
  static constexpr int kKeyCount = 256;
  static constexpr const char* kName = "Keyboard";

  KeyboardDevice();
  ~KeyboardDevice() override;

  std::string GetTypeName() const override { return "KeyboardDevice"; }
  std::int32_t GetControlCount() override { return kKeyCount; }
  Control* GetControl(std::int32_t index) override;
  bool Poll(DeviceContext) override { return true; }
  bool Open(DeviceContext context) override { return Activate(context); }
  // Keys start released.
  bool Activate(DeviceContext context) override;

  // Auto-repeat presses keep the value 1. Codes outside 0-255 are ignored.
  void KeyDown(int virtualKey);
  void KeyUp(int virtualKey);

  // The key's name, or "Key_" and the code for keys without one.
  static std::string KeyName(int virtualKey);

 private:
  std::array<Control, kKeyCount> keys_;
};

}  // namespace vuk::unidevice::driver
