#include "unidevice/control.h"

#include <algorithm>

#include "unidevice/controltarget.h"
#include "unidevice/device.h"
#include "util/xml/tag.h"

namespace vuk::unidevice {

util::xml::Element Control::Save() {
  if (device) return device->Save(this);
  util::xml::Tag element("control");
  element.SetAttribute("type") = type;
  element.SetAttribute("index") = std::to_string(saveIndex);
  element.AddChild(util::xml::TagWithData("description", description));
  return std::move(element);
}

bool Control::Matches(const util::xml::Element& element) {
  if (device) {
    if (element.GetAttribute("device") != device->name) return false;
    const std::string devindex = element.GetAttribute("devindex");
    if (std::to_string(device->deviceIndex) != (devindex.empty() ? "0" : devindex)) return false;
  }
  if (element.GetAttribute("type") != type) return false;
  const std::string savedIndex = element.GetAttribute("index");
  return savedIndex.empty() || savedIndex == std::to_string(saveIndex);
}

Control::~Control() {
  // A target may unhook itself while being told; walk a copy.
  const std::vector<ControlTarget*> told = targets;
  for (ControlTarget* target : told) target->ControlRemoved(this);
}

void Control::AddTarget(ControlTarget* target) {
  if (std::find(targets.begin(), targets.end(), target) == targets.end()) targets.push_back(target);
}

void Control::RemoveTarget(ControlTarget* target) {
  targets.erase(std::remove(targets.begin(), targets.end(), target), targets.end());
}

}  // namespace vuk::unidevice
