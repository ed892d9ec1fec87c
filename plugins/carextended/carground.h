#pragma once
// The 4-Wheeler's ground for one run: the surfaces linked through the
// gravity node, and the one caster that serves them. "Use Fast Ray Cast"
// puts them in a Bullet world at Start; else a stored mesh is cast through
// its tree; else each surface through the host's own ray cast; with neither
// surface nor stored mesh the car drives on the built-in plane.

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "plugins/common/vehicle/ground/groundmeshtree.h"
#include "plugins/common/vehicle/ground/hostsurfacecaster.h"
#include "sdk/cinterface.h"
#include "util/bytes.h"
#include "util/datachunk.h"

namespace vuk::rgw::addon {

// Bullet stays out of the tool's headers.
class BulletGround;
struct GroundSurface;

class CarGround {
 public:
  // The gravity node's handle and the body's, read when the surfaces are gathered.
  CarGround(CInterface*& iface, CNode*& gravity, CNode*& body);
  CarGround(const CarGround&) = delete;
  CarGround& operator=(const CarGround&) = delete;
  ~CarGround();

  // Gathers the surfaces and builds the caster the options ask for. A
  // surface Bullet can't take turns fast ray casting off, with its message:
  // then `useFastRayCast` is cleared and `rayMultiplier` set to 1.
  void Start(double time, double carLength, double gravity, bool& useFastRayCast, std::int32_t& rayMultiplier);
  // Releases the physics world and the surfaces' handles.
  void Stop();

  // The surfaces as they stand at the frame's time: the host's meshes of the
  // frame, an animated surface's pose in the world, a sub-step apart.
  void BeginFrame(double time, double subStep);
  // Gives back what BeginFrame took from the host.
  void EndFrame();

  // How many rounds of casts a ray takes: one per surface for the host's
  // caster, one for all of them otherwise; none without ground.
  std::size_t Rounds() const;
  bool Cast(std::size_t round, const GroundRay& ray, GroundHit& hit);

  // "Store Ground Mesh Data" turned on: keeps the primary surface's mesh and
  // pose at the time, with its tree unless Bullet will take it. Null on
  // success, else the message's text.
  const char* StoreMesh(double time, bool useFastRayCast);
  void ClearStoredMesh();
  bool HasStoredMesh() const { return !storedMesh_.faces.empty(); }
  const util::CMesh& StoredMesh() const { return storedMesh_; }
  const Matrix& StoredPose() const { return storedPose_; }

  // The stored mesh and its pose in saved form: empty without a stored mesh.
  util::Bytes SavedMesh() const;
  util::Bytes SavedPose() const;
  // The stored mesh and pose from their saved form (no mesh from empty
  // bytes); false when the bytes are damaged.
  static bool ReadStored(const util::Bytes& mesh, const util::Bytes& pose, util::CMesh& readMesh, Matrix& readPose);
  void SetStored(util::CMesh mesh, const Matrix& pose);

  // Rays cast since the run started: what a frame costs.
  std::size_t RaysCast() const { return raysCast_; }
  bool HasWorld() const { return bullet_ != nullptr; }
  std::size_t SurfaceCount() const { return surfaces_.size(); }

 private:
  enum class Mode { kNone, kPlane, kBullet, kTree, kHost };

  // The gravity node's parent unless it is the car's own body or a part of
  // it; null when there is none.
  CNode* PrimarySurface();
  void GatherSurfaces();
  void ReleaseSurfaces();
  // Each surface's mesh and pose at the time; false when one has no mesh.
  bool ReadSurfaces(double time, std::vector<util::CMesh>& meshes, std::vector<GroundSurface>& read);
  void BuildWorld(double time, double carLength, double gravity);

  CInterface*& iface_;
  CNode*& gravity_;
  CNode*& body_;

  Mode mode_ = Mode::kNone;
  std::vector<CNode*> surfaces_;
  std::vector<bool> animated_;
  std::vector<HostSurfaceCaster> hosts_;
  std::vector<CSnapshot_Mesh*> frameMeshes_;
  std::unique_ptr<BulletGround> bullet_;
  std::unique_ptr<GroundMeshTree> tree_;
  std::unique_ptr<GroundPlane> plane_;
  util::CMesh storedMesh_;
  Matrix storedPose_;
  std::size_t raysCast_ = 0;
};

}  // namespace vuk::rgw::addon
