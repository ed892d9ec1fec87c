#pragma once
// A pen tablet: cursor position, tilt, pressure and the pen's buttons, fed
// by the windowing system's tablet events.

#include <array>
#include <cstdint>

#include "unidevice/control.h"
#include "unidevice/device.h"

namespace vuk::unidevice::driver {

struct TabletSample {
  double x = 0;         // 0 to 1 across the screen
  double y = 0;         // 0 to 1 down the screen
  double tiltX = 0;     // -1 to 1, a full tilt of 60 degrees
  double tiltY = 0;
  double pressure = 0;  // 0 to 1
  std::uint32_t buttons = 0;
};

class TabletDevice : public Device {
 public:
  static constexpr int kButtonCount = 3;
  static constexpr const char* kName = "Tablet";

  TabletDevice();
  std::string GetTypeName() const override { return "TabletDevice"; }
  std::int32_t GetControlCount() override { return static_cast<std::int32_t>(controls_.size()); }
  Control* GetControl(std::int32_t index) override;
  bool Poll(DeviceContext) override { return true; }
  bool Open(DeviceContext context) override { return Activate(context); }

  // Writes one event's values; polls change nothing in between.
  void Feed(const TabletSample& sample);

 private:
  std::array<Control, 5 + kButtonCount> controls_;
};

}  // namespace vuk::unidevice::driver
