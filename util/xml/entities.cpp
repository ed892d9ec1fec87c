#include "util/xml/entities.h"

#include <cstdint>

#include "util/xml/chars.h"

namespace vuk::util::xml {
namespace {

int DigitValue(char c) {
  if (chars::IsDigit(c)) return c - '0';
  return (c >= 'a' ? c - 'a' : c - 'A') + 10;
}

// Reads the leading number of a run of hex digits with decimal or hex rules,
// as a stream would: decimal stops at the first letter. The value wraps rather
// than overflows; only its low byte is used.
std::uint32_t ReadNumber(const std::string& text, std::size_t begin, std::size_t end, bool hex) {
  std::uint32_t value = 0;
  for (std::size_t i = begin; i < end; ++i) {
    const int digit = DigitValue(text[i]);
    if (!hex && digit > 9) break;
    value = value * (hex ? 16u : 10u) + static_cast<std::uint32_t>(digit);
  }
  return value;
}

}  // namespace

std::string Decode(const std::string& text) {
  if (text.find("&#") == std::string::npos) return text;
  std::string out;
  out.reserve(text.size());
  std::size_t i = 0;
  while (i < text.size()) {
    if (text[i] != '&' || i + 1 >= text.size() || text[i + 1] != '#') {
      out += text[i++];
      continue;
    }
    i += 2;
    const bool hex = i < text.size() && text[i] == 'x';
    if (hex) ++i;
    const std::size_t digits = i;
    while (i < text.size() && chars::IsHexDigit(text[i])) ++i;
    out += static_cast<char>(ReadNumber(text, digits, i, hex) & 0xFFu);
    if (i < text.size()) ++i;  // the ";" or whatever stands in its place
  }
  return out;
}

void EncodeTo(std::string& out, const std::string& text) {
  for (const char c : text) {
    if (c == '&') {
      out += "&#38;";
    } else if (c == '<') {
      out += "&#60;";
    } else if (chars::IsAlnum(c) || chars::IsBlank(c) || chars::IsPunct(c)) {
      out += c;
    } else {
      // The byte's unsigned value, so that UTF-8 text reads back byte for byte.
      out += "&#";
      out += std::to_string(static_cast<unsigned>(static_cast<unsigned char>(c)));
      out += ';';
    }
  }
}

std::string Encode(const std::string& text) {
  std::string out;
  out.reserve(text.size());
  EncodeTo(out, text);
  return out;
}

}  // namespace vuk::util::xml
