#pragma once
// Animation channels whose target is a property named by a JSON pointer
// (KHR_animation_pointer) rather than a node's path. The glTF parser drops
// them and would write them with a node of -1: they are put back after
// reading, and their targets cleaned when written.

#include <string>
#include <vector>

#include <nlohmann/json_fwd.hpp>

#include "adaptor/standalone/gltfjson.h"

namespace tinygltf {
class Model;
struct AnimationChannel;
}  // namespace tinygltf

namespace vuk::rgw::adaptor::standalone {

constexpr const char* kAnimationPointer = "KHR_animation_pointer";

// Puts the dropped channels back at their places, with a node of -1.
void PutBackNodelessChannels(tinygltf::Model& model, const std::vector<NodelessChannel>& channels);

// The pointer a channel animates; empty for a channel of a node's path.
std::string PointerOf(const tinygltf::AnimationChannel& channel);
tinygltf::AnimationChannel PointerChannel(int sampler, const std::string& pointer);

// Lists the extension as used while some channel is a pointer channel, and
// only then; it is never required, so that viewers without it still play
// the rest.
void DeclarePointerExtension(tinygltf::Model& model);

// True when the model has a channel whose target names no node.
bool HasNodelessChannels(const tinygltf::Model& model);
// Removes the node of -1 the writer gives the targets of such channels.
void DropNodelessTargets(nlohmann::json& json);

}  // namespace vuk::rgw::adaptor::standalone
