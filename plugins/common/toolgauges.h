#pragma once
// The gauges of a tool: output controls other tools can read, made by name
// when the instance offers them, and given their values once a frame through
// the tool's gauge extension, which the core also calls when it polls.

#include <array>
#include <cstddef>

#include "sdk/cinterface.h"
#include "unidevice/control.h"

namespace vuk::rgw::addon {

template <std::size_t Count>
class ToolGauges {
 public:
  // One gauge per name, starting at 0; none where the instance makes none.
  void Make(CInterface* iface, const std::array<const char*, Count>& names) {
    controls_.fill(nullptr);
    if (!iface->HasExtension(extension::kMakeGauge)) return;
    for (std::size_t i = 0; i < Count; ++i) {
      GaugeDescription description{names[i], 0, input::kGauge, ""};
      controls_[i] = reinterpret_cast<unidevice::Control*>(iface->Extension(extension::kMakeGauge, &description));
      if (!controls_[i]) continue;
      controls_[i]->previousValue = controls_[i]->value;
      controls_[i]->value = 0;
    }
  }
  // Asks the tool's extension to write each gauge.
  void Write(CExtendable& tool) const {
    for (unidevice::Control* gauge : controls_) {
      if (gauge) tool.Extension(extension::kWriteGauge, gauge);
    }
  }
  // The extension's work: the gauge `data` takes value(its index).
  template <typename Value>
  void Update(void* data, Value value) const {
    for (std::size_t i = 0; i < Count; ++i) {
      if (controls_[i] && controls_[i] == data) controls_[i]->Update(value(i));
    }
  }

 private:
  std::array<unidevice::Control*, Count> controls_{};
};

}  // namespace vuk::rgw::addon
