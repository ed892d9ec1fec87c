// Reads arbitrary bytes as a flat data chunk; what reads must flatten back to
// the very bytes it was read from.
#include <cstdint>
#include <cstdlib>

#include "util/datachunk.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  vuk::util::DataChunk chunk;
  if (!chunk.Read(data, size)) return 0;
  if (chunk.Flatten() != chunk.packed) std::abort();
  return 0;
}
