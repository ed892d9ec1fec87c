#pragma once
// The embedded host: the whole adaptor contract over the in-memory scene, so
// that the system runs with no other program.

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "adaptor/standalone/scene.h"
#include "core/adaptorinterface.h"
#include "core/messagebox.h"
#include "util/messagenode.h"

namespace vuk::rgw::adaptor::standalone {

class StandaloneNode;

class StandaloneAdaptorInterface : public core::AdaptorInterface, public util::MessageNode {
 public:
  // Shows a message; answers OK 0, Cancel 1, Yes 2, No 3. Without a window,
  // or in silent mode, the box is only logged and the answer is 1.
  using MessageBoxSink = core::MessageBoxSink;
  // Takes the element "RGT" that a scene's tags describe; answers the names
  // of the tools there are after.
  using SceneLoader = std::function<std::vector<std::string>(const util::xml::Element& tree)>;
  // A tool of the scene that wasn't made: its tags stay in the scene as they
  // came, and go back into the file at every save.
  struct KeptTool {
    std::string name;  // empty when the tag can't tell
    std::string type;  // likewise
    // The scene node that carries its state; empty for the scene's root.
    std::string node;
    // Empty when the tags were sound: the tool was refused for reasons of its own.
    std::string reason;
  };

  StandaloneAdaptorInterface();
  ~StandaloneAdaptorInterface() override;

  std::int32_t GetInterfaceVersion() override { return core::kInterfaceVersion; }
  std::string GetDisplayName() override { return "Standalone Adaptor"; }
  std::string GetDataFolderName() override { return "adaptor_standalone"; }
  std::string GetHostName() override { return "standalone"; }
  std::string GetHostVersion() override;
  core::WindowHandle GetMainWindow() override { return mainWindow_; }

  core::CoreNode* CreateCameraNode(core::InstanceHandle instance, std::string nodeName, core::CoreNode* parent,
                                   std::intptr_t extra) override;
  core::CoreNode* CreateMeshNode(core::InstanceHandle instance, std::string nodeName, core::CoreNode* parent,
                                 const util::CMesh& mesh, std::intptr_t extra) override;
  core::CoreNode* CreateOtherNode(core::InstanceHandle, std::string, core::CoreNode*, const util::CMesh&,
                                  std::intptr_t) override {
    return nullptr;
  }
  core::CoreNode* FindNode(core::InstanceHandle instance, std::string nodeName) override;
  void WriteNodeTags(core::InstanceHandle instance) override;
  // Puts the scene's own tags for a save: the element of the tools without
  // nodes (their "RGT") on the scene's root, with the kept tools of the
  // root; and the tags of the kept tools back on their nodes, as they came.
  // A gathering loads the tools again.
  void WriteSceneTag(const util::xml::Element& toolsWithoutNodes);
  const std::vector<KeptTool>& KeptTools() const { return keptTools_; }
  void GatherScene() override;
  void GetAllNodes(core::NodeList& list) override;
  void GetInstanceNodes(core::InstanceHandle instance, core::NodeList& list) override;
  void ResolveNodes(std::string instanceName, const util::xml::Element& nodes, core::NodeList& list) override;
  void MergeFile(std::string path, core::NodeList& list) override;

  std::int32_t BeginUndo(std::string label) override;
  std::int32_t PutUndo(CUndo* record) override;
  std::int32_t EndUndo() override;
  std::int32_t CancelUndo() override;
  bool IsUndoActive() override;
  bool Undo() override;
  bool Redo() override;

  double GetTime() override { return scene_.clock.GetTime(); }
  void SetTime(double seconds) override;
  void SetTimeScale(std::int32_t scale) override;
  std::pair<double, double> GetAnimationRange() override;
  std::int32_t SetAnimationRange(std::pair<double, double> range) override;
  bool CanScaleTime() override { return true; }
  double GetFrameRate() override;
  double GetFrameDuration() override;
  void RedrawScene() override { ++redrawCount_; }
  void DisableHostShortcuts() override { shortcutsEnabled_ = false; }
  void EnableHostShortcuts() override { shortcutsEnabled_ = true; }

