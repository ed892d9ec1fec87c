#pragma once
// The core's half of a tool: the tool's CInterface, its input channels and
// their recorded tracks, its configuration page, its gauges as a device, its
// saved bytes and its nodes in the host.

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "core/adaptorinterface.h"
#include "core/configadaptor/elements.h"
#include "sdk/ccamera.h"
#include "sdk/ccameraplugin.h"
#include "sdk/cinterface.h"
#include "unidevice/control.h"
#include "unidevice/device.h"
#include "unidevice/propertyhandler.h"
#include "util/avar.h"
#include "util/bytes.h"
#include "util/messagenode.h"

namespace vuk::rgw::core {

class InstanceReference;

// The gauges of an instance, as a device other tools can bind to.
class InstanceVirtualDevice : public unidevice::Device {
 public:
  std::string GetTypeName() const override { return "InstanceVirtualDevice"; }
  std::int32_t GetControlCount() override { return static_cast<std::int32_t>(gaugeControls.size()); }
  unidevice::Control* GetControl(std::int32_t index) override;
  bool Open(unidevice::DeviceContext) override { return true; }

  std::vector<unidevice::Control*> gaugeControls;
};

class Instance : public InstanceVirtualDevice, public CInterface, public util::MessageNode {
 public:
  enum class Run { kIdle, kRecording, kResimulating };

  // A gauge: an analog control that the tool writes.
  class VirtualControl : public unidevice::Control {
   public:
    explicit VirtualControl(const GaugeDescription& description);
  };

  class COREComboUpdater : public util::DynamicObject, public CInterface::ComboUpdater, public util::MessageNode {
   public:
    explicit COREComboUpdater(configadaptor::element::ComboBox* box)
        : util::MessageNode("COREComboUpdater"), element(box) {}
    void SetItems(std::vector<std::string> items) override { element->SetItems(std::move(items)); }
    configadaptor::element::ComboBox* element;
  };

  // Takes the tool object, sets its interface and makes the name unique. An
  // empty name becomes the plugin's name with "_01".
  Instance(CCameraPlugin* plugin, CCamera* tool, std::string instanceName, AdaptorInterface* adaptor);
  ~Instance() override;

  // Where the name counts up: "LookAtCam_01" becomes "LookAtCam_02" while
  // any live instance or node carries it.
  static std::string MakeUniqueName(const std::string& wanted, AdaptorInterface* adaptor);
  static const std::vector<Instance*>& All();

  // A run: recording keeps raw samples of every channel from `time` on,
  // resimulating feeds them back in place of the devices.
  void Start(double time, Run run);
  void Step(double time);
  void Stop(double time);
  Run GetRun() const { return run_; }

  // Deletes the nodes (or, without them, leaves them in the scene unowned).
  void Delete(bool withNodes);

  util::xml::Element ConfigProfile() const;
  util::xml::Element InputProfile() const;
  void ApplyInputProfile(const util::xml::Element& profile);

  // CExtendable: the instance's extensions for its tool.
  std::intptr_t Extension(std::int32_t id, void* data) override;
  std::vector<std::int32_t> ExtensionIds() override { return {38, 39, 41, 43, 55, 56, 58, 60}; }

  // Device: the gauges are polled from the tool.
  bool Poll(unidevice::DeviceContext context) override;

