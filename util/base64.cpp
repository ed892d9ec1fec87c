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

bool Fail(std::string* error, std::size_t offset, const std::string& what) {
  if (error) *error = "base64 text at character " + std::to_string(offset) + ": " + what;
  return false;
}

}  // namespace

std::string Base64::Encode(const std::uint8_t* data, std::size_t size) {
  std::string text;
  text.reserve((size + 2) / 3 * 4);
  std::size_t i = 0;
  for (; i + 3 <= size; i += 3) {
    const std::uint32_t group = (std::uint32_t{data[i]} << 16) | (std::uint32_t{data[i + 1]} << 8) | data[i + 2];
    text += kAlphabet[(group >> 18) & 63];
    text += kAlphabet[(group >> 12) & 63];
    text += kAlphabet[(group >> 6) & 63];
    text += kAlphabet[group & 63];
  }
  if (i < size) {
    const bool two = i + 1 < size;
    const std::uint32_t group = (std::uint32_t{data[i]} << 16) | (two ? std::uint32_t{data[i + 1]} << 8 : 0u);
    text += kAlphabet[(group >> 18) & 63];
    text += kAlphabet[(group >> 12) & 63];
    text += two ? kAlphabet[(group >> 6) & 63] : '=';
    text += '=';
  }
  return text;
}

bool Base64::Decode(std::string_view text, Bytes& out, std::string* error) {
  out.clear();
  out.reserve(text.size() / 4 * 3 + 3);
  std::uint32_t group = 0;
  int filled = 0;
  bool padded = false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const std::int8_t value = kDecode[static_cast<unsigned char>(text[i])];
    if (value == kBlank) continue;
    if (value == kInvalid) {
      out.clear();
      return Fail(error, i, "'" + std::string(1, text[i]) + "' is not a base64 character");
    }
    if (value == kPad) {
      padded = true;
      continue;
    }
    if (padded) {
      out.clear();
      return Fail(error, i, "data after the padding");
    }
    group = (group << 6) | static_cast<std::uint32_t>(value);
    if (++filled == 4) {
      out.push_back(static_cast<std::uint8_t>(group >> 16));
      out.push_back(static_cast<std::uint8_t>(group >> 8));
      out.push_back(static_cast<std::uint8_t>(group));
      group = 0;
      filled = 0;
    }
  }
  // A final group of two or three characters carries one or two bytes.
  if (filled == 1) {
    out.clear();
    return Fail(error, text.size(), "a lone character can't hold a byte");
  }
  if (filled == 2) out.push_back(static_cast<std::uint8_t>(group >> 4));
  if (filled == 3) {
    out.push_back(static_cast<std::uint8_t>(group >> 10));
    out.push_back(static_cast<std::uint8_t>(group >> 2));
  }
  return true;
}

}  // namespace vuk::util
