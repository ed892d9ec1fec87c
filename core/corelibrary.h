#pragma once
// The library of the tools compiled into the program: each factory of the
// tool table it is given, called once and wrapped in a Plugin, and the
// core's own group.

#include <memory>
#include <string>
#include <vector>

#include "core/plugin.h"
#include "sdk/ccameraplugin.h"

namespace vuk::rgw::core {

class CoreLibrary {
 public:
  explicit CoreLibrary(const ToolTable& table);

  // The tool that answers to the name, old names included; null if none.
  Plugin* FindTool(const std::string& name) const;
  const std::vector<std::unique_ptr<Plugin>>& Tools() const { return tools_; }

 private:
  std::vector<std::unique_ptr<Plugin>> tools_;
};

}  // namespace vuk::rgw::core
