#pragma once
// The tools built into the program, in their fixed slots; the program hands
// this table to the core.

#include "sdk/ccameraplugin.h"

namespace vuk::rgw::addon {

const ToolTable& BuiltInTools();

}  // namespace vuk::rgw::addon
