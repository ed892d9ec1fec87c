#pragma once
// Qt key codes to the virtual-key codes that bindings store, so that a
// profile made on one platform binds the same keys on another (US layout
// positions for punctuation).

#include <Qt>

namespace vuk::unidevice::driver {

// -1 for a key that has no code.
int VirtualKeyFromQt(int qtKey, Qt::KeyboardModifiers modifiers);

}  // namespace vuk::unidevice::driver
