#pragma once
// Owns the devices of one back-end and passes them its context.

#include <cstdint>
#include <string>
#include <vector>

#include "unidevice/device.h"

namespace vuk::unidevice {

class Driver {
 public:
  explicit Driver(std::string driverName);
  Driver(const Driver&) = delete;
  Driver& operator=(const Driver&) = delete;

  virtual bool PollAll();
  // How many devices opened.
  virtual std::int32_t OpenAll();
  // Each device's own detection, then the largest move among their answers.
  virtual Control* DetectControl(const std::vector<Control*>& excluded);
  // Takes ownership.
  virtual bool AddDevice(Device* device);
  // Gives ownership back to the caller; false when not there.
  virtual bool RemoveDevice(Device* device);
  virtual Device* GetDevice(std::int32_t index);
  virtual std::int32_t GetDeviceCount();
  virtual bool ActivateAll();
  virtual bool DeactivateAll();
  // Destroys the devices; their controls tell their targets.
  virtual ~Driver();
  virtual void Hook() {}

  // The device of that name and index, or null.
  Device* FindDevice(const std::string& deviceName, std::int32_t index);
  // The index a new device of that name gets.
  std::int32_t NextDeviceIndex(const std::string& deviceName);

  std::string name;
  std::vector<Device*> devices;
  DeviceContext context = nullptr;
};

// The magnitude of a control's last move.
double MoveOf(const Control* control);

}  // namespace vuk::unidevice
