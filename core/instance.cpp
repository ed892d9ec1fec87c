#include "core/instance.h"

#include <algorithm>
#include <cmath>
#include <sstream>

#include "core/corelog.h"
#include "core/instancereference.h"
#include "core/messagebox.h"
#include "core/paths.h"
#include "sdk/cvariablemodundo.h"
#include "unidevice/dummydriver.h"
#include "util/base64.h"
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

// The range of a page control that holds a number; false for the others.
bool RangeOf(configadaptor::Node& node, Instance::Value& range) {
  range = {node.label, 0, 1, node.GetValue(), true};
  if (const auto* spinner = dynamic_cast<const Spinner*>(&node)) {
    range.minimum = spinner->minimum;
    range.maximum = spinner->maximum;
    range.whole = false;
    return true;
  }
  if (const auto* spinner = dynamic_cast<const Spinner_Int*>(&node)) {
    range.minimum = spinner->minimum;
    range.maximum = spinner->maximum;
    return true;
  }
  if (const auto* combo = dynamic_cast<const ComboBox*>(&node)) {
    range.maximum = static_cast<double>(combo->items.size()) - 1;
    return true;
  }
  return dynamic_cast<const CheckBox*>(&node) != nullptr;
}

struct PageValue {
  configadaptor::Node* node;
  Instance::Value range;
};

// Every number control of the page, in page order.
void CollectValues(configadaptor::Node& node, std::vector<PageValue>& found) {
  PageValue entry{&node, {}};
  if (RangeOf(node, entry.range)) found.push_back(entry);
  for (std::size_t i = 0; i < node.GetChildCount(); ++i) CollectValues(*node.GetChild(i), found);
}

std::string Number(double value) {
  std::ostringstream text;
  text << value;
  return text.str();
}

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
    : util::MessageNode("Instance"), tool_(toolObject), plugin_(toolPlugin), adaptor_(adaptor) {
  if (instanceName.empty()) instanceName = plugin_->GetName() + "_01";
  if (unidevice::DummyDriver* dummy = unidevice::DummyDriver::Find()) dummy->AddDevice(this);
  tool_->iface = this;
  Rename(MakeUniqueName(instanceName, adaptor_));
  LiveInstances().push_back(this);
  lent_.reserve(16);
}

Instance::~Instance() {
  auto& live = LiveInstances();
  live.erase(std::remove(live.begin(), live.end(), this), live.end());
  comboUpdaters_.clear();
  page_.reset();
  if (tool_) tool_->Release();
  tool_ = nullptr;
  if (driver) driver->RemoveDevice(this);
  for (unidevice::Control* gauge : gaugeControls) delete gauge;
}

void Instance::Rename(const std::string& newName) {
  util::MessageNode::SetName(newName);
  Device::name = newName;
  tool_->name = newName;
}

void Instance::Start(double time, Run run) {
  run_ = run;
  tool_->Start(time);
  recordedTracks_.resize(std::max(recordedTracks_.size(), inputs_.Count()));
  if (run == Run::kResimulating) {
    // The recorded samples take the devices' place for the run.
    while (temporaryControls_.size() < inputs_.Count()) {
      temporaryControls_.push_back(std::make_unique<unidevice::Control>());
    }
    realControls_.assign(inputs_.Count(), nullptr);
    for (std::size_t i = 0; i < inputs_.Count(); ++i) {
      realControls_[i] = inputs_.Get(i)->source;
      inputs_.Get(i)->source = temporaryControls_[i].get();
    }
    return;
  }
  // The take's future is about to be recorded anew: undo brings it back.
  PushUndo(new CVariableModUndo<std::vector<util::AVar_Linear<double>>>(&recordedTracks_));
  for (auto& track : recordedTracks_) track.RemoveFrom(time);
}

void Instance::Step(double time) {
  if (run_ == Run::kRecording) {
    for (std::size_t i = 0; i < recordedTracks_.size() && i < inputs_.Count(); ++i) {
      // As the control reports it: a two-key axis makes its value from its keys.
      unidevice::Control* control = inputs_.Get(i)->source;
      recordedTracks_[i].Set(time, control ? control->GetValue() : 0.0);
    }
  } else if (run_ == Run::kResimulating) {
    for (std::size_t i = 0; i < temporaryControls_.size() && i < recordedTracks_.size(); ++i) {
      temporaryControls_[i]->Update(recordedTracks_[i].Get(time));
    }
  }
  for (const auto& [elementId, channel] : spinnerInputs_) {
    double value = 0;
    if (!channel->source || !page_ || !page_->GetValueById(elementId, value)) continue;
    page_->SetValueById(elementId, channel->Evaluate() + value);
    page_->UpdateViews();
  }
  tool_->Step(time);
}

