#include "util/base64.h"

#include <array>

namespace vuk::util {

namespace {

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::int8_t kInvalid = -1;
constexpr std::int8_t kBlank = -2;
constexpr std::int8_t kPad = -3;

constexpr std::array<std::int8_t, 256> MakeDecodeTable() {
  std::array<std::int8_t, 256> table{};
  for (auto& entry : table) entry = kInvalid;
  for (int i = 0; i < 64; ++i) table[static_cast<unsigned char>(kAlphabet[i])] = static_cast<std::int8_t>(i);
  for (unsigned char blank : {' ', '\t', '\n', '\r'}) table[blank] = kBlank;
  table['='] = kPad;
  return table;
}

constexpr std::array<std::int8_t, 256> kDecode = MakeDecodeTable();

// The 12 bits of every pair of alphabet characters, -1 for a pair with any
// other: whole groups then take two lookups instead of four. Saved states run
// to hundreds of megabytes of text.
const std::array<std::int16_t, 65536>& PairTable() {
  static const std::array<std::int16_t, 65536> table = [] {
    std::array<std::int16_t, 65536> pairs{};
    for (int first = 0; first < 256; ++first) {
      for (int second = 0; second < 256; ++second) {
        const std::int8_t a = kDecode[static_cast<std::size_t>(first)], b = kDecode[static_cast<std::size_t>(second)];
        pairs[static_cast<std::size_t>(first << 8 | second)] = (a < 0 || b < 0) ? std::int16_t(-1) : std::int16_t(a << 6 | b);
      }
    }
    return pairs;
  }();
  return table;
}

bool Fail(std::string* error, std::size_t offset, const std::string& what) {
  if (error) *error = "base64 text at character " + std::to_string(offset) + ": " + what;
  return false;
}

}  // namespace

std::string Base64::Encode(const std::uint8_t* data, std::size_t size) {
  // Written in place into text of its final length: saved histories run to
  // tens of megabytes.
  std::string text((size + 2) / 3 * 4, '=');
  char* out = text.data();
  std::size_t i = 0;
  for (; i + 3 <= size; i += 3, out += 4) {
    const std::uint32_t group = (std::uint32_t{data[i]} << 16) | (std::uint32_t{data[i + 1]} << 8) | data[i + 2];
    out[0] = kAlphabet[(group >> 18) & 63];
    out[1] = kAlphabet[(group >> 12) & 63];
    out[2] = kAlphabet[(group >> 6) & 63];
    out[3] = kAlphabet[group & 63];
  }
  if (i < size) {
    const bool two = i + 1 < size;
    const std::uint32_t group = (std::uint32_t{data[i]} << 16) | (two ? std::uint32_t{data[i + 1]} << 8 : 0u);
    out[0] = kAlphabet[(group >> 18) & 63];
    out[1] = kAlphabet[(group >> 12) & 63];
    if (two) out[2] = kAlphabet[(group >> 6) & 63];
  }
  return text;
}

bool Base64::Decode(std::string_view text, Bytes& out, std::string* error) {
  out.resize(text.size() / 4 * 3 + 3);
  std::uint8_t* written = out.data();
  std::uint32_t group = 0;
  int filled = 0;
  bool padded = false;
  std::size_t i = 0;
  while (i < text.size()) {
    // Whole groups of four alphabet characters, the common case, at once.
    if (filled == 0 && !padded) {
      const std::array<std::int16_t, 65536>& pairs = PairTable();
      const auto pair = [&](std::size_t at) {
        return pairs[static_cast<std::size_t>(static_cast<unsigned char>(text[at]) << 8 | static_cast<unsigned char>(text[at + 1]))];
      };
      while (i + 4 <= text.size()) {
        const std::int16_t high = pair(i), low = pair(i + 2);
        if ((high | low) < 0) break;
        const std::uint32_t whole = std::uint32_t(high) << 12 | std::uint32_t(low);
        written[0] = static_cast<std::uint8_t>(whole >> 16);
        written[1] = static_cast<std::uint8_t>(whole >> 8);
        written[2] = static_cast<std::uint8_t>(whole);
        written += 3;
        i += 4;
      }
      if (i == text.size()) break;
    }
    const std::int8_t value = kDecode[static_cast<unsigned char>(text[i])];
    if (value == kBlank) {
      ++i;
      continue;
    }
    if (value == kInvalid) {
      out.clear();
      return Fail(error, i, "'" + std::string(1, text[i]) + "' is not a base64 character");
    }
    if (value == kPad) {
      padded = true;
      ++i;
      continue;
    }
    if (padded) {
      out.clear();
      return Fail(error, i, "data after the padding");
    }
    group = (group << 6) | static_cast<std::uint32_t>(value);
    if (++filled == 4) {
      written[0] = static_cast<std::uint8_t>(group >> 16);
      written[1] = static_cast<std::uint8_t>(group >> 8);
      written[2] = static_cast<std::uint8_t>(group);
      written += 3;
      group = 0;
      filled = 0;
    }
    ++i;
  }
  // A final group of two or three characters carries one or two bytes.
  if (filled == 1) {
    out.clear();
    return Fail(error, text.size(), "a lone character can't hold a byte");
  }
  if (filled == 2) *written++ = static_cast<std::uint8_t>(group >> 4);
  if (filled == 3) {
    *written++ = static_cast<std::uint8_t>(group >> 10);
    *written++ = static_cast<std::uint8_t>(group >> 2);
  }
  out.resize(static_cast<std::size_t>(written - out.data()));
  return true;
}

}  // namespace vuk::util
