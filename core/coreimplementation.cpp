#include "core/coreimplementation.h"

#include <filesystem>

#include "core/corelog.h"
#include "core/paths.h"

namespace vuk::rgw::core {

CoreImplementation::CoreImplementation() : AdaptorManager(this) {
  // The parts are built in the order of the bases above; the recorder, the
  // instance list, the update notice and the main window join them here in
  // that order as they are built, and the key hook is installed last.
  CoreSubSystem::CloseList();
}

CoreImplementation::~CoreImplementation() {
  if (started_) CoreLog::Instance().Info("core stopped");
}

CoreInterface* CoreImplementation::Start(AdaptorInterface* adaptor) {
  if (started_ || !adaptor) return nullptr;

  std::error_code ignored;
  std::filesystem::create_directories(GetCoreDataFolder(), ignored);
  CoreLog& log = CoreLog::Instance();
  if (!log.IsOpen() && !log.Open(GetCoreDataFolder() + "/core.log")) {
    log.Warning("the log file can't be opened in " + GetCoreDataFolder() + "; logging to standard error");
  }
  // Next in the start, as those parts are built: the log list of the main
  // window and the built-in core plugins.
  const int loaded = libraries_.ScanPluginFolders();
  if (loaded > 0) log.Info(std::to_string(loaded) + " tools loaded from tool libraries");

  PrepareAdaptorFolder(adaptor);
  SetAdaptor(adaptor);

  const std::int32_t version = adaptor->GetInterfaceVersion();
  if (version != kInterfaceVersion) {
    log.Error("adaptor \"" + adaptor->GetDisplayName() + "\" speaks interface version " + std::to_string(version) +
              ", this core needs " + std::to_string(kInterfaceVersion) + "; nothing is started");
    return nullptr;
  }
  devices_ = std::make_unique<DeviceManager>(adaptor->GetMainWindow());

  std::string error;
  if (!settings_.Load(settingsPath_, &error)) log.Warning(error);
  // Next: the tool menus of the main window.

  started_ = true;
  log.Info("core started with \"" + adaptor->GetDisplayName() + "\"");
  return this;
}

void CoreImplementation::PrepareAdaptorFolder(AdaptorInterface* adaptor) {
  const std::string folderName = adaptor->GetDataFolderName();
  const std::string userFolder = GetUserFolder() + "/data/" + folderName;
  settingsPath_ = userFolder + "/settings.xml";
  std::error_code error;
  std::filesystem::create_directories(userFolder, error);
  // The adaptor's installed defaults seed the user's copy once.
  const std::string installed = GetPath("data");
  if (installed.empty() || std::filesystem::exists(settingsPath_, error)) return;
  const std::string defaults = installed + "/" + folderName + "/settings.xml";
  if (std::filesystem::exists(defaults, error)) std::filesystem::copy_file(defaults, settingsPath_, error);
  if (error) CoreLog::Instance().Warning(defaults + ": can't be copied to " + settingsPath_ + " (" + error.message() + ")");
}

void CoreImplementation::SaveSettings() {
  if (!started_) return;
  std::string error;
  if (!settings_.Save(settingsPath_, &error)) CoreLog::Instance().Error(error);
}

void CoreImplementation::SetDouble(std::int32_t id, double value) {
  settings_.SetDouble(id, value);
  SaveSettings();
}

void CoreImplementation::SetString(std::int32_t id, const std::string& value) {
  settings_.SetString(id, value);
  SaveSettings();
}

void CoreImplementation::SetInt(std::int32_t id, std::int32_t value) {
  settings_.SetInt(id, value);
  SaveSettings();
}

void CoreImplementation::SetBool(std::int32_t id, bool value) {
  settings_.SetBool(id, value);
  SaveSettings();
}

Setting* CoreImplementation::GetSetting(std::int32_t id) { return settings_.GetSetting(id); }

CoreInterface* StartCore(AdaptorInterface* adaptor) { return CoreImplementation::Instance().Start(adaptor); }

}  // namespace vuk::rgw::core
