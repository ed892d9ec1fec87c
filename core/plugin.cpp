#include "core/plugin.h"

#include <algorithm>

#include "core/paths.h"

namespace vuk::rgw::core {

Plugin::Plugin(CCameraPlugin* toolPlugin)
    : plugin(toolPlugin),
      configProfiles_(XMLFileManager::Kind::kConfig, GetUserFolder() + "/configprofiles"),
      inputProfiles_(XMLFileManager::Kind::kInput, GetUserFolder() + "/inputprofiles") {}

XMLFileManager& Plugin::ConfigProfiles() {
  LoadProfiles();
  return configProfiles_;
}

XMLFileManager& Plugin::InputProfiles() {
  LoadProfiles();
  return inputProfiles_;
}

void Plugin::LoadProfiles() {
  // Most runs never open a tool's profiles: they are read at the first need.
  if (profilesLoaded_) return;
  profilesLoaded_ = true;
  configProfiles_.AddFolder(GetUserFolder() + "/configprofiles");
  configProfiles_.AddFile(GetInstallFolder() + "/configprofile.xml");
  configProfiles_.AddFolder(GetInstallFolder() + "/configprofiles");
  inputProfiles_.AddFolder(GetUserFolder() + "/inputprofiles");
  inputProfiles_.AddFile(GetInstallFolder() + "/inputprofile.xml");
  inputProfiles_.AddFolder(GetInstallFolder() + "/inputprofiles");
  configProfiles_.Load();
  inputProfiles_.Load();
  configProfiles_.SetReadOnly(kFactorySettings);
  inputProfiles_.SetReadOnly(kFactorySettings);
}

std::string Plugin::GetUserFolder() const { return core::GetUserFolder() + "/data/" + plugin->GetPath(); }

std::string Plugin::GetInstallFolder() const { return GetPath("data") + "/" + plugin->GetPath(); }

std::string Plugin::GetHelpFile() const { return GetPath("doc") + "/" + GetHelpFileName(); }

std::string Plugin::GetHelpFileName() const {
  std::string name = plugin->GetPath();
  std::replace(name.begin(), name.end(), '/', '_');
  std::replace(name.begin(), name.end(), '\\', '_');
  return name + ".html";
}

namespace {

void KeepFactoryAndStart(XMLFileManager& manager, util::xml::Element values) {
  values.SetAttribute("name") = Plugin::kFactorySettings;
  manager.Keep(values);
  if (!manager.Find(Plugin::kStartProfile)) {
    values.SetAttribute("name") = Plugin::kStartProfile;
    manager.Keep(values);
  }
}

}  // namespace

void Plugin::KeepFactoryProfiles(Instance& instance) {
  KeepFactoryAndStart(ConfigProfiles(), instance.ConfigProfile());
  KeepFactoryAndStart(InputProfiles(), instance.InputProfile());
}

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
  if (instance->GetTool()->BuildConfig() != 0 || instance->GetTool()->Create() != 0) return nullptr;
  KeepFactoryProfiles(*instance);
  instance->ApplyConfigProfile(*ConfigProfiles().Find(kStartProfile));
  instance->ApplyInputProfile(*InputProfiles().Find(kStartProfile));
  return instance;
}

}  // namespace vuk::rgw::core
