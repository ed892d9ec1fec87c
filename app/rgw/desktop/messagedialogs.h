#pragma once
// The core's message boxes as Qt dialogs: buttons and icon from the style,
// the answer as the core counts it.

#include "core/messagebox.h"

class QWidget;

namespace vuk::app::desktop {

// Boxes as dialogs over the window, for the core's and the host's sinks.
rgw::core::MessageBoxSink DialogsOver(QWidget* window);

}  // namespace vuk::app::desktop
