// Builds a component tree from arbitrary markup, as a layout file would be,
// and looks every id up: unknown tags, odd attribute values and deep trees
// must all be taken without a crash.
#include <cstdint>
#include <string>

#include "gui/builder.h"

namespace {

void Visit(vuk::gui::Component& component, vuk::gui::Component& root) {
  root.FindComponentById(component.id);
  component.ResolvePath("[coreimages]/a.png");
  for (std::size_t i = 0; i < component.GetChildCount(); ++i) Visit(*component.GetChild(i), root);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  vuk::util::xml::Element element;
  if (element.ParseText(std::string(reinterpret_cast<const char*>(data), size)) != vuk::util::xml::kParsed) return 0;
  if (auto root = vuk::gui::BuildComponent(element)) Visit(*root, *root);
  return 0;
}
