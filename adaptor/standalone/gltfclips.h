#pragma once
// The animation clips of a glTF file and the scene's transform tracks: keys
// read from the clips, and the keys of changed nodes written back into them
// while the rest of each clip stays as the file had it.

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "adaptor/standalone/gltfdata.h"
#include "adaptor/standalone/transformtrack.h"

namespace tinygltf {
class Model;
class Value;
struct AnimationSampler;
}

namespace vuk::rgw::adaptor::standalone {

// One track per glTF node: the node's pose as the static pose, and the keys
// of its translation, rotation and scale channels merged onto common ticks.
// Cubic keys are taken at their values, stepped keys hold.
bool ReadTransformTracks(const tinygltf::Model& model, std::vector<TransformTrack>& tracks, std::string& problem);

// The keys of a sampler of single numbers: exact ticks when we wrote them
// beside the times, cubic keys at their values.
bool ReadScalarKeys(AccessorReader& reader, const tinygltf::AnimationSampler& sampler, std::vector<Tick>& ticks,
                    std::vector<double>& values, std::string& problem);

// What a sampler we write says beside its float times: the exact ticks of
// its keys, when each fits in 32 bits; else null.
tinygltf::Value TickExtras(tinygltf::Model& model, int buffer, const std::vector<Tick>& ticks);
// Float times that rise strictly: two ticks that round to one float are
// a float step apart, which glTF asks of key times.
std::vector<float> RisingTimes(const std::vector<Tick>& ticks);

// The first clip with a channel on the node; -1 for none.
int ClipAnimating(const tinygltf::Model& model, int node);

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