void Instance::Stop(double time) {
  tool_->Stop(time);
  if (run_ == Run::kResimulating) {
    for (std::size_t i = 0; i < realControls_.size() && i < inputs_.Count(); ++i) {
      inputs_.Get(i)->source = realControls_[i];
    }
  }
  run_ = Run::kIdle;
}

void Instance::Delete(bool withNodes) {
  // A tool may ask for its own deletion (extension kDeleteSelf) while its
  // nodes go: the second call must not delete them again.
  if (deleting_) return;
  deleting_ = true;
  adaptor_->BeginUndo("Delete plugin instance");
  NodeVector nodes;
  adaptor_->GetInstanceNodes(this, nodes);
  for (auto it = nodes.nodes.rbegin(); it != nodes.nodes.rend(); ++it) {
    if (withNodes) {
      NodeVector children;
      (*it)->GetChildren(children);
      for (CoreNode* child : children.nodes) child->Delete(true);
    }
    // Unplugged, the node only leaves the host's list: undo lists the same
    // node again, so the tool's handles stay good.
    (*it)->Delete(withNodes);
  }
  adaptor_->RedrawScene();
  adaptor_->EndUndo();
  deleting_ = false;
}

util::xml::Element Instance::ConfigProfile() const {
  if (page_) return page_->WriteNamedProfile(configProfileName_);
  util::xml::Tag empty("configprofile");
  empty.SetAttribute("version") = "2.0";
  empty.SetAttribute("name") = configProfileName_;
  return std::move(empty);
}

void Instance::ApplyConfigProfile(const util::xml::Element& profile) {
  const bool converted = page_ && page_->ReadAnyProfile(profile);
  if (!profile.GetAttribute("name").empty()) configProfileName_ = profile.GetAttribute("name");
  if (converted) {
    ShowMessageBox("This profile has been saved in an older version of " + plugin_->GetTitle() +
                       ". Some old settings might not work well in the current version. Use it with caution.",
                   "Quoll Rigworks", box::kWarning);
  }
}

util::xml::Element Instance::InputProfile() const {
  util::xml::Tag profile("profile");
  profile.SetAttribute("name") = inputProfileName_;
  for (std::size_t i = 0; i < inputs_.Count(); ++i) {
    if (!inputs_.Get(i)->config.IsEmpty()) profile.AddChild(inputs_.Get(i)->Save());
  }
  return std::move(profile);
}

void Instance::ApplyInputProfile(const util::xml::Element& given) {
  const util::xml::Element& profile = given.name == "inputprofile" ? given.GetChild("profile") : given;
  for (std::size_t i = 0; i < inputs_.Count(); ++i) inputs_.Get(i)->Bind(nullptr);
  inputs_.LoadProfile(profile);
  if (!profile.GetAttribute("name").empty()) inputProfileName_ = profile.GetAttribute("name");
}

std::vector<Instance::Value> Instance::Values() const {
  std::vector<PageValue> found;
  if (page_) CollectValues(*page_, found);
  std::vector<Value> values;
  for (const PageValue& entry : found) values.push_back(entry.range);
  return values;
}

bool Instance::SetValue(const std::string& label, double value, std::string& error) {
  std::vector<PageValue> found;
  if (page_) CollectValues(*page_, found);
  const auto entry = std::find_if(found.begin(), found.end(), [&](const PageValue& at) { return at.range.label == label; });
  if (entry == found.end()) {
    error = InstanceName() + " has no value \"" + label + "\"";
    return false;
  }
  const Value& range = entry->range;
  if (value < range.minimum || value > range.maximum || (range.whole && value != std::floor(value))) {
    error = "\"" + label + "\" takes " + (range.whole ? "whole numbers" : "values") + " from " + Number(range.minimum) +
            " to " + Number(range.maximum) + ", not " + Number(value);
    return false;
  }
  // As from the page: the variable first, then the tool hears.
  entry->node->SetValue(value);
  entry->node->UpdateViews();
  if (entry->node->callback) entry->node->callback->Changed(label);
  return true;
}

std::vector<Instance::Channel> Instance::Channels() const {
  std::vector<Channel> channels;
  for (std::size_t i = 0; i < inputs_.Count(); ++i) {
    const Property* channel = inputs_.Get(i);
    const util::AVar_Linear<double>* take = i < recordedTracks_.size() ? &recordedTracks_[i] : nullptr;
    channels.push_back({channel->name, channel->config.GetChild("description").GetText(),
                        take && !take->records.empty() ? take : nullptr, channelTypes_[i]});
  }
  return channels;
}

