#include "adaptor/standalone/standaloneadaptorinterface.h"

#include <algorithm>
#include <cstdlib>

#include "adaptor/standalone/standalonenode.h"
#include "adaptor/standalone/scenetags.h"
#include "sdk/cinterface.h"
#include "util/avar.h"
#include "util/parallel.h"

namespace vuk::rgw::adaptor::standalone {

namespace {

constexpr std::size_t kMaxHostName = 1024;

// A node made or taken off the list through the adaptor: undo takes it off
// the list or puts it back in its place, and tells the tool through the
// callback it was made with. Made while the node is on the list.
class NodeListRestore : public CUndo {
 public:
  NodeListRestore(StandaloneAdaptorInterface* adaptor, StandaloneNode* node, bool created)
      : adaptor_(adaptor), node_(node), created_(created), place_(adaptor->PlaceOf(node)) {}
  void Undo(bool) override { Apply(!created_); }
  void Redo() override { Apply(created_); }

 private:
  void Apply(bool listed) {
    auto* callback = reinterpret_cast<CInterface::Callback*>(node_->extra);
    if (listed) {
      adaptor_->Reinstate(node_, place_);
      if (callback) callback->NodeRestored(node_);
    } else {
      adaptor_->Retire(node_);
      if (callback) callback->NodeLost(node_);
    }
  }

  StandaloneAdaptorInterface* adaptor_;
  StandaloneNode* node_;
  bool created_;
  // Undo and redo pass through the same lists in reverse, so the node goes
  // back where it was.
  std::size_t place_;
};

// The time a recording started at, restored when it is undone.
class SetTimeRestore : public CUndo {
 public:
  SetTimeRestore(StandaloneAdaptorInterface* adaptor, double time) : adaptor_(adaptor), before_(time) {}
  void Undo(bool) override {
    after_ = adaptor_->GetTime();
    adaptor_->SetTime(before_);
  }
  void Redo() override { adaptor_->SetTime(after_); }

 private:
  StandaloneAdaptorInterface* adaptor_;
  double before_;
  double after_ = 0;
};

// CUndo records of tools and the core, kept in the scene's undo buffer.
class ForeignRecord : public UndoRecord {
 public:
  explicit ForeignRecord(CUndo* record) : record_(record) {}
  ~ForeignRecord() override { CUndo::Release(record_); }
  void Restore() override { record_->Undo(true); }
  void Redo() override { record_->Redo(); }

