#include "core/librarymanager.h"

#include <dlfcn.h>

#include <algorithm>
#include <filesystem>

#include "core/paths.h"

namespace vuk::rgw::core {

Library::~Library() {
  // The tools go before the code that made them.
  tools.clear();
  if (handle) dlclose(handle);
}

bool LibraryManager::Load(const std::string& path) {
  void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!handle) return false;
  using VersionFunction = int (*)();
  using PluginFunction = CCameraPlugin* (*)();
  auto version = reinterpret_cast<VersionFunction>(dlsym(handle, kVersionExport));
  auto make = reinterpret_cast<PluginFunction>(dlsym(handle, kPluginExport));
  CCameraPlugin* plugin = version && make && version() == kSdkVersion ? make() : nullptr;
  if (!plugin || FindTool(plugin->GetName())) {
    if (plugin) plugin->Release();
    dlclose(handle);
    return false;
  }
  auto library = std::make_unique<Library>(handle, path);
  library->tools.push_back(std::make_unique<Plugin>(plugin));
  libraries_.push_back(std::move(library));
  return true;
}

int LibraryManager::LoadFolder(const std::string& folder) {
  std::error_code error;
  std::vector<std::string> found;
  for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
    if (entry.path().extension() == ".so") found.push_back(entry.path().string());
  }
  std::sort(found.begin(), found.end());
  int loaded = 0;
  for (const std::string& path : found) loaded += Load(path) ? 1 : 0;
  return loaded;
}

int LibraryManager::ScanPluginFolders() {
  int loaded = 0;
  if (!GetPath("plugin").empty()) loaded += LoadFolder(GetPath("plugin"));
  loaded += LoadFolder(GetUserFolder() + "/plugins/linux/x64");
  return loaded;
}

std::vector<Plugin*> LibraryManager::AllTools() const {
  std::vector<Plugin*> tools;
  for (const auto& tool : core_.Tools()) tools.push_back(tool.get());
  for (const auto& library : libraries_) {
    for (const auto& tool : library->tools) tools.push_back(tool.get());
  }
  return tools;
}

Plugin* LibraryManager::FindTool(const std::string& name) const {
  if (Plugin* tool = core_.FindTool(name)) return tool;
  for (const auto& library : libraries_) {
    for (const auto& tool : library->tools) {
      const std::vector<std::string> aliases = tool->GetAliases();
      if (std::find(aliases.begin(), aliases.end(), name) != aliases.end()) return tool.get();
    }
  }
  return nullptr;
}

}  // namespace vuk::rgw::core
