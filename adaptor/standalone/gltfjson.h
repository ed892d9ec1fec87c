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

struct JsonFacts {
  // The "uri" of each buffer, empty where a buffer has none.
  std::vector<std::string> bufferUris;
};

// False, with the problem, for nesting deeper than kMaxJsonDepth, numbers
// no double holds, and node or scene members of a type glTF doesn't allow.
// Text that is not JSON at all is left to the parser to refuse.
bool ScanJson(std::string_view text, JsonFacts& facts, std::string& problem);

}  // namespace vuk::rgw::adaptor::standalone
