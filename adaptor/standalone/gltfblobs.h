#pragma once
// Long texts of a binary scene file out of its JSON: a node's string extra
// above a size threshold (a tool's saved state runs to megabytes) is kept
// as bytes in a buffer view of the first buffer, the binary chunk, and the
// extra holds only {"rgw_blob": {"bufferView": N}}. Reading the file turns
// it back into the text, so that the scene sees its properties as they were.
// So does a text file whose buffers are files beside it; one whose buffers
// are Base64 data keeps them as JSON strings, which are a third smaller and
// quicker to read than Base64, written into the file straight from the text.

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace tinygltf {
class Model;
}  // namespace tinygltf


namespace vuk::rgw::adaptor::standalone {

class JsonSplicer;

constexpr std::size_t kBlobThreshold = 64 * 1024;

// The long texts taken out of a model, in the order of their views. Their
// views lie past the first buffer's own bytes, where the writer puts them,
// each at a four-byte boundary: they are never copied into the buffer.
struct LongTexts {
  std::vector<std::string> texts;
  // The first buffer's length with them after its own bytes.
  std::size_t Length(std::size_t ownBytes) const;
};

// Moves the long string extras of nodes out of the model, leaving blob
// references; for files whose first buffer is written as bytes, not Base64.
LongTexts TakeLongExtras(tinygltf::Model& model);

// For a text file whose data is Base64: moves the long string extras out of
// the model into the splicer, leaving its marks, so that the JSON writer
// never copies them.
void MarkLongExtras(tinygltf::Model& model, JsonSplicer& splicer);

// Drops the blob references an earlier save left: their texts are the
// scene's properties now, written again by the next save. Pruning then
// frees their bytes before the new ones are added.
void ForgetLongExtras(tinygltf::Model& model);

// Turns each blob reference back into its text: the one `texts` holds for
// its view, moved out, else the view's bytes. False, with `problem` set, when
// a reference names no view or bytes outside its buffer.
bool RestoreLongExtras(tinygltf::Model& model, std::map<int, std::string>& texts, std::string& problem);

// Calls visit with the view number of every blob reference, which it may
// change: pruning keeps those views and renumbers them.
void ForEachBlobView(tinygltf::Model& model, const std::function<void(int& view)>& visit);

}  // namespace vuk::rgw::adaptor::standalone
