// Unpacks arbitrary bytes as a compressed block, and packs them to check that
// any byte string survives the round trip.
#include <cstdint>
#include <cstdlib>

#include "util/compressedblock.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using vuk::util::Bytes;
  using vuk::util::CompressedBlock;
  Bytes out;
  // Well below the fuzzer's memory limit: a large claim must be refused, not met.
  CompressedBlock::Unpack(data, size, out, nullptr, std::size_t{64} << 20);

  const Bytes packed = CompressedBlock::Pack(data, size);
  Bytes back;
  if (CompressedBlock::Unpack(packed, back) != CompressedBlock::Unpacked::kUnpacked) std::abort();
  if (back != Bytes(data, data + size)) std::abort();
  return 0;
}
