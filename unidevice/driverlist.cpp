#include "unidevice/driverlist.h"

#include <algorithm>

#include "unidevice/control.h"
#include "unidevice/device.h"
#include "unidevice/driver.h"
#include "unidevice/property.h"

namespace vuk::unidevice {

DriverList& DriverList::Instance() {
  static DriverList list;
  return list;
}

void DriverList::Register(Driver* driver) {
  if (driver && std::find(drivers_.begin(), drivers_.end(), driver) == drivers_.end()) drivers_.push_back(driver);
}

void DriverList::Unregister(Driver* driver) {
  drivers_.erase(std::remove(drivers_.begin(), drivers_.end(), driver), drivers_.end());
}

Driver* DriverList::Find(const std::string& name) const {
  for (Driver* driver : drivers_) {
    if (driver->name == name) return driver;
  }
  return nullptr;
}

Control* DriverList::ResolveControl(const util::xml::Element& element) const {
  const std::string deviceName = element.GetAttribute("device");
  const std::string devindex = element.GetAttribute("devindex");
  const std::int32_t index = devindex.empty() ? 0 : std::atoi(devindex.c_str());
  for (Driver* driver : drivers_) {
    if (Device* device = driver->FindDevice(deviceName, index)) {
      if (Control* control = device->FindControl(element)) return control;
    }
  }
  return nullptr;
}

void DriverList::AddWaiting(Property* property) {
  if (!IsWaiting(property)) waiting_.push_back(property);
}

void DriverList::RemoveWaiting(Property* property) {
  waiting_.erase(std::remove(waiting_.begin(), waiting_.end(), property), waiting_.end());
}

bool DriverList::IsWaiting(const Property* property) const {
  return std::find(waiting_.begin(), waiting_.end(), property) != waiting_.end();
}

void DriverList::DeviceAdded(Device*) {
  // The new device may complete a binding on another one (an emulated axis
  // over its buttons), so each waiting binding is resolved afresh. Binding
  // takes a property off the list; walk a copy.
  const std::vector<Property*> candidates = waiting_;
  for (Property* property : candidates) {
    if (Control* control = ResolveControl(property->config)) property->Bind(control);
  }
}

}  // namespace vuk::unidevice
