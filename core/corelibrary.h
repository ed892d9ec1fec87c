#pragma once
// The tools compiled into the program: a table of 41 plain factory
// functions, in the system's fixed order, each wrapped in a Plugin.

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "core/plugin.h"

namespace vuk::rgw::core {

using PluginFactory = CCameraPlugin* (*)();
constexpr std::size_t kToolTableSize = 41;

// Entries not yet written are null.
const std::array<PluginFactory, kToolTableSize>& ToolTable();

class CoreLibrary {
 public:
  // Calls each factory of the table once.
  CoreLibrary();

  // The tool that answers to the name, old names included; null if none.
  Plugin* FindTool(const std::string& name) const;
  const std::vector<std::unique_ptr<Plugin>>& Tools() const { return tools_; }

 private:
  std::vector<std::unique_ptr<Plugin>> tools_;
};

}  // namespace vuk::rgw::core
