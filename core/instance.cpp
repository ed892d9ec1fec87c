#include "core/instance.h"

#include <algorithm>

#include "core/instancereference.h"
#include "core/messagebox.h"
#include "core/paths.h"
#include "sdk/cvariablemodundo.h"
#include "unidevice/dummydriver.h"
#include "util/xml/tag.h"

namespace vuk::rgw::core {

using namespace configadaptor::element;

namespace {

std::vector<Instance*>& LiveInstances() {
  static std::vector<Instance*> instances;
  return instances;
}

bool NameTaken(const std::string& name, AdaptorInterface* adaptor) {
  for (const Instance* instance : LiveInstances()) {
    if (instance->util::MessageNode::GetName() == name) return true;
  }
  if (!adaptor) return false;
  NodeVector nodes;
  adaptor->GetAllNodes(nodes);
  return std::any_of(nodes.nodes.begin(), nodes.nodes.end(),
                     [&](CoreNode* node) { return node->GetHostName() == name; });
}

CoreNode* Core(CNode* node) { return static_cast<CoreNode*>(node); }

}  // namespace

unidevice::Control* InstanceVirtualDevice::GetControl(std::int32_t index) {
  return index >= 0 && index < GetControlCount() ? gaugeControls[static_cast<std::size_t>(index)] : nullptr;
}

Instance::VirtualControl::VirtualControl(const GaugeDescription& description) {
  type = description.controlType == 8 ? "Gauge" : "Axis";
  index = description.index;
  saveIndex = description.index;
  this->description = description.name;
  changeThreshold = 0.1;
}

std::string Instance::MakeUniqueName(const std::string& wanted, AdaptorInterface* adaptor) {
  std::string name = wanted;
  while (NameTaken(name, adaptor)) {
    const std::size_t underscore = name.rfind('_');
    const std::string digits = underscore == std::string::npos ? "" : name.substr(underscore + 1);
    const bool numbered = !digits.empty() && std::all_of(digits.begin(), digits.end(), ::isdigit);
    if (!numbered) {
      name += "_01";
      continue;
    }
    const int next = std::atoi(digits.c_str()) + 1;
    name = name.substr(0, underscore + 1) + (next < 10 ? "0" : "") + std::to_string(next);
  }
  return name;
}

const std::vector<Instance*>& Instance::All() { return LiveInstances(); }

Instance::Instance(CCameraPlugin* toolPlugin, CCamera* toolObject, std::string instanceName, AdaptorInterface* adaptor)
    : util::MessageNode("Instance"), tool(toolObject), plugin(toolPlugin), adaptor_(adaptor) {
  if (instanceName.empty()) instanceName = plugin->GetName() + "_01";
  if (unidevice::DummyDriver* dummy = unidevice::DummyDriver::Find()) dummy->AddDevice(this);
  tool->iface = this;
  util::MessageNode::SetName(MakeUniqueName(instanceName, adaptor_));
  Device::name = util::MessageNode::GetName();
  tool->name = Device::name;
  LiveInstances().push_back(this);
  const std::string categories = plugin->GetCategory();
  icon = "/core/images/treeicons/quoll_accessory_tools.png";
  if (categories.find("Vehicle") != std::string::npos) icon = "/core/images/treeicons/quoll_vehicle_tools.png";
  if (categories.find("Camera") != std::string::npos) icon = "/core/images/treeicons/quoll_camera_tools.png";
  lent_.reserve(16);
}

Instance::~Instance() {
  auto& live = LiveInstances();
  live.erase(std::remove(live.begin(), live.end(), this), live.end());
  comboUpdaters.clear();
  configRoot.reset();
  if (tool) tool->Release();
  tool = nullptr;
  if (driver) driver->RemoveDevice(this);
  for (unidevice::Control* gauge : gaugeControls) delete gauge;
}

void Instance::Start(double time, Run run) {
  run_ = run;
  inRecording = run == Run::kRecording;
  tool->Start(time);
  recordedTracks.resize(std::max(recordedTracks.size(), inputs.Count()));
  if (run == Run::kResimulating) {
    // The recorded samples take the devices' place for the run.
    while (temporaryControls.size() < inputs.Count()) temporaryControls.push_back(std::make_unique<unidevice::Control>());
    realControls_.assign(inputs.Count(), nullptr);
    for (std::size_t i = 0; i < inputs.Count(); ++i) {
      realControls_[i] = inputs.Get(i)->source;
      inputs.Get(i)->source = temporaryControls[i].get();
    }
    return;
  }
  // The take's future is about to be recorded anew: undo brings it back.
  PushUndo(new CVariableModUndo<std::vector<util::AVar_Linear<double>>>(&recordedTracks));
  for (auto& track : recordedTracks) track.RemoveFrom(time);
}

void Instance::Step(double time) {
  if (run_ == Run::kRecording) {
    for (std::size_t i = 0; i < recordedTracks.size() && i < inputs.Count(); ++i) {
      const unidevice::Control* control = inputs.Get(i)->source;
      recordedTracks[i].Set(time, control ? control->value : 0.0);
    }
  } else if (run_ == Run::kResimulating) {
    for (std::size_t i = 0; i < temporaryControls.size() && i < recordedTracks.size(); ++i) {
      temporaryControls[i]->Update(recordedTracks[i].Get(time));
    }
  }
  for (const auto& [elementId, channel] : spinnerInputs) {
    double value = 0;
    if (!channel->source || !configRoot || !configRoot->GetValueById(elementId, value)) continue;
    configRoot->SetValueById(elementId, channel->Evaluate() + value);
    configRoot->UpdateViews();
  }
  tool->Step(time);
}

void Instance::Stop(double time) {
  tool->Stop(time);
  if (run_ == Run::kResimulating) {
    for (std::size_t i = 0; i < realControls_.size() && i < inputs.Count(); ++i) inputs.Get(i)->source = realControls_[i];
  }
  run_ = Run::kIdle;
}

void Instance::Delete(bool withNodes) {
  if (deleting) return;
  deleting = true;
  adaptor_->BeginUndo("Delete plugin instance");
  NodeVector nodes;
  adaptor_->GetInstanceNodes(this, nodes);
  for (auto it = nodes.nodes.rbegin(); it != nodes.nodes.rend(); ++it) {
    if (withNodes) {
      NodeVector children;
      (*it)->GetChildren(children);
      for (CoreNode* child : children.nodes) child->Delete(true);
      (*it)->Delete(true);
    } else {
      (*it)->Release();
    }
  }
  adaptor_->RedrawScene();
  adaptor_->EndUndo();
  deleting = false;
}

util::xml::Element Instance::ConfigProfile() const {
  if (configRoot) return configRoot->WriteNamedProfile(configProfileName);
  util::xml::Tag empty("configprofile");
  empty.SetAttribute("version") = "2.0";
  empty.SetAttribute("name") = configProfileName;
  return std::move(empty);
}

util::xml::Element Instance::InputProfile() const {
  util::xml::Tag profile("profile");
  profile.SetAttribute("name") = inputProfileName;
  for (std::size_t i = 0; i < inputs.Count(); ++i) {
    if (!inputs.Get(i)->config.IsEmpty()) profile.AddChild(inputs.Get(i)->Save());
  }
  return std::move(profile);
}

void Instance::ApplyInputProfile(const util::xml::Element& given) {
  const util::xml::Element& profile = given.name == "inputprofile" ? given.GetChild("profile") : given;
  for (std::size_t i = 0; i < inputs.Count(); ++i) inputs.Get(i)->Bind(nullptr);
  inputs.LoadProfile(profile);
  if (!profile.GetAttribute("name").empty()) inputProfileName = profile.GetAttribute("name");
  util::Message changed(154);
  Send(this, changed);
}

std::intptr_t Instance::Extension(std::int32_t id, void* data) {
  switch (id) {
    case extension::kGetShapeSnapshot: {
      auto* request = static_cast<ShapeSnapshotRequest*>(data);
      if (!request || !request->node) return 0;
      return reinterpret_cast<std::intptr_t>(Lend(Core(request->node)->GetShapeSnapshot(request->time),
                                                  Core(request->node)));
    }
    case extension::kReleaseShapeSnapshot: {
      auto* record = static_cast<ShapeSnapshotReturn*>(data);
      if (record && record->snapshot) {
        if (CoreNode* node = Return(record->snapshot)) node->ReleaseShapeSnapshot(record->snapshot);
      }
      return 0;
    }
    case extension::kMakeGauge: {
      if (!data) return 0;
      auto* gauge = new VirtualControl(*static_cast<GaugeDescription*>(data));
      gauge->device = this;
      gaugeControls.push_back(gauge);
      return reinterpret_cast<std::intptr_t>(gauge);
    }
    case extension::kDeleteSelf:
      Delete(true);
      return 0;
    case extension::kOwnerName:
      if (data && reference && reference->parent) {
        const auto* owner = static_cast<const InstanceReference*>(reference->parent);
        if (owner->instance) *static_cast<std::string*>(data) = owner->GetLabel();
      }
      return 0;
    case extension::kMasterNode:
      if (data && reference) static_cast<util::xml::Element*>(data)->AddChild(reference->MasterNode());
      return 0;
    case extension::kRefreshDevices:
      Poll(nullptr);
      return 0;
    case extension::kAddLabel:
      if (data && configRoot) {
        const auto* label = static_cast<const ConfigLabel*>(data);
        currentGroup->Add(new Label(labelId++, label->text, label->flags));
      }
      return 0;
    default:
      return 0;
  }
}

bool Instance::Poll(unidevice::DeviceContext) {
  for (unidevice::Control* gauge : gaugeControls) tool->Extension(extension::kWriteGauge, gauge);
  return true;
}

void Instance::PushUndo(CUndo* record) { adaptor_->PutUndo(record); }

CInterface::Property* Instance::AddInputWithFactory(std::string name, std::int32_t, Property::Factory* factory) {
  return inputs.Add(name, factory);
}

CInterface::Property* Instance::AddInput(std::string name, std::int32_t) { return inputs.Add(name); }

void Instance::BeginConfig() {
  configRoot = std::make_unique<Root>();
  currentGroup = configRoot.get();
  nextConfigId = 0;
}

void Instance::BeginGroup(std::string label, std::string tooltip) {
  if (!currentGroup) return;
  currentGroup = currentGroup->Add(new Group(-1, std::move(label), std::move(tooltip), nullptr));
}

void Instance::EndGroup() {
  // The page keeps its groups as built; only the current one moves up.
  if (!configRoot || currentGroup == configRoot.get()) return;
  currentGroup = configRoot->FindParentOf(currentGroup);
}

template <typename Kind>
void Instance::AddControl(Kind* node) {
  if (!currentGroup) {
    delete node;
    return;
  }
  currentGroup->Add(node);
}

void Instance::AddIntSpinner(std::string label, std::string tooltip, std::int32_t* value, std::int32_t minimum,
                             std::int32_t maximum, std::int32_t step, std::int32_t triggerLength, bool isInput,
                             std::int32_t, Callback* callback) {
  const std::int32_t id = nextConfigId++;
  if (isInput) spinnerInputs.emplace_back(id, AddInput("Spinner: " + label, input::kContinuous));
  AddControl(new Spinner_Int(id, std::move(label), std::move(tooltip), callback, value, minimum, maximum, step,
                             triggerLength));
}

void Instance::AddSpinner(std::string label, std::string tooltip, double* value, double minimum, double maximum,
                          double step, std::int32_t triggerLength, bool isInput, std::int32_t, Callback* callback) {
  const std::int32_t id = nextConfigId++;
  if (isInput) spinnerInputs.emplace_back(id, AddInput("Spinner: " + label, input::kContinuous));
  AddControl(new Spinner(id, std::move(label), std::move(tooltip), callback, value, minimum, maximum, step,
                         triggerLength));
}

void Instance::AddCheckBox(std::string label, std::string tooltip, bool* value, Callback* callback) {
  AddControl(new CheckBox(nextConfigId++, std::move(label), std::move(tooltip), callback, value));
}

void Instance::AddTextBox(std::string label, std::string tooltip, std::string* value, Callback* callback) {
  AddControl(new TextBox(nextConfigId++, std::move(label), std::move(tooltip), callback, value));
}

CInterface::ComboUpdater* Instance::AddComboBox(std::string label, std::string tooltip,
                                                std::vector<std::string> items, std::int32_t* selected,
                                                Callback* callback) {
  auto* box = new ComboBox(nextConfigId++, std::move(label), std::move(tooltip), callback, selected, std::move(items));
  AddControl(box);
  if (!currentGroup) return nullptr;
  comboUpdaters.push_back(std::make_unique<COREComboUpdater>(box));
  return comboUpdaters.back().get();
}

void Instance::AddButton(std::string label, std::string tooltip, Callback* callback) {
  AddControl(new Button(nextConfigId++, std::move(label), std::move(tooltip), callback));
}

void Instance::UpdateConfig() {
  if (configRoot) configRoot->UpdateViews();
}

void Instance::ShowInputSettings() {
  // The input settings window belongs to the main window's set of windows,
  // which the desktop app brings; without it there is nothing to open.
}

std::string Instance::GetDataPath() { return GetUserFolder() + "/data/" + plugin->GetPath(); }

void Instance::SetSaveData(const void* bytes, std::int32_t length) {
  const auto* begin = static_cast<const std::uint8_t*>(bytes);
  saveData.assign(begin, begin + (length > 0 && bytes ? length : 0));
  hasSaveData = true;
}

const std::uint8_t* Instance::GetSaveData(std::int32_t* length) {
  // An empty block is still a block: valid, of length 0.
  static const std::uint8_t kEmptyBlock = 0;
  if (length) *length = static_cast<std::int32_t>(saveData.size());
  if (!hasSaveData) return nullptr;
  return saveData.empty() ? &kEmptyBlock : saveData.data();
}

std::int32_t Instance::ClearSaveData() {
  saveData.clear();
  hasSaveData = false;
  return 0;
}

void Instance::DeleteNode(CNode* node) {
  if (node) Core(node)->Delete(true);
}

CNode* Instance::FindNode(std::string name) { return adaptor_->FindNode(this, name); }

CNode* Instance::CreateCameraNode(std::string name, CNode* parent, Callback* callback) {
  return adaptor_->CreateCameraNode(this, name, Core(parent), reinterpret_cast<std::intptr_t>(callback));
}

CNode* Instance::CreateMeshNode(std::string name, CNode* parent, const util::CMesh& mesh, Callback* callback) {
  return adaptor_->CreateMeshNode(this, name, Core(parent), mesh, reinterpret_cast<std::intptr_t>(callback));
}

template <typename Snapshot>
Snapshot* Instance::Lend(Snapshot* snapshot, CoreNode* node) {
  if (snapshot) lent_.emplace_back(snapshot, node);
  return snapshot;
}

CoreNode* Instance::Return(const void* snapshot) {
  for (std::size_t i = lent_.size(); i-- > 0;) {
    if (lent_[i].first != snapshot) continue;
    CoreNode* node = lent_[i].second;
    lent_[i] = lent_.back();
    lent_.pop_back();
    return node;
  }
  return nullptr;
}

CSnapshot* Instance::GetTransformSnapshot(CNode* node, double time) {
  return node ? Lend(Core(node)->GetSnapshot(time), Core(node)) : nullptr;
}

CSnapshot_Helper* Instance::GetHelperSnapshot(CNode* node, double time) {
  return node ? Lend(Core(node)->GetHelperSnapshot(time), Core(node)) : nullptr;
}

CSnapshot_Mesh* Instance::GetMeshSnapshot(CNode* node, double time) {
  CSnapshot_Mesh* snapshot = node ? Core(node)->GetMeshSnapshot(time) : nullptr;
  if (!snapshot) return nullptr;
  // The tool holds a proxy, never a snapshot of the node's pool.
  return Lend(static_cast<CSnapshot_Mesh*>(new CoreNode::Snapshot_Mesh_Proxy(snapshot)), Core(node));
}

CSnapshot_Lens* Instance::GetLensSnapshot(CNode* node, double time) {
  return node ? Lend(Core(node)->GetLensSnapshot(time), Core(node)) : nullptr;
}

void Instance::ReleaseNode(CNode* node) {
  if (node && Core(node)->origin) Core(node)->origin->ReleaseWrapper(node);
}

void Instance::ReleaseLensSnapshot(CSnapshot_Lens* snapshot) {
  if (CoreNode* node = snapshot ? Return(snapshot) : nullptr) node->ReleaseLensSnapshot(snapshot);
}

void Instance::ReleaseMeshSnapshot(CSnapshot_Mesh* snapshot) {
  CoreNode* node = snapshot ? Return(snapshot) : nullptr;
  if (!node) return;
  auto* proxy = static_cast<CoreNode::Snapshot_Mesh_Proxy*>(snapshot);
  node->ReleaseMeshSnapshot(proxy->snapshot);
  delete proxy;
}

void Instance::ReleaseHelperSnapshot(CSnapshot_Helper* snapshot) {
  if (CoreNode* node = snapshot ? Return(snapshot) : nullptr) node->ReleaseHelperSnapshot(snapshot);
}

void Instance::ReleaseTransformSnapshot(CSnapshot* snapshot) {
  if (CoreNode* node = snapshot ? Return(snapshot) : nullptr) node->ReleaseSnapshot(snapshot);
}

void Instance::Redraw() {
  // The recorder redraws by itself during a run.
  if (run_ == Run::kIdle) adaptor_->RedrawScene();
}

std::int32_t Instance::MessageBox(std::string text, std::string caption, std::int32_t style) {
  return ShowMessageBox(text, caption, style);
}

}  // namespace vuk::rgw::core
