#pragma once
// The process-wide object that ties the system together. It is built at first
// use; its parts are made in a fixed order and destroyed in the reverse one,
// ending with the adaptor's Shutdown.

#include <memory>
#include <string>

#include "core/adaptormanager.h"
#include "core/coreinterface.h"
#include "core/devicemanager.h"
#include "core/instancemanager.h"
#include "core/librarymanager.h"
#include "core/mainconfigsettings.h"
#include "core/recordmanager.h"
#include "util/singleton.h"

namespace vuk::rgw::core {

class CoreImplementation : public CoreInterface, public AdaptorManager, public util::Singleton<CoreImplementation> {
 public:
  CoreImplementation();
  ~CoreImplementation() override;

  // The start with the host's adaptor and the program's compiled-in tools.
  // Null when the adaptor speaks another interface version, or when the core
  // was started already; the system then stays inert.
  CoreInterface* Start(AdaptorInterface* adaptor, const ToolTable& builtInTools);
  bool IsStarted() const { return started_; }

  void SaveToolTree(util::xml::Element& out) override;
  void SaveToolTreeForScene(util::xml::Element& out) override;
  std::int32_t LoadToolTree(const util::xml::Element& tree) override;
  void RemoveAll() override;
  core::Instance* CreateByName(const std::string& toolName, const std::string& instanceName) override;
  void OnTimeChanged(double time) override;
  bool IsRecording() override;
  bool IsResimulating() override;
  core::Instance* FindToolByName(const std::string& instanceName) override;
  bool SetToolProfile(const std::string& instanceName, const std::string& profileName) override;
  void BeginRecording() override;
  void StopRecording() override;
  void StartResimulation(double from, double to) override;
  std::int32_t GetSpeedStep() override;
  void SetSpeedStep(std::int32_t step) override;
  bool Delete(const std::string& instanceName) override;
  bool Rename(const std::string& instanceName, const std::string& newName) override;
  core::Instance* Clone(const std::string& instanceName) override;

  void SetDouble(std::int32_t id, double value) override;
  void SetString(std::int32_t id, const std::string& value) override;
  void SetInt(std::int32_t id, std::int32_t value) override;
  void SetBool(std::int32_t id, bool value) override;
  Setting* GetSetting(std::int32_t id) override;

  MainConfigSettings& GetSettings() { return settings_; }
  // Every tool the start found: compiled in and from tool libraries. Null before the start.
  const LibraryManager* GetLibraries() const { return libraries_.get(); }
  // Null before the start and when the start was refused.
  DeviceManager* GetDevices() { return devices_.get(); }
  RecordManager* GetRecorder() { return recorder_.get(); }
  InstanceManager* GetInstances() { return instances_.get(); }
  // The user's "settings.xml" of the adaptor in use; empty before the start.
  const std::string& GetSettingsPath() const { return settingsPath_; }

 private:
  void PrepareAdaptorFolder(AdaptorInterface* adaptor);
  // The tree item of that instance name; null before the start or when none has it.
  InstanceReference* FindItem(const std::string& instanceName);
  // Hands the settings to the parts that follow them: the recorder's
  // countdown and the silent mode of the message boxes.
  void ApplySettings();
  // Applies the settings and writes them at once.
  void SettingsChanged();

  MainConfigSettings settings_;
  std::unique_ptr<LibraryManager> libraries_;
  std::unique_ptr<DeviceManager> devices_;
  // Made at the start, the recorder first; the tools go before it at the end.
  std::unique_ptr<RecordManager> recorder_;
  std::unique_ptr<InstanceManager> instances_;
  std::string settingsPath_;
  bool started_ = false;
};

// The start for the process-wide core.
CoreInterface* StartCore(AdaptorInterface* adaptor, const ToolTable& builtInTools);

}  // namespace vuk::rgw::core
