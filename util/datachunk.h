#pragma once
// A tree of named binary blocks. Tools save their state as one chunk whose
// children hold the values under keys; the flat form is little-endian so that
// saved state reads the same everywhere.

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "util/bytes.h"

namespace vuk::util {

class DataChunk {
 public:
  static constexpr std::int32_t kMaxNameLength = 256;
  // No saved state nests deeply; a limit keeps hostile blocks off the stack.
  static constexpr int kMaxDepth = 256;
  static constexpr std::size_t kHeaderSize = 12;

  DataChunk() = default;
  DataChunk(std::string chunkName, Bytes chunkData) : data(std::move(chunkData)), name(std::move(chunkName)) {}

  // Appends a child and answers it.
  DataChunk& AddChild(const std::string& childName, Bytes childData = Bytes());
  DataChunk& AddChild(const std::string& childName, const void* bytes, std::size_t size);
  // The first child of that name, or null.
  const DataChunk* FindChild(const std::string& childName) const;

  // The flat form of this chunk and all below it.
  Bytes Flatten() const;
  void FlattenTo(Bytes& out) const;
  std::size_t FlatSize() const;

  // Reads a flat block; the chunk keeps the block in `packed`. Trailing bytes
  // after the chunk are allowed. On failure the chunk is left empty and
  // `error` tells where and what was wrong.
  bool Read(const std::uint8_t* block, std::size_t size, std::string* error = nullptr);
  bool Read(const Bytes& block, std::string* error = nullptr) { return Read(block.data(), block.size(), error); }

  Bytes packed;
  std::vector<DataChunk> children;
  Bytes data;
  std::string name;

 private:
  bool ReadBody(ByteReader& reader, int depth, std::string* error);
};

}  // namespace vuk::util
