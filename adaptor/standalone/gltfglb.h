#pragma once
// A binary scene file as we write it holds its long texts (the tools' saved
// states, most of a big file) after the first buffer's own bytes. Such a file
// is read in parts: a container for the glTF parser with the first buffer cut
// to its own bytes, and each text straight from the file into its string, so
// that no text is copied by the parser or held twice.

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace vuk::rgw::adaptor::standalone {

class RegularFile;

// Where the chunks of a binary glTF stand in its file, and its JSON.
struct GlbChunks {
  std::string json;
  std::uint64_t binStart = 0, binLength = 0;
};

// False for a file that is not a binary glTF with a JSON and a binary chunk.
bool ReadGlbChunks(const RegularFile& file, GlbChunks& chunks);

struct GlbParts {
  // A binary glTF: the JSON with the first buffer cut short, that buffer's
  // own bytes. The views of the texts point at its first byte.
  std::vector<unsigned char> container;
  // The long texts by the buffer view that held them.
  std::map<int, std::string> texts;
};

// False, with nothing read that counts, for a file without long texts, with
// views we don't write, or that is damaged: such a file is read whole. The
// chunks' JSON must have passed the checks on nesting first.
bool ReadGlbParts(const RegularFile& file, const GlbChunks& chunks, GlbParts& parts);

}  // namespace vuk::rgw::adaptor::standalone
