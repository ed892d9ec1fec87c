// Writing a scene file: the JSON from the model, patched where we write
// bytes ourselves, and the buffers beside it, in a binary container or as
// files of their own, all committed together.
#include <nlohmann/json.hpp>
#include <tiny_gltf.h>

#include <algorithm>
#include <cctype>
#include <deque>
#include <filesystem>
#include <sstream>

#include "adaptor/standalone/gltfblobs.h"
#include "adaptor/standalone/gltffile.h"
#include "adaptor/standalone/gltfjson.h"
#include "adaptor/standalone/gltfpointer.h"
#include "adaptor/standalone/gltfsource.h"
#include "adaptor/standalone/gltfsplice.h"
#include "adaptor/standalone/gltfuris.h"
#include "adaptor/standalone/gltfwrite.h"
#include "util/atomicfile.h"

namespace vuk::rgw::adaptor::standalone {

bool HasBinaryExtension(const std::string& path) {
  std::string extension = std::filesystem::path(path).extension().string();
  for (char& c : extension) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return extension == ".glb";
}

std::vector<BufferPlace> BufferPlaces(const tinygltf::Model& model, bool binary) {
  // A file whose buffers were files of their own keeps them so; otherwise
  // they are written into it. The binary form holds the first.
  const bool separate = std::any_of(model.buffers.begin(), model.buffers.end(), [](const tinygltf::Buffer& b) {
    return !b.uri.empty() && !IsDataUri(b.uri);
  });
  std::vector<BufferPlace> places(model.buffers.size(), separate ? BufferPlace::kOwnFile : BufferPlace::kEmbedded);
  if (binary && !places.empty()) places[0] = BufferPlace::kBinaryChunk;
  return places;
}

namespace {

// Images are written by their URIs, never as files of ours.
bool LeaveImage(const std::string*, const std::string*, const tinygltf::Image*, bool, std::string*, void*) {
  return false;
}

// The buffers whose bytes we write ourselves are out of the model while
// tinygltf writes its JSON, so that their bytes are never copied (it would
// embed them as Base64 or copy them into a chunk of its own); the JSON then
// gets their lengths and names. Put back when the file is written.
class BuffersBeside {
 public:
  // A text file's Base64 buffers are held out too, and written as data URIs
  // in pieces; a binary file's are left to the JSON writer.
  BuffersBeside(tinygltf::Model& model, const std::vector<BufferPlace>& places, bool binary)
      : model_(model), held_(places.size()) {
    for (std::size_t i = 0; i < places.size(); ++i) {
      if (places[i] == BufferPlace::kEmbedded && binary) continue;
      held_[i] = std::move(model.buffers[i].data);
      model.buffers[i].data.clear();
    }
  }
  ~BuffersBeside() {
    for (std::size_t i = 0; i < held_.size(); ++i) {
      if (!held_[i].empty()) model_.buffers[i].data = std::move(held_[i]);
    }
  }
  BuffersBeside(const BuffersBeside&) = delete;
  BuffersBeside& operator=(const BuffersBeside&) = delete;

  const std::vector<unsigned char>& Bytes(std::size_t buffer) const { return held_[buffer]; }

