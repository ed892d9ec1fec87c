#include "core/window/maindlg.h"

#include <algorithm>
#include <cmath>

#include "core/messagebox.h"
#include "core/paths.h"
#include "core/plugins/group.h"
#include "core/prmfile.h"
#include "core/treeundo.h"
#include "gui/component/controls.h"
#include "util/xml/tag.h"

namespace vuk::rgw::core {

namespace {

constexpr std::int32_t kMenuBar = 135;
constexpr std::int32_t kToolTree = 119;
constexpr std::int32_t kStatusLine = 118;
constexpr std::int32_t kResimulateFromStart = 112;
constexpr std::int32_t kExpandTimeline = 113;
constexpr std::int32_t kHideHighPoly = 114;
constexpr std::int32_t kSpeedStep = 115;
constexpr const char* kToolHelpMenu = "Tool Help Documentation";
constexpr const char* kCaption = "Quoll Rigworks";
constexpr const char* kWebPage = "https://www.quoll-rigworks.com";
constexpr const char* kForum = "https://forum.quoll-rigworks.com";

util::xml::Element Entry(std::int32_t id, const std::string& label) {
  util::xml::Tag item("item");
  item.SetAttribute("id") = std::to_string(id);
  item.SetAttribute("label") = label;
  return std::move(item);
}

// Every element below `element` for which `wanted` holds.
void Collect(util::xml::Element& element, const std::function<bool(const util::xml::Element&)>& wanted,
             std::vector<util::xml::Element*>& found) {
  if (wanted(element)) found.push_back(&element);
  for (auto& child : element.children) Collect(*child, wanted, found);
}

void AddEntries(util::xml::Element& layout, const std::function<bool(const util::xml::Element&)>& wanted,
                const std::vector<util::xml::Element>& entries) {
  std::vector<util::xml::Element*> found;
  Collect(layout, wanted, found);
  for (util::xml::Element* place : found) {
    for (const util::xml::Element& entry : entries) place->AddChild(entry);
  }
}

bool HasCategory(const Plugin& plugin, const std::string& category) {
  const std::vector<std::string> categories = plugin.GetCategories();
  return std::find(categories.begin(), categories.end(), category) != categories.end();
}

std::vector<Plugin*> CreatableTools(const LibraryManager& libraries) {
  std::vector<Plugin*> tools;
  for (Plugin* plugin : libraries.AllTools()) {
    if (plugin->IsCreatable()) tools.push_back(plugin);
  }
  return tools;
}

// The main layout with the tools in its pop-outs and menus.
util::xml::Element FilledLayout(const std::vector<Plugin*>& tools, const std::string& version) {
  util::xml::Element layout = ReadLayout(MainDlg::kLayout, ProgramTexts(version));
  for (const MainDlg::Category& category : MainDlg::Categories()) {
    std::vector<util::xml::Element> entries;
    for (std::size_t i = 0; i < tools.size(); ++i) {
      if (HasCategory(*tools[i], category.name)) {
        entries.push_back(Entry(MainDlg::kCreateBase + static_cast<std::int32_t>(i), tools[i]->plugin->GetTitle()));
      }
    }
    const std::string button = std::to_string(category.button);
    AddEntries(layout, [&](const util::xml::Element& e) { return e.GetAttribute("id") == button; }, entries);
    AddEntries(layout, [&](const util::xml::Element& e) { return e.name == "menu" && e.GetAttribute("label") == category.menu; },
               entries);
  }
  std::vector<util::xml::Element> help;
  for (std::size_t i = 0; i < tools.size(); ++i) {
    help.push_back(Entry(MainDlg::kToolHelpBase + static_cast<std::int32_t>(i), tools[i]->plugin->GetTitle()));
  }
  AddEntries(layout, [](const util::xml::Element& e) { return e.name == "menu" && e.GetAttribute("label") == kToolHelpMenu; },
             help);
  return layout;
}

// A window with nothing but a page and a button to close it.
class PageWindow : public WindowBase {
 public:
  static constexpr std::int32_t kClose = 1;
  PageWindow(const std::string& title, configadaptor::Node& page) : WindowBase("PageWindow", Layout(title, page)), page_(page) {
    page_.AttachView(Root());
    On(kClose, [this](std::int32_t) { Close(); });
  }
  ~PageWindow() override { page_.DetachView(Root()); }

