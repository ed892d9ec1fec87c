#pragma once
// One axis out of two existing controls, for users who steer with two keys:
// negative, rest, positive.

#include <vector>

#include "unidevice/control.h"
#include "unidevice/controltarget.h"
#include "unidevice/device.h"
#include "util/dynamiccreator.h"

namespace vuk::unidevice {

class EmulatedTControl : public Control, public ControlTarget {
 public:
  EmulatedTControl(Control* positiveSource, Control* negativeSource);
  ~EmulatedTControl() override;

  // positive minus negative; 0 while either source is missing.
  double GetValue() override;
  // The normal element with the two sources inside, each with "te_direction".
  util::xml::Element Save() override;
  bool Matches(const util::xml::Element& element) override;
  void ControlRemoved(Control* control) override;

  Control* positive;
  Control* negative;
};

class EmulatedTrinaryDevice : public Device, public util::DynamicCreator<EmulatedTrinaryDevice> {
 public:
  static constexpr const char* kName = "TrinaryEmulator";

  // Joins "dummydriver", when it exists.
  EmulatedTrinaryDevice();
  ~EmulatedTrinaryDevice() override;

  std::string GetTypeName() const override { return "EmulatedTrinaryDevice"; }
  std::int32_t GetControlCount() override { return static_cast<std::int32_t>(controls_.size()); }
  Control* GetControl(std::int32_t index) override;
  bool Poll(DeviceContext) override { return true; }
  // Finds the control the element describes, or makes it from its two sources.
  Control* FindControl(const util::xml::Element& element) override;
  bool Open(DeviceContext context) override;
  Control* DetectControl(const std::vector<Control*>&) override { return nullptr; }

  // Makes and keeps a control over two sources.
  EmulatedTControl* AddControl(Control* positiveSource, Control* negativeSource);

 private:
  std::vector<EmulatedTControl*> controls_;
};

}  // namespace vuk::unidevice
