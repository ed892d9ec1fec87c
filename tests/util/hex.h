#pragma once
// Golden bytes written as hex text: pairs of digits, blanks between groups
// only for the reader.

#include <algorithm>
#include <cctype>
#include <string>

#include "util/bytes.h"

namespace vuk::util::testing_support {

inline Bytes Hex(std::string text) {
  text.erase(std::remove_if(text.begin(), text.end(), [](unsigned char c) { return std::isspace(c); }), text.end());
  Bytes out;
  for (std::size_t i = 0; i + 1 < text.size(); i += 2) {
    out.push_back(static_cast<std::uint8_t>(std::stoul(text.substr(i, 2), nullptr, 16)));
  }
  return out;
}

}  // namespace vuk::util::testing_support
