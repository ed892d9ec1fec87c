#include "unidevice/emulatedtrinarydevice.h"

#include <utility>

#include "unidevice/driverlist.h"
#include "unidevice/dummydriver.h"

namespace vuk::unidevice {

EmulatedTControl::EmulatedTControl(Control* positiveSource, Control* negativeSource)
    : positive(positiveSource), negative(negativeSource) {
  type = "Axis";
  changeThreshold = 0.5;
  if (positive) positive->AddTarget(this);
  if (negative) negative->AddTarget(this);
}

EmulatedTControl::~EmulatedTControl() {
  if (positive) positive->RemoveTarget(this);
  if (negative) negative->RemoveTarget(this);
}

double EmulatedTControl::GetValue() {
  if (!positive || !negative) return 0.0;
  return positive->GetValue() - negative->GetValue();
}

util::xml::Element EmulatedTControl::Save() {
  util::xml::Element element = Control::Save();
  for (auto [source, direction] : {std::pair{positive, "positive"}, std::pair{negative, "negative"}}) {
    if (!source) continue;
    util::xml::Element saved = source->Save();
    saved.SetAttribute("te_direction") = direction;
    element.AddChild(saved);
  }
  return element;
}

bool EmulatedTControl::Matches(const util::xml::Element& element) {
  if (!positive || !negative || !Control::Matches(element)) return false;
  if (element.CountChildren("control") != 2) return false;
  for (std::size_t i = 0; i < 2; ++i) {
    const util::xml::Element& child = element.GetChild("control", i);
    Control* named = child.GetAttribute("te_direction") == "positive" ? positive : negative;
    if (!named->Matches(child)) return false;
  }
  return true;
}

void EmulatedTControl::ControlRemoved(Control* control) {
  if (positive == control) positive = nullptr;
  if (negative == control) negative = nullptr;
}

EmulatedTrinaryDevice::EmulatedTrinaryDevice() {
  name = kName;
  if (DummyDriver* dummy = DummyDriver::Find()) dummy->AddDevice(this);
}

EmulatedTrinaryDevice::~EmulatedTrinaryDevice() {
  if (driver) driver->RemoveDevice(this);
  for (auto it = controls_.rbegin(); it != controls_.rend(); ++it) delete *it;
}

Control* EmulatedTrinaryDevice::GetControl(std::int32_t index) {
  return index >= 0 && index < GetControlCount() ? controls_[static_cast<std::size_t>(index)] : nullptr;
}

Control* EmulatedTrinaryDevice::FindControl(const util::xml::Element& element) {
  if (Control* existing = Device::FindControl(element)) return existing;
  const util::xml::Element& first = element.GetChild("control", 0);
  const util::xml::Element& second = element.GetChild("control", 1);
  if (first.IsEmpty() || second.IsEmpty()) return nullptr;
  Control* positiveSource = DriverList::Instance().ResolveControl(first);
  Control* negativeSource = DriverList::Instance().ResolveControl(second);
  // A source that isn't attached yet: no control now, the binding waits.
  if (!positiveSource || !negativeSource) return nullptr;
  if (first.GetAttribute("te_direction") == "negative") std::swap(positiveSource, negativeSource);
  return AddControl(positiveSource, negativeSource);
}

bool EmulatedTrinaryDevice::Open(DeviceContext) {
  for (EmulatedTControl* control : controls_) control->previousValue = control->value;
  return false;
}

EmulatedTControl* EmulatedTrinaryDevice::AddControl(Control* positiveSource, Control* negativeSource) {
  auto* control = new EmulatedTControl(positiveSource, negativeSource);
  control->device = this;
  control->index = static_cast<std::int32_t>(controls_.size());
  control->saveIndex = control->index;
  control->description = "Emulated axis " + std::to_string(control->index + 1);
  controls_.push_back(control);
  return control;
}

}  // namespace vuk::unidevice
