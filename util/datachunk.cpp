#include "util/datachunk.h"

#include <algorithm>

namespace vuk::util {

namespace {

bool Fail(std::string* error, std::size_t offset, const std::string& what) {
  if (error) *error = "data chunk at byte " + std::to_string(offset) + ": " + what;
  return false;
}

}  // namespace

DataChunk& DataChunk::AddChild(const std::string& childName, Bytes childData) {
  children.emplace_back(childName, std::move(childData));
  return children.back();
}

DataChunk& DataChunk::AddChild(const std::string& childName, const void* bytes, std::size_t size) {
  const auto* begin = static_cast<const std::uint8_t*>(bytes);
  return AddChild(childName, Bytes(begin, begin + size));
}

const DataChunk* DataChunk::FindChild(const std::string& childName) const {
  for (const DataChunk& child : children) {
    if (child.name == childName) return &child;
  }
  return nullptr;
}

std::size_t DataChunk::FlatSize() const {
  std::size_t size = kHeaderSize + name.size() + data.size();
  for (const DataChunk& child : children) size += child.FlatSize();
  return size;
}

Bytes DataChunk::Flatten() const {
  Bytes out;
  out.reserve(FlatSize());
  FlattenTo(out);
  return out;
}

void DataChunk::FlattenTo(Bytes& out) const {
  ByteWriter writer(out);
  writer.Put(static_cast<std::int32_t>(data.size()));
  writer.Put(static_cast<std::int32_t>(children.size()));
  // Longer names are cut: the reader refuses anything above the limit.
  const std::size_t nameLength = std::min<std::size_t>(name.size(), kMaxNameLength);
  writer.Put(static_cast<std::int32_t>(nameLength));
  writer.PutBytes(name.data(), nameLength);
  writer.PutBytes(data.data(), data.size());
  for (const DataChunk& child : children) child.FlattenTo(out);
}

bool DataChunk::Read(const std::uint8_t* block, std::size_t size, std::string* error) {
  *this = DataChunk();
  ByteReader reader(block, size);
  if (!ReadBody(reader, 0, error)) {
    *this = DataChunk();
    return false;
  }
  packed.assign(block, block + reader.Position());
  return true;
}

bool DataChunk::ReadBody(ByteReader& reader, int depth, std::string* error) {
  const std::size_t start = reader.Position();
  if (depth > kMaxDepth) return Fail(error, start, "nested deeper than " + std::to_string(kMaxDepth) + " levels");
  std::int32_t dataSize = 0, childCount = 0, nameLength = 0;
  if (!reader.Get(dataSize) || !reader.Get(childCount) || !reader.Get(nameLength)) {
    return Fail(error, start, "header cut short");
  }
  if (dataSize < 0) return Fail(error, start, "negative data size " + std::to_string(dataSize));
  if (childCount < 0) return Fail(error, start, "negative child count " + std::to_string(childCount));
  if (nameLength < 0 || nameLength > kMaxNameLength) {
    return Fail(error, start, "name length " + std::to_string(nameLength) + " is outside 0 to 256");
  }
  if (reader.Remaining() < static_cast<std::size_t>(nameLength) + static_cast<std::size_t>(dataSize)) {
    return Fail(error, start, "name and data run past the end of the block");
  }
  name.assign(reinterpret_cast<const char*>(reader.Current()), static_cast<std::size_t>(nameLength));
  reader.Skip(static_cast<std::size_t>(nameLength));
  data.assign(reader.Current(), reader.Current() + dataSize);
  reader.Skip(static_cast<std::size_t>(dataSize));
  // Each child needs at least a header, so a count that can't fit is refused
  // before anything is reserved for it.
  if (static_cast<std::size_t>(childCount) > reader.Remaining() / kHeaderSize) {
    return Fail(error, start, std::to_string(childCount) + " children can't fit in the rest of the block");
  }
  // Children are added as they are read, so memory follows real content.
  for (std::int32_t i = 0; i < childCount; ++i) {
    if (!children.emplace_back().ReadBody(reader, depth + 1, error)) return false;
  }
  return true;
}

}  // namespace vuk::util
