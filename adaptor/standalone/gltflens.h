#pragma once
// The lens of a camera node in a glTF file. glTF knows one field of view,
// the vertical `yfov` in radians, and animates it through
// KHR_animation_pointer; the lens's own type, its exact degrees, its keys'
// exact ticks and values and its target distance go beside them in extras
// of ours, so that we read back exactly what we wrote while viewers play
// the field of view.

#include <cstdint>
#include <string>

#include "adaptor/standalone/gltfdata.h"
#include "adaptor/standalone/scenenode.h"

namespace tinygltf {
class Model;
struct Node;
struct Camera;
}  // namespace tinygltf

namespace vuk::rgw::adaptor::standalone {

// A camera without an aspect of its own is shown at the viewport's, which
// the scene doesn't keep; 16:9 is that of nearly every screen and render.
constexpr double kDefaultAspect = 16.0 / 9.0;

// glTF's yfov, in radians, of a field of view in degrees of the given type
// (0 horizontal, 1 vertical, 2 diagonal) on a picture of the given aspect,
// width over height.
double VerticalFov(double degrees, std::int32_t type, double aspect);

// The aspect a camera's field of view is converted with.
double AspectOf(const tinygltf::Camera& camera);

// A camera node's lens: ours as we wrote it, or the file's yfov, keyed by
// the pointer channels on it, as a vertical lens.
bool ReadLens(const tinygltf::Model& model, const tinygltf::Node& node, AccessorReader& reader, CameraData& lens,
              std::string& problem);

// Writes a camera node's lens into the node (made a camera of its own when
// it has none) and its extras. A lens that changed replaces the channels on
// its camera's yfov with its keys; one that didn't leaves them as they are.
void WriteLens(tinygltf::Model& model, int buffer, int node, const CameraData& lens, bool changed);

}  // namespace vuk::rgw::adaptor::standalone
