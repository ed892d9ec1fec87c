#pragma once
// A channel's binding as the user would say it: the keys or the control
// bound, not the device layer's saved names.

#include <string>

#include "util/xml/element.h"

namespace vuk::app {

// The words for a saved "control" element: "Up and Down keys", "Space key",
// "Axis 1 (X) of Gamepad"; empty for an unbound channel.
std::string BindingWords(const util::xml::Element& control);

}  // namespace vuk::app
