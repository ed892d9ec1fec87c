#pragma once
// The core tests' tool table: the small test tool in the first slot, so that
// the core is tested without any product tool.

#include "sdk/ccameraplugin.h"
#include "tests/adaptor/standalone/testtool.h"

namespace vuk::rgw::testing_support {

inline const ToolTable& TestTools() {
  static const ToolTable table = [] {
    ToolTable entries{};
    entries[0] = []() -> CCameraPlugin* { return new TestToolPlugin; };
    return entries;
  }();
  return table;
}

}  // namespace vuk::rgw::testing_support
