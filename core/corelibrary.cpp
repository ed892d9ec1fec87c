#include "core/corelibrary.h"

#include <algorithm>

#include "core/plugins/group.h"

namespace vuk::rgw::core {

CoreLibrary::CoreLibrary(const ToolTable& table) {
  for (PluginFactory factory : table) {
    if (!factory) continue;
    if (CCameraPlugin* plugin = factory()) tools_.push_back(std::make_unique<Plugin>(plugin));
  }
  tools_.push_back(std::make_unique<Plugin>(new plugins::Group));
}

Plugin* CoreLibrary::FindTool(const std::string& name) const {
  for (const auto& tool : tools_) {
    const std::vector<std::string> aliases = tool->GetAliases();
    if (std::find(aliases.begin(), aliases.end(), name) != aliases.end()) return tool.get();
  }
  return nullptr;
}

}  // namespace vuk::rgw::core
