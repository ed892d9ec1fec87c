#pragma once
// A look at a scene file's JSON text before the glTF parser gets it. The
// parser turns extras into values by recursion, drops members of the wrong
// type without a word and writes numbers too large for a double as null;
// a stranger's file is refused for these here, with the place named.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace vuk::rgw::adaptor::standalone {

// glTF itself nests six deep; extras of real tools a dozen. Sixty-four
// leaves room for any honest file and keeps the parser's recursion a few
// kilobytes of stack.
constexpr std::size_t kMaxJsonDepth = 64;

// A long string member of a node's extras (a tool's saved state), decoded,
// and where its JSON string stands in the text.
struct LongNodeText {
  std::size_t node = 0;
  std::string key, text;
  std::size_t begin = 0, end = 0;  // the quotes included
};

// A member the glTF parser doesn't keep: one that glTF doesn't name, of the
// file itself or of an item of a list whose numbering a save keeps (nodes,
// meshes, materials...), or an empty "name". Its JSON as the file has it,
// for a save to put back.
struct KeptMember {
  std::string list;  // empty for a member of the file itself
  std::size_t index = 0;
  std::string key, json;
};

// An animation channel the glTF parser drops: one whose target names no
// node, as a target given by KHR_animation_pointer does. Its JSON, for the
// loader to put back.
struct NodelessChannel {
  std::size_t animation = 0, channel = 0;
  std::string json;
};

// A buffer whose data a long "data:" URI holds in Base64: where it stands in
// the text, so that the loader decodes it instead of the parser, which would
// copy it twice and decode it slowly.
struct EmbeddedBuffer {
  std::size_t buffer = 0;
  std::string header;              // "data:...;base64,"
  std::size_t begin = 0, end = 0;  // the quotes included
};

struct JsonFacts {
  // The "uri" of each buffer, empty where a buffer has none; of a data URI
  // only its scheme, "data:".
  std::vector<std::string> bufferUris;
  // Strings of node extras longer than the threshold, in the order of the text.
  std::vector<LongNodeText> longNodeTexts;
  // Buffers' data URIs longer than the threshold, in the order of the text.
  std::vector<EmbeddedBuffer> embeddedBuffers;
  std::vector<KeptMember> keptMembers;
  // In the order of the text.
  std::vector<NodelessChannel> nodelessChannels;
};

// False, with the problem, for nesting deeper than kMaxJsonDepth, numbers
// no double holds, and node or scene members of a type glTF doesn't allow.
// Text that is not JSON at all is left to the parser to refuse.
// Long node texts and data URIs are those above `longText` bytes.
bool ScanJson(std::string_view text, JsonFacts& facts, std::string& problem, std::size_t longText);

// The text with each long node text cut out, an empty string in its place,
// for the texts to be put back into the parsed nodes: the parser then never
// holds a tool's saved state. Each embedded buffer's URI becomes
// EmbeddedBufferUri(buffer), for the loader to serve its decoded data.
std::string WithoutLongValues(std::string_view text, const JsonFacts& facts);

// A relative URI no scene names: "#" starts a fragment, not a file.
std::string EmbeddedBufferUri(std::size_t buffer);

}  // namespace vuk::rgw::adaptor::standalone
