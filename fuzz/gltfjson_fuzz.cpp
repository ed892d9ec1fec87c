// Scans arbitrary text as a scene's JSON with a tiny threshold, so that every
// string of a node's extras and every buffer URI counts as long: the marking,
// unescaping and cutting of long values see short, damaged inputs too, which
// real files only give them at 64 KiB and more.
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "adaptor/standalone/gltfjson.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace vuk::rgw::adaptor::standalone;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  JsonFacts facts;
  std::string problem;
  if (!ScanJson(text, facts, problem, 2)) return 0;
  const std::string cut = WithoutLongValues(text, facts);
  // A cut takes out what it marked, never more than the text.
  std::size_t taken = 0;
  for (const LongNodeText& long_ : facts.longNodeTexts) {
    if (long_.begin >= long_.end || long_.end > size || long_.text.size() > long_.end - long_.begin) std::abort();
    taken += long_.end - long_.begin;
  }
  for (const EmbeddedBuffer& embedded : facts.embeddedBuffers) {
    if (embedded.begin >= embedded.end || embedded.end > size) std::abort();
    taken += embedded.end - embedded.begin;
  }
  if (taken > size) std::abort();
  return 0;
}
