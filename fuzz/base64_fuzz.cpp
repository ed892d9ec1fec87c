// Decodes arbitrary text as base64; what decodes must encode to a text that
// decodes to the same bytes.
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "util/base64.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using vuk::util::Base64;
  using vuk::util::Bytes;
  Bytes decoded;
  if (!Base64::Decode(std::string_view(reinterpret_cast<const char*>(data), size), decoded)) return 0;
  Bytes again;
  if (!Base64::Decode(Base64::Encode(decoded), again) || again != decoded) std::abort();
  return 0;
}
