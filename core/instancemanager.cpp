#include "core/instancemanager.h"

#include <algorithm>
#include <functional>

#include "core/messagebox.h"
#include "core/treeundo.h"
#include "util/base64.h"
#include "util/xml/tag.h"

namespace vuk::rgw::core {

namespace {

void Walk(InstanceReference& item, const std::function<void(InstanceReference&)>& visit) {
  for (std::size_t i = 0; i < item.GetChildCount(); ++i) {
    auto& child = static_cast<InstanceReference&>(*item.GetChild(i));
    visit(child);
    Walk(child, visit);
  }
}

// Links the node below the parent keeping its pose, unless it is there already.
void LinkBelow(CoreNode* node, CoreNode* parent) {
  if (!node || !parent) return;
  CNode* current = node->GetParent();
  const bool there = current && static_cast<CoreNode*>(current)->IsSameNode(parent);
  if (current) node->ReleaseWrapper(current);
  if (!there) node->SetParent(parent);
}

bool IsOwnedBy(const CoreNode* node, const Instance* instance) {
  return node->owner == static_cast<const CInterface*>(instance);
}

// When the node hangs below `from`, a copy of its scene object goes below `to`.
void CopyBelow(CoreNode* node, CoreNode* from, CoreNode* to) {
  CNode* up = node->GetParent();
  const bool below = up && static_cast<CoreNode*>(up)->IsSameNode(from);
  if (up) node->ReleaseWrapper(up);
  if (!below) return;
  CoreNode* copied = node->Clone();
  LinkBelow(copied, to);
  if (copied) copied->DestroySelf();
}

// The wrappers a tool that isn't made was given: its nodes stay in the scene,
// owned by no tool.
void ReleaseNodes(const NodeVector& nodes) {
  for (CoreNode* node : nodes.nodes) {
    if (node) node->DestroySelf();
  }
}

}  // namespace

InstanceManager::InstanceManager(AdaptorInterface* adaptor, const LibraryManager* library)
    : adaptor_(adaptor), library_(library) {}

InstanceReference* InstanceManager::Create(const std::string& toolName, const std::string& name,
                                           InstanceReference* parent) {
  Plugin* plugin = library_->FindTool(toolName);
  std::unique_ptr<Instance> instance = plugin ? plugin->CreateInstance(name, adaptor_) : nullptr;
  if (!instance) return nullptr;
  auto* item = new InstanceReference(std::move(instance));
  (parent ? parent : &root_)->Link(item);
  return item;
}

InstanceReference* InstanceManager::Find(const std::string& instanceName) {
  InstanceReference* found = nullptr;
  Walk(root_, [&](InstanceReference& item) {
    if (!found && item.GetLabel() == instanceName) found = &item;
  });
  return found;
}

std::vector<Instance*> InstanceManager::AllInstances() {
  std::vector<Instance*> all;
  Walk(root_, [&](InstanceReference& item) { all.push_back(item.instance.get()); });
  return all;
}

std::vector<Instance*> InstanceManager::CheckedInstances() {
  std::vector<Instance*> checked;
  Walk(root_, [&](InstanceReference& item) {
    if (item.states[TreeItem::kChecked] == 1) checked.push_back(item.instance.get());
  });
  return checked;
}

std::vector<std::string> InstanceManager::InstanceNames() {
  std::vector<std::string> names;
  for (const Instance* instance : AllInstances()) names.push_back(instance->InstanceName());
  return names;
}

void InstanceManager::WriteNodeTags() {
  for (Instance* instance : AllInstances()) adaptor_->WriteNodeTags(static_cast<CInterface*>(instance));
}

void InstanceManager::Delete(InstanceReference* item, bool unplugOnly) {
  if (!item || !item->deletable || !item->parent) return;
  adaptor_->BeginUndo("Delete Quoll Tool");
  while (item->GetChildCount() > 0) {
    Delete(static_cast<InstanceReference*>(item->GetChild(item->GetChildCount() - 1)), unplugOnly);
  }
  item->instance->Delete(!unplugOnly);
  TreeItem* parent = item->parent;
  const std::size_t index = static_cast<std::size_t>(item->ChildIndex());
  parent->TakeChild(item);
  item->parent = nullptr;
  // The record owns the item from here: undo links it back.
  adaptor_->PutUndo(new InstanceReferenceDeleteRestore(item, parent, index));
  adaptor_->EndUndo();
}

InstanceReference* InstanceManager::Clone(InstanceReference* item) {
  if (!item || !item->instance) return nullptr;
  adaptor_->BeginUndo("Clone tool");
  util::xml::Element copy = item->Serialize(0);
  // Without its name the copy takes a new one.
  for (auto& child : copy.children) {
    if (child->name == "name") child->children.clear();
  }
  auto* parent = static_cast<InstanceReference*>(item->parent);
  InstanceReference* made = MakeFromElement(copy, parent);
  EndLoad();
  if (made) {
    adaptor_->PutUndo(new InstanceReferenceCreateRestore(made, made->parent, static_cast<std::size_t>(made->ChildIndex())));
    const Instance* source = item->instance.get();
    NodeVector sources, targets, all;
    adaptor_->GetInstanceNodes(static_cast<CInterface*>(item->instance.get()), sources);
    adaptor_->GetInstanceNodes(static_cast<CInterface*>(made->instance.get()), targets);
    adaptor_->GetAllNodes(all);
    const double now = adaptor_->GetTime();
    for (std::size_t i = 0; i < sources.nodes.size() && i < targets.nodes.size(); ++i) {
      CoreNode* from = sources.nodes[i];
      CoreNode* to = targets.nodes[i];
      if (CNode* up = from->GetParent()) {
        auto* outside = static_cast<CoreNode*>(up);
        if (!IsOwnedBy(outside, source) && !outside->IsRootNode()) LinkBelow(to, outside);
        from->ReleaseWrapper(up);
      }
      // Each new node stands where its source stands.
      CSnapshot* pose = from->GetSnapshot(now);
      CSnapshot* target = to->GetSnapshot(now);
      if (pose && target) target->SetWorldTransform(pose->GetWorldTransform());
      from->ReleaseSnapshot(pose);
      to->ReleaseSnapshot(target);
      for (CoreNode* other : all.nodes) {
        if (other->owner && !IsOwnedBy(other, source) && !IsOwnedBy(other, made->instance.get())) {
          CopyBelow(other, from, to);
        }
      }
    }
  }
  adaptor_->EndUndo();
  return made;
}

bool InstanceManager::Move(InstanceReference* item, InstanceReference* newParent) {
  TreeItem* target = newParent ? newParent : &root_;
  if (!item || !item->parent) return false;
  for (const TreeItem* up = target; up; up = up->parent) {
    if (up == item) return false;
  }
  if (target == item->parent) return true;
  const InstanceReferenceMove::Place from{item->parent, static_cast<std::size_t>(item->ChildIndex())};
  adaptor_->BeginUndo("Move tool");
  auto* record = new InstanceReferenceMove(item, from, {target, target->GetChildCount()});
  record->Redo();
  adaptor_->PutUndo(record);
  adaptor_->EndUndo();
  return true;
}

bool InstanceManager::Rename(InstanceReference* item, const std::string& newName) {
  if (!item || !item->instance || newName.empty()) return false;
  const std::string oldName = item->GetLabel();
  if (newName == oldName) return true;
  if (Find(newName)) return false;
  adaptor_->BeginUndo("Rename tool");
  auto* record = new InstanceReferenceRename(item->instance.get(), oldName, newName);
  record->Redo();
  adaptor_->PutUndo(record);
  adaptor_->EndUndo();
  return true;
}

void InstanceManager::RemoveAll() {
  while (root_.GetChildCount() > 0) root_.RemoveChild(root_.GetChild(root_.GetChildCount() - 1));
}

util::xml::Element InstanceManager::SaveToolTreeForScene() const {
  util::xml::Tag tree("RGT");
  for (std::size_t i = 0; i < root_.GetChildCount(); ++i) {
    const auto* item = static_cast<const InstanceReference*>(root_.GetChild(i));
    NodeVector nodes;
    adaptor_->GetInstanceNodes(static_cast<CInterface*>(item->instance.get()), nodes);
    if (nodes.nodes.empty()) tree.AddChild(item->Serialize(InstanceReference::kForScene));
  }
  return std::move(tree);
}

std::size_t InstanceManager::ToolDepth(const util::xml::Element& tree) {
  constexpr char kTool[] = "RGT_Plugin";
  const std::size_t levels = tree.Depth(kTool);
  return tree.name == kTool ? levels : levels - 1;
}

InstanceReference* InstanceManager::MakeFromElement(const util::xml::Element& element, InstanceReference* parent,
                                                    std::size_t depth) {
  Plugin* plugin = library_->FindTool(element.GetChild("type").GetText());
  if (!plugin) return nullptr;
  std::unique_ptr<Instance> instance = plugin->MakeInstance(element.GetChild("name").GetText(), adaptor_);
  if (!instance) return nullptr;
  Instance& tool = *instance;
  const std::string name = tool.InstanceName();
  auto item = std::make_unique<InstanceReference>(std::move(instance));
  if (element.GetChild("checked").GetText() == "false") item->states[TreeItem::kChecked] = 0;
  util::xml::Element custom = element.GetChild("customdata");
  tool.GetTool()->Extension(extension::kLoadCustomData, &custom);
  if (tool.GetTool()->BuildConfig() != 0) return nullptr;
  plugin->KeepFactoryProfiles(tool);
  if (!element.GetChild("configprofile").children.empty()) tool.ApplyConfigProfile(element.GetChild("configprofile"));
  if (!element.GetChild("inputprofile").IsEmpty()) tool.ApplyInputProfile(element.GetChild("inputprofile"));
  tool.LoadTracks(element.GetChild("recordedinputvalues"));
  const util::xml::Element& saved = element.GetChild("savedata");
  const util::xml::Element& nodeInfo = element.GetChild("nodeinfo");
  if (saved.IsEmpty()) {
    if (tool.GetTool()->Create() != 0) return nullptr;
  } else {
    NodeVector nodes;
    adaptor_->ResolveNodes(name, nodeInfo, nodes);
    std::string missing;
    for (std::size_t i = 0; i < nodes.nodes.size(); ++i) {
      if (!nodes.nodes[i]) missing += name + "_" + nodeInfo.GetChild("node", i).GetChild("name").GetText() + "\n";
    }
    if (!missing.empty()) {
      ShowMessageBox("Some nodes required for this plugin was not found in the scene. Please make sure all required "
                     "nodes are present.\nThe following nodes were not found:\n\n" + missing,
                     "Error loading plugin", 32);
      ReleaseNodes(nodes);
      return nullptr;
    }
    // The found nodes belong to this instance under their saved names.
    for (std::size_t i = 0; i < nodes.nodes.size(); ++i) {
      nodes.nodes[i]->owner = static_cast<CInterface*>(&tool);
      nodes.nodes[i]->name = nodeInfo.GetChild("node", i).GetChild("name").GetText();
    }
    util::Bytes bytes;
    util::Base64::Decode(saved.GetText(), bytes);
    tool.SetSaveData(bytes.data(), static_cast<std::int32_t>(bytes.size()));
    if (tool.GetTool()->Load() != 0) {
      ReleaseNodes(nodes);
      return nullptr;
    }
  }
  loaded_.emplace_back(element.GetChild("name").GetText(), &tool);
  RestoreNodes(tool, nodeInfo);
  ResolveLinks(false);
  InstanceReference* made = item.release();
  (parent ? parent : &root_)->Link(made);
  for (std::size_t i = 0, n = depth < kMaxToolDepth ? element.CountChildren("RGT_Plugin") : 0; i < n; ++i) {
    MakeFromElement(element.GetChild("RGT_Plugin", i), made, depth + 1);
  }
  return made;
}

void InstanceManager::RestoreNodes(Instance& tool, const util::xml::Element& nodeInfo) {
  const double now = adaptor_->GetTime();
  for (std::size_t i = 0, n = nodeInfo.CountChildren("node"); i < n; ++i) {
    const util::xml::Element& entry = nodeInfo.GetChild("node", i);
    CoreNode* node = adaptor_->FindNode(static_cast<CInterface*>(&tool), entry.GetChild("name").GetText());
    if (!node) continue;
    util::CMesh mesh;
    const util::xml::Element& savedMesh = entry.GetChild("mesh");
    if (!savedMesh.IsEmpty() && ReadMeshElement(savedMesh, mesh)) {
      if (CSnapshot_Mesh* snapshot = node->GetMeshSnapshot(now)) {
        snapshot->SetMesh(mesh);
        node->ReleaseMeshSnapshot(snapshot);
      }
    }
    const util::xml::Element& parent = entry.GetChild("parent");
    const std::string parentName = parent.GetText();
    if (parentName.empty()) continue;
    const std::string external = parent.GetAttribute("external");
    if (external.empty()) {
      LinkBelow(node, adaptor_->FindNode(static_cast<CInterface*>(&tool), parentName));
    } else {
      pendingLinks_.push_back({node, external, parentName});
    }
  }
}

void InstanceManager::ResolveLinks(bool loadEnded) {
  for (auto link = pendingLinks_.begin(); link != pendingLinks_.end();) {
    // A tool made in this load answers to its saved name, whatever name it got.
    const auto made = std::find_if(loaded_.begin(), loaded_.end(),
                                   [&](const auto& entry) { return entry.first == link->instanceName; });
    Instance* owner = made != loaded_.end() ? made->second : nullptr;
    if (!owner && loadEnded) {
      InstanceReference* existing = Find(link->instanceName);
      owner = existing ? existing->instance.get() : nullptr;
    }
    CoreNode* parent = owner ? adaptor_->FindNode(static_cast<CInterface*>(owner), link->parentName) : nullptr;
    if (!parent) {
      ++link;
      continue;
    }
    LinkBelow(link->node, parent);
    link = pendingLinks_.erase(link);
  }
}

void InstanceManager::EndLoad() {
  // What still waits names a tool that isn't there: those links are lost.
  ResolveLinks(true);
  pendingLinks_.clear();
  loaded_.clear();
}

int InstanceManager::LoadToolTree(const util::xml::Element& given) {
  // Only a bare "RGT_Plugin" is wrapped; a list is read where it stands.
  util::xml::Tag wrapper("RGT");
  const bool bare = given.name != "RGT" && given.name != "rgw";
  if (bare) wrapper.AddChild(given);
  const util::xml::Element& tree = bare ? wrapper : given;
  const std::size_t depth = ToolDepth(tree);
  if (depth > kMaxToolDepth) {
    ShowMessageBox("Tools are nested " + std::to_string(depth) + " levels deep here; those below level " +
                       std::to_string(kMaxToolDepth) + " were not loaded.",
                   "Error loading plugin", 32);
  }
  adaptor_->BeginUndo("Creating instance");
  std::vector<InstanceReference*> made;
  for (std::size_t i = 0, n = tree.CountChildren("RGT_Plugin"); i < n; ++i) {
    if (InstanceReference* item = MakeFromElement(tree.GetChild("RGT_Plugin", i), nullptr)) made.push_back(item);
  }
  EndLoad();
  // Every tool exists now: tools that link to others' nodes do it here, parents first.
  int count = 0;
  for (InstanceReference* item : made) {
    item->instance->GetTool()->Extension(extension::kConnectTools, nullptr);
    ++count;
    Walk(*item, [&](InstanceReference& child) {
      child.instance->GetTool()->Extension(extension::kConnectTools, nullptr);
      ++count;
    });
  }
  adaptor_->EndUndo();
  return count;
}

}  // namespace vuk::rgw::core
