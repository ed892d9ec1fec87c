#pragma once
// The input channel of the smaller tools: a control made through the tool
// interface, read once per frame into `raw`, scaled by a maximum and
// filtered with a response factor.

#include <string>

#include "sdk/cinterface.h"

namespace vuk::rgw::addon {

struct InputChannel {
  InputChannel(std::string channelName, double response, double max)
      : name(std::move(channelName)), responseFactor(response), maximum(max) {}

  // Makes the channel's control, fed by axes, hats and gauges.
  void Create(CInterface* iface) { control = iface->AddInput(name, input::kContinuous); }
  // Takes the control's value when a source feeds it; otherwise the last
  // value stays.
  void Read() {
    if (control && control->source) raw = control->Evaluate();
  }

  std::string name;
  double raw = 0;
  double output = 0;
  double stage = 0;
  double responseFactor;
  double maximum;
  CInterface::Property* control = nullptr;
};

}  // namespace vuk::rgw::addon
