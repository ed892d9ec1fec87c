#pragma once

#include <string>
#include <string_view>

namespace vuk::util::xml {

// Numeric character references only: "&#60;" and "&#x3C;" read as "<"; any
// other "&" stands for itself, since saved files never used named entities.
// Text without a reference is handed back as it came, without a copy.
std::string Decode(std::string text);

// "&" and "<" become references, as does every character that is neither
// alphanumeric, blank nor punctuation. ">" stays as it is.
std::string Encode(std::string_view text);
void EncodeTo(std::string& out, std::string_view text);

}  // namespace vuk::util::xml
