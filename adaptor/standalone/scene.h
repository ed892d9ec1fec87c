#pragma once
// The embedded host's scene: a tree of nodes under a root, a clock, the
// key-recording switch and the undo buffer. Every change it makes while a
// hold is open is recorded, so that one undo takes back a whole recording.

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "adaptor/standalone/clock.h"
#include "adaptor/standalone/scenenode.h"
#include "adaptor/standalone/undobuffer.h"

namespace vuk::rgw::adaptor::standalone {

class PlaceRecord;

class Scene {
 public:
  Scene();
  Scene(const Scene&) = delete;
  Scene& operator=(const Scene&) = delete;

  SceneNode& Root() { return *nodes_.front(); }
  // Appended below the parent (the root when null).
  SceneNode* CreateNode(ObjectKind kind, const std::string& hostName, SceneNode* parent = nullptr);
  // Takes the node and what hangs below it out of the tree; undo brings it back.
  void DeleteNode(SceneNode* node);
  // A copy of the node's object and pose beside it.
  SceneNode* CloneNode(SceneNode* node);
  // Keeps the world pose at every key, and at the given tick without keys.
  void SetParent(SceneNode* node, SceneNode* newParent, Tick keepAt);
  void Rename(SceneNode* node, const std::string& hostName);

  // A write at a tick: a key when key recording is on. Otherwise no key: the
  // pose at all times for a node without keys, and the live pose for one
  // with keys (see TransformTrack).
  void WriteLocal(SceneNode* node, Tick tick, const util::Matrix<double>& local);
  void WriteWorld(SceneNode* node, Tick tick, const util::Matrix<double>& world);
  // A lens value (CameraData::fovDegrees or targetDistance) written at a
  // tick, keyed or live as a transform is.
  void WriteLens(SceneNode* node, ScalarTrack CameraData::*value, Tick tick, double wanted);
  // Removes the transform and lens keys at and after the tick.
  void InvalidateFrom(SceneNode* node, Tick tick);

  // Null for a handle that was never given out.
  SceneNode* Find(SceneNode::Handle handle) const;
  // Depth first from the root, a parent before its children, children in order.
  void Walk(const std::function<void(SceneNode&)>& visit);

  void ClearSelection();
  void Select(SceneNode* node);
  std::vector<SceneNode*> Selection();

  Clock clock;
  UndoBuffer undo;
  bool animate = false;

 private:
  friend class PlaceRecord;
  SceneNode* MakeNode(ObjectKind kind, const std::string& hostName);
  void Record(std::unique_ptr<UndoRecord> record);
  // Marks the track changed, and keeps it for undo before its first change
  // in the open hold, so that a recording costs one record per node, not one
  // per key.
  void SaveTrack(SceneNode* node);
  void SaveLens(SceneNode* node);
  template <typename Track>
  void SaveOnce(Track& track, bool& changed, std::uint64_t& savedInHold);
  // Moves a node to a new place in the tree (null parent: out of the tree).
  void Attach(SceneNode* node, SceneNode* parent, std::size_t index);
  static std::size_t IndexIn(const SceneNode* node);

  std::vector<std::unique_ptr<SceneNode>> nodes_;
};

}  // namespace vuk::rgw::adaptor::standalone
