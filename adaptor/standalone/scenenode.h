#pragma once
// One object of the embedded scene: its place in the tree, its look and
// kind, its per-node strings, and its transform over time.

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "adaptor/standalone/meshraytree.h"
#include "adaptor/standalone/transformtrack.h"
#include "util/mesh.h"

namespace vuk::rgw::adaptor::standalone {

enum class ObjectKind { kEmpty, kHelper, kMesh, kCamera, kShape, kLight };

// The lens: its values keyed over time like the transform, so that a tool
// that changes them each frame of a recording leaves every frame's value.
struct CameraData {
  ScalarTrack fovDegrees{ScalarKey{0, 45.0}};
  std::int32_t fovType = 0;  // 0 horizontal, 1 vertical, 2 diagonal
  ScalarTrack targetDistance{ScalarKey{0, 1.0}};

  bool HasKeys() const { return !fovDegrees.Keys().empty() || !targetDistance.Keys().empty(); }
};

// Splines as polylines through their points, parameterised by length.
struct ShapeData {
  std::vector<std::vector<util::Vector3<double>>> splines;

  static double Length(const std::vector<util::Vector3<double>>& spline);
  // u from 0 to 1 along the length; clamped.
  static util::Vector3<double> PointAt(const std::vector<util::Vector3<double>>& spline, double u);
};

class SceneNode {
 public:
  using Handle = std::uint32_t;

  SceneNode(Handle nodeHandle, ObjectKind objectKind, std::string name)
      : handle(nodeHandle), kind(objectKind), hostName(std::move(name)) {}

  // The pose relative to the parent, and in the world.
  util::Matrix<double> Local(Tick tick) const { return track.Evaluate(tick); }
  util::Matrix<double> World(Tick tick) const;
  // True when the node is in the scene tree (not deleted).
  bool IsInScene() const;

  void SetMesh(const util::CMesh& newMesh);
  // Built at the first ray and kept until the mesh changes.
  const MeshRayTree& RayTree() const;

  const Handle handle;
  ObjectKind kind;
  std::string hostName;
  SceneNode* parent = nullptr;
  std::vector<SceneNode*> children;
  bool visible = true;
  bool selected = false;
  bool isRoot = false;
  std::map<std::string, std::string> properties;

  util::CMesh mesh;
  // Counts SetMesh calls, so that a viewer can tell that its copy is stale.
  std::uint64_t meshRevision = 0;
  bool wireframe = true;
  bool backfaceCull = false;
  CameraData camera;
  ShapeData shape;
  TransformTrack track;
  // The undo hold that last saved the track; 0 for none (see Scene::SaveTrack).
  std::uint64_t trackSavedInHold = 0;
  // Set by the first change of the track: a file writes new keys only for
  // such nodes and keeps the animation of the others as it read it.
  bool trackChanged = false;
  // The same two for the lens.
  std::uint64_t lensSavedInHold = 0;
  bool lensChanged = false;

 private:
  mutable std::unique_ptr<MeshRayTree> rayTree_;
};

}  // namespace vuk::rgw::adaptor::standalone
