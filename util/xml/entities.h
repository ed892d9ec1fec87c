#pragma once

#include <string>

namespace vuk::util::xml {

// Numeric character references only: "&#60;" and "&#x3C;" read as "<"; any
// other "&" stands for itself, since saved files never used named entities.
std::string Decode(const std::string& text);

// "&" and "<" become references, as does every character that is neither
// alphanumeric, blank nor punctuation. ">" stays as it is.
std::string Encode(const std::string& text);
void EncodeTo(std::string& out, const std::string& text);

}  // namespace vuk::util::xml
