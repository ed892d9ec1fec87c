#pragma once

namespace vuk::unidevice {

class Control;

// Told by a control in its destructor, so that nothing keeps a dangling source.
class ControlTarget {
 public:
  virtual void ControlRemoved(Control* control) = 0;

 protected:
  ~ControlTarget() = default;
};

}  // namespace vuk::unidevice
