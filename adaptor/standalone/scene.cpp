#include "adaptor/standalone/scene.h"

#include <algorithm>
#include <utility>

namespace vuk::rgw::adaptor::standalone {

namespace {

// A node's whole track (its transform, or its lens) as it stood before the
// first change of a hold: one record however many keys a recording writes.
// A record's undo and redo alternate, so swapping the saved track with the
// live one goes either way.
template <typename Track>
class TrackRecord : public UndoRecord {
 public:
  explicit TrackRecord(Track& live) : live_(live), saved_(live) {}
  void Restore() override { std::swap(live_, saved_); }
  void Redo() override { std::swap(live_, saved_); }

 private:
  Track& live_;
  Track saved_;
};

class NameRecord : public UndoRecord {
 public:
  NameRecord(SceneNode* node, std::string before) : node_(node), before_(std::move(before)), after_(node->hostName) {}
  void Restore() override { node_->hostName = before_; }
  void Redo() override { node_->hostName = after_; }

 private:
  SceneNode* node_;
  std::string before_, after_;
};

}  // namespace

// A node's place in the tree before and after a move, creation or deletion.
class PlaceRecord : public UndoRecord {
 public:
  PlaceRecord(Scene* scene, SceneNode* node, SceneNode* oldParent, std::size_t oldIndex)
      : scene_(scene), node_(node), oldParent_(oldParent), oldIndex_(oldIndex), newParent_(node->parent),
        newIndex_(node->parent ? Scene::IndexIn(node) : 0) {}
  void Restore() override { scene_->Attach(node_, oldParent_, oldIndex_); }
  void Redo() override { scene_->Attach(node_, newParent_, newIndex_); }

