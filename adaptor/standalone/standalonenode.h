#pragma once
// A scene node of the embedded host as the core and tools see it: either a
// node a tool made and owns, listed by the adaptor, or a wrapper of an object
// a tool was linked to.

#include <cstdint>
#include <string>
#include <vector>

#include "adaptor/standalone/standalonesnapshots.h"
#include "core/corenode.h"

namespace vuk::rgw::adaptor::standalone {

class StandaloneAdaptorInterface;

class StandaloneNode : public core::CoreNode {
 public:
  // A node made for an instance; it joins the adaptor's list.
  StandaloneNode(StandaloneAdaptorInterface* adaptor, CExtendable* instance, const std::string& nodeName,
                 SceneNode* host, std::intptr_t extraWord);
  // A wrapper of an existing object; name and owner come from an owned node
  // over the same object when there is one, else the name is the host's.
  StandaloneNode(StandaloneAdaptorInterface* adaptor, SceneNode* host);
  ~StandaloneNode() override;

  std::intptr_t Extension(std::int32_t id, void* data) override;
  std::vector<std::int32_t> ExtensionIds() override { return {10, 11, 17, 37, 31, 32}; }

  void Show() override;
  void Hide() override;
  bool IsVisible() override;
  void Select() override;
  bool IsExternal() override { return external; }
  std::string GetDescription() override;
  std::int32_t IsRootNode() override;
  CNode* GetParent() override;
  void ReleaseWrapper(CNode* wrapper) override;
  std::int32_t GetSceneChildCount() override;
  CNode* GetSceneChild(std::int32_t index) override;
  bool IsSameOrBelow(CNode* other) override;
  bool IsAnimated() override;

  CoreNode* Adopt(CExtendable* instance, const std::string& nodeName) override;
  CSnapshot* GetSnapshot(double time) override;
  CSnapshot_Helper* GetHelperSnapshot(double time) override;
  CSnapshot_Mesh* GetMeshSnapshot(double time) override;
  CSnapshot_Lens* GetLensSnapshot(double time) override;
  CSnapshot_Shape* GetShapeSnapshot(double time) override;
  void ReleaseShapeSnapshot(CSnapshot_Shape* snapshot) override { shapes_.Release(snapshot); }
  void ReleaseLensSnapshot(CSnapshot_Lens* snapshot) override { lenses_.Release(snapshot); }
  void ReleaseMeshSnapshot(CSnapshot_Mesh* snapshot) override { meshes_.Release(snapshot); }
  void ReleaseHelperSnapshot(CSnapshot_Helper* snapshot) override { helpers_.Release(snapshot); }
  void ReleaseSnapshot(CSnapshot* snapshot) override { transforms_.Release(snapshot); }
  bool IsSameNode(CoreNode* other) override;
  void SetParent(CoreNode* parent) override;
  void InvalidateFrom(double time) override;
  void SetHostName(const std::string& hostName) override;
  std::string GetHostName() override;
  void Delete(bool withHost) override;
  CoreNode* Clone() override;

  SceneNode* GetHostNode() const { return host_; }
  StandaloneAdaptorInterface* GetAdaptor() const { return adaptor_; }
  // How many snapshots of the transform kind exist, in use or not.
  std::size_t TransformPoolSize() const { return transforms_.Size(); }

  bool external;
  // The callback word given at creation.
  std::intptr_t extra = 0;

 private:
  Tick TickOf(double time) const;
  bool HasMeshForm() const;
  // A wrapper of another scene object that this node hands out.
  CNode* HandOut(SceneNode* host);

  StandaloneAdaptorInterface* adaptor_;
  SceneNode* host_;
  SnapshotPool<StandaloneSnapshot> transforms_;
  SnapshotPool<StandaloneSnapshot_Helper> helpers_;
  SnapshotPool<StandaloneSnapshot_Mesh> meshes_;
  SnapshotPool<StandaloneSnapshot_Lens> lenses_;
  SnapshotPool<StandaloneSnapshot_Shape> shapes_;
};

}  // namespace vuk::rgw::adaptor::standalone
