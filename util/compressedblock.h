#pragma once
// The system's own byte compressor: a Huffman code over byte values with a
// fixed header and tree-building rule, so that blocks written by any
// installation read back everywhere.

#include <cstddef>
#include <cstdint>
#include <string>

#include "util/bytes.h"

namespace vuk::util {

class CompressedBlock {
 public:
  static constexpr std::uint32_t kMagic = 0x5331CA;
  static constexpr std::uint32_t kVersion = 100;
  static constexpr std::size_t kHeaderSize = 16;
  static constexpr std::size_t kTableEntrySize = 5;
  // Above this, a block is refused rather than unpacked: a header can claim
  // up to 4 GiB, and a one-symbol block holds any length in 21 bytes.
  static constexpr std::size_t kDefaultMaxUnpackedSize = std::size_t{512} << 20;

  // The most that a block of `blockSize` bytes unpacks to when it codes two
  // or more byte values: every code takes a bit at least. Only a run of one
  // byte value packs tighter, so a caller whose content never is one (any
  // markup) passes this as its limit, and a short block can't claim gigabytes.
  static constexpr std::size_t MostUnpackedFromCode(std::size_t blockSize) { return blockSize * 8; }

  enum class Unpacked {
    kPlain,       // not a compressed block: the bytes are passed on as they are
    kUnpacked,    // a compressed block, decoded
    kDamaged,     // looks like a compressed block but cannot be decoded
  };

  static Bytes Pack(const std::uint8_t* data, std::size_t size);
  static Bytes Pack(const Bytes& data) { return Pack(data.data(), data.size()); }
  static Bytes Pack(const std::string& text);

  // Decodes a block into `out`. A block whose header doesn't match (magic,
  // version, more than 256 symbols) is taken as uncompressed and copied
  // unchanged. On damage `out` is left empty and `error` tells why.
  static Unpacked Unpack(const std::uint8_t* data, std::size_t size, Bytes& out, std::string* error = nullptr,
                         std::size_t maxUnpackedSize = kDefaultMaxUnpackedSize);
  static Unpacked Unpack(const Bytes& block, Bytes& out, std::string* error = nullptr) {
    return Unpack(block.data(), block.size(), out, error);
  }
};

}  // namespace vuk::util