 private:
  Scene* scene_;
  SceneNode* node_;
  SceneNode* oldParent_;
  std::size_t oldIndex_;
  SceneNode* newParent_;
  std::size_t newIndex_;
};

Scene::Scene() {
  SceneNode* root = MakeNode(ObjectKind::kEmpty, "Scene Root");
  root->isRoot = true;
}

SceneNode* Scene::MakeNode(ObjectKind kind, const std::string& hostName) {
  const auto handle = static_cast<SceneNode::Handle>(nodes_.size() + 1);
  nodes_.push_back(std::make_unique<SceneNode>(handle, kind, hostName));
  return nodes_.back().get();
}

void Scene::Record(std::unique_ptr<UndoRecord> record) {
  if (undo.IsHolding() && !undo.IsRestoring()) undo.Put(std::move(record));
}

template <typename Track>
void Scene::SaveOnce(Track& track, bool& changed, std::uint64_t& savedInHold) {
  changed = true;
  if (!undo.IsHolding() || undo.IsRestoring() || savedInHold == undo.HoldNumber()) return;
  savedInHold = undo.HoldNumber();
  undo.Put(std::make_unique<TrackRecord<Track>>(track));
}

void Scene::SaveTrack(SceneNode* node) { SaveOnce(node->track, node->trackChanged, node->trackSavedInHold); }

void Scene::SaveLens(SceneNode* node) { SaveOnce(node->camera, node->lensChanged, node->lensSavedInHold); }

std::size_t Scene::IndexIn(const SceneNode* node) {
  const auto& siblings = node->parent->children;
  return static_cast<std::size_t>(std::find(siblings.begin(), siblings.end(), node) - siblings.begin());
}

void Scene::Attach(SceneNode* node, SceneNode* parent, std::size_t index) {
  if (node->parent) {
    auto& siblings = node->parent->children;
    siblings.erase(std::remove(siblings.begin(), siblings.end(), node), siblings.end());
  }
  node->parent = parent;
  if (parent) {
    auto& siblings = parent->children;
    siblings.insert(siblings.begin() + static_cast<std::ptrdiff_t>(std::min(index, siblings.size())), node);
  }
}

SceneNode* Scene::CreateNode(ObjectKind kind, const std::string& hostName, SceneNode* parent) {
  SceneNode* node = MakeNode(kind, hostName);
  SceneNode* under = parent ? parent : &Root();
  Attach(node, under, under->children.size());
  Record(std::make_unique<PlaceRecord>(this, node, nullptr, 0));
  return node;
}

void Scene::DeleteNode(SceneNode* node) {
  if (!node || node->isRoot || !node->parent) return;
  SceneNode* oldParent = node->parent;
  const std::size_t oldIndex = IndexIn(node);
  node->selected = false;
  Attach(node, nullptr, 0);
  Record(std::make_unique<PlaceRecord>(this, node, oldParent, oldIndex));
}

SceneNode* Scene::CloneNode(SceneNode* node) {
  if (!node || node->isRoot) return nullptr;
  SceneNode* copy = CreateNode(node->kind, node->hostName + "_copy", node->parent);
  copy->mesh = node->mesh;
  copy->wireframe = node->wireframe;
  copy->backfaceCull = node->backfaceCull;
  copy->camera = node->camera;
  copy->shape = node->shape;
  copy->track = node->track;
  copy->visible = node->visible;
  return copy;
}

void Scene::SetParent(SceneNode* node, SceneNode* newParent, Tick keepAt) {
  if (!node || node->isRoot) return;
  SceneNode* target = newParent ? newParent : &Root();
  // A node can't go below itself.
  for (const SceneNode* up = target; up; up = up->parent) {
    if (up == node) return;
  }
  SceneNode* oldParent = node->parent;
  const std::size_t oldIndex = oldParent ? IndexIn(node) : 0;
  std::vector<std::pair<Tick, util::Matrix<double>>> worlds;
  for (const TransformKey& key : node->track.Keys()) worlds.emplace_back(key.tick, node->World(key.tick));
  const util::Matrix<double> staticWorld = node->World(keepAt);

  Attach(node, target, target->children.size());
  Record(std::make_unique<PlaceRecord>(this, node, oldParent, oldIndex));
  SaveTrack(node);
  auto relative = [&](Tick tick, const util::Matrix<double>& world) {
    return target->isRoot ? world : target->World(tick).Inverse() * world;
  };
  std::vector<TransformKey> keys;
  for (const auto& [tick, world] : worlds) keys.push_back(TransformKey::FromMatrix(tick, relative(tick, world)));
  node->track.SetKeys(std::move(keys));
  node->track.SetStaticPose(TransformKey::FromMatrix(0, relative(keepAt, staticWorld)));
}

void Scene::Rename(SceneNode* node, const std::string& hostName) {
  const std::string before = node->hostName;
  node->hostName = hostName;
  Record(std::make_unique<NameRecord>(node, before));
}

void Scene::WriteLocal(SceneNode* node, Tick tick, const util::Matrix<double>& local) {
  SaveTrack(node);
  if (animate) {
    node->track.SetKey(TransformKey::FromMatrix(tick, local));
  } else {
    node->track.SetPose(tick, local);
  }
}

void Scene::WriteWorld(SceneNode* node, Tick tick, const util::Matrix<double>& world) {
  const SceneNode* parent = node->parent;
  const bool underRoot = !parent || parent->isRoot;
  WriteLocal(node, tick, underRoot ? world : parent->World(tick).Inverse() * world);
}

void Scene::WriteLens(SceneNode* node, ScalarTrack CameraData::*value, Tick tick, double wanted) {
  SaveLens(node);
  ScalarTrack& track = node->camera.*value;
  if (animate) {
    track.SetKey({tick, wanted});
  } else {
    track.SetLive({tick, wanted});
  }
}

namespace {

template <typename Key>
bool HasKeysFrom(const KeyTrack<Key>& track, Tick tick) {
  return !track.Keys().empty() && track.Keys().back().tick >= tick;
}

}  // namespace

void Scene::InvalidateFrom(SceneNode* node, Tick tick) {
  if (!node) return;
  if (HasKeysFrom(node->track, tick)) {
    SaveTrack(node);
    node->track.RemoveFrom(tick);
  }
  CameraData& lens = node->camera;
  if (HasKeysFrom(lens.fovDegrees, tick) || HasKeysFrom(lens.targetDistance, tick)) {
    SaveLens(node);
    lens.fovDegrees.RemoveFrom(tick);
    lens.targetDistance.RemoveFrom(tick);
  }
}

SceneNode* Scene::Find(SceneNode::Handle handle) const {
  return handle >= 1 && handle <= nodes_.size() ? nodes_[handle - 1].get() : nullptr;
}

void Scene::Walk(const std::function<void(SceneNode&)>& visit) {
  std::vector<SceneNode*> pending{&Root()};
  while (!pending.empty()) {
    SceneNode* node = pending.back();
    pending.pop_back();
    visit(*node);
    for (auto it = node->children.rbegin(); it != node->children.rend(); ++it) pending.push_back(*it);
  }
}

void Scene::ClearSelection() {
  for (auto& node : nodes_) node->selected = false;
}

void Scene::Select(SceneNode* node) {
  if (node && node->IsInScene()) node->selected = true;
}

std::vector<SceneNode*> Scene::Selection() {
  std::vector<SceneNode*> selected;
  Walk([&](SceneNode& node) {
    if (node.selected) selected.push_back(&node);
  });
  return selected;
}

}  // namespace vuk::rgw::adaptor::standalone
