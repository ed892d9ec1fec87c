#include "adaptor/standalone/gltfsplice.h"

#include <algorithm>
#include <utility>

#include "util/atomicfile.h"
#include "util/base64.h"

namespace vuk::rgw::adaptor::standalone {

namespace {

constexpr std::size_t kPieceBytes = 64 * 1024;
constexpr const char* kMarkName = "rgw-piece-";

}  // namespace

std::string JsonSplicer::Add(Piece piece) {
  pieces_.push_back(std::move(piece));
  return "\x1f" + std::string(kMarkName) + std::to_string(pieces_.size() - 1);
}

bool JsonSplicer::Write(util::AtomicFile& file, std::string_view json) const {
  // Where each mark stands, as the JSON writer escaped it (in either case).
  std::vector<std::pair<std::size_t, std::size_t>> places;  // offset, piece
  for (std::size_t i = 0; i < pieces_.size(); ++i) {
    std::string mark = "\"\\u001f" + std::string(kMarkName) + std::to_string(i) + "\"";
    std::size_t at = json.find(mark);
    if (at == std::string_view::npos) {
      mark[6] = 'F';
      at = json.find(mark);
    }
    if (at == std::string_view::npos) return false;
    places.emplace_back(at, i);
  }
  std::sort(places.begin(), places.end());
  std::size_t from = 0;
  for (const auto& [at, piece] : places) {
    if (!file.Write(json.substr(from, at - from)) || !pieces_[piece](file)) return false;
    from = json.find('"', at + 1) + 1;
  }
  return file.Write(json.substr(from));
}

bool WriteJsonString(util::AtomicFile& file, const std::string& text) {
  static const char kHex[] = "0123456789abcdef";
  std::string piece = "\"";
  piece.reserve(kPieceBytes + 8);
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      piece += '\\';
      piece += c;
    } else if (byte < 0x20) {
      piece += "\\u00";
      piece += kHex[byte >> 4];
      piece += kHex[byte & 15];
    } else {
      piece += c;
    }
    if (piece.size() >= kPieceBytes) {
      if (!file.Write(piece)) return false;
      piece.clear();
    }
  }
  piece += '"';
  return file.Write(piece);
}

bool WriteBase64DataUri(util::AtomicFile& file, const std::vector<unsigned char>& bytes) {
  if (!file.Write("\"data:application/octet-stream;base64,")) return false;
  // Whole groups of three bytes per piece, so that the pieces join into one encoding.
  constexpr std::size_t kGroupBytes = kPieceBytes / 4 * 3;
  for (std::size_t at = 0; at < bytes.size(); at += kGroupBytes) {
    if (!file.Write(util::Base64::Encode(bytes.data() + at, std::min(kGroupBytes, bytes.size() - at)))) return false;
  }
  return file.Write("\"");
}

}  // namespace vuk::rgw::adaptor::standalone
