#pragma once
// Snapshots that give themselves back: a tool takes one for a node and a time
// and can't forget its release, whichever way the block is left.

#include "sdk/cinterface.h"

namespace vuk::rgw::addon {

template <typename Snapshot, Snapshot* (CInterface::*Get)(CNode*, double), void (CInterface::*Put)(Snapshot*)>
class ScopedSnapshot {
 public:
  // Null, and so false, for a null node or a node without that kind.
  ScopedSnapshot(CInterface* iface, CNode* node, double time) : iface_(iface), snapshot_((iface->*Get)(node, time)) {}
  ~ScopedSnapshot() {
    if (snapshot_) (iface_->*Put)(snapshot_);
  }
  ScopedSnapshot(const ScopedSnapshot&) = delete;
  ScopedSnapshot& operator=(const ScopedSnapshot&) = delete;

  explicit operator bool() const { return snapshot_ != nullptr; }
  Snapshot* operator->() const { return snapshot_; }

 private:
  CInterface* iface_;
  Snapshot* snapshot_;
};

using TransformSnapshot =
    ScopedSnapshot<CSnapshot, &CInterface::GetTransformSnapshot, &CInterface::ReleaseTransformSnapshot>;
using HelperSnapshot =
    ScopedSnapshot<CSnapshot_Helper, &CInterface::GetHelperSnapshot, &CInterface::ReleaseHelperSnapshot>;
using LensSnapshot = ScopedSnapshot<CSnapshot_Lens, &CInterface::GetLensSnapshot, &CInterface::ReleaseLensSnapshot>;
using MeshSnapshot = ScopedSnapshot<CSnapshot_Mesh, &CInterface::GetMeshSnapshot, &CInterface::ReleaseMeshSnapshot>;

}  // namespace vuk::rgw::addon