  std::int32_t BeginRecordingInstances(std::vector<core::InstanceHandle> instances) override;
  std::int32_t BeginRecording() override;
  std::int32_t EndRecording() override;
  std::int32_t Shutdown() override { return 0; }

  std::int32_t GetConfigLayout(util::xml::Element& parent) override;
  void ConnectConfig(gui::Component* root) override;
  std::int32_t ShowError(std::string text, std::string caption) override;

  Scene& GetScene() { return scene_; }
  void SetMainWindow(core::WindowHandle window) { mainWindow_ = window; }
  void SetMessageBoxSink(MessageBoxSink sink) { messageBox_ = std::move(sink); }
  std::int32_t ShowMessageBox(const std::string& text, const std::string& caption, std::int32_t style);
  void SetSceneLoader(SceneLoader loader) { loader_ = std::move(loader); }
  std::int32_t GetTimeScale() const { return timeScale_; }
  int GetRedrawCount() const { return redrawCount_; }
  bool AreHostShortcutsEnabled() const { return shortcutsEnabled_; }

  // The owned nodes, in creation order.
  const std::vector<StandaloneNode*>& Nodes() const { return nodes_; }
  void AddNode(StandaloneNode* node);
  void RemoveNode(StandaloneNode* node);
  // Off the list by a delete or by undoing its creation: undo may list the
  // node again, so the adaptor keeps it until it goes itself.
  void Retire(StandaloneNode* node);
  // Back on the list by undo, at the place it had.
  void Reinstate(StandaloneNode* node, std::size_t place);
  // Where the node stands on the list; the list's size when it isn't there.
  std::size_t PlaceOf(const StandaloneNode* node) const;
  // The owned node over that scene object, or null.
  StandaloneNode* FindOwnedOver(const SceneNode* host) const;
  // Takes the node off the list, and with the flag its scene object out of
  // the scene, both undoably.
  void DeleteNode(StandaloneNode* node, bool withHost);

  // The selection batch of node messages 10 and 11, one for the process.
  static bool& SelectionBatch();

 private:
  StandaloneNode* MakeOwnedNode(core::InstanceHandle instance, const std::string& nodeName, ObjectKind kind,
                                core::CoreNode* parent, std::intptr_t extra);
  StandaloneNode* MatchGathered(const std::string& instanceName, const std::string& objectName);
  StandaloneNode* MatchLive(const std::string& instanceName, const std::string& objectName);
  // Hands the sound masters to the loader; keeps the others, and those the
  // loader didn't make.
  void LoadMasters(std::vector<util::xml::Element> masters, std::vector<KeptTool> origins);
  // Keeps the tags of the nodes that no tool claimed, and of the root's
  // tools that weren't made.
  void KeepUnclaimedTags();

  Scene scene_;
  core::WindowHandle mainWindow_ = nullptr;
  MessageBoxSink messageBox_;
  SceneLoader loader_;
  int redrawCount_ = 0;
  bool shortcutsEnabled_ = true;

  bool animateWasOn_ = false;
  bool holdOpenedHere_ = false;
  bool cancelPending_ = false;
  std::vector<std::string> undoLabels_;
  std::int32_t timeScale_ = 1;
  std::vector<StandaloneNode*> nodes_;
  std::vector<StandaloneNode*> retired_;
  // Tags found by the last gathering: the scene node and its parsed tag.
  std::vector<std::pair<SceneNode*, util::xml::Element>> gatherRecords_;
  // What the last gathering couldn't make: the tags of nodes, the tools'
  // elements of the root's tag, and what they were.
  std::vector<std::pair<SceneNode*, std::string>> keptTags_;
  std::vector<util::xml::Element> keptRootTools_;
  std::vector<KeptTool> keptTools_;
};

}  // namespace vuk::rgw::adaptor::standalone
