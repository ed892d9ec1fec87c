#pragma once
// A piece of input hardware, or an emulated one: a list of controls and the
// ways to read them.

#include <cstdint>
#include <string>
#include <vector>

#include "util/dynamicobject.h"
#include "util/xml/element.h"

namespace vuk::unidevice {

class Control;
class Driver;

// Native context the platform hands devices (a window handle or null).
using DeviceContext = void*;

class Device : public util::DynamicObject {
 public:
  Device() = default;
  Device(const Device&) = delete;
  Device& operator=(const Device&) = delete;
  ~Device() override = default;

  // The element of one of this device's controls.
  virtual util::xml::Element Save(Control* control);
  virtual std::int32_t GetControlCount() = 0;
  // Null outside the range.
  virtual Control* GetControl(std::int32_t index) = 0;
  // Reads the hardware into every control.
  virtual bool Poll(DeviceContext context) = 0;
  // The first control the element matches, or null.
  virtual Control* FindControl(const util::xml::Element& element);
  virtual bool Open(DeviceContext context) = 0;
  // The control that moved the most since the last poll, beyond its
  // threshold and not excluded; the first on a tie; null when none moved.
  virtual Control* DetectControl(const std::vector<Control*>& excluded);
  virtual void ResetControls();
  virtual bool Activate(DeviceContext context) {
    (void)context;
    return true;
  }
  virtual bool Deactivate(DeviceContext context) {
    (void)context;
    return true;
  }

  std::string name;
  Driver* driver = nullptr;
  // 0 for the first device of a name, 1 for the second, and so on.
  std::int32_t deviceIndex = 0;

 protected:
  // The largest move among the controls, for detection after a poll.
  Control* LargestMove(const std::vector<Control*>& excluded);
};

}  // namespace vuk::unidevice
