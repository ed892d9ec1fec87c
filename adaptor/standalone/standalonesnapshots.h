#pragma once
// The snapshot kinds of the embedded host. A node keeps each kind in a pool
// and hands the same objects out again, so a warm frame allocates nothing.

#include <memory>
#include <vector>

#include "adaptor/standalone/scenenode.h"
#include "core/corenode.h"

namespace vuk::rgw::adaptor::standalone {

class StandaloneNode;

// What every pooled snapshot has: its node, its tick and whether it is out.
struct SnapshotState {
  StandaloneNode* node = nullptr;
  bool inUse = false;
  Tick tick = 0;
  double time = 0;
  SceneNode& Host() const;
};

class StandaloneSnapshot : public core::CoreNode::Snapshot, public SnapshotState {
 public:
  void SetLocalTransform(const Matrix& matrix) override;
  Matrix GetLocalTransform() override;
  Matrix GetWorldTransform() override;
  void SetWorldTransform(const Matrix& matrix) override;
  double GetTime() override { return time; }
};

class StandaloneSnapshot_Helper : public core::CoreNode::Snapshot_Helper, public SnapshotState {
 public:
  void SetMesh(const util::CMesh& mesh) override;
  util::CMesh GetMesh() override;
  void SetWireframe(bool wireframe) override;
  void SetBackfaceCull(bool cull) override;
};

class StandaloneSnapshot_Mesh : public core::CoreNode::Snapshot_Mesh, public SnapshotState {
 public:
  void SetMesh(const util::CMesh& mesh) override;
  util::CMesh GetMesh() override;
  bool IntersectRay(const Vector3& origin, const Vector3& direction, double* distance, Vector3* normal) override;
};

class StandaloneSnapshot_Lens : public core::CoreNode::Snapshot_Lens, public SnapshotState {
 public:
  void SetFOV(double degrees) override;
  double GetFOV() override;
  std::int32_t GetFOVType() override;
  void SetFOVType(std::int32_t type) override;
  void SetTargetDistance(double distance) override;
  double GetTargetDistance() override;
  double GetTime() override { return time; }
  Matrix GetProjection() override { return Matrix(); }
};

class StandaloneSnapshot_Shape : public core::CoreNode::Snapshot_Shape, public SnapshotState {
 public:
  std::int32_t GetSplineCount() override;
  std::int32_t GetCurrentSpline() override { return currentSpline; }
  std::int32_t SetCurrentSpline(std::int32_t index) override;
  double GetLength() override;
  Vector3 GetPoint(double u) override;
  Vector3 GetTangent(double u) override;

  std::int32_t currentSpline = 0;
};

// Snapshots of one kind for one node, reused, freed only with the node.
template <typename Kind>
class SnapshotPool {
 public:
  // The last free entry, or a new one when all are out.
  Kind* Acquire(StandaloneNode* node, Tick tick, double time) {
    Kind* snapshot = nullptr;
    for (auto it = entries_.rbegin(); it != entries_.rend() && !snapshot; ++it) {
      if (!(*it)->inUse) snapshot = it->get();
    }
    if (!snapshot) {
      entries_.push_back(std::make_unique<Kind>());
      snapshot = entries_.back().get();
    }
    snapshot->node = node;
    snapshot->inUse = true;
    snapshot->tick = tick;
    snapshot->time = time;
    return snapshot;
  }

  // Marks it free; a snapshot of another pool or null is ignored.
  template <typename Base>
  void Release(Base* snapshot) {
    for (auto& entry : entries_) {
      if (static_cast<Base*>(entry.get()) == snapshot) entry->inUse = false;
    }
  }

  std::size_t Size() const { return entries_.size(); }

 private:
  std::vector<std::unique_ptr<Kind>> entries_;
};

}  // namespace vuk::rgw::adaptor::standalone
