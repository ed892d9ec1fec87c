#include "app/rgw/bindingwords.h"

#include <cstdlib>

#include "unidevice/driver/keyboarddevice.h"
#include "unidevice/emulatedtrinarydevice.h"

namespace vuk::app {

namespace {

bool IsKey(const util::xml::Element& control) {
  return control.GetAttribute("device") == unidevice::driver::KeyboardDevice::kName;
}

// The control's own description: the saved one is prefixed by its device's name.
std::string ControlName(const util::xml::Element& control) {
  const std::string saved = control.GetChild("description").GetText();
  const std::string prefix = control.GetAttribute("device") + ": ";
  if (saved.empty()) return control.GetAttribute("type") + " " + control.GetAttribute("index");
  return saved.rfind(prefix, 0) == 0 ? saved.substr(prefix.size()) : saved;
}

// The device as the user tells two of one kind apart: the second is "Gamepad 2".
std::string DeviceName(const util::xml::Element& control) {
  const std::string index = control.GetAttribute("devindex");
  const std::string name = control.GetAttribute("device");
  return index.empty() || index == "0" ? name : name + " " + std::to_string(std::atoi(index.c_str()) + 1);
}

std::string SingleControl(const util::xml::Element& control) {
  if (IsKey(control)) return ControlName(control) + " key";
  return ControlName(control) + " of " + DeviceName(control);
}

const util::xml::Element* Source(const util::xml::Element& emulated, const char* direction) {
  for (const auto& child : emulated.children) {
    if (child->name == "control" && child->GetAttribute("te_direction") == direction) return child.get();
  }
  return nullptr;
}

}  // namespace

std::string BindingWords(const util::xml::Element& control) {
  if (control.GetAttribute("device").empty()) return {};
  if (control.GetAttribute("device") != unidevice::EmulatedTrinaryDevice::kName) return SingleControl(control);
  // Two controls made into one axis: the one that pushes it up first.
  const util::xml::Element* positive = Source(control, "positive");
  const util::xml::Element* negative = Source(control, "negative");
  if (!positive || !negative) return ControlName(control);
  if (IsKey(*positive) && IsKey(*negative)) return ControlName(*positive) + " and " + ControlName(*negative) + " keys";
  return SingleControl(*positive) + " and " + SingleControl(*negative);
}

}  // namespace vuk::app
