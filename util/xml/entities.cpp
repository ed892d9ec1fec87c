#include "util/xml/entities.h"

#include <array>
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

bool StandsForItself(char c) {
  return c != '&' && c != '<' && (chars::IsAlnum(c) || chars::IsBlank(c) || chars::IsPunct(c));
}

// Made at first use: text may be written while other statics are made.
const std::array<bool, 256>& PlainCharacters() {
  static const std::array<bool, 256> table = [] {
    std::array<bool, 256> plain{};
    for (int c = 0; c < 256; ++c) plain[static_cast<std::size_t>(c)] = StandsForItself(static_cast<char>(c));
    return plain;
  }();
  return table;
}

void EncodeOne(std::string& out, char c) {
  if (c == '&') {
    out += "&#38;";
  } else if (c == '<') {
    out += "&#60;";
  } else {
    // The byte's unsigned value, so that UTF-8 text reads back byte for byte.
    out += "&#";
    out += std::to_string(static_cast<unsigned>(static_cast<unsigned char>(c)));
    out += ';';
  }
}

}  // namespace

std::string Decode(std::string text) {
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

void EncodeTo(std::string& out, std::string_view text) {
  // Runs of characters that stand for themselves go out in one piece: saved
  // state is mostly long runs of base64 text.
  const std::array<bool, 256>& plain = PlainCharacters();
  std::size_t run = 0;
  while (run < text.size()) {
    std::size_t end = run;
    while (end < text.size() && plain[static_cast<unsigned char>(text[end])]) ++end;
    out.append(text, run, end - run);
    if (end == text.size()) return;
    EncodeOne(out, text[end]);
    run = end + 1;
  }
}

std::string Encode(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  EncodeTo(out, text);
  return out;
}

}  // namespace vuk::util::xml
