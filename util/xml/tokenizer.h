#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace vuk::util::xml {

struct Token {
  enum Kind { kText, kOpen, kClose, kEmptyTag, kComment };
  Kind kind;
  // Tags: what stands between the markers, raw. Text: decoded once.
  std::string text;
  // Text that held no "&" at all: no decoding can change it. Saved states
  // are megabytes of such text.
  bool plain = false;
};

// Splits markup into tokens up to the end or a NUL. Knows no quotes: a ">"
// inside an attribute value ends the tag, as files written earlier expect.
std::vector<Token> Tokenize(std::string_view markup);

}  // namespace vuk::util::xml
