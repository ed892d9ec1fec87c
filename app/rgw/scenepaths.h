#pragma once
// Where scene nodes go: their world positions over a stretch of scene time,
// and the height of a ground mesh below a point, found by casting a ray down
// onto the mesh.

#include <string>
#include <vector>

#include "adaptor/standalone/clock.h"
#include "adaptor/standalone/scenenode.h"

namespace vuk::app {

using rgw::adaptor::standalone::Tick;

struct NodePath {
  std::string name;
  std::vector<util::Vector3<double>> points;  // world positions, in time order
};

// The first and last key of the node and of the nodes above it (their keys
// move it too); false when none of them has keys.
bool KeySpan(const rgw::adaptor::standalone::SceneNode& node, Tick& first, Tick& last);

// The ticks a path is drawn through: the scene's frames from `from` to `to`,
// both ends, and the keys between them of the node and the nodes above it.
std::vector<Tick> PathTicks(const rgw::adaptor::standalone::SceneNode& node,
                            const rgw::adaptor::standalone::Clock& clock, Tick from, Tick to);

NodePath TracePath(const rgw::adaptor::standalone::SceneNode& node, const std::vector<Tick>& ticks);

// The height of the ground at a point of the ground plane.
class Ground {
 public:
  virtual ~Ground() = default;
  // False where there is no ground at (x, z).
  virtual bool HeightAt(double x, double z, double& height) const = 0;
};

// A node's mesh as it stands at one tick: the height is that of its highest
// face at (x, z), as a ray cast straight down from above the mesh meets it.
class MeshGround : public Ground {
 public:
  // The node must have faces.
  MeshGround(const rgw::adaptor::standalone::SceneNode& node, Tick tick);
  bool HeightAt(double x, double z, double& height) const override;

 private:
  const rgw::adaptor::standalone::MeshRayTree& tree_;
  util::Matrix<double> world_;
  util::Matrix<double> local_;  // world to the mesh's own frame
  double above_ = 0;            // a height above every vertex, in the world
};

}  // namespace vuk::app
