#pragma once
// The process-wide list of drivers. Saved bindings name a device and a
// control; the list finds them across all drivers, and tells waiting
// properties when a device comes in later.

#include <string>
#include <vector>

#include "util/xml/element.h"

namespace vuk::unidevice {

class Control;
class Device;
class Driver;
class Property;

class DriverList {
 public:
  static DriverList& Instance();

  void Register(Driver* driver);
  void Unregister(Driver* driver);
  Driver* Find(const std::string& name) const;
  const std::vector<Driver*>& All() const { return drivers_; }

  // The control a "control" element names, or null.
  Control* ResolveControl(const util::xml::Element& element) const;

  // A property whose binding names a control that isn't there waits here.
  void AddWaiting(Property* property);
  void RemoveWaiting(Property* property);
  bool IsWaiting(const Property* property) const;
  // A device came in: waiting properties whose control now exists bind to it.
  void DeviceAdded(Device* device);

 private:
  std::vector<Driver*> drivers_;
  std::vector<Property*> waiting_;
};

}  // namespace vuk::unidevice
