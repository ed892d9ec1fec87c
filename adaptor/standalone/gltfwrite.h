#pragma once
// How a scene file is laid out when written: the file's form by its name,
// and where each buffer's bytes go.

#include <string>
#include <vector>

namespace tinygltf {
class Model;
}  // namespace tinygltf

namespace vuk::rgw::adaptor::standalone {

// ".glb" in any case of its letters.
bool HasBinaryExtension(const std::string& path);

// Where a buffer's bytes go when the file is written.
enum class BufferPlace { kEmbedded, kBinaryChunk, kOwnFile };

std::vector<BufferPlace> BufferPlaces(const tinygltf::Model& model, bool binary);

}  // namespace vuk::rgw::adaptor::standalone
