#include "unidevice/driver.h"

#include <algorithm>
#include <cmath>

#include "unidevice/control.h"

namespace vuk::unidevice {

double MoveOf(const Control* control) { return std::fabs(control->value - control->previousValue); }

Driver::Driver(std::string driverName) : name(std::move(driverName)) {}

Driver::~Driver() {
  for (auto it = devices.rbegin(); it != devices.rend(); ++it) delete *it;
}

bool Driver::PollAll() {
  for (Device* device : devices) device->Poll(context);
  return true;
}

std::int32_t Driver::OpenAll() {
  std::int32_t opened = 0;
  for (Device* device : devices) opened += device->Open(context) ? 1 : 0;
  return opened;
}

Control* Driver::DetectControl(const std::vector<Control*>& excluded) {
  Control* best = nullptr;
  for (Device* device : devices) {
    Control* found = device->DetectControl(excluded);
    if (found && (!best || MoveOf(found) > MoveOf(best))) best = found;
  }
  return best;
}

bool Driver::AddDevice(Device* device) {
  if (!device || std::find(devices.begin(), devices.end(), device) != devices.end()) return false;
  device->driver = this;
  devices.push_back(device);
  return true;
}

bool Driver::RemoveDevice(Device* device) {
  const auto found = std::find(devices.begin(), devices.end(), device);
  if (found == devices.end()) return false;
  devices.erase(found);
  device->driver = nullptr;
  return true;
}

Device* Driver::GetDevice(std::int32_t index) {
  return index >= 0 && index < GetDeviceCount() ? devices[static_cast<std::size_t>(index)] : nullptr;
}

std::int32_t Driver::GetDeviceCount() { return static_cast<std::int32_t>(devices.size()); }

bool Driver::ActivateAll() {
  bool all = true;
  for (Device* device : devices) all = device->Activate(context) && all;
  return all;
}

bool Driver::DeactivateAll() {
  bool all = true;
  for (Device* device : devices) all = device->Deactivate(context) && all;
  return all;
}

Device* Driver::FindDevice(const std::string& deviceName, std::int32_t index) {
  for (Device* device : devices) {
    if (device->name == deviceName && device->deviceIndex == index) return device;
  }
  return nullptr;
}

std::int32_t Driver::NextDeviceIndex(const std::string& deviceName) {
  // The lowest free index, so that a device plugged in again gets its old one.
  std::int32_t index = 0;
  while (FindDevice(deviceName, index)) ++index;
  return index;
}

}  // namespace vuk::unidevice
