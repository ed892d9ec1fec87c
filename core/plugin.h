#pragma once
// A tool type as the core knows it: the tool's plugin object, the names it
// answers to, and the making of instances.

#include <memory>
#include <string>
#include <vector>

#include "core/adaptorinterface.h"
#include "core/instance.h"
#include "core/xmlfilemanager.h"
#include "sdk/ccameraplugin.h"

namespace vuk::rgw::core {

class Plugin {
 public:
  static constexpr const char* kFactorySettings = "Factory Settings";
  static constexpr const char* kStartProfile = "Start Profile";

  // Takes the plugin object, released with this.
  explicit Plugin(CCameraPlugin* toolPlugin);
  ~Plugin() { plugin->Release(); }
  Plugin(const Plugin&) = delete;
  Plugin& operator=(const Plugin&) = delete;

  std::string ToolName() const { return plugin->GetName(); }
  // The old names of extension 16 and the tool's own, sorted.
  std::vector<std::string> GetAliases() const;
  std::vector<std::string> GetCategories() const;
  bool IsCreatable() const { return !plugin->HasExtension(extension::kHiddenPlugin); }

  // The tool object and its instance, nothing more; null when the plugin
  // makes no object.
  std::unique_ptr<Instance> MakeInstance(const std::string& name, AdaptorInterface* adaptor);
  // A new tool: the instance, its page and its nodes. Null when the tool
  // refuses; nothing is left behind then.
  std::unique_ptr<Instance> CreateInstance(const std::string& name, AdaptorInterface* adaptor);
  // Keeps the instance's present values as the read-only "Factory Settings"
  // of both kinds, and as "Start Profile" where there is none yet.
  void KeepFactoryProfiles(Instance& instance);

  // The user's and the installed data folders of the tool.
  std::string GetUserFolder() const;
  std::string GetInstallFolder() const;
  // The tool's help page: the install's doc folder and the help file name,
  // the tool's data path with its folders joined by "_" and ".html" after.
  std::string GetHelpFile() const;
  std::string GetHelpFileName() const;

  // The tool's profiles: the user's, then the installed examples and files,
  // read when first asked for.
  XMLFileManager& ConfigProfiles();
  XMLFileManager& InputProfiles();

  CCameraPlugin* plugin;

 private:
  void LoadProfiles();

  XMLFileManager configProfiles_;
  XMLFileManager inputProfiles_;
  bool profilesLoaded_ = false;
};

}  // namespace vuk::rgw::core
