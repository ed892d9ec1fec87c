#pragma once
// The core's side of a scene node: ownership, the wrapper that handed it out,
// and the operations the core and the adaptor need beyond what a tool sees.

#include <string>
#include <vector>

#include "sdk/cnode.h"
#include "sdk/csnapshot.h"

namespace vuk::rgw::core {

class CoreNode;

// Receives the nodes of a query, in the order the query states.
class NodeList {
 public:
  virtual void Receive(std::vector<CoreNode*> nodes) = 0;

 protected:
  ~NodeList() = default;
};

// A NodeList that keeps what it receives.
class NodeVector : public NodeList {
 public:
  void Receive(std::vector<CoreNode*> received) override { nodes = std::move(received); }
  std::vector<CoreNode*> nodes;
};

class CoreNode : public CNode {
 public:
  // Markers of what belongs to the core's side; they add no operation.
  class Snapshot : public CSnapshot {};
  class Snapshot_Helper : public CSnapshot_Helper {};
  class Snapshot_Lens : public CSnapshot_Lens {};
  class Snapshot_Mesh : public CSnapshot_Mesh {};
  class Snapshot_Shape : public CSnapshot_Shape {};

  // What a tool holds for a mesh, so that it never frees a snapshot of the
  // node's pool: every operation goes to the wrapped snapshot.
  class Snapshot_Mesh_Proxy : public CSnapshot_Mesh {
   public:
    explicit Snapshot_Mesh_Proxy(CSnapshot_Mesh* wrapped) : snapshot(wrapped) {}
    void SetMesh(const util::CMesh& mesh) override { snapshot->SetMesh(mesh); }
    util::CMesh GetMesh() override { return snapshot->GetMesh(); }
    bool IntersectRay(const Vector3& origin, const Vector3& direction, double* distance, Vector3* normal) override {
      return snapshot->IntersectRay(origin, direction, distance, normal);
    }

    CSnapshot_Mesh* snapshot;
  };

  virtual void AddChild(CoreNode* child) { children.push_back(child); }
  virtual void GetChildren(NodeList& list) { list.Receive(children); }
  // Deletes this object; the host object stays.
  virtual void DestroySelf() { delete this; }
  // For an external wrapper: the owned node of the same scene object, made
  // when missing. Null when this node isn't external.
  virtual CoreNode* Adopt(CExtendable* instance, const std::string& nodeName) = 0;
  virtual CSnapshot* GetSnapshot(double time) = 0;
  virtual CSnapshot_Helper* GetHelperSnapshot(double time) = 0;
  virtual CSnapshot_Mesh* GetMeshSnapshot(double time) = 0;
  virtual CSnapshot_Lens* GetLensSnapshot(double time) = 0;
  virtual CSnapshot_Shape* GetShapeSnapshot(double time) = 0;
  // Each marks the snapshot free for reuse; null is ignored.
  virtual void ReleaseShapeSnapshot(CSnapshot_Shape* snapshot) = 0;
  virtual void ReleaseLensSnapshot(CSnapshot_Lens* snapshot) = 0;
  virtual void ReleaseMeshSnapshot(CSnapshot_Mesh* snapshot) = 0;
  virtual void ReleaseHelperSnapshot(CSnapshot_Helper* snapshot) = 0;
  virtual void ReleaseSnapshot(CSnapshot* snapshot) = 0;
  virtual bool IsSameNode(CoreNode* other) = 0;
  // Links below the other node keeping the world pose; null unlinks.
  virtual void SetParent(CoreNode* parent) = 0;
  // Removes every key of this node from that time on.
  virtual void InvalidateFrom(double time) = 0;
  virtual void SetHostName(const std::string& hostName) = 0;
  virtual std::string GetHostName() = 0;
  // Leaves the adaptor's list, undoably; with the flag the scene object goes too.
  virtual void Delete(bool withHost) = 0;
  // A wrapper of a new copy of the scene object.
  virtual CoreNode* Clone() = 0;

  // The owning instance, by its CExtendable side; null for a foreign object.
  CExtendable* owner = nullptr;
  // The node that handed this wrapper out; null for created nodes.
  CoreNode* origin = nullptr;
  // Cleared when the host-side cache of this node is not to be trusted.
  bool live = true;
  // Linked below by AddChild, not owned.
  std::vector<CoreNode*> children;
};

}  // namespace vuk::rgw::core
