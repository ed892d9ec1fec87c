#pragma once
// Golden bytes written as hex text: pairs of digits, blanks between groups
// only for the reader.

#include <cctype>
#include <string>

#include "util/bytes.h"

namespace vuk::util::testing_support {

inline Bytes Hex(const std::string& text) {
  Bytes out;
  std::string pair;
  for (const char c : text) {
    if (std::isspace(static_cast<unsigned char>(c))) continue;
    pair += c;
    if (pair.size() == 2) {
      out.push_back(static_cast<std::uint8_t>(std::stoul(pair, nullptr, 16)));
      pair.clear();
    }
  }
  return out;
}

}  // namespace vuk::util::testing_support
