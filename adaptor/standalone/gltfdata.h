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
  bool Locate(int index, std::size_t elementSize, const std::uint8_t*& base, std::size_t& stride);

  const tinygltf::Model& model_;
  std::string& problem_;
};

// Saving copies every buffer view on its own; views that overlap could
// otherwise make a small file ask for terabytes.
constexpr std::size_t kMaxViewBytes = std::size_t(1) << 30;

// Every buffer view inside its buffer, every accessor inside its view, and
// the views together within kMaxViewBytes; the problem names the first
// that is not, by its place and field.
bool CheckDataBounds(const tinygltf::Model& model, std::string& problem);

// Where an existing accessor's elements of `elementSize` bytes start, and
// their stride, after checking that all of them lie inside its buffer.
bool FindElements(const tinygltf::Model& model, int index, std::size_t elementSize, const std::uint8_t*& base,
                  std::size_t& stride, std::string& problem);

// Appends to the buffer, aligned to four, and answers the new accessor.
// `type` is a tinygltf type (TINYGLTF_TYPE_VEC3...); bounds are written when
// asked (positions and animation inputs need them).
int AppendFloats(tinygltf::Model& model, int buffer, const std::vector<float>& values, int type, bool bounds);
int AppendUnsigned(tinygltf::Model& model, int buffer, const std::vector<std::uint32_t>& values);

// Doubles kept exactly, as the two 32-bit words of each, low word first:
// glTF accessors hold no doubles.
int AppendDoubles(tinygltf::Model& model, int buffer, const std::vector<double>& values);
// False when the accessor can't be read or holds an odd number of words.
bool ReadDoubles(AccessorReader& reader, int index, std::vector<double>& out);

// A node as messages name it: node "Arm", or node 3 when it has no name;
// a long name is cut.
std::string NodePlace(const tinygltf::Model& model, std::size_t index);

// The whole-number member of an extras object, where our extras name an
// accessor: -1, or null to renumber, when it is missing.
int IndexIn(const tinygltf::Value& extras, const char* name);
int* IndexSlot(tinygltf::Value& extras, const char* name);

}  // namespace vuk::rgw::adaptor::standalone
