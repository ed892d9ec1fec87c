// Packing and unpacking of saved tool state: the text of a tool element whose
// bulk is base64 of recorded histories (times at 30 frames per second and
// smooth values), as scenes store it.
#include <benchmark/benchmark.h>

#include <cmath>
#include <string>

#include "util/base64.h"
#include "util/compressedblock.h"

namespace {

using vuk::util::Base64;
using vuk::util::Bytes;
using vuk::util::CompressedBlock;

std::string MakeSavedState(std::size_t targetBytes) {
  std::string text = "<RGT_Plugin version=\"2.5\">\n\t<type>4WheelerExtended</type>\n\t<configprofile version=\"2.0\">\n";
  for (int i = 0; i < 200; ++i) {
    text += "\t\t<item id=\"" + std::to_string(i) + "\" label=\"Spring Stiffness\" type=\"blob\">AAAAAAAA4D8=</item>\n";
  }
  text += "\t</configprofile>\n\t<savedata>";
  Bytes records;
  for (int frame = 0; text.size() + records.size() * 4 / 3 < targetBytes; ++frame) {
    const double sample[4] = {frame / 30.0, std::sin(frame * 0.01), 0.5 * std::cos(frame * 0.013), 1.0};
    const auto* raw = reinterpret_cast<const std::uint8_t*>(sample);
    records.insert(records.end(), raw, raw + sizeof sample);
  }
  text += Base64::Encode(records) + "</savedata>\n</RGT_Plugin>\n";
  return text;
}

const std::string& SavedState() {
  static const std::string text = MakeSavedState(10u << 20);
  return text;
}

void BM_CompressedBlockPack(benchmark::State& state) {
  const std::string& text = SavedState();
  std::size_t packedSize = 0;
  for (auto _ : state) {
    const Bytes packed = CompressedBlock::Pack(text);
    packedSize = packed.size();
    benchmark::DoNotOptimize(packed.data());
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * text.size()));
  state.counters["ratio"] = static_cast<double>(packedSize) / static_cast<double>(text.size());
}
BENCHMARK(BM_CompressedBlockPack)->Unit(benchmark::kMillisecond);

void BM_CompressedBlockUnpack(benchmark::State& state) {
  const Bytes packed = CompressedBlock::Pack(SavedState());
  for (auto _ : state) {
    Bytes out;
    CompressedBlock::Unpack(packed, out);
    benchmark::DoNotOptimize(out.data());
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * SavedState().size()));
}
BENCHMARK(BM_CompressedBlockUnpack)->Unit(benchmark::kMillisecond);

}  // namespace
