// Parses arbitrary markup, writes what parsed and reads that back. Written
// markup need not read back the same (a ">" in a value, text decoded twice,
// comments gaining dashes), so this checks safety: no crash, hang or runaway
// allocation anywhere on the way.
#include <cstdint>
#include <string>

#include "util/xml/element.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using vuk::util::xml::Element;
  const std::string markup(reinterpret_cast<const char*>(data), size);
  Element element;
  if (element.ParseText(markup) != vuk::util::xml::kParsed) return 0;
  Element again;
  again.ParseText(element.Write("\n", "\t"));
  const Element copy(element);
  copy.GetChild("a", 3).GetChild(1).GetAttribute("b");
  return 0;
}
