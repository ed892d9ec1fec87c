#include "adaptor/standalone/gltfdata.h"

#include <tiny_gltf.h>

#include <algorithm>
#include <cstring>

namespace vuk::rgw::adaptor::standalone {

bool AccessorReader::Floats(int index, int components, std::vector<double>& out) {
  const tinygltf::Accessor* accessor = Find(index, components);
  if (!accessor) return false;
  if (accessor->componentType != TINYGLTF_COMPONENT_TYPE_FLOAT) return Fail("accessor " + std::to_string(index) + " is not of floats");
  const std::uint8_t* base = nullptr;
  std::size_t stride = 0;
  if (!Locate(index, 4 * static_cast<std::size_t>(components), base, stride)) return false;
  out.resize(accessor->count * static_cast<std::size_t>(components));
  for (std::size_t i = 0; i < accessor->count; ++i) {
    for (int c = 0; c < components; ++c) {
      float value = 0;
      std::memcpy(&value, base + i * stride + 4 * static_cast<std::size_t>(c), 4);
      out[i * static_cast<std::size_t>(components) + static_cast<std::size_t>(c)] = value;
    }
  }
  return true;
}

bool AccessorReader::Unsigned(int index, std::vector<std::uint32_t>& out) {
  const tinygltf::Accessor* accessor = Find(index, 1);
  if (!accessor) return false;
  std::size_t size = 0;
  if (accessor->componentType == TINYGLTF_COMPONENT_TYPE_UNSIGNED_BYTE) size = 1;
  if (accessor->componentType == TINYGLTF_COMPONENT_TYPE_UNSIGNED_SHORT) size = 2;
  if (accessor->componentType == TINYGLTF_COMPONENT_TYPE_UNSIGNED_INT) size = 4;
  if (size == 0) return Fail("index accessor " + std::to_string(index) + " has an unsupported component type");
  const std::uint8_t* base = nullptr;
  std::size_t stride = 0;
  if (!Locate(index, size, base, stride)) return false;
  out.resize(accessor->count);
  for (std::size_t i = 0; i < accessor->count; ++i) {
    std::uint32_t value = 0;
    std::memcpy(&value, base + i * stride, size);
    out[i] = value;
  }
  return true;
}

bool AccessorReader::Fail(const std::string& text) {
  problem_ = text;
  return false;
}

const tinygltf::Accessor* AccessorReader::Find(int index, int components) {
  if (index < 0 || static_cast<std::size_t>(index) >= model_.accessors.size()) {
    Fail("accessor " + std::to_string(index) + " does not exist");
    return nullptr;
  }
  const tinygltf::Accessor& accessor = model_.accessors[static_cast<std::size_t>(index)];
  if (accessor.sparse.isSparse) {
    Fail("accessor " + std::to_string(index) + " is sparse, which is not supported");
    return nullptr;
  }
  const int has = tinygltf::GetNumComponentsInType(static_cast<std::uint32_t>(accessor.type));
  if (has != components) {
    Fail("accessor " + std::to_string(index) + " has " + std::to_string(has) + " components where " +
         std::to_string(components) + " are needed");
    return nullptr;
  }
  return &accessor;
}

bool AccessorReader::Locate(int index, std::size_t elementSize, const std::uint8_t*& base, std::size_t& stride) {
  return FindElements(model_, index, elementSize, base, stride, problem_);
}

namespace {

// Whether `count` elements of `size` bytes, `stride` apart from `offset`,
// fit in `room` bytes; asked so that no sum or product can wrap.
bool Fits(std::size_t room, std::size_t offset, std::size_t count, std::size_t stride, std::size_t size) {
  if (offset > room) return false;
  if (count == 0) return true;
  if (size > room - offset) return false;
  return count - 1 <= (room - offset - size) / stride;
}

bool CheckView(const tinygltf::Model& model, int index, std::string& problem) {
  const std::string place = "buffer view " + std::to_string(index);
  if (index < 0 || static_cast<std::size_t>(index) >= model.bufferViews.size()) {
    problem = place + " does not exist";
    return false;
  }
  const tinygltf::BufferView& view = model.bufferViews[static_cast<std::size_t>(index)];
  if (view.buffer < 0 || static_cast<std::size_t>(view.buffer) >= model.buffers.size()) {
    problem = place + " names no buffer";
    return false;
  }
  const std::size_t room = model.buffers[static_cast<std::size_t>(view.buffer)].data.size();
  if (!Fits(room, view.byteOffset, 1, 1, view.byteLength)) {
    problem = place + ": byteOffset and byteLength run past buffer " + std::to_string(view.buffer);
    return false;
  }
  return true;
}

}  // namespace

bool FindElements(const tinygltf::Model& model, int index, std::size_t elementSize, const std::uint8_t*& base,
                  std::size_t& stride, std::string& problem) {
  const tinygltf::Accessor& accessor = model.accessors[static_cast<std::size_t>(index)];
  const std::string place = "accessor " + std::to_string(index);
  if (accessor.bufferView < 0) {
    problem = place + " has no buffer view";
    return false;
  }
  if (!CheckView(model, accessor.bufferView, problem)) return false;
  const tinygltf::BufferView& view = model.bufferViews[static_cast<std::size_t>(accessor.bufferView)];
  stride = view.byteStride ? view.byteStride : elementSize;
  if (stride < elementSize) {
    problem = place + ": byteStride of buffer view " + std::to_string(accessor.bufferView) + " is shorter than an element";
    return false;
  }
  if (!Fits(view.byteLength, accessor.byteOffset, accessor.count, stride, elementSize)) {
    problem = place + ": byteOffset and count run past its buffer view " + std::to_string(accessor.bufferView);
    return false;
  }
  base = model.buffers[static_cast<std::size_t>(view.buffer)].data.data() + view.byteOffset + accessor.byteOffset;
  return true;
}

bool CheckDataBounds(const tinygltf::Model& model, std::string& problem) {
  std::size_t viewBytes = 0;
  for (std::size_t v = 0; v < model.bufferViews.size(); ++v) {
    if (!CheckView(model, static_cast<int>(v), problem)) return false;
    viewBytes += model.bufferViews[v].byteLength;
    if (viewBytes > kMaxViewBytes) {
      problem = "buffer view " + std::to_string(v) + ": the views together span more bytes than this program copies";
      return false;
    }
  }
  for (std::size_t a = 0; a < model.accessors.size(); ++a) {
    const tinygltf::Accessor& accessor = model.accessors[a];
    if (accessor.bufferView < 0) continue;
    const int element = tinygltf::GetComponentSizeInBytes(static_cast<std::uint32_t>(accessor.componentType)) *
                        tinygltf::GetNumComponentsInType(static_cast<std::uint32_t>(accessor.type));
    if (element <= 0) {
      problem = "accessor " + std::to_string(a) + ": componentType is not one of glTF's";
      return false;
    }
    const std::uint8_t* base = nullptr;
    std::size_t stride = 0;
    if (!FindElements(model, static_cast<int>(a), static_cast<std::size_t>(element), base, stride, problem)) return false;
  }
  return true;
}

namespace {

// Adds bytes to a buffer, aligned to four, and answers a view of them.
int AppendView(tinygltf::Model& model, int buffer, const void* bytes, std::size_t size) {
  std::vector<unsigned char>& data = model.buffers[static_cast<std::size_t>(buffer)].data;
  while (data.size() % 4) data.push_back(0);
  tinygltf::BufferView view;
  view.buffer = buffer;
  view.byteOffset = data.size();
  view.byteLength = size;
  const auto* begin = static_cast<const unsigned char*>(bytes);
  data.insert(data.end(), begin, begin + size);
  model.bufferViews.push_back(view);
  return static_cast<int>(model.bufferViews.size() - 1);
}

int AppendAccessor(tinygltf::Model& model, tinygltf::Accessor accessor) {
  model.accessors.push_back(std::move(accessor));
  return static_cast<int>(model.accessors.size() - 1);
}

}  // namespace

int AppendFloats(tinygltf::Model& model, int buffer, const std::vector<float>& values, int type, bool bounds) {
  tinygltf::Accessor accessor;
  accessor.bufferView = AppendView(model, buffer, values.data(), values.size() * sizeof(float));
  accessor.componentType = TINYGLTF_COMPONENT_TYPE_FLOAT;
  accessor.type = type;
  const auto components = static_cast<std::size_t>(tinygltf::GetNumComponentsInType(static_cast<std::uint32_t>(type)));
  accessor.count = values.size() / components;
  if (bounds && accessor.count > 0) {
    accessor.minValues.assign(components, 1e300);
    accessor.maxValues.assign(components, -1e300);
    for (std::size_t i = 0; i < values.size(); ++i) {
      accessor.minValues[i % components] = std::min<double>(accessor.minValues[i % components], values[i]);
      accessor.maxValues[i % components] = std::max<double>(accessor.maxValues[i % components], values[i]);
    }
  }
  return AppendAccessor(model, std::move(accessor));
}

int AppendUnsigned(tinygltf::Model& model, int buffer, const std::vector<std::uint32_t>& values) {
  tinygltf::Accessor accessor;
  accessor.bufferView = AppendView(model, buffer, values.data(), values.size() * sizeof(std::uint32_t));
  accessor.componentType = TINYGLTF_COMPONENT_TYPE_UNSIGNED_INT;
  accessor.type = TINYGLTF_TYPE_SCALAR;
  accessor.count = values.size();
  return AppendAccessor(model, std::move(accessor));
}

int AppendDoubles(tinygltf::Model& model, int buffer, const std::vector<double>& values) {
  std::vector<std::uint32_t> words(values.size() * 2);
  for (std::size_t i = 0; i < values.size(); ++i) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &values[i], sizeof bits);
    words[2 * i] = static_cast<std::uint32_t>(bits);
    words[2 * i + 1] = static_cast<std::uint32_t>(bits >> 32);
  }
  return AppendUnsigned(model, buffer, words);
}

