// The main window driven by its element ids, as a user drives it, on the
// embedded host with the program's own tools.
#include "core/window/maindlg.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QWidget>
#include <algorithm>
#include <filesystem>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "app/rgw/session.h"
#include "core/configadaptor/elements.h"
#include "gui/component/choices.h"
#include "gui/component/controls.h"
#include "unidevice/driver/linuxdriver.h"

namespace vuk::rgw::core {
namespace {

using gui::component::Button;
using gui::component::CheckBox;
using gui::component::FlmButton;
using gui::component::Menu;
using gui::component::Spinner;
using Node = gui::componentinterface::Tree::Node;

std::string TempPath(const std::string& name) {
  return (std::filesystem::temp_directory_path() / ("rgw_maindlg_" + name)).string();
}

// Every "id" of a layout element and below it, with the element's tag.
void CollectIds(const util::xml::Element& element, std::vector<std::pair<std::int32_t, std::string>>& ids) {
  if (!element.GetAttribute("id").empty()) ids.emplace_back(std::stoi(element.GetAttribute("id")), element.name);
  for (const auto& child : element.children) CollectIds(*child, ids);
}

// The labels of a tree, each with those below it in brackets.
std::string Shape(const Node& node) {
  std::string text;
  for (std::size_t i = 0; i < node.GetNodeCount(); ++i) {
    const Node& child = *node.GetNode(i);
    text += child.GetLabel() + (child.GetNodeCount() ? "[" + Shape(child) + "]" : "") + ";";
  }
  return text;
}

std::string Shape(const TreeItem& item) {
  std::string text;
  for (std::size_t i = 0; i < item.GetChildCount(); ++i) {
    const auto& child = static_cast<const InstanceReference&>(*item.GetChild(i));
    text += child.GetLabel() + (child.GetChildCount() ? "[" + Shape(child) + "]" : "") + ";";
  }
  return text;
}

// The first number field of a tool's page, and its value's range.
configadaptor::element::Spinner* FirstNumber(configadaptor::Node& page) {
  for (std::size_t i = 0; i < page.GetChildCount(); ++i) {
    configadaptor::Node* node = page.GetChild(i);
    if (auto* spinner = dynamic_cast<configadaptor::element::Spinner*>(node)) return spinner;
    if (auto* found = FirstNumber(*node)) return found;
  }
  return nullptr;
}

class MainWindow : public testing::Test {
 protected:
  MainWindow() { Open(); }

  void Open() {
    dlg.reset();
    session = std::make_unique<app::Session>();
    desktop.openFile = [this](const std::string&, const std::string& filter) {
      asked.push_back(filter);
      return answer;
    };
    desktop.saveFile = desktop.openFile;
    desktop.askText = [this](const std::string&, const std::string&) { return answer; };
    desktop.openAddress = [this](const std::string& address) { opened.push_back(address); };
    dlg = std::make_unique<MainDlg>(session->core, desktop, "2.3.45");
  }

  // A user's use of a control: a button pressed, a menu item chosen.
  void Press(std::int32_t id) { dlg->ControlOf<Button>(id)->Press(); }
  void Choose(std::int32_t item) { dlg->ControlOf<Menu>(135)->Choose(item); }
  std::int32_t EntryOf(const std::string& tool) const {
    const auto& tools = dlg->Creatable();
    const auto found = std::find_if(tools.begin(), tools.end(), [&](Plugin* p) { return p->ToolName() == tool; });
    EXPECT_NE(found, tools.end()) << tool;
    return MainDlg::kCreateBase + static_cast<std::int32_t>(found - tools.begin());
  }
  InstanceReference* Make(const std::string& tool) {
    dlg->ControlOf<FlmButton>(102)->Choose(EntryOf(tool));
    return dlg->Selected();
  }
  gui::component::Tree& Tree() { return *dlg->ControlOf<gui::component::Tree>(119); }
  std::size_t SceneNodeCount() {
    std::size_t count = 0;
    session->host.GetScene().Walk([&count](adaptor::standalone::SceneNode&) { ++count; });
    return count;
  }
  std::string LastUndo() { return session->host.GetScene().undo.NextUndoLabel(); }
  void ExpectMirror() {
    ASSERT_NE(Tree().root, nullptr);
    EXPECT_EQ(Shape(*Tree().root), Shape(session->tools.Root()));
  }
  void Undo() {
    session->host.Undo();
    dlg->RefreshTree();
  }
  void Redo() {
    session->host.Redo();
    dlg->RefreshTree();
  }

