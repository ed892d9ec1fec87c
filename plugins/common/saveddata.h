#pragma once
// A tool's saved bytes as one chunk of the tool's own name: a version entry
// first, then the tool's children. A load reads and checks the whole chunk
// before the tool takes anything from it, so that a refused load changes
// nothing.

#include <cstddef>
#include <cstdint>
#include <string>

#include "sdk/cinterface.h"
#include "util/datachunk.h"

namespace vuk::rgw::addon {

class SavedData {
 public:
  SavedData(std::string chunkName, std::int32_t version) : chunkName_(std::move(chunkName)), version_(version) {}

  // A chunk with the version entry; the tool adds its children and stores it.
  util::DataChunk Begin() const;
  // Hands the chunk's flat form to the instance.
  static void Store(CInterface* iface, const util::DataChunk& chunk);
  // The instance's saved bytes as this chunk; false when they are missing,
  // damaged, of another chunk or of another version.
  bool Read(CInterface* iface, util::DataChunk& chunk) const;
  // The child's bytes when it has exactly that size, otherwise null.
  static const util::Bytes* Child(const util::DataChunk& chunk, const std::string& key, std::size_t size);

  static constexpr char kVersionKey[] = "iVersion";

 private:
  std::string chunkName_;
  std::int32_t version_;
};

}  // namespace vuk::rgw::addon