bool ReadDoubles(AccessorReader& reader, int index, std::vector<double>& out) {
  std::vector<std::uint32_t> words;
  if (!reader.Unsigned(index, words) || words.size() % 2 != 0) return false;
  out.resize(words.size() / 2);
  for (std::size_t i = 0; i < out.size(); ++i) {
    const std::uint64_t bits = words[2 * i] | (std::uint64_t(words[2 * i + 1]) << 32);
    std::memcpy(&out[i], &bits, sizeof bits);
  }
  return true;
}

std::string NodePlace(const tinygltf::Model& model, std::size_t index) {
  constexpr std::size_t kShown = 40;
  const std::string& name = model.nodes[index].name;
  if (name.empty()) return "node " + std::to_string(index);
  return "node \"" + name.substr(0, kShown) + (name.size() > kShown ? "...\"" : "\"");
}

int IndexIn(const tinygltf::Value& extras, const char* name) {
  if (!extras.IsObject() || !extras.Has(name)) return -1;
  const tinygltf::Value& value = extras.Get(name);
  return value.IsInt() ? value.Get<int>() : -1;
}

int* IndexSlot(tinygltf::Value& extras, const char* name) {
  if (!extras.IsObject()) return nullptr;
  auto& members = extras.Get<tinygltf::Value::Object>();
  const auto found = members.find(name);
  return found != members.end() && found->second.IsInt() ? &found->second.Get<int>() : nullptr;
}

}  // namespace vuk::rgw::adaptor::standalone