  Desktop desktop;
  std::string answer;
  std::vector<std::string> asked, opened;
  std::unique_ptr<app::Session> session;
  std::unique_ptr<MainDlg> dlg;
};

TEST_F(MainWindow, EveryIdOfTheLayoutHasAHandlerAndEveryHandlerItsId) {
  util::xml::Element layout;
  ASSERT_EQ(layout.Parse(gui::DataRoot() + MainDlg::kLayout), util::xml::kParsed);
  std::vector<std::pair<std::int32_t, std::string>> ids;
  CollectIds(layout, ids);
  ASSERT_GT(ids.size(), 30u);
  const std::vector<std::int32_t> handled = dlg->HandledIds();
  std::set<std::int32_t> inLayout;
  for (const auto& [id, tag] : ids) {
    inLayout.insert(id);
    // The status line only shows: a label never reports.
    if (tag == "label") continue;
    EXPECT_NE(std::find(handled.begin(), handled.end(), id), handled.end()) << "no handler for " << tag << " " << id;
  }
  for (std::int32_t id : handled) {
    // The entries of the pop-outs and menus come from the tool list.
    const std::int32_t entries = static_cast<std::int32_t>(dlg->Creatable().size());
    const bool entry = (id >= MainDlg::kCreateBase && id < MainDlg::kCreateBase + entries) ||
                       (id >= MainDlg::kToolHelpBase && id < MainDlg::kToolHelpBase + entries);
    EXPECT_TRUE(entry || inLayout.count(id)) << "handler without an id in the layout: " << id;
  }
}

TEST_F(MainWindow, TitleAndPopOutsFollowTheToolList) {
  EXPECT_EQ(dlg->Widget()->windowTitle().toStdString(), "Quoll Rigworks v2.3.45 x64");
  for (const MainDlg::Category& category : MainDlg::Categories()) {
    std::vector<std::string> shown, wanted;
    for (const auto& entry : dlg->ControlOf<FlmButton>(category.button)->entries) shown.push_back(entry.label);
    for (Plugin* tool : dlg->Creatable()) {
      const auto kinds = tool->GetCategories();
      if (std::find(kinds.begin(), kinds.end(), category.name) != kinds.end()) wanted.push_back(tool->plugin->GetTitle());
    }
    EXPECT_EQ(shown, wanted) << category.name;
  }
  EXPECT_FALSE(dlg->ControlOf<FlmButton>(102)->entries.empty());
  EXPECT_FALSE(dlg->ControlOf<FlmButton>(101)->entries.empty());
}

TEST_F(MainWindow, CreatesFromPopOutAndMenuInTheCreateToolGroup) {
  InstanceReference* camera = Make("LookAtCam");
  ASSERT_NE(camera, nullptr);
  EXPECT_EQ(camera->GetLabel(), "LookAtCam_01");
  EXPECT_EQ(LastUndo(), "Create Tool");
  Choose(EntryOf("1DPositioner"));
  EXPECT_EQ(session->tools.InstanceNames(), (std::vector<std::string>{"LookAtCam_01", "1DPositioner_01"}));
  ExpectMirror();
  Undo();
  Undo();
  EXPECT_TRUE(session->tools.InstanceNames().empty());
  ExpectMirror();
  Redo();
  EXPECT_EQ(session->tools.InstanceNames(), (std::vector<std::string>{"LookAtCam_01"}));
  ExpectMirror();
}

// A tree operation on the selected tool, its group, and what the tree holds after it.
struct TreeCase {
  const char* name;
  std::int32_t id;
  bool menuItem;
  const char* group;
  const char* shape;
};

void PrintTo(const TreeCase& c, std::ostream* out) { *out << c.name; }

class TreeOperations : public MainWindow, public testing::WithParamInterface<TreeCase> {};

TEST_P(TreeOperations, MirrorTheInstanceManagerThroughUndoAndRedo) {
  InstanceReference* first = Make("LookAtCam");
  Make("LookAtCam");
  dlg->Select(first);
  const std::string before = Shape(session->tools.Root());
  const std::size_t nodesBefore = SceneNodeCount();
  const TreeCase& c = GetParam();
  c.menuItem ? Choose(c.id) : Press(c.id);
  EXPECT_EQ(LastUndo(), c.group);
  EXPECT_EQ(Shape(session->tools.Root()), c.shape);
  ExpectMirror();
  Undo();
  EXPECT_EQ(Shape(session->tools.Root()), before);
  EXPECT_EQ(SceneNodeCount(), nodesBefore);
  ExpectMirror();
  Redo();
  EXPECT_EQ(Shape(session->tools.Root()), c.shape);
  ExpectMirror();
}

INSTANTIATE_TEST_SUITE_P(
    Ids, TreeOperations,
    testing::Values(TreeCase{"Delete", 104, false, "Delete Quoll Tool", "LookAtCam_02;"},
                    TreeCase{"DeleteItem", 129, true, "Delete Quoll Tool", "LookAtCam_02;"},
                    TreeCase{"Unplug", 108, false, "Unplug tool", "LookAtCam_02;"},
                    TreeCase{"UnplugAll", 105, false, "Unplug tool", ""},
                    TreeCase{"UnplugAllItem", 123, true, "Unplug tool", ""},
                    TreeCase{"Clone", 109, false, "Clone tool", "LookAtCam_01;LookAtCam_02;LookAtCam_03;"},
                    TreeCase{"CloneItem", 130, true, "Clone tool", "LookAtCam_01;LookAtCam_02;LookAtCam_03;"}),
    [](const testing::TestParamInfo<TreeCase>& info) { return std::string(info.param.name); });

TEST_F(MainWindow, UnplugKeepsTheNodesInTheSceneAndDeleteTakesThem) {
  InstanceReference* first = Make("LookAtCam");
  const std::size_t withTool = SceneNodeCount();
  ASSERT_FALSE(session->host.Nodes().empty());
  dlg->Select(first);
  Press(108);
  EXPECT_EQ(SceneNodeCount(), withTool);
  EXPECT_TRUE(session->host.Nodes().empty());
  Make("LookAtCam");
  EXPECT_GT(SceneNodeCount(), withTool);
  Press(104);
  EXPECT_EQ(SceneNodeCount(), withTool);
}

TEST_F(MainWindow, DraggingAToolOntoAnotherHangsItBelowItUndoably) {
  InstanceReference* parent = Make("LookAtCam");
  InstanceReference* child = Make("LookAtCam");
  Tree().Drop(dlg->ControlOf<gui::component::Tree>(119)->selected, nullptr);
  EXPECT_EQ(Shape(session->tools.Root()), "LookAtCam_01;LookAtCam_02;");  // already at the top
  dlg->Select(child);
  Node* dragged = Tree().selected;
  dlg->Select(parent);
  Tree().Drop(dragged, Tree().selected);
  EXPECT_EQ(Shape(session->tools.Root()), "LookAtCam_01[LookAtCam_02;];");
  EXPECT_EQ(LastUndo(), "Move tool");
  ExpectMirror();
  // Not below itself.
  dlg->Select(child);
  Node* below = Tree().selected;
  dlg->Select(parent);
  Tree().Drop(Tree().selected, below);
  EXPECT_EQ(Shape(session->tools.Root()), "LookAtCam_01[LookAtCam_02;];");
  Undo();
  EXPECT_EQ(Shape(session->tools.Root()), "LookAtCam_01;LookAtCam_02;");
  ExpectMirror();
  Redo();
  EXPECT_EQ(Shape(session->tools.Root()), "LookAtCam_01[LookAtCam_02;];");
}

TEST_F(MainWindow, CheckColumnChoosesTheToolsThatRecord) {
  InstanceReference* first = Make("LookAtCam");
  Make("LookAtCam");
  Node* shown = dlg->ControlOf<gui::component::Tree>(119)->root->GetNode(0);
  Tree().ChangeFlag(shown, TreeItem::kChecked, 0);
  EXPECT_EQ(first->states[TreeItem::kChecked], 0);
  ASSERT_EQ(session->tools.CheckedInstances().size(), 1u);
  EXPECT_EQ(session->tools.CheckedInstances()[0]->InstanceName(), "LookAtCam_02");
}

TEST_F(MainWindow, RecordingSwitchesGoToTheRecorder) {
  RecordManager& recorder = *session->core.GetRecorder();
  dlg->ControlOf<CheckBox>(112)->ChangeState(CheckBox::kOn);
  dlg->ControlOf<CheckBox>(113)->ChangeState(CheckBox::kOn);
  EXPECT_TRUE(recorder.resimulateFromFirstFrame);
  EXPECT_TRUE(recorder.autoExpand);
  dlg->ControlOf<CheckBox>(113)->ChangeState(CheckBox::kOff);
  EXPECT_FALSE(recorder.autoExpand);
  for (int step = 0; step <= 3; ++step) {
    dlg->ControlOf<Spinner>(115)->ChangeValue(step);
    EXPECT_DOUBLE_EQ(recorder.timeScale, 1 << step) << step;
  }
}

TEST_F(MainWindow, RecordStartsAndStopsAndHidesHighPolyModelsMeanwhile) {
  InstanceReference* camera = Make("LookAtCam");
  ASSERT_EQ(dlg->ControlOf<CheckBox>(114)->GetState(), CheckBox::kOn);
  Press(116);
  EXPECT_TRUE(session->core.IsRecording());
  EXPECT_EQ(camera->states[TreeItem::kHighPoly], 0);
  EXPECT_EQ(camera->states[TreeItem::kLowPoly], 1);
  EXPECT_EQ(dlg->Status().rfind("Recording", 0), 0u) << dlg->Status();
  Press(117);  // nothing while recording
  EXPECT_FALSE(session->core.IsResimulating());
  Press(116);
  EXPECT_FALSE(session->core.IsRecording());
  EXPECT_EQ(camera->states[TreeItem::kHighPoly], 1);
  EXPECT_EQ(dlg->Status(), "Ready.");
  Press(117);
  EXPECT_TRUE(session->core.IsResimulating());
  Press(117);
  EXPECT_FALSE(session->core.IsResimulating());
}

TEST_F(MainWindow, ResimulationRunsInItsWindowToTheEndOrUntilStopped) {
  Make("LookAtCam");
  RecordManager& recorder = *session->core.GetRecorder();
  dlg->ControlOf<CheckBox>(112)->ChangeState(CheckBox::kOn);
  // Left alone, it runs to the end of the range.
  Press(117);
  RecordManager::ResimulateWindow* window = dlg->GetResimulateWindow();
  ASSERT_NE(window, nullptr);
  EXPECT_TRUE(window->IsShown());
  for (int i = 0; i < 1000 && session->core.IsResimulating(); ++i) QCoreApplication::processEvents();
  EXPECT_FALSE(session->core.IsResimulating());
  EXPECT_FALSE(window->IsShown());
  EXPECT_EQ(window->ControlOf<gui::component::ProgressBar>(100)->progress, 100);
  const auto range = session->host.GetAnimationRange();
  const auto fps = session->host.GetFrameRate();
  const std::string frames = std::to_string(std::llround((range.second - range.first) * fps));
  EXPECT_EQ(window->ControlOf<gui::component::Label>(102)->GetText(), frames + " out of " + frames + " frames.");
  EXPECT_EQ(window->ControlOf<gui::component::Label>(103)->GetText(), "0 minutes and 0 seconds.");
  EXPECT_EQ(dlg->Status(), "Ready.");
  // Stopped at once, the window closes; the frames written stay for one host undo.
  Press(117);
  EXPECT_EQ(dlg->GetResimulateWindow(), window);
  EXPECT_TRUE(window->IsShown());
  // A clock that runs 300 ms per look: a slice steps one frame.
  std::int64_t now = 0;
  recorder.clock = [&now] { return now += 300; };
  EXPECT_FALSE(recorder.ResimStep());
  const double reached = recorder.Resimulation().NextFrameTime();
  window->ControlOf<Button>(99)->Press();
  EXPECT_FALSE(session->core.IsResimulating());
  EXPECT_FALSE(window->IsShown());
  EXPECT_GT(reached, range.first);
  EXPECT_LT(reached, range.second);
  EXPECT_EQ(LastUndo(), "Resimulating");
}

TEST_F(MainWindow, NothingSelectedDoesNothing) {
  Make("LookAtCam");
  dlg->Select(nullptr);
  for (std::int32_t id : {104, 106, 107, 108, 109}) Press(id);
  for (std::int32_t id : {127, 128, 129, 130, 141}) Choose(id);
  EXPECT_EQ(session->tools.InstanceNames(), (std::vector<std::string>{"LookAtCam_01"}));
  EXPECT_EQ(dlg->GetConfigWindow(), nullptr);
  EXPECT_EQ(dlg->GetInputWindow(), nullptr);
  EXPECT_TRUE(asked.empty());
}

// A group gathers tools below it, undoably, and comes back with them from a
// saved scene though it has no node of its own.
TEST_F(MainWindow, GroupGathersToolsAndSurvivesASave) {
  const std::size_t nodesBefore = SceneNodeCount();
  Press(111);
  InstanceReference* group = dlg->Selected();
  ASSERT_NE(group, nullptr);
  EXPECT_EQ(group->GetLabel(), "Group_01");
  EXPECT_EQ(LastUndo(), "Create Tool");
  EXPECT_EQ(SceneNodeCount(), nodesBefore);
  Undo();
  EXPECT_TRUE(session->tools.InstanceNames().empty());
  Redo();
  ExpectMirror();

  group = session->tools.Find("Group_01");
  InstanceReference* camera = Make("LookAtCam");
  session->tools.Move(camera, group);
  dlg->RefreshTree();
  EXPECT_EQ(Shape(session->tools.Root()), "Group_01[LookAtCam_01;];");
  // The group is made by its button alone.
  for (Plugin* tool : dlg->Creatable()) EXPECT_NE(tool->ToolName(), "Group");
  // Its windows open, empty.
  dlg->Select(group);
  Press(106);
  Press(107);
  EXPECT_NE(dlg->GetConfigWindow(), nullptr);

  const std::string path = TempPath("group.gltf");
  std::string error;
  ASSERT_TRUE(session->Save(path, error)) << error;
  Open();
  ASSERT_TRUE(session->Open(path, error)) << error;
  EXPECT_EQ(Shape(session->tools.Root()), "Group_01[LookAtCam_01;];");
  std::filesystem::remove(path);
}

TEST_F(MainWindow, SavesTheSelectedTreeAsAModelAndBrowsesItBack) {
  InstanceReference* parent = Make("LookAtCam");
  InstanceReference* child = Make("LookAtCam");
  session->tools.Move(child, parent);
  dlg->RefreshTree();
  dlg->Select(parent);
  answer = TempPath("model.prm");
  Choose(141);
  EXPECT_EQ(asked.back(), "prm files (*.prm)");
  ASSERT_TRUE(std::filesystem::exists(answer));
  Choose(136);
  EXPECT_EQ(asked.back(), "Quoll Pre-Rigged Models (*.prm);;All files (*.*)");
  EXPECT_EQ(Shape(session->tools.Root()), "LookAtCam_01[LookAtCam_02;];LookAtCam_03[LookAtCam_04;];");
  ExpectMirror();
  std::filesystem::remove(answer);
}

TEST_F(MainWindow, WindowsOpenFromTheirIds) {
  Make("LookAtCam");
  // Each window by a button or a menu item.
  const std::vector<std::pair<std::function<void()>, std::function<WindowBase*()>>> windows = {
      {[this] { Press(106); }, [this] { return dlg->GetConfigWindow(); }},
      {[this] { Choose(128); }, [this] { return dlg->GetInputWindow(); }},
      {[this] { Choose(125); }, [this] { return dlg->GetPreferences(); }},
      {[this] { Choose(134); }, [this] { return dlg->GetAbout(); }}};
  for (const auto& [open, window] : windows) {
    open();
    ASSERT_NE(window(), nullptr);
    EXPECT_TRUE(window()->IsShown());
  }
  // Deleting the tool closes its windows.
  Press(104);
  EXPECT_EQ(dlg->GetConfigWindow(), nullptr);
  EXPECT_EQ(dlg->GetInputWindow(), nullptr);
  dlg->Show();
  Choose(126);
  EXPECT_FALSE(dlg->IsShown());
}

TEST_F(MainWindow, HelpEntriesOpenAddresses) {
  Choose(131);
  Choose(132);
  Choose(133);
  Choose(MainDlg::kToolHelpBase + EntryOf("LookAtCam") - MainDlg::kCreateBase);
  ASSERT_EQ(opened.size(), 4u);
  EXPECT_EQ(opened[0].rfind("file://", 0), 0u);
  EXPECT_EQ(opened[1].rfind("https://", 0), 0u);
  EXPECT_EQ(opened[2].rfind("https://", 0), 0u);
  EXPECT_NE(opened[3].find("lookatcam.html"), std::string::npos) << opened[3];
  Choose(137);
  EXPECT_FALSE(dlg->Status().empty());
}

// The configuration and input windows change a tool, and the change stays through a save.
TEST_F(MainWindow, ConfigurationAndInputChangesSurviveASave) {
  InstanceReference* camera = Make("SoftMotionCam");
  Press(106);
  ConfigWindow& config = *dlg->GetConfigWindow();
  configadaptor::element::Spinner* number = FirstNumber(*camera->instance->GetPage());
  ASSERT_NE(number, nullptr);
  auto* field = dynamic_cast<Spinner*>(configadaptor::Node::FindControlIn(*config.Root(), number->id));
  ASSERT_NE(field, nullptr);
  const double wanted = number->minimum + (number->maximum - number->minimum) / 4;
  field->ChangeValue(wanted);
  EXPECT_DOUBLE_EQ(*number->variable, wanted);
  const std::string label = number->label;

  Press(107);
  InputConfigDlg& inputs = *dlg->GetInputWindow();
  unidevice::Property* channel = inputs.Channel();
  ASSERT_NE(channel, nullptr);
  inputs.ControlOf<Button>(312)->Press();
  ASSERT_TRUE(inputs.IsDetecting());
  auto* keyboard = session->core.GetDevices()->GetPlatformDriver().GetKeyboard();
  keyboard->KeyDown(0x4A);  // J
  EXPECT_TRUE(inputs.PollDetection());
  keyboard->KeyUp(0x4A);
  EXPECT_FALSE(inputs.IsDetecting());
  EXPECT_EQ(channel->source, keyboard->GetControl(0x4A));
  inputs.ControlOf<Spinner>(316)->ChangeValue(0.25);
  inputs.ControlOf<Spinner>(315)->ChangeValue(2.0);
  EXPECT_DOUBLE_EQ(channel->deadzone, 0.25);
  EXPECT_DOUBLE_EQ(channel->Response(1.0), 1.0);
  EXPECT_DOUBLE_EQ(channel->Response(0.625), 0.25);
  const std::string channelName = channel->name;

  const std::string path = TempPath("changed.gltf");
  std::string error;
  ASSERT_TRUE(session->Save(path, error)) << error;
  Open();
  ASSERT_TRUE(session->Open(path, error)) << error;
  Instance* loaded = session->tools.Find("SoftMotionCam_01")->instance.get();
  EXPECT_DOUBLE_EQ(*FirstNumber(*loaded->GetPage())->variable, wanted);
  unidevice::Property* saved = loaded->FindInput(channelName);
  EXPECT_DOUBLE_EQ(saved->deadzone, 0.25);
  EXPECT_DOUBLE_EQ(saved->exponent, 2.0);
  EXPECT_EQ(saved->source, session->core.GetDevices()->GetPlatformDriver().GetKeyboard()->GetControl(0x4A));
  std::filesystem::remove(path);
}

TEST_F(MainWindow, ProfilesOfTheConfigurationWindowLoadAndSave) {
  InstanceReference* camera = Make("SoftMotionCam");
  Press(106);
  ConfigWindow& config = *dlg->GetConfigWindow();
  auto* profiles = config.ControlOf<gui::component::ComboBox>(201);
  ASSERT_FALSE(profiles->items.empty());
  configadaptor::element::Spinner* number = FirstNumber(*camera->instance->GetPage());
  const double factory = *number->variable;
  auto* field = dynamic_cast<Spinner*>(configadaptor::Node::FindControlIn(*config.Root(), number->id));
  field->ChangeValue(number->maximum);
  answer = "Mine";
  config.ControlOf<Button>(203)->Press();
  EXPECT_EQ(config.Profiles().Selected(), "Mine");
  const auto names = profiles->items;
  const auto factoryAt = std::find_if(names.begin(), names.end(), [](const auto& i) { return i.label == "Factory Settings"; });
  ASSERT_NE(factoryAt, names.end());
  profiles->ChangeSelected(static_cast<std::int32_t>(factoryAt - names.begin()));
  config.ControlOf<Button>(202)->Press();
  EXPECT_DOUBLE_EQ(*number->variable, factory);
  EXPECT_DOUBLE_EQ(field->GetValue(), factory);
  config.ControlOf<Button>(206)->Press();  // Factory Settings is read-only
  const auto kept = session->core.GetLibraries()->FindTool("SoftMotionCam")->ConfigProfiles().Names();
  EXPECT_NE(std::find(kept.begin(), kept.end(), "Factory Settings"), kept.end());
  session->core.GetLibraries()->FindTool("SoftMotionCam")->ConfigProfiles().Delete("Mine");
}

}  // namespace
}  // namespace vuk::rgw::core
