#include "core/corelibrary.h"

#include <algorithm>

#include "plugins/1dpositioner/c1dpositionerplugin.h"
#include "plugins/lookatcam/lookatcamplugin.h"

namespace vuk::rgw::core {

const std::array<PluginFactory, kToolTableSize>& ToolTable() {
  // The entries keep their numbers; the tools not written yet stay null.
  static const std::array<PluginFactory, kToolTableSize> table = [] {
    std::array<PluginFactory, kToolTableSize> entries{};
    entries[31] = &addon::CreateLookAtCamPlugin;
    entries[36] = &addon::Create1DPositionerPlugin;
    return entries;
  }();
  return table;
}

CoreLibrary::CoreLibrary() {
  for (PluginFactory factory : ToolTable()) {
    if (!factory) continue;
    if (CCameraPlugin* plugin = factory()) tools_.push_back(std::make_unique<Plugin>(plugin));
  }
}

Plugin* CoreLibrary::FindTool(const std::string& name) const {
  for (const auto& tool : tools_) {
    const std::vector<std::string> aliases = tool->GetAliases();
    if (std::find(aliases.begin(), aliases.end(), name) != aliases.end()) return tool.get();
  }
  return nullptr;
}

}  // namespace vuk::rgw::core
