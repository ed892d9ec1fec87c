#pragma once
// Reading and appending the typed arrays of a glTF model (accessors over
// buffer views), and the small extras objects that point at them.

#include <cstdint>
#include <string>
#include <vector>

namespace tinygltf {
class Model;
class Value;
struct Accessor;
}  // namespace tinygltf

namespace vuk::rgw::adaptor::standalone {

// Reads an accessor's elements, every bound checked: a damaged file gives a
// message in `problem`, never a read past its buffers.
class AccessorReader {
 public:
  AccessorReader(const tinygltf::Model& model, std::string& problem) : model_(model), problem_(problem) {}

  bool Floats(int index, int components, std::vector<double>& out);
  // Unsigned integers of any width, as index and tick arrays hold them.
  bool Unsigned(int index, std::vector<std::uint32_t>& out);

 private:
  bool Fail(const std::string& text);
  const tinygltf::Accessor* Find(int index, int components);
  bool Locate(const tinygltf::Accessor& accessor, std::size_t elementSize, const std::uint8_t*& base,
              std::size_t& stride);

  const tinygltf::Model& model_;
  std::string& problem_;
};

// Appends to the buffer, aligned to four, and answers the new accessor.
// `type` is a tinygltf type (TINYGLTF_TYPE_VEC3...); bounds are written when
// asked (positions and animation inputs need them).
int AppendFloats(tinygltf::Model& model, int buffer, const std::vector<float>& values, int type, bool bounds);
int AppendUnsigned(tinygltf::Model& model, int buffer, const std::vector<std::uint32_t>& values);

// The whole-number member of an extras object, where our extras name an
// accessor: -1, or null to renumber, when it is missing.
int IndexIn(const tinygltf::Value& extras, const char* name);
int* IndexSlot(tinygltf::Value& extras, const char* name);

}  // namespace vuk::rgw::adaptor::standalone
