#pragma once
// The main window: makes tools from the pop-outs and the Create menus, shows
// the tool tree, opens the windows of a tool, and starts recordings and
// resimulations.

#include <memory>
#include <string>
#include <vector>

#include "core/configadaptor/mainconfig.h"
#include "core/coreimplementation.h"
#include "core/updatemanager.h"
#include "core/window/configwindow.h"
#include "core/window/inputconfigdlg.h"
#include "core/window/resimulatewindow.h"
#include "core/window/windowbase.h"
#include "gui/component/tree.h"
#include "gui/tooltree/tooltreeview.h"

namespace vuk::rgw::core {

class MainDlg : public WindowBase {
 public:
  static constexpr const char* kLayout = "/core/layout/rgw_main.xml";
  static constexpr const char* kPrmFilter = "Quoll Pre-Rigged Models (*.prm);;All files (*.*)";
  static constexpr const char* kSavePrmFilter = "prm files (*.prm)";
  // The entries that make tools, in pop-outs and menus alike: this plus the
  // tool's place among the creatable ones. Tool help entries likewise.
  static constexpr std::int32_t kCreateBase = 1000;
  static constexpr std::int32_t kToolHelpBase = 2000;
  // The pop-outs and Create menus, each with the category of its tools.
  struct Category {
    std::int32_t button;
    const char* menu;
    const char* name;
  };
  static const std::vector<Category>& Categories();

  // The core must be started.
  MainDlg(CoreImplementation& core, const Desktop& desktop, const std::string& version);
  ~MainDlg() override;

  // Shows the tool tree again as the core holds it; windows of tools that
  // left it close.
  void RefreshTree();
  // The tool item chosen in the tree; null when none is.
  InstanceReference* Selected() const;
  void Select(InstanceReference* item);
  // The tools the pop-outs and menus offer, in the order of their entries.
  const std::vector<Plugin*>& Creatable() const { return creatable_; }
  // Follows the recorder in the status line and the tree. The desktop calls
  // it while it runs.
  void Update();
  std::string Status() const;

  // The windows open now; null when none is.
  ConfigWindow* GetConfigWindow() const { return config_.get(); }
  InputConfigDlg* GetInputWindow() const { return inputs_.get(); }
  WindowBase* GetPreferences() const { return preferences_.get(); }
  WindowBase* GetAbout() const { return about_.get(); }
  RecordManager::ResimulateWindow* GetResimulateWindow() const { return resimulate_.get(); }

 private:
  void Handle(std::int32_t id, void (MainDlg::*action)());
  void CreateTool(const std::string& toolName);
  void DeleteSelected();
  void UnplugSelected();
  void UnplugAll();
  void CloneSelected();
  void OpenConfig();
  void OpenInputs();
  void ShowInputWindow(Instance& instance);
  void TreeChanged();
  void ToggleRecording();
  void ToggleResimulation();
  void Browse();
  void SaveSelected();
  void ShowPreferences();
  void CheckForUpdates();
  void ShowAbout();
  void SetStatus(const std::string& text);
  // The check state of a check box of the window.
  bool IsChecked(std::int32_t id) const;

  CoreImplementation& core_;
  InstanceManager& instances_;
  RecordManager& recorder_;
  const Desktop& desktop_;
  std::string version_;
  std::vector<Plugin*> creatable_;
  gui::tooltree::ToolTreeView view_;
  gui::component::Tree* tree_;
  UpdateManager updates_;
  configadaptor::element::MainConfig mainConfig_;
  std::unique_ptr<ConfigWindow> config_;
  std::unique_ptr<InputConfigDlg> inputs_;
  std::unique_ptr<WindowBase> preferences_;
  std::unique_ptr<WindowBase> about_;
  // Made at the first resimulation and kept.
  std::unique_ptr<RecordManager::ResimulateWindow> resimulate_;
};

}  // namespace vuk::rgw::core