 private:
  CUndo* record_;
};

}  // namespace

StandaloneAdaptorInterface::StandaloneAdaptorInterface() : util::MessageNode("StandaloneAdaptorInterface") {}

StandaloneAdaptorInterface::~StandaloneAdaptorInterface() {
  // Undo records may point at nodes: drop them first.
  scene_.undo = UndoBuffer();
  for (StandaloneNode* node : retired_) delete node;
  const std::vector<StandaloneNode*> owned = nodes_;
  for (StandaloneNode* node : owned) delete node;
}

std::string StandaloneAdaptorInterface::GetHostVersion() { return "0.1"; }

bool& StandaloneAdaptorInterface::SelectionBatch() {
  static bool batch = false;
  return batch;
}

void StandaloneAdaptorInterface::AddNode(StandaloneNode* node) {
  if (std::find(nodes_.begin(), nodes_.end(), node) == nodes_.end()) nodes_.push_back(node);
}

void StandaloneAdaptorInterface::RemoveNode(StandaloneNode* node) {
  nodes_.erase(std::remove(nodes_.begin(), nodes_.end(), node), nodes_.end());
}

void StandaloneAdaptorInterface::Retire(StandaloneNode* node) {
  RemoveNode(node);
  node->external = true;
  if (std::find(retired_.begin(), retired_.end(), node) == retired_.end()) retired_.push_back(node);
}

void StandaloneAdaptorInterface::Reinstate(StandaloneNode* node, std::size_t place) {
  retired_.erase(std::remove(retired_.begin(), retired_.end(), node), retired_.end());
  node->external = false;
  if (std::find(nodes_.begin(), nodes_.end(), node) != nodes_.end()) return;
  nodes_.insert(nodes_.begin() + static_cast<std::ptrdiff_t>(std::min(place, nodes_.size())), node);
}

std::size_t StandaloneAdaptorInterface::PlaceOf(const StandaloneNode* node) const {
  return static_cast<std::size_t>(std::find(nodes_.begin(), nodes_.end(), node) - nodes_.begin());
}

StandaloneNode* StandaloneAdaptorInterface::FindOwnedOver(const SceneNode* host) const {
  for (StandaloneNode* node : nodes_) {
    if (node->GetHostNode() == host) return node;
  }
  return nullptr;
}

StandaloneNode* StandaloneAdaptorInterface::MakeOwnedNode(core::InstanceHandle instance, const std::string& nodeName,
                                                          ObjectKind kind, core::CoreNode* parent,
                                                          std::intptr_t extra) {
  std::string hostName = core::InstanceName(instance) + "_" + nodeName;
  if (hostName.size() > kMaxHostName) hostName.resize(kMaxHostName);
  const auto* parentNode = dynamic_cast<StandaloneNode*>(parent);
  SceneNode* host = scene_.CreateNode(kind, hostName, parentNode ? parentNode->GetHostNode() : nullptr);
  auto* node = new StandaloneNode(this, instance, nodeName, host, extra);
  if (IsUndoActive()) PutUndo(new NodeListRestore(this, node, true));
  return node;
}

core::CoreNode* StandaloneAdaptorInterface::CreateCameraNode(core::InstanceHandle instance, std::string nodeName,
                                                             core::CoreNode* parent, std::intptr_t extra) {
  return MakeOwnedNode(instance, nodeName, ObjectKind::kCamera, parent, extra);
}

core::CoreNode* StandaloneAdaptorInterface::CreateMeshNode(core::InstanceHandle instance, std::string nodeName,
                                                           core::CoreNode* parent, const util::CMesh& mesh,
                                                           std::intptr_t extra) {
  StandaloneNode* node = MakeOwnedNode(instance, nodeName, ObjectKind::kHelper, parent, extra);
  node->GetHostNode()->SetMesh(mesh);
  return node;
}

void StandaloneAdaptorInterface::DeleteNode(StandaloneNode* node, bool withHost) {
  // A wrapper belongs to whoever asked for it; only an owned node leaves the list.
  if (!node->external) {
    if (IsUndoActive()) PutUndo(new NodeListRestore(this, node, false));
    Retire(node);
  }
  if (withHost) scene_.DeleteNode(node->GetHostNode());
}

core::CoreNode* StandaloneAdaptorInterface::FindNode(core::InstanceHandle instance, std::string nodeName) {
  for (StandaloneNode* node : nodes_) {
    if (node->owner == instance && node->name == nodeName) return node;
  }
  return nullptr;
}

void StandaloneAdaptorInterface::WriteNodeTags(core::InstanceHandle instance) {
  bool first = true;
  for (StandaloneNode* node : nodes_) {
    if (node->owner != instance || node->external) continue;
    util::xml::Element tag = MakeNodeTag(core::InstanceName(instance), node->name);
    if (first) {
      first = false;
      util::xml::Element masters = MakeMasterNodes(instance);
      // Without the instance's state no node of it is tagged.
      if (masters.children.empty()) return;
      for (const auto& master : masters.children) tag.AddChild(std::move(*master));
    }
    node->GetHostNode()->properties[kTagProperty] = tag.Write("", "");
  }
}

void StandaloneAdaptorInterface::WriteSceneTag(const util::xml::Element& toolsWithoutNodes) {
  auto& properties = scene_.Root().properties;
  if (toolsWithoutNodes.children.empty() && keptRootTools_.empty()) {
    properties.erase(kTagProperty);
  } else {
    util::xml::Element tree = toolsWithoutNodes;
    tree.name = "RGT";
    for (const util::xml::Element& kept : keptRootTools_) tree.AddChild(kept);
    properties[kTagProperty] = tree.Write("", "");
  }
  // A damaged tag of the root gives way to the tools written there now.
  for (const auto& [host, text] : keptTags_) {
    if (!host->IsInScene()) continue;
    std::string& tag = host->properties[kTagProperty];
    if (tag.empty()) tag = text;
  }
}

void StandaloneAdaptorInterface::GatherScene() {
  gatherRecords_.clear();
  keptTags_.clear();
  keptRootTools_.clear();
  keptTools_.clear();
  std::vector<util::xml::Element> masters;
  // Per master: where it came from, and its tool's name as the node's tag says it.
  std::vector<KeptTool> origins;
  std::vector<std::pair<SceneNode*, const std::string*>> tagged;
  scene_.Walk([&](SceneNode& host) {
    const auto tag = host.properties.find(kTagProperty);
    if (tag != host.properties.end() && !tag->second.empty()) tagged.emplace_back(&host, &tag->second);
  });
  // A tag holds its tools' whole states: long takes make them big.
  std::vector<util::xml::Element> tags(tagged.size());
  std::vector<char> parsedWell(tagged.size());
  util::ForEachInParallel(tagged.size(), [&](std::size_t i) {
    parsedWell[i] = tags[i].ParseText(*tagged[i].second) == util::xml::kParsed;
  });
  for (std::size_t i = 0; i < tagged.size(); ++i) {
    SceneNode& host = *tagged[i].first;
    const std::string& text = *tagged[i].second;
    const std::string node = host.isRoot ? "" : host.hostName;
    util::xml::Element& parsed = tags[i];
    if (!parsedWell[i]) {
      keptTags_.emplace_back(&host, text);
      keptTools_.push_back({NameInDamagedTag(text), "", node, "its tag is damaged"});
      continue;
    }
    if (host.isRoot) {
      AddRootTools(parsed, masters);
      origins.resize(masters.size());
      continue;
    }
    // The states move on to be built; the record keeps the node's identity.
    const bool keep = !parsed.IsEmpty();
    auto& children = parsed.children;
    children.erase(std::remove_if(children.begin(), children.end(),
                                  [&](const std::unique_ptr<util::xml::Element>& child) {
                                    if (child->name != "masternode") return false;
                                    masters.push_back(std::move(*child));
                                    origins.push_back({parsed.GetChild("name").GetText(), "", node, ""});
                                    return true;
                                  }),
                   children.end());
    if (keep) gatherRecords_.emplace_back(&host, std::move(parsed));
  }
  // Without a loader nothing can take the tools up: the tags stay, so
  // nothing saved is lost.
  if (!loader_) return;
  LoadMasters(std::move(masters), std::move(origins));
  KeepUnclaimedTags();

  std::string unclaimed;
  for (const auto& [host, tag] : gatherRecords_) {
    if (!FindOwnedOver(host)) unclaimed += host->hostName + "\n";
  }
  if (!unclaimed.empty()) {
    ShowMessageBox(
        "Some nodes were found belonging to Quoll Rigworks, but they were never claimed. \n The following nodes "
        "were left out:\n\n" + unclaimed,
        "Gather error", box::kCritical);
  }
  for (auto& [host, tag] : gatherRecords_) host->properties[kTagProperty].clear();
  for (auto& [host, text] : keptTags_) host->properties[kTagProperty].clear();
  scene_.Root().properties.erase(kTagProperty);
  gatherRecords_.clear();
}

void StandaloneAdaptorInterface::LoadMasters(std::vector<util::xml::Element> masters, std::vector<KeptTool> origins) {
  // A tool of the root is kept as its element came, still packed.
  std::vector<util::xml::Element> rootElements(masters.size());
  std::vector<util::xml::Element> sound;
  std::vector<std::size_t> handedOn;
  std::vector<bool> kept(masters.size(), true);
  for (std::size_t i = 0; i < masters.size(); ++i) {
    if (origins[i].node.empty()) rootElements[i] = masters[i].GetChild("RGT_Plugin");
  }
  const std::vector<char> unpacked = UnpackMasters(masters);
  for (std::size_t i = 0; i < masters.size(); ++i) {
    KeptTool& tool = origins[i];
    if (unpacked[i]) {
      const util::xml::Element& plugin = masters[i].GetChild("RGT_Plugin");
      tool.name = plugin.GetChild("name").GetText();
      tool.type = plugin.GetChild("type").GetText();
      if (IsNewerLayout(plugin)) tool.reason = "it was saved by a newer version (" + plugin.GetAttribute("version") + ")";
    } else {
      tool.reason = "its saved data is damaged";
    }
    if (tool.reason.empty()) {
      kept[i] = false;
      handedOn.push_back(i);
      sound.push_back(std::move(masters[i]));
    }
  }
  // Their parents, for the children that go with a parent left out.
  std::vector<std::string> parents;
  for (const util::xml::Element& master : sound) parents.push_back(master.GetChild("parent").GetText());
  const std::vector<std::string> made = loader_(BuildGatheredTree(std::move(sound)));
  auto isMade = [&](const std::string& name) { return std::find(made.begin(), made.end(), name) != made.end(); };
  for (std::size_t k = 0; k < handedOn.size(); ++k) {
    KeptTool& tool = origins[handedOn[k]];
    if (isMade(tool.name)) continue;
    kept[handedOn[k]] = true;
    if (!parents[k].empty() && !isMade(parents[k])) tool.reason = "its parent " + parents[k] + " is not loaded";
  }
  for (std::size_t i = 0; i < origins.size(); ++i) {
    if (!kept[i]) continue;
    if (origins[i].node.empty()) keptRootTools_.push_back(std::move(rootElements[i]));
    keptTools_.push_back(std::move(origins[i]));
  }
}

void StandaloneAdaptorInterface::KeepUnclaimedTags() {
  for (const auto& [host, tag] : gatherRecords_) {
    if (!FindOwnedOver(host)) keptTags_.emplace_back(host, host->properties[kTagProperty]);
  }
}

void StandaloneAdaptorInterface::GetAllNodes(core::NodeList& list) {
  list.Receive(std::vector<core::CoreNode*>(nodes_.begin(), nodes_.end()));
}

void StandaloneAdaptorInterface::GetInstanceNodes(core::InstanceHandle instance, core::NodeList& list) {
  std::vector<core::CoreNode*> found;
  for (StandaloneNode* node : nodes_) {
    if (node->owner == instance) found.push_back(node);
  }
  list.Receive(std::move(found));
}

StandaloneNode* StandaloneAdaptorInterface::MatchGathered(const std::string& instanceName,
                                                          const std::string& objectName) {
  for (auto& [host, tag] : gatherRecords_) {
    if (tag.GetChild("name").GetText() == instanceName && tag.GetChild("objectname").GetText() == objectName) {
      return new StandaloneNode(this, nullptr, objectName, host, 0);
    }
  }
  return nullptr;
}

StandaloneNode* StandaloneAdaptorInterface::MatchLive(const std::string& instanceName, const std::string& objectName) {
  std::vector<SceneNode*> all;
  scene_.Walk([&](SceneNode& host) { all.push_back(&host); });
  // The last in scene order first, as the tags were read.
  for (auto it = all.rbegin(); it != all.rend(); ++it) {
    const auto tag = (*it)->properties.find(kTagProperty);
    if (tag == (*it)->properties.end() || tag->second.empty()) continue;
    util::xml::Element parsed;
    parsed.ParseText(tag->second);
    if (parsed.GetChild("name").GetText() == instanceName && parsed.GetChild("objectname").GetText() == objectName) {
      return new StandaloneNode(this, nullptr, objectName, *it, 0);
    }
  }
  return nullptr;
}

void StandaloneAdaptorInterface::ResolveNodes(std::string instanceName, const util::xml::Element& nodes,
                                              core::NodeList& list) {
  std::vector<core::CoreNode*> found;
  for (std::size_t i = 0, n = nodes.CountChildren("node"); i < n; ++i) {
    const util::xml::Element& entry = nodes.GetChild("node", i);
    // Saved tools name their nodes in a "name" child; older entries in an attribute.
    const std::string objectName =
        entry.GetAttribute("name").empty() ? entry.GetChild("name").GetText() : entry.GetAttribute("name");
    StandaloneNode* node = MatchGathered(instanceName, objectName);
    if (!node) node = MatchLive(instanceName, objectName);
    if (!node && !entry.GetChild("UID").IsEmpty()) {
      const auto handle =
          static_cast<SceneNode::Handle>(std::strtoul(entry.GetChild("UID").GetText().c_str(), nullptr, 10));
      SceneNode* host = scene_.Find(handle);
      if (host && host->IsInScene()) node = new StandaloneNode(this, host);
    }
    found.push_back(node);
  }
  list.Receive(std::move(found));
}

void StandaloneAdaptorInterface::MergeFile(std::string, core::NodeList& list) {
  // Scene files come with the glTF reader; until then a merge brings nothing.
  list.Receive({});
}

std::int32_t StandaloneAdaptorInterface::BeginUndo(std::string label) {
  if (undoLabels_.empty() && !scene_.undo.IsHolding()) {
    scene_.undo.Begin();
    holdOpenedHere_ = true;
  }
  undoLabels_.push_back(std::move(label));
  return 0;
}

std::int32_t StandaloneAdaptorInterface::PutUndo(CUndo* record) {
  if (!IsUndoActive()) {
    CUndo::Release(record);
    return 1;
  }
  scene_.undo.Put(std::make_unique<ForeignRecord>(record));
  return 0;
}

std::int32_t StandaloneAdaptorInterface::EndUndo() {
  if (undoLabels_.empty()) return 1;
  const std::string label = undoLabels_.back();
  undoLabels_.pop_back();
  if (undoLabels_.empty() && holdOpenedHere_) {
    if (cancelPending_) {
      scene_.undo.Cancel();
    } else {
      scene_.undo.Accept(label);
    }
    holdOpenedHere_ = false;
    cancelPending_ = false;
  }
  return 0;
}

std::int32_t StandaloneAdaptorInterface::CancelUndo() {
  cancelPending_ = true;
  return EndUndo();
}

bool StandaloneAdaptorInterface::IsUndoActive() { return !undoLabels_.empty() && !scene_.undo.IsRestoring(); }

bool StandaloneAdaptorInterface::Undo() {
  scene_.undo.Undo();
  return true;
}

bool StandaloneAdaptorInterface::Redo() {
  scene_.undo.Redo();
  return true;
}

void StandaloneAdaptorInterface::SetTime(double seconds) {
  scene_.clock.SetTime(seconds);
  RedrawScene();
}

void StandaloneAdaptorInterface::SetTimeScale(std::int32_t scale) {
  if (scale <= 0) return;
  const std::int32_t nominal = scene_.clock.GetFrameRate() / timeScale_;
  timeScale_ = scale;
  scene_.clock.SetFrameRate(nominal * timeScale_);
}

std::pair<double, double> StandaloneAdaptorInterface::GetAnimationRange() {
  return {scene_.clock.SecondsOf(scene_.clock.GetRangeStart()), scene_.clock.SecondsOf(scene_.clock.GetRangeEnd())};
}

std::int32_t StandaloneAdaptorInterface::SetAnimationRange(std::pair<double, double> range) {
  scene_.clock.SetRange(scene_.clock.TickOf(range.first), scene_.clock.TickOf(range.second));
  return 1;
}

double StandaloneAdaptorInterface::GetFrameRate() {
  return static_cast<double>(scene_.clock.GetFrameRate() / timeScale_);
}

double StandaloneAdaptorInterface::GetFrameDuration() {
  return 1.0 / static_cast<double>(scene_.clock.GetFrameRate() / timeScale_);
}

std::int32_t StandaloneAdaptorInterface::BeginRecording() {
  animateWasOn_ = scene_.animate;
  scene_.animate = true;
  PutUndo(new SetTimeRestore(this, GetTime()));
  return 0;
}

std::int32_t StandaloneAdaptorInterface::BeginRecordingInstances(std::vector<core::InstanceHandle> instances) {
  BeginRecording();
  // Every live rig starts its take with a key where it stands; every node
  // taking part gets room for the keys of the take, so that no frame waits
  // on a track growing.
  const double now = GetTime();
  for (StandaloneNode* node : nodes_) {
    if (std::find(instances.begin(), instances.end(), node->owner) == instances.end()) continue;
    SceneNode* host = node->GetHostNode();
    host->track.Reserve(host->track.Keys().size() + util::HistoryHorizon());
    if (host->kind == ObjectKind::kCamera) {
      for (ScalarTrack* lens : {&host->camera.fovDegrees, &host->camera.targetDistance}) {
        lens->Reserve(lens->Keys().size() + util::HistoryHorizon());
      }
    }
    if (!node->live) continue;
    CSnapshot* snapshot = node->GetSnapshot(now);
    snapshot->SetLocalTransform(snapshot->GetLocalTransform());
    node->ReleaseSnapshot(snapshot);
  }
  return 0;
}

std::int32_t StandaloneAdaptorInterface::EndRecording() {
  if (!animateWasOn_) scene_.animate = false;
  return 0;
}

std::int32_t StandaloneAdaptorInterface::GetConfigLayout(util::xml::Element&) {
  // The embedded host has no settings page of its own yet.
  return 0;
}

void StandaloneAdaptorInterface::ConnectConfig(gui::Component*) {
  // Nothing to connect while the host has no settings page.
}

std::int32_t StandaloneAdaptorInterface::ShowMessageBox(const std::string& text, const std::string& caption,
                                                        std::int32_t style) {
  return core::ShowMessageBoxThrough(messageBox_, text, caption, style);
}

std::int32_t StandaloneAdaptorInterface::ShowError(std::string text, std::string caption) {
  return ShowMessageBox(text, caption, box::kCritical);
}

}  // namespace vuk::rgw::adaptor::standalone
