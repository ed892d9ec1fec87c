#include "adaptor/standalone/gltfglb.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <cstring>
#include <set>

#include "adaptor/standalone/gltfsource.h"

namespace vuk::rgw::adaptor::standalone {

namespace {

using Json = nlohmann::json;

constexpr std::uint32_t kJsonChunk = 0x4E4F534A;
constexpr std::uint32_t kBinChunk = 0x004E4942;
constexpr std::uint64_t kHeader = 12, kChunkHeader = 8;

std::uint32_t Word(const unsigned char* bytes) {
  std::uint32_t word = 0;
  std::memcpy(&word, bytes, 4);
  return word;
}

void PutWord(std::vector<unsigned char>& out, std::uint32_t word) {
  const auto* bytes = reinterpret_cast<const unsigned char*>(&word);
  out.insert(out.end(), bytes, bytes + 4);
}

}  // namespace

bool ReadGlbChunks(const RegularFile& file, GlbChunks& chunks) {
  unsigned char head[kHeader + kChunkHeader];
  const std::uint64_t size = file.Size();
  if (size < kHeader + 2 * kChunkHeader || !file.ReadAt(0, head, sizeof head)) return false;
  if (std::memcmp(head, "glTF", 4) != 0 || Word(head + 4) != 2 || Word(head + 8) != size ||
      Word(head + 16) != kJsonChunk) {
    return false;
  }
  const std::uint64_t binHeader = kHeader + kChunkHeader + Word(head + 12);
  unsigned char bin[kChunkHeader];
  if (binHeader + kChunkHeader > size || !file.ReadAt(binHeader, bin, sizeof bin) || Word(bin + 4) != kBinChunk) {
    return false;
  }
  chunks.binStart = binHeader + kChunkHeader;
  chunks.binLength = Word(bin);
  if (chunks.binLength > size - chunks.binStart) return false;
  chunks.json.resize(Word(head + 12));
  return file.ReadAt(kHeader + kChunkHeader, chunks.json.data(), chunks.json.size());
}

namespace {

std::uint64_t Unsigned(const Json& object, const char* key, std::uint64_t fallback) {
  const auto found = object.find(key);
  if (found == object.end()) return fallback;
  return found->is_number_unsigned() ? found->get<std::uint64_t>() : UINT64_MAX;
}

// The views that node extras name as blobs, each named once; none for a
// file that names one twice or names one that isn't there.
std::set<std::size_t> BlobViews(const Json& doc, std::size_t viewCount) {
  std::set<std::size_t> views;
  const auto nodes = doc.find("nodes");
  if (nodes == doc.end() || !nodes->is_array()) return {};
  for (const Json& node : *nodes) {
    const auto extras = node.is_object() ? node.find("extras") : node.end();
    if (!node.is_object() || extras == node.end() || !extras->is_object()) continue;
    for (const Json& value : *extras) {
      const auto blob = value.is_object() ? value.find("rgw_blob") : value.end();
      if (!value.is_object() || blob == value.end() || !blob->is_object()) continue;
      const std::uint64_t view = Unsigned(*blob, "bufferView", UINT64_MAX);
      if (view >= viewCount || !views.insert(static_cast<std::size_t>(view)).second) return {};
    }
  }
  return views;
}

bool NamesAny(const Json& doc, const char* list, const std::set<std::size_t>& views) {
  const auto items = doc.find(list);
  if (items == doc.end() || !items->is_array()) return false;
  for (const Json& item : *items) {
    if (item.is_object() && views.count(static_cast<std::size_t>(Unsigned(item, "bufferView", UINT64_MAX)))) return true;
  }
  return false;
}

struct Layout {
  std::uint64_t ownBytes = 0;
  std::map<int, std::pair<std::uint64_t, std::uint64_t>> blobs;  // view: offset, length
};

// The first buffer's own bytes, and the texts after them, when the file is
// laid out as we write it: texts only in views of their own, past every
// other view of the first buffer and inside it.
bool Plan(const Json& doc, std::uint64_t binLength, Layout& layout) {
  const auto buffers = doc.find("buffers");
  const auto views = doc.find("bufferViews");
  if (buffers == doc.end() || !buffers->is_array() || buffers->empty() || !(*buffers)[0].is_object() ||
      (*buffers)[0].contains("uri") || views == doc.end() || !views->is_array()) {
    return false;
  }
  const std::uint64_t bufferLength = Unsigned((*buffers)[0], "byteLength", UINT64_MAX);
  const std::set<std::size_t> blobs = BlobViews(doc, views->size());
  if (blobs.empty() || bufferLength > binLength || NamesAny(doc, "accessors", blobs) || NamesAny(doc, "images", blobs)) {
    return false;
  }
  std::uint64_t ownEnd = 0;
  for (std::size_t i = 0; i < views->size(); ++i) {
    const Json& view = (*views)[i];
    if (!view.is_object()) return false;
    const std::uint64_t buffer = Unsigned(view, "buffer", UINT64_MAX), offset = Unsigned(view, "byteOffset", 0),
                        length = Unsigned(view, "byteLength", UINT64_MAX);
    if (offset > bufferLength || length > bufferLength - offset) {
      if (buffer == 0) return false;
      continue;
    }
    if (blobs.count(i)) {
      if (buffer != 0) return false;
      layout.blobs[static_cast<int>(i)] = {offset, length};
    } else if (buffer == 0) {
      ownEnd = std::max(ownEnd, offset + length);
    }
  }
  // Some bytes of its own: the views of the texts are left pointing at one.
  layout.ownBytes = (ownEnd + 3) / 4 * 4;
  if (layout.ownBytes == 0 || layout.ownBytes > bufferLength || layout.blobs.size() != blobs.size()) return false;
  for (const auto& [view, place] : layout.blobs) {
    if (place.first < layout.ownBytes) return false;
  }
  return true;
}

}  // namespace

bool ReadGlbParts(const RegularFile& file, const GlbChunks& chunks, GlbParts& parts) {
  if (chunks.json.find("\"rgw_blob\"") == std::string::npos) return false;
  Json doc = Json::parse(chunks.json, nullptr, false);
  Layout layout;
  if (doc.is_discarded() || !doc.is_object() || !Plan(doc, chunks.binLength, layout)) return false;

  doc["buffers"][0]["byteLength"] = layout.ownBytes;
  for (const auto& [view, place] : layout.blobs) {
    doc["bufferViews"][static_cast<std::size_t>(view)]["byteOffset"] = 0;
    doc["bufferViews"][static_cast<std::size_t>(view)]["byteLength"] = 1;
  }
  std::string json = doc.dump();
  json.resize((json.size() + 3) / 4 * 4, ' ');
  std::vector<unsigned char>& out = parts.container;
  out.clear();
  out.reserve(kHeader + 2 * kChunkHeader + json.size() + layout.ownBytes);
  out.insert(out.end(), {'g', 'l', 'T', 'F'});
  PutWord(out, 2);
  PutWord(out, static_cast<std::uint32_t>(kHeader + 2 * kChunkHeader + json.size() + layout.ownBytes));
  PutWord(out, static_cast<std::uint32_t>(json.size()));
  PutWord(out, kJsonChunk);
  out.insert(out.end(), json.begin(), json.end());
  PutWord(out, static_cast<std::uint32_t>(layout.ownBytes));
  PutWord(out, kBinChunk);
  const std::size_t own = out.size();
  out.resize(own + layout.ownBytes);
  if (!file.ReadAt(chunks.binStart, out.data() + own, layout.ownBytes)) return false;
  for (const auto& [view, place] : layout.blobs) {
    std::string& text = parts.texts[view];
    text.resize(place.second);
    if (!file.ReadAt(chunks.binStart + place.first, text.data(), text.size())) return false;
  }
  return true;
}

}  // namespace vuk::rgw::adaptor::standalone
