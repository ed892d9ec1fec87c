#include "core/coreimplementation.h"

#include <algorithm>
#include <filesystem>

#include "core/corelog.h"
#include "core/messagebox.h"
#include "core/paths.h"

namespace vuk::rgw::core {

CoreImplementation::CoreImplementation() : AdaptorManager(this) {
  // The parts are built in the order of the bases above; the recorder and
  // the instance list need the adaptor and are made by the start. The update
  // notice and the main window join here as they are built, and the key hook
  // is installed last.
  CoreSubSystem::CloseList();
}

CoreImplementation::~CoreImplementation() {
  // Tools the host's undo still holds outlive the device layer: their
  // instances leave its driver, which would otherwise free them as its own.
  for (core::Instance* instance : core::Instance::All()) {
    if (instance->driver) instance->driver->RemoveDevice(instance);
  }
  // Its settings end with it: boxes are no longer silenced by them.
  SetSilentMode(false);
  if (started_) CoreLog::Instance().Info("core stopped");
}

CoreInterface* CoreImplementation::Start(AdaptorInterface* adaptor, const ToolTable& builtInTools) {
  if (started_ || !adaptor) return nullptr;

  std::error_code ignored;
  std::filesystem::create_directories(GetCoreDataFolder(), ignored);
  CoreLog& log = CoreLog::Instance();
  if (!log.IsOpen() && !log.Open(GetCoreDataFolder() + "/core.log")) {
    log.Warning("the log file can't be opened in " + GetCoreDataFolder() + "; logging to standard error");
  }
  // Next in the start, as those parts are built: the log list of the main
  // window and the built-in core plugins.
  libraries_ = std::make_unique<LibraryManager>(builtInTools);
  const int loaded = libraries_->ScanPluginFolders();
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
  instances_ = std::make_unique<InstanceManager>(adaptor, libraries_.get());
  recorder_ = std::make_unique<RecordManager>(adaptor, devices_.get(), instances_.get());

  std::string error;
  if (!settings_.Load(settingsPath_, &error)) log.Warning(error);
  ApplySettings();
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

void CoreImplementation::ApplySettings() {
  SetSilentMode(settings_.GetBool(setting::kSilentMode));
  // The settings page offers 0 to 9 seconds; a hand-edited file may hold more.
  constexpr std::int32_t kLongestCountdown = 9;
  if (recorder_) {
    recorder_->countdownSeconds = std::clamp(settings_.GetInt(setting::kCountdownSeconds), 0, kLongestCountdown);
  }
}

void CoreImplementation::SettingsChanged() {
  ApplySettings();
  if (!started_) return;
  std::string error;
  if (!settings_.Save(settingsPath_, &error)) CoreLog::Instance().Error(error);
}

void CoreImplementation::SetDouble(std::int32_t id, double value) {
  settings_.SetDouble(id, value);
  SettingsChanged();
}

void CoreImplementation::SetString(std::int32_t id, const std::string& value) {
  settings_.SetString(id, value);
  SettingsChanged();
}

void CoreImplementation::SetInt(std::int32_t id, std::int32_t value) {
  settings_.SetInt(id, value);
  SettingsChanged();
}

void CoreImplementation::SetBool(std::int32_t id, bool value) {
  settings_.SetBool(id, value);
  SettingsChanged();
}

Setting* CoreImplementation::GetSetting(std::int32_t id) { return settings_.GetSetting(id); }

void CoreImplementation::SaveToolTree(util::xml::Element& out) {
  out = instances_ ? instances_->SaveToolTree() : util::xml::Element();
}

void CoreImplementation::SaveToolTreeForScene(util::xml::Element& out) {
  out = instances_ ? instances_->SaveToolTreeForScene() : util::xml::Element();
}

std::int32_t CoreImplementation::LoadToolTree(const util::xml::Element& tree) {
  return instances_ ? instances_->LoadToolTree(tree) : 0;
}

void CoreImplementation::RemoveAll() {
  if (instances_) instances_->RemoveAll();
}

Instance* CoreImplementation::CreateByName(const std::string& toolName, const std::string& instanceName) {
  InstanceReference* made = instances_ ? instances_->Create(toolName, instanceName) : nullptr;
  return made ? made->instance.get() : nullptr;
}

void CoreImplementation::OnTimeChanged(double time) {
  if (recorder_) recorder_->OnTimeChanged(time);
}

bool CoreImplementation::IsRecording() { return recorder_ && recorder_->IsRecording(); }

bool CoreImplementation::IsResimulating() { return recorder_ && recorder_->IsResimulating(); }

InstanceReference* CoreImplementation::FindItem(const std::string& instanceName) {
  return instances_ ? instances_->Find(instanceName) : nullptr;
}

Instance* CoreImplementation::FindToolByName(const std::string& instanceName) {
  InstanceReference* item = FindItem(instanceName);
  return item ? item->instance.get() : nullptr;
}

bool CoreImplementation::SetToolProfile(const std::string& instanceName, const std::string& profileName) {
  core::Instance* instance = FindToolByName(instanceName);
  Plugin* tool = instance ? libraries_->FindTool(instance->GetToolPlugin()->GetName()) : nullptr;
  const util::xml::Element* profile = tool ? tool->ConfigProfiles().Find(profileName) : nullptr;
  if (!profile || !instance->GetPage()) return false;
  instance->ApplyConfigProfile(*profile);
  return true;
}

void CoreImplementation::BeginRecording() {
  if (recorder_) recorder_->StartRecording();
}

void CoreImplementation::StopRecording() {
  if (recorder_) recorder_->StopRecording();
}

void CoreImplementation::StartResimulation(double from, double to) {
  if (recorder_) recorder_->StartResimulation(from, to);
}

std::int32_t CoreImplementation::GetSpeedStep() { return recorder_ ? recorder_->GetSpeedStep() : 0; }

void CoreImplementation::SetSpeedStep(std::int32_t step) {
  if (recorder_) recorder_->SetSpeedStep(step);
}

bool CoreImplementation::Delete(const std::string& instanceName) {
  InstanceReference* item = FindItem(instanceName);
  if (!item) return false;
  instances_->Delete(item, false);
  return true;
}

bool CoreImplementation::Rename(const std::string& instanceName, const std::string& newName) {
  InstanceReference* item = FindItem(instanceName);
  return item && instances_->Rename(item, newName);
}

Instance* CoreImplementation::Clone(const std::string& instanceName) {
  InstanceReference* item = FindItem(instanceName);
  InstanceReference* made = item ? instances_->Clone(item) : nullptr;
  return made ? made->instance.get() : nullptr;
}

CoreInterface* StartCore(AdaptorInterface* adaptor, const ToolTable& builtInTools) {
  return CoreImplementation::Instance().Start(adaptor, builtInTools);
}

}  // namespace vuk::rgw::core
