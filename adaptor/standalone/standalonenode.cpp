#include "adaptor/standalone/standalonenode.h"

#include "adaptor/standalone/standaloneadaptorinterface.h"

namespace vuk::rgw::adaptor::standalone {

StandaloneNode::StandaloneNode(StandaloneAdaptorInterface* adaptor, CExtendable* instance,
                               const std::string& nodeName, SceneNode* host, std::intptr_t extraWord)
    : external(false), extra(extraWord), adaptor_(adaptor), host_(host) {
  name = nodeName;
  owner = instance;
  adaptor_->AddNode(this);
}

StandaloneNode::StandaloneNode(StandaloneAdaptorInterface* adaptor, SceneNode* host)
    : external(true), adaptor_(adaptor), host_(host) {
  if (const StandaloneNode* owned = host ? adaptor_->FindOwnedOver(host) : nullptr) {
    name = owned->name;
    owner = owned->owner;
  } else if (host) {
    name = host->hostName;
  }
}

StandaloneNode::~StandaloneNode() {
  if (!external) adaptor_->RemoveNode(this);
}

Tick StandaloneNode::TickOf(double time) const { return adaptor_->GetScene().clock.TickOf(time); }

std::intptr_t StandaloneNode::Extension(std::int32_t id, void* data) {
  bool& batch = StandaloneAdaptorInterface::SelectionBatch();
  switch (id) {
    case extension::kNodeBeginSelection:
      if (batch) return 0;
      batch = true;
      adaptor_->GetScene().ClearSelection();
      return 1;
    case extension::kNodeEndSelection:
      if (!batch) return 0;
      batch = false;
      return 1;
    case extension::kNodeRefresh:
      live = false;
      return 0;
    case extension::kNodeToHandler:
      return data ? static_cast<CNode::Handler*>(data)->HandleNode(this) : 0;
    case extension::kNodeRename:
      if (data && host_) {
        adaptor_->BeginUndo("NODE_SETLABEL");
        adaptor_->GetScene().Rename(host_, *static_cast<const std::string*>(data));
        adaptor_->EndUndo();
      }
      return 0;
    case extension::kNodeClone: {
      auto* copy = static_cast<StandaloneNode*>(Clone());
      if (copy && data) copy->SetParent(static_cast<CoreNode*>(data));
      return reinterpret_cast<std::intptr_t>(copy);
    }
    default:
      // The helper look is read live from the scene: a refresh has nothing to do.
      return 0;
  }
}

void StandaloneNode::Show() {
  if (host_) host_->visible = true;
}

void StandaloneNode::Hide() {
  if (host_) host_->visible = false;
}

bool StandaloneNode::IsVisible() { return host_ && host_->visible; }

void StandaloneNode::Select() {
  if (!host_) return;
  Scene& scene = adaptor_->GetScene();
  if (StandaloneAdaptorInterface::SelectionBatch()) {
    scene.Select(host_);
    return;
  }
  adaptor_->BeginUndo("Select");
  scene.ClearSelection();
  scene.Select(host_);
  adaptor_->EndUndo();
}

std::string StandaloneNode::GetDescription() {
  std::string description;
  for (const SceneNode* node = host_; node; node = node->parent) description += node->hostName + ", ";
  return description;
}

std::int32_t StandaloneNode::IsRootNode() { return host_ && host_->isRoot ? 1 : 0; }

CNode* StandaloneNode::HandOut(SceneNode* host) {
  auto* wrapper = new StandaloneNode(adaptor_, host);
  wrapper->origin = this;
  return wrapper;
}

CNode* StandaloneNode::GetParent() { return host_ && host_->parent ? HandOut(host_->parent) : nullptr; }

std::int32_t StandaloneNode::GetSceneChildCount() {
  return host_ ? static_cast<std::int32_t>(host_->children.size()) : 0;
}

CNode* StandaloneNode::GetSceneChild(std::int32_t index) {
  if (index < 0 || index >= GetSceneChildCount()) return nullptr;
  return HandOut(host_->children[static_cast<std::size_t>(index)]);
}

bool StandaloneNode::IsSameOrBelow(CNode* other) {
  const auto* node = dynamic_cast<StandaloneNode*>(other);
  if (!node || !node->host_) return false;
  for (const SceneNode* up = host_; up; up = up->parent) {
    if (up == node->host_) return true;
  }
  return false;
}

bool StandaloneNode::IsAnimated() {
  // One key holds one pose for ever: it takes two to move.
  for (const SceneNode* up = host_; up; up = up->parent) {
    if (up->track.Keys().size() > 1) return true;
  }
  return false;
}

void StandaloneNode::ReleaseWrapper(CNode* wrapper) {
  auto* node = dynamic_cast<StandaloneNode*>(wrapper);
  if (node && node->origin == this) delete node;
}

core::CoreNode* StandaloneNode::Adopt(CExtendable* instance, const std::string& nodeName) {
  if (!external) return nullptr;
  if (StandaloneNode* owned = adaptor_->FindOwnedOver(host_)) return owned;
  return new StandaloneNode(adaptor_, instance, nodeName, host_, 0);
}

CSnapshot* StandaloneNode::GetSnapshot(double time) {
  return host_ ? transforms_.Acquire(this, TickOf(time), time) : nullptr;
}

CSnapshot_Helper* StandaloneNode::GetHelperSnapshot(double time) {
  return host_ && host_->kind == ObjectKind::kHelper ? helpers_.Acquire(this, TickOf(time), time) : nullptr;
}

bool StandaloneNode::HasMeshForm() const {
  return host_ && (host_->kind == ObjectKind::kHelper || host_->kind == ObjectKind::kMesh);
}

CSnapshot_Mesh* StandaloneNode::GetMeshSnapshot(double time) {
  return HasMeshForm() ? meshes_.Acquire(this, TickOf(time), time) : nullptr;
}

CSnapshot_Lens* StandaloneNode::GetLensSnapshot(double time) {
  return host_ && host_->kind == ObjectKind::kCamera ? lenses_.Acquire(this, TickOf(time), time) : nullptr;
}

CSnapshot_Shape* StandaloneNode::GetShapeSnapshot(double time) {
  if (!host_ || host_->kind != ObjectKind::kShape) return nullptr;
  StandaloneSnapshot_Shape* shape = shapes_.Acquire(this, TickOf(time), time);
  shape->currentSpline = 0;
  return shape;
}

bool StandaloneNode::IsSameNode(CoreNode* other) {
  const auto* node = dynamic_cast<StandaloneNode*>(other);
  return node && node->host_ == host_;
}

void StandaloneNode::SetParent(CoreNode* parent) {
  if (!host_) return;
  const auto* parentNode = dynamic_cast<StandaloneNode*>(parent);
  Scene& scene = adaptor_->GetScene();
  scene.SetParent(host_, parentNode ? parentNode->host_ : nullptr, scene.clock.GetTick());
}

void StandaloneNode::InvalidateFrom(double time) {
  if (host_) adaptor_->GetScene().InvalidateFrom(host_, TickOf(time));
}

void StandaloneNode::SetHostName(const std::string& hostName) {
  if (host_) adaptor_->GetScene().Rename(host_, hostName);
}

std::string StandaloneNode::GetHostName() { return host_ ? host_->hostName : std::string(); }

void StandaloneNode::Delete(bool withHost) {
  adaptor_->DeleteNode(this, withHost);
}

core::CoreNode* StandaloneNode::Clone() {
  SceneNode* copy = host_ ? adaptor_->GetScene().CloneNode(host_) : nullptr;
  return copy ? new StandaloneNode(adaptor_, copy) : nullptr;
}

}  // namespace vuk::rgw::adaptor::standalone
