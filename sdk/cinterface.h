#pragma once
// All that a tool may ask of the system. The core implements it once per
// tool instance; strings pass by value and every handle may be null.

#include <cstdint>
#include <string>
#include <vector>

#include "sdk/cextendable.h"
#include "sdk/cnode.h"
#include "sdk/csnapshot.h"
#include "unidevice/property.h"
#include "util/mesh.h"

namespace vuk::rgw {

class CUndo;

// Markers in front of a label when an undo record replays a change.
constexpr char kRealUndoMarker[] = "REALUNDO";
constexpr char kRealRedoMarker[] = "REALREDO";
constexpr std::size_t kUndoMarkerLength = 8;

// True when the label begins with the marker; a shorter label never does.
inline bool HasUndoMarker(const std::string& label, const char* marker) {
  return label.size() >= kUndoMarkerLength && label.compare(0, kUndoMarkerLength, marker) == 0;
}

// Channel type masks: the control kinds that may feed a channel.
namespace input {
constexpr std::int32_t kButton = 1;
constexpr std::int32_t kHat = 2;
constexpr std::int32_t kAxis = 4;
constexpr std::int32_t kGauge = 8;
constexpr std::int32_t kContinuous = kHat | kAxis | kGauge;  // 14
constexpr std::int32_t kSwitch = kButton | kAxis | kGauge;   // 13
}  // namespace input

// Styles of MessageBox: buttons in the low four bits, the icon above.
namespace box {
constexpr std::int32_t kYesNo = 1;
constexpr std::int32_t kYesNoCancel = 2;
constexpr std::int32_t kOkCancel = 3;
constexpr std::int32_t kQuestion = 16;
constexpr std::int32_t kCritical = 32;
constexpr std::int32_t kWarning = 48;
// Results.
constexpr std::int32_t kOk = 0;
constexpr std::int32_t kCancel = 1;
constexpr std::int32_t kYes = 2;
constexpr std::int32_t kNo = 3;
}  // namespace box

class CInterface : public CExtendable {
 public:
  class Callback {
   public:
    // A control changed, or an undo record replays (label behind a marker).
    virtual void Changed(std::string label) = 0;
    // A node made with this callback left the scene; the tool clears its handle.
    virtual void NodeLost(CNode* node) { (void)node; }
    // The same node came back through undo.
    virtual void NodeRestored(CNode* node) { (void)node; }

   protected:
    ~Callback() = default;
  };

  class ComboUpdater {
   public:
    virtual void SetItems(std::vector<std::string> items) = 0;

   protected:
    ~ComboUpdater() = default;
  };

  using Property = unidevice::Property;

  // The record then belongs to the receiver.
  virtual void PushUndo(CUndo* record) = 0;
  virtual Property* AddInputWithFactory(std::string name, std::int32_t typeMask, Property::Factory* factory) = 0;
  virtual Property* AddInput(std::string name, std::int32_t typeMask) = 0;
  virtual Property* FindInput(std::string name) = 0;

  virtual void BeginConfig() = 0;
  virtual void EndConfig() = 0;
  virtual void BeginGroup(std::string label, std::string tooltip) = 0;
  virtual void EndGroup() = 0;
  virtual void AddIntSpinner(std::string label, std::string tooltip, std::int32_t* value, std::int32_t minimum,
                             std::int32_t maximum, std::int32_t step, std::int32_t triggerLength, bool isInput,
                             std::int32_t reserved, Callback* callback) = 0;
  virtual void AddSpinner(std::string label, std::string tooltip, double* value, double minimum, double maximum,
                          double step, std::int32_t triggerLength, bool isInput, std::int32_t reserved,
                          Callback* callback) = 0;
  virtual void AddCheckBox(std::string label, std::string tooltip, bool* value, Callback* callback) = 0;
  virtual void AddTextBox(std::string label, std::string tooltip, std::string* value, Callback* callback) = 0;
  // The interface owns the answer.
  virtual ComboUpdater* AddComboBox(std::string label, std::string tooltip, std::vector<std::string> items,
                                    std::int32_t* selected, Callback* callback) = 0;
  virtual void AddButton(std::string label, std::string tooltip, Callback* callback) = 0;
  virtual void ConfigReserved() = 0;
  // Writes the bound variables into the page, once it exists.
  virtual void UpdateConfig() = 0;
  virtual void ShowInputSettings() = 0;

  virtual std::string GetDataPath() = 0;
  virtual void SetSaveData(const void* bytes, std::int32_t length) = 0;
  // Valid until the next SetSaveData or ClearSaveData; null before any.
  virtual const std::uint8_t* GetSaveData(std::int32_t* length) = 0;
  virtual std::int32_t ClearSaveData() = 0;

  virtual void DeleteNode(CNode* node) = 0;
  virtual CNode* FindNode(std::string name) = 0;
  virtual CNode* CreateCameraNode(std::string name, CNode* parent, Callback* callback) = 0;
  virtual CNode* CreateMeshNode(std::string name, CNode* parent, const util::CMesh& mesh, Callback* callback) = 0;
  virtual void CreateOtherNode(std::string name, const util::CMesh& mesh) = 0;

  // A null node gives null.
  virtual CSnapshot* GetTransformSnapshot(CNode* node, double time) = 0;
  virtual CSnapshot_Helper* GetHelperSnapshot(CNode* node, double time) = 0;
  virtual CSnapshot_Mesh* GetMeshSnapshot(CNode* node, double time) = 0;
  virtual CSnapshot_Lens* GetLensSnapshot(CNode* node, double time) = 0;
  // Each release accepts null.
  virtual void ReleaseNode(CNode* node) = 0;
  virtual void ReleaseLensSnapshot(CSnapshot_Lens* snapshot) = 0;
  virtual void ReleaseMeshSnapshot(CSnapshot_Mesh* snapshot) = 0;
  virtual void ReleaseHelperSnapshot(CSnapshot_Helper* snapshot) = 0;
  virtual void ReleaseTransformSnapshot(CSnapshot* snapshot) = 0;

  virtual double GetTime() = 0;
  virtual double GetFrameRate() = 0;
  // The time step of one Step.
  virtual double GetFrameDuration() = 0;
  virtual void Redraw() = 0;
  // Text first, caption second.
  virtual std::int32_t MessageBox(std::string text, std::string caption, std::int32_t style) = 0;
  virtual ~CInterface() = default;
};

// Records for the shape snapshot extensions of the interface.
struct ShapeSnapshotRequest {
  CNode* node;
  double time;
};
struct ShapeSnapshotReturn {
  CSnapshot_Shape* snapshot;
  CNode* node;
};

// A label for the configuration page, handed with the label extension.
struct ConfigLabel {
  std::string text;
  std::int32_t flags = 0;
};

// Description of a gauge, handed with the gauge extension.
struct GaugeDescription {
  std::string name;
  std::int32_t index = 0;
  std::int32_t controlType = 8;
  std::string secondName;
};

}  // namespace vuk::rgw
