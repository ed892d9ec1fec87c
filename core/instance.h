#pragma once
// The core's half of a tool: the tool's CInterface, its input channels and
// their recorded tracks, its configuration page, its gauges as a device, its
// saved bytes and its nodes in the host.

#include <cstdint>
#include <functional>
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

 protected:
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

  // A number the page holds, as the command line sets it: the control's
  // label, its range and its present value. Whole-number controls (integer
  // spinners, check boxes, combo boxes) take no fractions.
  struct Value {
    std::string label;
    double minimum;
    double maximum;
    double value;
    bool whole;
  };

  // A channel with its binding ("" when unbound), its take (null when
  // nothing was recorded for it) and the kinds of control that may feed it
  // (the input:: mask the tool asked for).
  struct Channel {
    std::string name;
    std::string boundTo;
    const util::AVar_Linear<double>* take;
    std::int32_t typeMask;
  };

  // Takes the tool object, sets its interface and makes the name unique. An
  // empty name becomes the plugin's name with "_01".
  Instance(CCameraPlugin* plugin, CCamera* tool, std::string instanceName, AdaptorInterface* adaptor);
  ~Instance() override;

  // Where the name counts up: "Tool_01" becomes "Tool_02" while any live
  // instance or node carries it.
  static std::string MakeUniqueName(const std::string& wanted, AdaptorInterface* adaptor);
  static const std::vector<Instance*>& All();
  // Where ShowInputSettings opens its window: the desktop app's main window
  // sets it; without one (the command line) there is nothing to open.
  static void SetInputSettingsOpener(std::function<void(Instance&)> opener);

  const std::string& InstanceName() const { return util::MessageNode::GetName(); }
  // The instance, its gauge device and its tool take the new name.
  void Rename(const std::string& newName);
  CCamera* GetTool() const { return tool_; }
  CCameraPlugin* GetToolPlugin() const { return plugin_; }
  AdaptorInterface* GetAdaptor() const { return adaptor_; }
  unidevice::PropertyHandler& Inputs() { return inputs_; }
  const unidevice::PropertyHandler& Inputs() const { return inputs_; }
  // The configuration page; null until the tool built it.
  configadaptor::element::Root* GetPage() const { return page_.get(); }
  // The tool tree's item of this instance, null while it has none.
  void SetReference(InstanceReference* item) { reference_ = item; }
  InstanceReference* GetReference() const { return reference_; }

  // A run: recording keeps raw samples of every channel from `time` on,
  // resimulating feeds them back in place of the devices.
  void Start(double time, Run run);
  void Step(double time);
  void Stop(double time);
  Run GetRun() const { return run_; }

  // Takes the nodes off the host's list, undoably; with `withNodes` their
  // scene objects go too, else they stay in the scene with their keys.
  void Delete(bool withNodes);

  // The running configuration and bindings as profiles, and profiles applied;
  // an applied profile's name becomes the running one. A profile of an older
  // version warns the user that it may not work well.
  util::xml::Element ConfigProfile() const;
  void ApplyConfigProfile(const util::xml::Element& profile);
  util::xml::Element InputProfile() const;
  void ApplyInputProfile(const util::xml::Element& profile);

  // The page's numbers in page order, and one set by its label; false with
  // the reason in `error` when there is no such number or the value is out
  // of its range. The tool hears of the change as from its page.
  std::vector<Value> Values() const;
  bool SetValue(const std::string& label, double value, std::string& error);
  std::vector<Channel> Channels() const;
  // The tool-side names of the instance's nodes in the scene.
  std::vector<std::string> NodeNames() const;

  // One track of raw values per channel, one per channel index.
  const std::vector<util::AVar_Linear<double>>& RecordedTracks() const { return recordedTracks_; }
  // The track of a channel, made when missing; null when there is no such channel.
  util::AVar_Linear<double>* TrackOf(const std::string& channel);
  // "recordedinputvalues": an "input" per track with its channel's name.
  util::xml::Element SaveTracks() const;
  // Matches saved tracks to channels by name; unnamed ones, from older
  // files, by their order. A track whose channel the tool no longer has
  // feeds nothing, and is written back as it came so that no take is lost.
  void LoadTracks(const util::xml::Element& saved);

  // CExtendable: the instance's extensions for its tool.
  std::intptr_t Extension(std::int32_t id, void* data) override;
  std::vector<std::int32_t> ExtensionIds() override;

  // Device: the gauges are polled from the tool.
  bool Poll(unidevice::DeviceContext context) override;

  // CInterface.
  void PushUndo(CUndo* record) override;
  Property* AddInputWithFactory(std::string name, std::int32_t typeMask, Property::Factory* factory) override;
  Property* AddInput(std::string name, std::int32_t typeMask) override;
  Property* FindInput(std::string name) override { return inputs_.Find(name); }
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

 private:
  // Snapshots out with the tool, and the node each goes back to.
  template <typename Snapshot>
  Snapshot* Lend(Snapshot* snapshot, CoreNode* node);
  CoreNode* Return(const void* snapshot);
  template <typename Kind>
  void AddControl(Kind* node);
  // A spinner's element id; a spinner that is also an input gets its channel.
  std::int32_t SpinnerId(const std::string& label, bool isInput);

  CCamera* tool_;
  CCameraPlugin* plugin_;
  AdaptorInterface* adaptor_;
  InstanceReference* reference_ = nullptr;
  unidevice::PropertyHandler inputs_;
  // The type mask of each channel, by channel index.
  std::vector<std::int32_t> channelTypes_;
  std::unique_ptr<configadaptor::element::Root> page_;
  configadaptor::Node* currentGroup_ = nullptr;
  // Element ids of the page's controls and of its labels, each from 0.
  std::int32_t nextControlId_ = 0;
  std::int32_t nextLabelId_ = 0;
  std::vector<std::unique_ptr<COREComboUpdater>> comboUpdaters_;
  std::vector<std::pair<std::int32_t, Property*>> spinnerInputs_;
  std::vector<util::AVar_Linear<double>> recordedTracks_;
  // Saved tracks of channels the tool doesn't have, kept for the next save.
  std::vector<util::xml::Element> unmatchedTracks_;
  // Stand-ins fed from the tracks during a resimulation, and the controls
  // they stand in for.
  std::vector<std::unique_ptr<unidevice::Control>> temporaryControls_;
  std::vector<unidevice::Control*> realControls_;
  util::Bytes saveData_;
  bool hasSaveData_ = false;
  bool deleting_ = false;
  std::string configProfileName_ = "Factory Settings";
  std::string inputProfileName_ = "Factory Settings";
  Run run_ = Run::kIdle;
  std::vector<std::pair<const void*, CoreNode*>> lent_;
  // Mesh proxies given back, for the next get: a tool that casts rays on a
  // mesh every frame then allocates nothing.
  std::vector<std::unique_ptr<CSnapshot_Mesh>> spareMeshProxies_;
};

}  // namespace vuk::rgw::core
