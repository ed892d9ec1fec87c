#pragma once
// The animation clips of a glTF file and the scene's transform tracks: keys
// read from the clips, and the keys of changed nodes written back into them
// while the rest of each clip stays as the file had it.

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "adaptor/standalone/transformtrack.h"

namespace tinygltf {
class Model;
}

namespace vuk::rgw::adaptor::standalone {

// One track per glTF node: the node's pose as the static pose, and the keys
// of its translation, rotation and scale channels merged onto common ticks.
// Cubic keys are taken at their values, stepped keys hold.
bool ReadTransformTracks(const tinygltf::Model& model, std::vector<TransformTrack>& tracks, std::string& problem);

// The frame rate the file's keys are meant for: the one we stored, else the
// coarsest common rate whose frames hold every key time, else 30.
std::int32_t FrameRateOf(const tinygltf::Model& model);
void StoreFrameRate(tinygltf::Model& model, std::int32_t framesPerSecond);

// Replaces the translation, rotation and scale channels of the given nodes
// with their tracks' keys, in the clip that animated the node, else in the
// first clip (made when there is none). The float times rise strictly; the
// exact ticks go beside them for our own reading.
void WriteTransformTracks(tinygltf::Model& model, int buffer,
                          const std::vector<std::pair<int, const TransformTrack*>>& nodes);

}  // namespace vuk::rgw::adaptor::standalone