 private:
  static util::xml::Element Layout(const std::string& title, configadaptor::Node& page) {
    util::xml::Tag dialog("dialog");
    dialog.SetAttribute("label") = title;
    dialog.SetAttribute("icon") = "[coreimages]/quoll_ico_16.png";
    dialog.SetAttribute("padding") = "10 10 10 10";
    dialog.AddChild(page.BuildLayout());
    util::xml::Tag row("list");
    row.SetAttribute("type") = "horizontal";
    row.SetAttribute("halign") = "right";
    util::xml::Tag close("button");
    close.SetAttribute("id") = std::to_string(kClose);
    close.SetAttribute("label") = "Close";
    close.SetAttribute("fixed") = "yes";
    close.SetAttribute("width") = "90";
    row.AddChild(close);
    dialog.AddChild(row);
    return std::move(dialog);
  }
  configadaptor::Node& page_;
};

// The about box closes with its one button.
class AboutBox : public WindowBase {
 public:
  explicit AboutBox(const std::string& version)
      : WindowBase("AboutBox", ReadLayout("/core/layout/rgw_about.xml", ProgramTexts(version))) {
    On(1, [this](std::int32_t) { Close(); });
  }
};

}  // namespace

const std::vector<MainDlg::Category>& MainDlg::Categories() {
  static const std::vector<Category> categories = {{101, "Create Vehicle tool", "Vehicle"},
                                                   {102, "Create Camera tool", "Camera"},
                                                   {103, "Create Accessory tool", "Accessory"},
                                                   {110, "Create Template", "Template"}};
  return categories;
}

MainDlg::MainDlg(CoreImplementation& core, const Desktop& desktop, const std::string& version)
    : WindowBase("MainDlg", FilledLayout(CreatableTools(*core.GetLibraries()), version)),
      core_(core),
      instances_(*core.GetInstances()),
      recorder_(*core.GetRecorder()),
      desktop_(desktop),
      version_(version),
      creatable_(CreatableTools(*core.GetLibraries())),
      view_(instances_.Root()),
      tree_(ControlOf<gui::component::Tree>(kToolTree)),
      updates_(&core, BuildNumber(version)),
      mainConfig_(&core, core.GetAdaptor()) {
  Instance::SetInputSettingsOpener([this](Instance& instance) { ShowInputWindow(instance); });
  updates_.onChecked = [this] { SetStatus(updates_.StatusText()); };
  for (const Category& category : Categories()) OnMenu(category.button);
  OnMenu(kMenuBar);
  for (std::size_t i = 0; i < creatable_.size(); ++i) {
    const std::string name = creatable_[i]->ToolName();
    OnItem(kCreateBase + static_cast<std::int32_t>(i), [this, name] { CreateTool(name); });
    const std::string help = "file://" + creatable_[i]->GetHelpFile();
    OnItem(kToolHelpBase + static_cast<std::int32_t>(i), [this, help] { desktop_.openAddress(help); });
  }
  Handle(104, &MainDlg::DeleteSelected);
  Handle(105, &MainDlg::UnplugAll);
  Handle(106, &MainDlg::OpenConfig);
  Handle(107, &MainDlg::OpenInputs);
  Handle(108, &MainDlg::UnplugSelected);
  Handle(109, &MainDlg::CloneSelected);
  On(111, [this](std::int32_t) { CreateTool(plugins::Group::kName); });
  On(kResimulateFromStart, [this](std::int32_t) { recorder_.resimulateFromFirstFrame = IsChecked(kResimulateFromStart); });
  On(kExpandTimeline, [this](std::int32_t) { recorder_.autoExpand = IsChecked(kExpandTimeline); });
  On(kHideHighPoly, [this](std::int32_t) { recorder_.lowPolyOnRecord = IsChecked(kHideHighPoly); });
  On(kSpeedStep, [this](std::int32_t) {
    // The field counts halvings from normal speed; the recorder's steps count from 1.
    core_.SetSpeedStep(static_cast<std::int32_t>(std::lround(ControlOf<gui::component::Spinner>(kSpeedStep)->GetValue())) + 1);
  });
  Handle(116, &MainDlg::ToggleRecording);
  Handle(117, &MainDlg::ToggleResimulation);
  Handle(kToolTree, &MainDlg::TreeChanged);
  OnItem(136, [this] { Browse(); });
  OnItem(141, [this] { SaveSelected(); });
  OnItem(123, [this] { UnplugAll(); });
  OnItem(125, [this] { ShowPreferences(); });
  OnItem(126, [this] { Close(); });
  OnItem(127, [this] { OpenConfig(); });
  OnItem(128, [this] { OpenInputs(); });
  OnItem(129, [this] { DeleteSelected(); });
  OnItem(130, [this] { CloneSelected(); });
  OnItem(131, [this] { desktop_.openAddress("file://" + GetPath("doc") + "/index.html"); });
  OnItem(132, [this] { desktop_.openAddress(kWebPage); });
  OnItem(133, [this] { desktop_.openAddress(kForum); });
  OnItem(137, [this] { CheckForUpdates(); });
  OnItem(134, [this] { ShowAbout(); });
  recorder_.resimulateFromFirstFrame = IsChecked(kResimulateFromStart);
  recorder_.autoExpand = IsChecked(kExpandTimeline);
  recorder_.lowPolyOnRecord = IsChecked(kHideHighPoly);
  if (auto* speed = ControlOf<gui::component::Spinner>(kSpeedStep)) speed->SetValue(core_.GetSpeedStep() - 1);
  RefreshTree();
}

MainDlg::~MainDlg() { Instance::SetInputSettingsOpener(nullptr); }

void MainDlg::Handle(std::int32_t id, void (MainDlg::*action)()) {
  On(id, [this, action](std::int32_t) { (this->*action)(); });
}

bool MainDlg::IsChecked(std::int32_t id) const {
  const auto* box = ControlOf<gui::component::CheckBox>(id);
  return box && box->GetState() == gui::component::CheckBox::kOn;
}

void MainDlg::SetStatus(const std::string& text) {
  if (auto* line = ControlOf<gui::component::Label>(kStatusLine)) line->SetText(text);
}

std::string MainDlg::Status() const {
  const auto* line = ControlOf<gui::component::Label>(kStatusLine);
  return line ? line->GetText() : "";
}

InstanceReference* MainDlg::Selected() const {
  InstanceReference* item = tree_ ? view_.ItemOf(tree_->GetSelected()) : nullptr;
  return item && item->instance ? item : nullptr;
}

void MainDlg::Select(InstanceReference* item) {
  if (!tree_) return;
  tree_->selected = view_.NodeOf(item);
  tree_->Refresh();
}

void MainDlg::RefreshTree() {
  if (!tree_) return;
  InstanceReference* chosen = Selected();
  view_.Show(*tree_);
  // The chosen tool stays chosen while it is in the tree.
  tree_->selected = view_.NodeOf(chosen);
  tree_->Refresh();
  const std::vector<Instance*> live = instances_.AllInstances();
  const auto inTree = [&live](const Instance& instance) {
    return std::find(live.begin(), live.end(), &instance) != live.end();
  };
  if (config_ && !inTree(config_->GetInstance())) config_.reset();
  if (inputs_ && !inTree(inputs_->GetInstance())) inputs_.reset();
}

void MainDlg::CreateTool(const std::string& toolName) {
  core_.GetAdaptor()->BeginUndo("Create Tool");
  InstanceReference* item = instances_.Create(toolName);
  if (!item) {
    core_.GetAdaptor()->CancelUndo();
    SetStatus("There is no tool \"" + toolName + "\" to make.");
    return;
  }
  core_.GetAdaptor()->PutUndo(
      new InstanceReferenceCreateRestore(item, item->parent, static_cast<std::size_t>(item->ChildIndex())));
  core_.GetAdaptor()->EndUndo();
  RefreshTree();
  Select(item);
  SetStatus("Made " + item->GetLabel() + ".");
}

void MainDlg::DeleteSelected() {
  InstanceReference* item = Selected();
  if (!item) return;
  const std::string name = item->GetLabel();
  instances_.Delete(item, false);
  RefreshTree();
  SetStatus("Deleted " + name + ".");
}

void MainDlg::UnplugSelected() {
  InstanceReference* item = Selected();
  if (!item) return;
  const std::string name = item->GetLabel();
  core_.GetAdaptor()->BeginUndo("Unplug tool");
  instances_.Delete(item, true);
  core_.GetAdaptor()->EndUndo();
  RefreshTree();
  SetStatus("Unplugged " + name + ": its nodes keep their keys.");
}

void MainDlg::UnplugAll() {
  InstanceReference& root = instances_.Root();
  if (root.GetChildCount() == 0) return;
  core_.GetAdaptor()->BeginUndo("Unplug tool");
  while (root.GetChildCount() > 0) {
    instances_.Delete(static_cast<InstanceReference*>(root.GetChild(root.GetChildCount() - 1)), true);
  }
  core_.GetAdaptor()->EndUndo();
  RefreshTree();
  SetStatus("Unplugged every tool: their nodes keep their keys.");
}

void MainDlg::CloneSelected() {
  InstanceReference* item = Selected();
  if (!item) return;
  InstanceReference* made = instances_.Clone(item);
  RefreshTree();
  if (!made) return;
  Select(made);
  SetStatus("Cloned " + item->GetLabel() + " as " + made->GetLabel() + ".");
}

void MainDlg::OpenConfig() {
  InstanceReference* item = Selected();
  Plugin* plugin = item ? core_.GetLibraries()->FindTool(item->instance->GetToolPlugin()->GetName()) : nullptr;
  if (!plugin) return;
  if (!config_ || &config_->GetInstance() != item->instance.get()) {
    config_ = std::make_unique<ConfigWindow>(*item->instance, *plugin, desktop_);
  }
  config_->Show();
}

void MainDlg::OpenInputs() {
  if (InstanceReference* item = Selected()) item->instance->ShowInputSettings();
}

void MainDlg::ShowInputWindow(Instance& instance) {
  Plugin* plugin = core_.GetLibraries()->FindTool(instance.GetToolPlugin()->GetName());
  if (!plugin) return;
  if (!inputs_ || &inputs_->GetInstance() != &instance) {
    inputs_ = std::make_unique<InputConfigDlg>(instance, *plugin, desktop_);
  }
  inputs_->Show();
}

void MainDlg::TreeChanged() {
  if (!tree_->dropped) return;
  InstanceReference* moved = view_.ItemOf(tree_->dropped);
  InstanceReference* parent = view_.ItemOf(tree_->dropTarget);
  tree_->dropped = tree_->dropTarget = nullptr;
  if (!moved || !instances_.Move(moved, parent)) return;
  RefreshTree();
  SetStatus(moved->GetLabel() + (parent ? " now hangs below " + parent->GetLabel() + "." : " is now at the top."));
}

void MainDlg::ToggleRecording() {
  // A resimulation runs as a recording does, and is stopped by its own button.
  if (recorder_.IsResimulating()) return;
  if (recorder_.IsRecording()) {
    core_.StopRecording();
    Update();
    return;
  }
  core_.BeginRecording();
  // A recording may have switched the models' flags.
  if (tree_) tree_->Refresh();
  Update();
}

void MainDlg::ToggleResimulation() {
  if (recorder_.IsResimulating()) {
    resimulate_->Stop();
    return;
  }
  if (recorder_.IsRecording()) return;
  AdaptorInterface* adaptor = core_.GetAdaptor();
  const std::pair<double, double> range = adaptor->GetAnimationRange();
  core_.StartResimulation(recorder_.resimulateFromFirstFrame ? range.first : adaptor->GetTime(), range.second);
  if (!resimulate_) {
    resimulate_ = std::make_unique<RecordManager::ResimulateWindow>(recorder_, *adaptor);
    resimulate_->onFinished = [this] { Update(); };
  }
  resimulate_->Start();
  Update();
}

void MainDlg::Update() {
  if (recorder_.IsResimulating()) {
    SetStatus("Resimulating...");
    return;
  }
  if (recorder_.IsRecording()) {
    SetStatus(recorder_.countdownShown ? "Recording in " + std::to_string(recorder_.countdownShownSeconds) + "..."
                                       : "Recording...");
    return;
  }
  if (Status().rfind("Recording", 0) == 0 || Status().rfind("Resimulating", 0) == 0) {
    // The flags a recording switched are back.
    if (tree_) tree_->Refresh();
    SetStatus("Ready.");
  }
}

void MainDlg::Browse() {
  const std::string path = desktop_.openFile ? desktop_.openFile("Browse", kPrmFilter) : "";
  if (path.empty()) return;
  util::xml::Element tree;
  std::string error;
  if (!LoadPrmFile(path, tree, &error)) {
    ShowMessageBox(error, kCaption, box::kWarning);
    return;
  }
  const int made = instances_.LoadToolTree(tree);
  RefreshTree();
  SetStatus("Made " + std::to_string(made) + (made == 1 ? " tool" : " tools") + " from " + path + ".");
}

void MainDlg::SaveSelected() {
  InstanceReference* item = Selected();
  if (!item) return;
  const std::string path = desktop_.saveFile ? desktop_.saveFile("Save selected", kSavePrmFilter) : "";
  if (path.empty()) return;
  std::string error;
  if (!SavePrmFile(path, item->Serialize(0), &error)) {
    ShowMessageBox(error, kCaption, box::kWarning);
    return;
  }
  SetStatus("Saved " + item->GetLabel() + " as " + path + ".");
}

void MainDlg::ShowPreferences() {
  if (!preferences_) preferences_ = std::make_unique<PageWindow>("Preferences", mainConfig_);
  preferences_->Show();
}

void MainDlg::CheckForUpdates() {
  const Setting* server = core_.GetSetting(kVersionServerSetting);
  const std::string address = server ? server->WriteText() : "";
  if (address.empty()) {
    SetStatus("No version server is set in the settings.");
    return;
  }
  if (updates_.Check(address)) SetStatus("Checking for updates...");
}

void MainDlg::ShowAbout() {
  if (!about_) about_ = std::make_unique<AboutBox>(version_);
  about_->Show();
}

}  // namespace vuk::rgw::core
