#pragma once
// The one boundary between the system and the program that hosts the scene.
// Everything above it (core, tools, GUI) is written against this and the
// scene-node classes; nothing above it knows the host.

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "core/corenode.h"
#include "sdk/cundo.h"
#include "util/mesh.h"
#include "util/messagenode.h"
#include "util/xml/element.h"

namespace vuk::gui {
class Component;
}

namespace vuk::rgw::core {

constexpr std::int32_t kInterfaceVersion = 20110;

// Instances are passed by their CExtendable side.
using InstanceHandle = CExtendable*;
// A native window handle, or null where there is none.
using WindowHandle = void*;

// An instance carries its unique name as its message-node name.
inline std::string InstanceName(InstanceHandle instance) {
  const auto* node = dynamic_cast<const util::MessageNode*>(instance);
  return node ? node->GetName() : std::string();
}

class AdaptorInterface {
 public:
  virtual std::int32_t GetInterfaceVersion() = 0;
  virtual std::string GetDisplayName() = 0;
  // Joined under "data" to find the adaptor's own "settings.xml".
  virtual std::string GetDataFolderName() = 0;
  virtual std::string GetHostName() = 0;
  virtual std::string GetHostVersion() = 0;
  virtual WindowHandle GetMainWindow() = 0;

  virtual CoreNode* CreateCameraNode(InstanceHandle instance, std::string nodeName, CoreNode* parent,
                                     std::intptr_t extra) = 0;
  // Null when the host can't make the object.
  virtual CoreNode* CreateMeshNode(InstanceHandle instance, std::string nodeName, CoreNode* parent,
                                   const util::CMesh& mesh, std::intptr_t extra) = 0;
  // A reserved third kind: null.
  virtual CoreNode* CreateOtherNode(InstanceHandle instance, std::string nodeName, CoreNode* parent,
                                    const util::CMesh& mesh, std::intptr_t extra) = 0;
  // The first owned node of the instance with that tool-side name, or null.
  virtual CoreNode* FindNode(InstanceHandle instance, std::string nodeName) = 0;
  virtual void WriteNodeTags(InstanceHandle instance) = 0;
  virtual void GatherScene() = 0;
  virtual void GetAllNodes(NodeList& list) = 0;
  virtual void GetInstanceNodes(InstanceHandle instance, NodeList& list) = 0;
  // One entry per "node" child, by position; null where none was found.
  virtual void ResolveNodes(std::string instanceName, const util::xml::Element& nodes, NodeList& list) = 0;
  virtual void MergeFile(std::string path, NodeList& list) = 0;

  virtual std::int32_t BeginUndo(std::string label) = 0;
  // 1 when the record could not be kept and was destroyed at once.
  virtual std::int32_t PutUndo(CUndo* record) = 0;
  // 1 when no group was open.
  virtual std::int32_t EndUndo() = 0;
  virtual std::int32_t CancelUndo() = 0;
  virtual bool IsUndoActive() = 0;
  virtual bool Undo() = 0;
  virtual bool Redo() = 0;

  virtual double GetTime() = 0;
  virtual void SetTime(double seconds) = 0;
  virtual void SetTimeScale(std::int32_t scale) = 0;
  virtual std::pair<double, double> GetAnimationRange() = 0;
  virtual std::int32_t SetAnimationRange(std::pair<double, double> range) = 0;
  virtual bool CanScaleTime() = 0;
  // The nominal rate, unaffected by a slowed recording.
  virtual double GetFrameRate() = 0;
  virtual double GetFrameDuration() = 0;
  virtual void RedrawScene() = 0;
  virtual void DisableHostShortcuts() = 0;
  virtual void EnableHostShortcuts() = 0;

  virtual std::int32_t BeginRecordingInstances(std::vector<InstanceHandle> instances) = 0;
  virtual std::int32_t BeginRecording() = 0;
  virtual std::int32_t EndRecording() = 0;
  virtual std::int32_t Shutdown() = 0;

  // Appends the host's page of the main configuration.
  virtual std::int32_t GetConfigLayout(util::xml::Element& parent) = 0;
  virtual void ConnectConfig(gui::Component* root) = 0;
  virtual std::int32_t ShowError(std::string text, std::string caption) = 0;

  virtual ~AdaptorInterface() = default;
};

}  // namespace vuk::rgw::core