std::vector<std::string> Instance::NodeNames() const {
  NodeVector nodes;
  adaptor_->GetInstanceNodes(const_cast<Instance*>(this), nodes);
  std::vector<std::string> names;
  for (const CoreNode* node : nodes.nodes) names.push_back(node->name);
  return names;
}

util::AVar_Linear<double>* Instance::TrackOf(const std::string& channel) {
  for (std::size_t i = 0; i < inputs_.Count(); ++i) {
    if (inputs_.Get(i)->name != channel) continue;
    recordedTracks_.resize(std::max(recordedTracks_.size(), inputs_.Count()));
    return &recordedTracks_[i];
  }
  return nullptr;
}

util::xml::Element Instance::SaveTracks() const {
  util::xml::Tag tracks("recordedinputvalues");
  for (std::size_t i = 0; i < recordedTracks_.size(); ++i) {
    util::Bytes block(recordedTracks_[i].GetSaveSize());
    recordedTracks_[i].Save(block.data(), static_cast<std::uint32_t>(block.size()));
    util::xml::TagWithData input("input", util::Base64::Encode(block.data(), block.size()));
    if (i < inputs_.Count()) input.SetAttribute("channel") = inputs_.Get(i)->name;
    tracks.AddChild(std::move(input));
  }
  for (const util::xml::Element& unmatched : unmatchedTracks_) tracks.AddChild(unmatched);
  return std::move(tracks);
}

void Instance::LoadTracks(const util::xml::Element& saved) {
  recordedTracks_.clear();
  unmatchedTracks_.clear();
  for (std::size_t i = 0, n = saved.CountChildren("input"); i < n; ++i) {
    const util::xml::Element& input = saved.GetChild("input", i);
    const std::string& channel = input.GetAttribute("channel");
    util::AVar_Linear<double>* track = nullptr;
    if (channel.empty()) {
      recordedTracks_.resize(std::max(recordedTracks_.size(), i + 1));
      track = &recordedTracks_[i];
    } else {
      track = TrackOf(channel);
    }
    if (!track) {
      CoreLog::Instance().Warning(InstanceName() + ": the take of channel \"" + channel +
                                  "\" is kept but feeds nothing, the tool has no such channel");
      unmatchedTracks_.push_back(input);
      continue;
    }
    util::Bytes block;
    if (util::Base64::Decode(input.GetText(), block)) track->Load(block.data(), block.size());
  }
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
      if (data && reference_ && reference_->parent) {
        const auto* owner = static_cast<const InstanceReference*>(reference_->parent);
        if (owner->instance) *static_cast<std::string*>(data) = owner->GetLabel();
      }
      return 0;
    case extension::kMasterNode:
      if (data && reference_) static_cast<util::xml::Element*>(data)->AddChild(reference_->MasterNode());
      return 0;
    case extension::kRefreshDevices:
      Poll(nullptr);
      return 0;
    case extension::kAddLabel:
      if (data && page_) {
        const auto* label = static_cast<const ConfigLabel*>(data);
        currentGroup_->Add(new Label(nextLabelId_++, label->text, label->flags));
      }
      return 0;
    default:
      return 0;
  }
}

std::vector<std::int32_t> Instance::ExtensionIds() {
  using namespace extension;
  return {kGetShapeSnapshot, kReleaseShapeSnapshot, kMakeGauge, kDeleteSelf,
          kOwnerName,        kMasterNode,           kRefreshDevices, kAddLabel};
}

bool Instance::Poll(unidevice::DeviceContext) {
  for (unidevice::Control* gauge : gaugeControls) tool_->Extension(extension::kWriteGauge, gauge);
  return true;
}

void Instance::PushUndo(CUndo* record) { adaptor_->PutUndo(record); }

CInterface::Property* Instance::AddInputWithFactory(std::string name, std::int32_t typeMask, Property::Factory* factory) {
  const std::size_t known = inputs_.Count();
  Property* channel = inputs_.Add(name, factory);
  // A name asked for again is the channel it already was.
  if (inputs_.Count() > known) channelTypes_.push_back(typeMask);
  return channel;
}

CInterface::Property* Instance::AddInput(std::string name, std::int32_t typeMask) {
  return AddInputWithFactory(std::move(name), typeMask, nullptr);
}

void Instance::BeginConfig() {
  page_ = std::make_unique<Root>();
  currentGroup_ = page_.get();
  nextControlId_ = 0;
  nextLabelId_ = 0;
}

void Instance::BeginGroup(std::string label, std::string tooltip) {
  if (!currentGroup_) return;
  currentGroup_ = currentGroup_->Add(new Group(-1, std::move(label), std::move(tooltip), nullptr));
}

