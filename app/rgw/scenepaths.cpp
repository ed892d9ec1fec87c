#include "app/rgw/scenepaths.h"

#include <algorithm>

namespace vuk::app {

using rgw::adaptor::standalone::Clock;
using rgw::adaptor::standalone::SceneNode;

namespace {

// The node and the nodes above it, up to the root.
template <typename Visit>
void ForEachUp(const SceneNode& node, Visit visit) {
  for (const SceneNode* up = &node; up && !up->isRoot; up = up->parent) visit(*up);
}

}  // namespace

bool KeySpan(const SceneNode& node, Tick& first, Tick& last) {
  bool found = false;
  ForEachUp(node, [&](const SceneNode& up) {
    const auto& keys = up.track.Keys();
    if (keys.empty()) return;
    first = found ? std::min(first, keys.front().tick) : keys.front().tick;
    last = found ? std::max(last, keys.back().tick) : keys.back().tick;
    found = true;
  });
  return found;
}

std::vector<Tick> PathTicks(const SceneNode& node, const Clock& clock, Tick from, Tick to) {
  std::vector<Tick> ticks{from, to};
  const Tick step = clock.GetTicksPerFrame();
  // The first frame after `from`: ticks count from 0, frames lie on multiples of the step.
  for (Tick frame = (from / step + 1) * step; frame < to; frame += step) ticks.push_back(frame);
  ForEachUp(node, [&](const SceneNode& up) {
    for (const auto& key : up.track.Keys()) {
      if (key.tick > from && key.tick < to) ticks.push_back(key.tick);
    }
  });
  std::sort(ticks.begin(), ticks.end());
  ticks.erase(std::unique(ticks.begin(), ticks.end()), ticks.end());
  return ticks;
}

NodePath TracePath(const SceneNode& node, const std::vector<Tick>& ticks) {
  NodePath path{node.hostName, {}};
  path.points.reserve(ticks.size());
  for (const Tick tick : ticks) path.points.push_back(node.World(tick).GetTranslation());
  return path;
}

MeshGround::MeshGround(const SceneNode& node, Tick tick)
    : tree_(node.RayTree()), world_(node.World(tick)), local_(world_.Inverse()) {
  bool first = true;
  for (const auto& vertex : node.mesh.vertices) {
    const double y = world_.TransformPoint(vertex).y;
    above_ = first ? y : std::max(above_, y);
    first = false;
  }
  above_ += 1;
}

bool MeshGround::HeightAt(double x, double z, double& height) const {
  const util::Vector3<double> origin = local_.TransformPoint({x, above_, z});
  const util::Vector3<double> down = local_.TransformVector({0, -1, 0});
  rgw::adaptor::standalone::RayHit hit;
  if (!tree_.Intersect(origin, down, hit)) return false;
  height = world_.TransformPoint(origin + down * hit.distance).y;
  return true;
}

}  // namespace vuk::app
