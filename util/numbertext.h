#pragma once
// Doubles as text in files people read: the shortest form that reads back to
// the same bits, in the C locale.

#include <locale>
#include <sstream>
#include <string>

namespace vuk::util {

inline std::string FormatDouble(double value) {
  std::string text;
  for (int precision = 1; precision <= 17; ++precision) {
    std::ostringstream out;
    out.imbue(std::locale::classic());
    out.precision(precision);
    out << value;
    text = out.str();
    std::istringstream in(text);
    in.imbue(std::locale::classic());
    double back = 0;
    if ((in >> back) && back == value) break;
  }
  return text;
}

}  // namespace vuk::util
