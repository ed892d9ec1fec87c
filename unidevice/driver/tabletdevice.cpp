#include "unidevice/driver/tabletdevice.h"

#include <string>

namespace vuk::unidevice::driver {

TabletDevice::TabletDevice() {
  name = kName;
  static const char* const kAxes[] = {"Cursor X", "Cursor Y", "Tilt X", "Tilt Y", "Pen pressure"};
  for (std::size_t i = 0; i < controls_.size(); ++i) {
    Control& control = controls_[i];
    const bool axis = i < 5;
    control.device = this;
    control.index = static_cast<std::int32_t>(i);
    control.saveIndex = static_cast<std::int32_t>(axis ? i : i - 5);
    control.type = axis ? "Axis" : "Button";
    control.description = axis ? kAxes[i] : "Button " + std::to_string(i - 5 + 1);
    control.changeThreshold = axis ? 0.1 : 0.5;
  }
}

Control* TabletDevice::GetControl(std::int32_t index) {
  return index >= 0 && index < GetControlCount() ? &controls_[static_cast<std::size_t>(index)] : nullptr;
}

void TabletDevice::Feed(const TabletSample& sample) {
  const double axes[5] = {sample.x, sample.y, sample.tiltX, sample.tiltY, sample.pressure};
  for (std::size_t i = 0; i < 5; ++i) controls_[i].Update(axes[i]);
  for (int b = 0; b < kButtonCount; ++b) controls_[5 + static_cast<std::size_t>(b)].Update((sample.buttons >> b) & 1u ? 1.0 : 0.0);
}

}  // namespace vuk::unidevice::driver
