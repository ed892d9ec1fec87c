#pragma once
// Drops what a scene file no longer uses: saving replaces the keys of the
// nodes it manages, and without this every save would carry the data of
// the keys before it.

namespace tinygltf {
class Model;
}

namespace vuk::rgw::adaptor::standalone {

// Removes animation samplers that no channel uses and clips without
// channels, then accessors, buffer views and buffers that nothing refers
// to (our extras that name accessors count as references), packs
// each buffer to the bytes its views use, and renumbers every reference.
// A reference out of range becomes -1.
void PruneUnusedData(tinygltf::Model& model);

}  // namespace vuk::rgw::adaptor::standalone
