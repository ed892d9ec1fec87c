#include "core/instancemanager.h"

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
  if (made) {
    adaptor_->PutUndo(new InstanceReferenceCreateRestore(made, made->parent, static_cast<std::size_t>(made->ChildIndex())));
    // Each new node stands where its source stands.
    NodeVector sources, targets;
    adaptor_->GetInstanceNodes(static_cast<CInterface*>(item->instance.get()), sources);
    adaptor_->GetInstanceNodes(static_cast<CInterface*>(made->instance.get()), targets);
    const double now = adaptor_->GetTime();
    for (std::size_t i = 0; i < sources.nodes.size() && i < targets.nodes.size(); ++i) {
      CSnapshot* from = sources.nodes[i]->GetSnapshot(now);
      CSnapshot* to = targets.nodes[i]->GetSnapshot(now);
      if (from && to) to->SetWorldTransform(from->GetWorldTransform());
      sources.nodes[i]->ReleaseSnapshot(from);
      targets.nodes[i]->ReleaseSnapshot(to);
    }
  }
  adaptor_->EndUndo();
  return made;
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

InstanceReference* InstanceManager::MakeFromElement(const util::xml::Element& element, InstanceReference* parent) {
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
  if (!element.GetChild("configprofile").children.empty()) tool.ApplyConfigProfile(element.GetChild("configprofile"));
  if (!element.GetChild("inputprofile").IsEmpty()) tool.ApplyInputProfile(element.GetChild("inputprofile"));
  tool.LoadTracks(element.GetChild("recordedinputvalues"));
  const util::xml::Element& saved = element.GetChild("savedata");
  if (saved.IsEmpty()) {
    if (tool.GetTool()->Create() != 0) return nullptr;
  } else {
    const util::xml::Element& nodeInfo = element.GetChild("nodeinfo");
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
    if (tool.GetTool()->Load() != 0) return nullptr;
  }
  InstanceReference* made = item.release();
  (parent ? parent : &root_)->Link(made);
  for (std::size_t i = 0, n = element.CountChildren("RGT_Plugin"); i < n; ++i) {
    MakeFromElement(element.GetChild("RGT_Plugin", i), made);
  }
  return made;
}

int InstanceManager::LoadToolTree(const util::xml::Element& given) {
  // Only a bare "RGT_Plugin" is wrapped; a list is read where it stands.
  util::xml::Tag wrapper("RGT");
  const bool bare = given.name != "RGT" && given.name != "rgw";
  if (bare) wrapper.AddChild(given);
  const util::xml::Element& tree = bare ? wrapper : given;
  adaptor_->BeginUndo("Creating instance");
  std::vector<InstanceReference*> made;
  for (std::size_t i = 0, n = tree.CountChildren("RGT_Plugin"); i < n; ++i) {
    if (InstanceReference* item = MakeFromElement(tree.GetChild("RGT_Plugin", i), nullptr)) made.push_back(item);
  }
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