 private:
  tinygltf::Model& model_;
  std::vector<std::vector<unsigned char>> held_;
};

// The members the parser dropped, back where they were unless the place has them again.
void PutBackKeptMembers(nlohmann::json& json, const std::vector<KeptMember>& kept) {
  for (const KeptMember& member : kept) {
    const bool ofFile = member.list.empty();
    if (!ofFile && (!json.contains(member.list) || member.index >= json[member.list].size())) continue;
    nlohmann::json& place = ofFile ? json : json[member.list][member.index];
    if (!place.contains(member.key)) place[member.key] = nlohmann::json::parse(member.json);
  }
}

// A perspective camera without a far plane projects to infinity; the JSON
// writer gives it a far plane of 0, which glTF forbids.
bool HasInfiniteCameras(const tinygltf::Model& model) {
  return std::any_of(model.cameras.begin(), model.cameras.end(),
                     [](const tinygltf::Camera& camera) { return camera.type == "perspective" && camera.perspective.zfar <= 0; });
}

void DropZeroFarPlanes(nlohmann::json& json) {
  if (!json.contains("cameras")) return;
  for (nlohmann::json& camera : json["cameras"]) {
    if (camera.contains("perspective") && camera["perspective"].contains("zfar") && camera["perspective"]["zfar"] == 0) {
      camera["perspective"].erase("zfar");
    }
  }
}

// The JSON of the model with the lengths and names of the buffers beside it
// and the members the parser dropped; a text file's Base64 buffers are marks
// of the splicer.
std::string PatchedJson(const std::string& text, const tinygltf::Model& model, const std::vector<BufferPlace>& places,
                        const BuffersBeside& beside, std::size_t firstLength, bool binary, JsonSplicer& splicer,
                        const std::vector<KeptMember>& kept) {
  nlohmann::json json = nlohmann::json::parse(text);
  PutBackKeptMembers(json, kept);
  DropNodelessTargets(json);
  DropZeroFarPlanes(json);
  for (std::size_t i = 0; i < places.size(); ++i) {
    if (places[i] == BufferPlace::kEmbedded && binary) continue;
    nlohmann::json& buffer = json["buffers"][i];
    const std::vector<unsigned char>& bytes = beside.Bytes(i);
    buffer["byteLength"] = i == 0 ? firstLength : bytes.size();
    if (places[i] == BufferPlace::kOwnFile) {
      buffer["uri"] = model.buffers[i].uri;
    } else if (places[i] == BufferPlace::kEmbedded) {
      buffer["uri"] = splicer.Add([&bytes](util::AtomicFile& file) { return WriteBase64DataUri(file, bytes); });
    } else {
      buffer.erase("uri");
    }
  }
  return json.dump(binary ? -1 : 2);
}

const auto kPadding = [](std::uint64_t size) { return static_cast<std::size_t>((4 - size % 4) % 4); };

// A buffer's bytes as written: its own, then the long texts that follow it
// (the first buffer's), each at a four-byte boundary.
bool WriteBufferBytes(util::AtomicFile& file, const std::vector<unsigned char>& bytes, const LongTexts* texts) {
  static const char kZeros[4] = {0, 0, 0, 0};
  static const LongTexts kNone;
  std::uint64_t written = bytes.size();
  if (!file.Write(bytes.data(), bytes.size())) return false;
  for (const std::string& text : (texts ? *texts : kNone).texts) {
    if (!file.Write(kZeros, kPadding(written)) || !file.Write(text)) return false;
    written += kPadding(written) + text.size();
  }
  return true;
}

// The binary container around the JSON and the first buffer: a header and
// two chunks, each padded to four bytes (the JSON with spaces, the data with zeros).
bool WriteBinaryContainer(util::AtomicFile& file, const std::string& json, const std::vector<unsigned char>& bin,
                          const LongTexts& texts) {
  const std::uint64_t binLength = texts.Length(bin.size());
  const std::uint64_t jsonChunk = json.size() + kPadding(json.size());
  const std::uint64_t binChunk = binLength + kPadding(binLength);
  const std::uint64_t length = 12 + 8 + jsonChunk + (binLength == 0 ? 0 : 8 + binChunk);
  if (length > 0xFFFFFFFFu) return false;
  const auto word = [&](std::uint32_t value) {
    const unsigned char bytes[4] = {static_cast<unsigned char>(value), static_cast<unsigned char>(value >> 8),
                                    static_cast<unsigned char>(value >> 16), static_cast<unsigned char>(value >> 24)};
    return file.Write(bytes, 4);
  };
  const char zeros[4] = {0, 0, 0, 0};
  bool written = file.Write("glTF", 4) && word(2) && word(static_cast<std::uint32_t>(length)) &&
                 word(static_cast<std::uint32_t>(jsonChunk)) && word(0x4E4F534A) && file.Write(json) &&
                 file.Write("   ", kPadding(json.size()));
  if (binLength != 0) {
    written = written && word(static_cast<std::uint32_t>(binChunk)) && word(0x004E4942) &&
              WriteBufferBytes(file, bin, &texts) && file.Write(zeros, kPadding(binLength));
  }
  return written;
}

bool Failed(std::string* error, const std::string& text) {
  if (error) *error = text;
  return false;
}

}  // namespace

bool GltfFile::Write(const std::string& path, std::string* error) {
  tinygltf::Model& model = *model_;
  const std::filesystem::path folder = std::filesystem::absolute(path).parent_path();
  for (tinygltf::Image& image : model.images) image.uri = RebaseUri(image.uri, folder_, folder);
  folder_ = folder;
  const bool binary = HasBinaryExtension(path);
  const std::vector<BufferPlace> places = BufferPlaces(model, binary);
  // Own files are named after the scene file.
  const std::string stem = std::filesystem::path(path).stem().string();
  int separated = 0;
  for (std::size_t i = 0; i < places.size(); ++i) {
    std::string& uri = model.buffers[i].uri;
    if (places[i] == BufferPlace::kBinaryChunk) uri.clear();
    if (places[i] != BufferPlace::kOwnFile) continue;
    uri = stem + (separated ? "_" + std::to_string(separated) : "") + ".bin";
    ++separated;
  }

  const BuffersBeside beside(model, places, binary);
  tinygltf::TinyGLTF writer;
  writer.SetImageWriter(LeaveImage, nullptr);
  std::string text;
  {
    std::ostringstream stream;
    if (!writer.WriteGltfSceneToStream(&model, stream, true, false)) return Failed(error, path + ": the file can't be written");
    text = std::move(stream).str();
  }
  const bool patched = !binary || !kept_.empty() || HasNodelessChannels(model) || HasInfiniteCameras(model) ||
                       std::any_of(places.begin(), places.end(), [](BufferPlace p) { return p != BufferPlace::kEmbedded; });
  if (patched) {
    const std::size_t firstLength = places.empty() ? 0 : longTexts_.Length(beside.Bytes(0).size());
    text = PatchedJson(text, model, places, beside, firstLength, binary, splicer_, kept_);
  }
  // Buffer files first and the main file last, all written before any is
  // committed: a full disk leaves every old file, and a reader never finds a
  // main file naming a missing or half-written buffer.
  std::deque<util::AtomicFile> files;
  for (std::size_t i = 0; i < places.size(); ++i) {
    if (places[i] != BufferPlace::kOwnFile) continue;
    util::AtomicFile& file = files.emplace_back((folder / model.buffers[i].uri).string());
    if (!file.Open() || !WriteBufferBytes(file, beside.Bytes(i), i == 0 ? &longTexts_ : nullptr)) return Failed(error, file.Error());
  }
  util::AtomicFile& main = files.emplace_back(path);
  if (!main.Open()) return Failed(error, main.Error());
  if (binary) {
    static const std::vector<unsigned char> kNoData;
    const std::vector<unsigned char>& bin = places.empty() ? kNoData : beside.Bytes(0);
    if (!WriteBinaryContainer(main, text, bin, longTexts_)) {
      return Failed(error, main.Error().empty() ? path + ": the data is too large for a binary glTF file (4 GB)" : main.Error());
    }
  } else if (!splicer_.Write(main, text)) {
    return Failed(error, main.Error().empty() ? path + ": the file can't be written" : main.Error());
  }
  // A file this program can't read back is not written: the old one stays.
  for (const util::AtomicFile& file : files) {
    if (file.Written() > kMaxSceneFileBytes) {
      return Failed(error, path + ": the scene would be larger than the 4 GB a glTF file can hold here");
    }
  }
  for (util::AtomicFile& file : files) {
    if (!file.Commit()) return Failed(error, file.Error());
  }
  return true;
}

}  // namespace vuk::rgw::adaptor::standalone
