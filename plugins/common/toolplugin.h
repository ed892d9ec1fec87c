#pragma once
// The plugin of every tool: one template over the tool's object class, which
// holds the tool's record as `static const ToolInfo kInfo`. The tool table
// makes one plugin per tool with MakeToolPlugin<C<Name>Object>.

#include <cstdint>
#include <string>
#include <vector>

#include "sdk/ccameraplugin.h"

namespace vuk::rgw::addon {

// What a tool is, as the core and the menus ask for it.
struct ToolInfo {
  std::string name;  // the saved type: never changes
  std::string path;  // data path below the data root, ending in the tool's folder
  std::string title;
  std::string category;  // "Camera", "Vehicle" or "Accessory", several separated by ";"
  std::string description;
  std::string credits;
  // Old type names that saved scenes may still ask for.
  std::vector<std::string> aliases;
};

template <typename Object>
class CToolPlugin : public CCameraPlugin {
 public:
  std::intptr_t Extension(std::int32_t id, void* data) override {
    if (id != extension::kAliases || !data) return 0;
    auto* names = static_cast<std::vector<std::string>*>(data);
    names->insert(names->end(), Object::kInfo.aliases.begin(), Object::kInfo.aliases.end());
    return 1;
  }
  std::vector<std::int32_t> ExtensionIds() override {
    if (Object::kInfo.aliases.empty()) return {};
    return {extension::kAliases};
  }
  CCamera* CreateObject(CCamera::CreateParam& param) override { return new Object(param); }
  std::string GetName() override { return Object::kInfo.name; }
  std::string GetPath() override { return Object::kInfo.path; }
  std::string GetTitle() override { return Object::kInfo.title; }
  std::string GetCategory() override { return Object::kInfo.category; }
  std::string GetDescription() override { return Object::kInfo.description; }
  std::string GetCredits() override { return Object::kInfo.credits; }
};

template <typename Object>
CCameraPlugin* MakeToolPlugin() {
  return new CToolPlugin<Object>();
}

}  // namespace vuk::rgw::addon
