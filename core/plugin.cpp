#include "core/plugin.h"

#include <algorithm>

namespace vuk::rgw::core {

std::vector<std::string> Plugin::GetAliases() const {
  std::vector<std::string> names;
  plugin->Extension(extension::kAliases, &names);
  names.push_back(plugin->GetName());
  std::sort(names.begin(), names.end());
  return names;
}

std::vector<std::string> Plugin::GetCategories() const {
  std::vector<std::string> categories;
  const std::string list = plugin->GetCategory();
  std::size_t start = 0;
  while (start <= list.size()) {
    const std::size_t end = std::min(list.find(';', start), list.size());
    if (end > start) categories.push_back(list.substr(start, end - start));
    start = end + 1;
  }
  return categories;
}

std::unique_ptr<Instance> Plugin::MakeInstance(const std::string& name, AdaptorInterface* adaptor) {
  CCamera::CreateParam param(name.empty() ? plugin->GetName() + "_01" : name);
  CCamera* object = plugin->Create(param);
  if (!object) return nullptr;
  return std::make_unique<Instance>(plugin, object, param.name, adaptor);
}

std::unique_ptr<Instance> Plugin::CreateInstance(const std::string& name, AdaptorInterface* adaptor) {
  std::unique_ptr<Instance> instance = MakeInstance(name, adaptor);
  if (!instance) return nullptr;
  if (instance->tool->BuildConfig() != 0 || instance->tool->Create() != 0) return nullptr;
  // Profiles and the tree item join here with their managers.
  return instance;
}

}  // namespace vuk::rgw::core
