#pragma once
// Long texts of a binary scene file out of its JSON: a node's string extra
// above a size threshold (a tool's saved state runs to megabytes) is kept
// as bytes in a buffer view of the first buffer, the binary chunk, and the
// extra holds only {"rgw_blob": {"bufferView": N}}. Reading the file turns
// it back into the text, so that the scene sees its properties as they were.
// A text file keeps them as JSON strings: its buffers are Base64 data, a
// third larger and slower to read than the string itself.

#include <cstddef>
#include <functional>
#include <string>

namespace tinygltf {
class Model;
}  // namespace tinygltf

namespace vuk::rgw::adaptor::standalone {

constexpr std::size_t kBlobThreshold = 64 * 1024;

// For a binary file, moves the long string extras of nodes into the first
// buffer, made when missing. A blob reference left from an earlier save
// names a property the scene no longer has, and goes in either form.
void MoveLongExtrasToBuffer(tinygltf::Model& model, bool binary);

// Turns each blob reference back into its text. False, with `problem` set,
// when a reference names no view or bytes outside its buffer.
bool RestoreLongExtras(tinygltf::Model& model, std::string& problem);

// Calls visit with the view number of every blob reference, which it may
// change: pruning keeps those views and renumbers them.
void ForEachBlobView(tinygltf::Model& model, const std::function<void(int& view)>& visit);

}  // namespace vuk::rgw::adaptor::standalone
