// Parse and write of a large element tree shaped like saved tool state:
// nested groups of items with attributes and short texts.
#include <benchmark/benchmark.h>

#include <string>

#include "util/xml/element.h"
#include "util/xml/tag.h"

namespace {

using vuk::util::xml::Element;
using vuk::util::xml::Tag;
using vuk::util::xml::TagWithData;

std::string MakeMarkup(std::size_t targetBytes) {
  Tag root("RGT");
  std::size_t index = 0;
  std::string markup;
  while (markup.size() < targetBytes) {
    Tag plugin("RGT_Plugin");
    plugin.SetAttribute("version") = "2.5";
    plugin.AddChild(TagWithData("name", "Tool_" + std::to_string(index)));
    Tag group("group");
    group.SetAttribute("label") = "Suspension & steering";
    for (int i = 0; i < 20; ++i) {
      Tag item("item");
      item.SetAttribute("id") = std::to_string(100 + i);
      item.SetAttribute("type") = "blob";
      item.AddChild(TagWithData("value", 0.125 * i + static_cast<double>(index)));
      group.AddChild(item);
    }
    plugin.AddChild(group);
    root.AddChild(plugin);
    ++index;
    if (index % 64 == 0) markup = root.Write();
  }
  return root.Write();
}

const std::string& Markup() {
  static const std::string markup = MakeMarkup(10u << 20);
  return markup;
}

void BM_XmlParse(benchmark::State& state) {
  const std::string& markup = Markup();
  for (auto _ : state) {
    Element element;
    benchmark::DoNotOptimize(element.ParseText(markup));
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * markup.size()));
}
BENCHMARK(BM_XmlParse)->Unit(benchmark::kMillisecond);

void BM_XmlWrite(benchmark::State& state) {
  Element element;
  element.ParseText(Markup());
  std::string out;
  for (auto _ : state) {
    out.clear();
    element.WriteTo(out);
    benchmark::DoNotOptimize(out.data());
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * out.size()));
}
BENCHMARK(BM_XmlWrite)->Unit(benchmark::kMillisecond);

}  // namespace
