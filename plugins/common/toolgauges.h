#pragma once
// The gauges a tool shows to other tools: output controls made through the
// instance, when it makes them, each given its value whenever the instance
// polls the tool's gauge-writing extension.

#include <array>
#include <cstddef>
#include <cstdint>

#include "sdk/cinterface.h"
#include "unidevice/control.h"

namespace vuk::rgw::addon {

template <std::size_t N>
class ToolGauges {
 public:
  // One gauge a name, in this order; none when the instance makes none.
  void Make(CInterface* iface, const std::array<const char*, N>& names) {
    controls_.fill(nullptr);
    if (!iface->HasExtension(extension::kMakeGauge)) return;
    for (std::size_t i = 0; i < N; ++i) {
      GaugeDescription description{names[i], 0, input::kGauge, ""};
      unidevice::Control* gauge =
          reinterpret_cast<unidevice::Control*>(iface->Extension(extension::kMakeGauge, &description));
      controls_[i] = gauge;
      if (!gauge) continue;
      gauge->previousValue = gauge->value;
      gauge->value = 0;
    }
  }
  // Calls the tool's gauge-writing extension for each gauge.
  void WriteAll(CExtendable& tool) const {
    for (unidevice::Control* gauge : controls_) {
      if (gauge) tool.Extension(extension::kWriteGauge, gauge);
    }
  }
  // The tool's answer to that extension: the gauge `data` takes value(its
  // index). Other extensions are left alone.
  template <typename Value>
  void Write(std::int32_t id, void* data, Value value) const {
    if (id != extension::kWriteGauge || !data) return;
    for (std::size_t i = 0; i < N; ++i) {
      if (controls_[i] == data) controls_[i]->Update(value(i));
    }
  }

 private:
  std::array<unidevice::Control*, N> controls_{};
};

}  // namespace vuk::rgw::addon
