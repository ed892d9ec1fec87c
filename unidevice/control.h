#pragma once
// One input of a device with one double value: an axis, a slider, a hat
// direction, a button, a key.

#include <cstdint>
#include <string>
#include <vector>

#include "util/xml/element.h"

namespace vuk::unidevice {

class ControlTarget;
class Device;
class FFEffect;

class Control {
 public:
  Control() = default;
  Control(const Control&) = delete;
  Control& operator=(const Control&) = delete;

  // "control" with "type", "index", "device", "devindex" (when not 0) and a
  // "description" child.
  virtual util::xml::Element Save();
  virtual bool Matches(const util::xml::Element& element);
  virtual double GetValue() { return value; }
  // Spare entry for kinds that need one; the base does nothing.
  virtual void Hook(std::intptr_t a, std::intptr_t b, std::intptr_t c) {
    (void)a;
    (void)b;
    (void)c;
  }
  virtual bool SupportsForceFeedback() { return false; }
  // Null when the control has no force feedback or the kind can't be made.
  virtual FFEffect* CreateForceFeedbackEffect(std::int32_t kind) {
    (void)kind;
    return nullptr;
  }
  // Tells every target that the control is going.
  virtual ~Control();

  void AddTarget(ControlTarget* target);
  void RemoveTarget(ControlTarget* target);
  // Moves the value on by one poll.
  void Update(double newValue) {
    previousValue = value;
    value = newValue;
  }

  std::vector<ControlTarget*> targets;
  std::int32_t index = 0;
  double previousValue = 0;
  double value = 0;
  double changeThreshold = 0.5;
  std::string type;
  std::int32_t saveIndex = 0;
  std::string description;
  Device* device = nullptr;
};

}  // namespace vuk::unidevice
