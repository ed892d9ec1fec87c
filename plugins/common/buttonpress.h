#pragma once
// The press of a button-like control, as the weapons count their triggers.

#include "sdk/cinterface.h"

namespace vuk::rgw::addon {

// True for a new press: the value rises above 0 while no press is latched.
// The latch clears only when the value is back at exactly 0, so a value that
// wavers below 0 and up again is not a second press.
inline bool NewPress(double value, bool& latched) {
  const bool press = value > 0 && !latched;
  if (value > 0) latched = true;
  if (value == 0) latched = false;
  return press;
}

// The control's value when a source feeds it, else 0: a button nobody holds.
inline double ButtonValue(CInterface::Property* control) {
  return control && control->source ? control->Evaluate() : 0;
}

}  // namespace vuk::rgw::addon
