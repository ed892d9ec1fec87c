#pragma once
// A device whose control values tests set by hand; Poll moves each control on
// by one poll to the value queued for it.

#include <memory>
#include <string>
#include <vector>

#include "unidevice/control.h"
#include "unidevice/device.h"

namespace vuk::unidevice::testing_support {

class TestDevice : public Device {
 public:
  TestDevice(const std::string& deviceName, int controlCount, const std::string& controlType = "Button") {
    name = deviceName;
    for (int i = 0; i < controlCount; ++i) {
      auto control = std::make_unique<Control>();
      control->device = this;
      control->index = i;
      control->saveIndex = i;
      control->type = controlType;
      control->description = controlType + " " + std::to_string(i + 1);
      controls_.push_back(std::move(control));
      queued_.push_back(0.0);
    }
  }

  std::int32_t GetControlCount() override { return static_cast<std::int32_t>(controls_.size()); }
  Control* GetControl(std::int32_t i) override {
    return i >= 0 && i < GetControlCount() ? controls_[static_cast<std::size_t>(i)].get() : nullptr;
  }
  bool Poll(DeviceContext) override {
    for (std::size_t i = 0; i < controls_.size(); ++i) controls_[i]->Update(queued_[i]);
    return true;
  }
  bool Open(DeviceContext) override { return true; }

  // The value control i takes at the next poll.
  void Queue(int i, double value) { queued_[static_cast<std::size_t>(i)] = value; }
  // Sets the value at once, as a key event does between polls.
  void Press(int i, double value = 1.0) {
    Queue(i, value);
    controls_[static_cast<std::size_t>(i)]->Update(value);
  }

 private:
  std::vector<std::unique_ptr<Control>> controls_;
  std::vector<double> queued_;
};

}  // namespace vuk::unidevice::testing_support
