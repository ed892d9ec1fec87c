#include "unidevice/device.h"

#include <algorithm>
#include <cmath>

#include "unidevice/control.h"
#include "unidevice/driver.h"
#include "util/xml/tag.h"

namespace vuk::unidevice {

util::xml::Element Device::Save(Control* control) {
  util::xml::Tag element("control");
  element.SetAttribute("type") = control->type;
  element.SetAttribute("index") = std::to_string(control->saveIndex);
  element.SetAttribute("device") = name;
  if (deviceIndex != 0) element.SetAttribute("devindex") = std::to_string(deviceIndex);
  element.AddChild(util::xml::TagWithData("description", name + ": " + control->description));
  return std::move(element);
}

Control* Device::FindControl(const util::xml::Element& element) {
  for (std::int32_t i = 0, count = GetControlCount(); i < count; ++i) {
    Control* control = GetControl(i);
    if (control && control->Matches(element)) return control;
  }
  return nullptr;
}

Control* Device::DetectControl(const std::vector<Control*>& excluded) {
  Poll(driver ? driver->context : nullptr);
  return LargestMove(excluded);
}

Control* Device::LargestMove(const std::vector<Control*>& excluded) {
  Control* best = nullptr;
  for (std::int32_t i = 0, count = GetControlCount(); i < count; ++i) {
    Control* control = GetControl(i);
    if (!control || MoveOf(control) <= control->changeThreshold) continue;
    if (std::find(excluded.begin(), excluded.end(), control) != excluded.end()) continue;
    if (!best || MoveOf(control) > MoveOf(best)) best = control;
  }
  return best;
}

void Device::ResetControls() {
  for (std::int32_t i = 0, count = GetControlCount(); i < count; ++i) {
    if (Control* control = GetControl(i)) {
      control->value = 0;
      control->previousValue = 0;
    }
  }
}

}  // namespace vuk::unidevice