void Instance::EndGroup() {
  // The page keeps its groups as built; only the current one moves up.
  if (!page_ || currentGroup_ == page_.get()) return;
  currentGroup_ = page_->FindParentOf(currentGroup_);
}

template <typename Kind>
void Instance::AddControl(Kind* node) {
  if (!currentGroup_) {
    delete node;
    return;
  }
  currentGroup_->Add(node);
}

std::int32_t Instance::SpinnerId(const std::string& label, bool isInput) {
  const std::int32_t id = nextControlId_++;
  if (isInput) spinnerInputs_.emplace_back(id, AddInput("Spinner: " + label, input::kContinuous));
  return id;
}

void Instance::AddIntSpinner(std::string label, std::string tooltip, std::int32_t* value, std::int32_t minimum,
                             std::int32_t maximum, std::int32_t step, std::int32_t triggerLength, bool isInput,
                             std::int32_t, Callback* callback) {
  const std::int32_t id = SpinnerId(label, isInput);
  AddControl(new Spinner_Int(id, std::move(label), std::move(tooltip), callback, value, minimum, maximum, step,
                             triggerLength));
}

void Instance::AddSpinner(std::string label, std::string tooltip, double* value, double minimum, double maximum,
                          double step, std::int32_t triggerLength, bool isInput, std::int32_t, Callback* callback) {
  const std::int32_t id = SpinnerId(label, isInput);
  AddControl(new Spinner(id, std::move(label), std::move(tooltip), callback, value, minimum, maximum, step,
                         triggerLength));
}

void Instance::AddCheckBox(std::string label, std::string tooltip, bool* value, Callback* callback) {
  AddControl(new CheckBox(nextControlId_++, std::move(label), std::move(tooltip), callback, value));
}

void Instance::AddTextBox(std::string label, std::string tooltip, std::string* value, Callback* callback) {
  AddControl(new TextBox(nextControlId_++, std::move(label), std::move(tooltip), callback, value));
}

CInterface::ComboUpdater* Instance::AddComboBox(std::string label, std::string tooltip,
                                                std::vector<std::string> items, std::int32_t* selected,
                                                Callback* callback) {
  auto* box = new ComboBox(nextControlId_++, std::move(label), std::move(tooltip), callback, selected, std::move(items));
  AddControl(box);
  if (!currentGroup_) return nullptr;
  comboUpdaters_.push_back(std::make_unique<COREComboUpdater>(box));
  return comboUpdaters_.back().get();
}

void Instance::AddButton(std::string label, std::string tooltip, Callback* callback) {
  AddControl(new Button(nextControlId_++, std::move(label), std::move(tooltip), callback));
}

void Instance::UpdateConfig() {
  if (page_) page_->UpdateViews();
}

namespace {

std::function<void(Instance&)>& InputSettingsOpener() {
  static std::function<void(Instance&)> opener;
  return opener;
}

}  // namespace

void Instance::SetInputSettingsOpener(std::function<void(Instance&)> opener) {
  InputSettingsOpener() = std::move(opener);
}

void Instance::ShowInputSettings() {
  if (InputSettingsOpener()) InputSettingsOpener()(*this);
}

std::string Instance::GetDataPath() { return GetUserFolder() + "/data/" + plugin_->GetPath(); }

void Instance::SetSaveData(const void* bytes, std::int32_t length) {
  const auto* begin = static_cast<const std::uint8_t*>(bytes);
  saveData_.assign(begin, begin + (length > 0 && bytes ? length : 0));
  hasSaveData_ = true;
}

const std::uint8_t* Instance::GetSaveData(std::int32_t* length) {
  // An empty block is still a block: valid, of length 0.
  static const std::uint8_t kEmptyBlock = 0;
  if (length) *length = static_cast<std::int32_t>(saveData_.size());
  if (!hasSaveData_) return nullptr;
  return saveData_.empty() ? &kEmptyBlock : saveData_.data();
}

std::int32_t Instance::ClearSaveData() {
  saveData_.clear();
  hasSaveData_ = false;
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
  CoreNode::Snapshot_Mesh_Proxy* proxy = nullptr;
  if (spareMeshProxies_.empty()) {
    proxy = new CoreNode::Snapshot_Mesh_Proxy(snapshot);
  } else {
    proxy = static_cast<CoreNode::Snapshot_Mesh_Proxy*>(spareMeshProxies_.back().release());
    spareMeshProxies_.pop_back();
    proxy->snapshot = snapshot;
  }
  return Lend(static_cast<CSnapshot_Mesh*>(proxy), Core(node));
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
  spareMeshProxies_.emplace_back(proxy);
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
