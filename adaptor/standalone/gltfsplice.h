#pragma once
// The JSON of a text scene file written with pieces that live elsewhere (a
// tool's saved state, a buffer's bytes): the JSON holds a mark for each, a
// string that starts with a control character no exporter writes, and the
// writer puts the piece in its place straight from where it lives, so that
// the whole never passes through the JSON writer's copies.

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace vuk::util {
class AtomicFile;
}  // namespace vuk::util

namespace vuk::rgw::adaptor::standalone {

class JsonSplicer {
 public:
  using Piece = std::function<bool(util::AtomicFile& file)>;

  // The string to put where the piece goes; the piece writes a whole JSON value.
  std::string Add(Piece piece);
  // Writes the JSON with every mark replaced by its piece. False when the
  // file can't be written or a mark is missing.
  bool Write(util::AtomicFile& file, std::string_view json) const;
  void Clear() { pieces_.clear(); }

 private:
  std::vector<Piece> pieces_;
};

// The text as a JSON string, escaped in pieces.
bool WriteJsonString(util::AtomicFile& file, const std::string& text);
// The bytes as the JSON string of a Base64 data URI, encoded in pieces.
bool WriteBase64DataUri(util::AtomicFile& file, const std::vector<unsigned char>& bytes);

}  // namespace vuk::rgw::adaptor::standalone