  // CInterface.
  void PushUndo(CUndo* record) override;
  Property* AddInputWithFactory(std::string name, std::int32_t typeMask, Property::Factory* factory) override;
  Property* AddInput(std::string name, std::int32_t typeMask) override;
  Property* FindInput(std::string name) override { return inputs.Find(name); }
  void BeginConfig() override;
  void EndConfig() override {}
  void BeginGroup(std::string label, std::string tooltip) override;
  void EndGroup() override;
  void AddIntSpinner(std::string label, std::string tooltip, std::int32_t* value, std::int32_t minimum,
                     std::int32_t maximum, std::int32_t step, std::int32_t triggerLength, bool isInput,
                     std::int32_t reserved, Callback* callback) override;
  void AddSpinner(std::string label, std::string tooltip, double* value, double minimum, double maximum, double step,
                  std::int32_t triggerLength, bool isInput, std::int32_t reserved, Callback* callback) override;
  void AddCheckBox(std::string label, std::string tooltip, bool* value, Callback* callback) override;
  void AddTextBox(std::string label, std::string tooltip, std::string* value, Callback* callback) override;
  ComboUpdater* AddComboBox(std::string label, std::string tooltip, std::vector<std::string> items,
                            std::int32_t* selected, Callback* callback) override;
  void AddButton(std::string label, std::string tooltip, Callback* callback) override;
  void ConfigReserved() override {}
  void UpdateConfig() override;
  void ShowInputSettings() override;
  std::string GetDataPath() override;
  void SetSaveData(const void* bytes, std::int32_t length) override;
  const std::uint8_t* GetSaveData(std::int32_t* length) override;
  std::int32_t ClearSaveData() override;
  void DeleteNode(CNode* node) override;
  CNode* FindNode(std::string name) override;
  CNode* CreateCameraNode(std::string name, CNode* parent, Callback* callback) override;
  CNode* CreateMeshNode(std::string name, CNode* parent, const util::CMesh& mesh, Callback* callback) override;
  void CreateOtherNode(std::string, const util::CMesh&) override {}
  CSnapshot* GetTransformSnapshot(CNode* node, double time) override;
  CSnapshot_Helper* GetHelperSnapshot(CNode* node, double time) override;
  CSnapshot_Mesh* GetMeshSnapshot(CNode* node, double time) override;
  CSnapshot_Lens* GetLensSnapshot(CNode* node, double time) override;
  void ReleaseNode(CNode* node) override;
  void ReleaseLensSnapshot(CSnapshot_Lens* snapshot) override;
  void ReleaseMeshSnapshot(CSnapshot_Mesh* snapshot) override;
  void ReleaseHelperSnapshot(CSnapshot_Helper* snapshot) override;
  void ReleaseTransformSnapshot(CSnapshot* snapshot) override;
  double GetTime() override { return adaptor_->GetTime(); }
  double GetFrameRate() override { return adaptor_->GetFrameRate(); }
  double GetFrameDuration() override { return adaptor_->GetFrameDuration(); }
  void Redraw() override;
  std::int32_t MessageBox(std::string text, std::string caption, std::int32_t style) override;

  CCamera* tool = nullptr;
  unidevice::PropertyHandler inputs;
  std::unique_ptr<configadaptor::element::Root> configRoot;
  configadaptor::Node* currentGroup = nullptr;
  std::vector<std::unique_ptr<COREComboUpdater>> comboUpdaters;
  std::vector<std::pair<std::int32_t, Property*>> spinnerInputs;
  CCameraPlugin* plugin;
  std::vector<util::AVar_Linear<double>> recordedTracks;
  std::vector<std::unique_ptr<unidevice::Control>> temporaryControls;
  bool inRecording = false;
  util::Bytes saveData;
  bool hasSaveData = false;
  std::int32_t nextConfigId = 0;
  std::int32_t labelId = 0;
  bool deleting = false;
  std::string configProfileName = "Factory Settings";
  std::string inputProfileName = "Factory Settings";
  std::string icon;
  // The tool tree's item of this instance, null while it has none.
  InstanceReference* reference = nullptr;
  AdaptorInterface* GetAdaptor() const { return adaptor_; }

  const std::string& InstanceName() const { return util::MessageNode::GetName(); }
  CCamera* GetTool() const { return tool; }
  CCameraPlugin* GetToolPlugin() const { return plugin; }
  unidevice::PropertyHandler& Inputs() { return inputs; }
  const unidevice::PropertyHandler& Inputs() const { return inputs; }
  // The configuration page; null until the tool built it.
  configadaptor::element::Root* GetPage() const { return configRoot.get(); }
  const std::vector<util::AVar_Linear<double>>& RecordedTracks() const { return recordedTracks; }

 private:
  // Snapshots out with the tool, and the node each goes back to.
  template <typename Snapshot>
  Snapshot* Lend(Snapshot* snapshot, CoreNode* node);
  CoreNode* Return(const void* snapshot);
  template <typename Kind>
  void AddControl(Kind* node);

  AdaptorInterface* adaptor_;
  Run run_ = Run::kIdle;
  std::vector<std::pair<const void*, CoreNode*>> lent_;
  std::vector<unidevice::Control*> realControls_;
};

}  // namespace vuk::rgw::core
