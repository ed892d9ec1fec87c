#pragma once
// Text form of binary values ("blob" data in XML): standard alphabet, "="
// padding, three bytes to four characters.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "util/bytes.h"

namespace vuk::util {

class Base64 {
 public:
  static std::string Encode(const std::uint8_t* data, std::size_t size);
  static std::string Encode(const Bytes& data) { return Encode(data.data(), data.size()); }

  // White space is skipped (hand-edited files wrap lines) and padding may be
  // missing. Any other character outside the alphabet, or data after the
  // padding, fails: `out` is left empty and `error` says where.
  static bool Decode(std::string_view text, Bytes& out, std::string* error = nullptr);
};

}  // namespace vuk::util
