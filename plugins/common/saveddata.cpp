#include "plugins/common/saveddata.h"

#include "util/bytes.h"

namespace vuk::rgw::addon {

util::DataChunk SavedData::Begin() const {
  util::DataChunk chunk(chunkName_, {});
  util::Bytes version;
  util::ByteWriter(version).Put(version_);
  chunk.AddChild(kVersionKey, std::move(version));
  return chunk;
}

void SavedData::Store(CInterface* iface, const util::DataChunk& chunk) {
  const util::Bytes flat = chunk.Flatten();
  iface->SetSaveData(flat.data(), static_cast<std::int32_t>(flat.size()));
}

bool SavedData::Read(CInterface* iface, util::DataChunk& chunk) const {
  std::int32_t length = 0;
  const std::uint8_t* bytes = iface->GetSaveData(&length);
  if (!bytes || length <= 0 || !chunk.Read(bytes, static_cast<std::size_t>(length)) || chunk.name != chunkName_) {
    return false;
  }
  const util::Bytes* entry = Child(chunk, kVersionKey, sizeof version_);
  std::int32_t version = 0;
  return entry && util::ByteReader(*entry).Get(version) && version == version_;
}

const util::Bytes* SavedData::Child(const util::DataChunk& chunk, const std::string& key, std::size_t size) {
  const util::DataChunk* child = chunk.FindChild(key);
  return child && child->data.size() == size ? &child->data : nullptr;
}

}  // namespace vuk::rgw::addon
