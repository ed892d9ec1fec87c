#include "core/prmfile.h"

#include <fstream>
#include <iterator>
#include <string_view>

#include "core/instancemanager.h"
#include "util/atomicfile.h"
#include "util/datachunk.h"

namespace vuk::rgw::core {

namespace {

constexpr char kChunkName[] = "RGT";

bool Fail(std::string* error, const std::string& text) {
  if (error) *error = text;
  return false;
}

}  // namespace

bool SavePrmFile(const std::string& path, const util::xml::Element& tree, std::string* error) {
  const std::string text = tree.Write();
  util::DataChunk chunk(kChunkName, util::Bytes(text.begin(), text.end()));
  const util::Bytes flat = chunk.Flatten();
  return util::AtomicFile::Replace(path, std::string_view(reinterpret_cast<const char*>(flat.data()), flat.size()), error);
}

bool LoadPrmFile(const std::string& path, util::xml::Element& tree, std::string* error) {
  tree = util::xml::Element();
  std::ifstream in(path, std::ios::binary);
  if (!in) return Fail(error, path + ": can't be read");
  const util::Bytes bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  util::DataChunk chunk;
  std::string problem;
  if (!chunk.Read(bytes, &problem)) return Fail(error, path + ": not a pre-rigged model (" + problem + ")");
  util::xml::Element parsed;
  const util::xml::ParseResult result = parsed.ParseText(std::string(chunk.data.begin(), chunk.data.end()));
  if (result != util::xml::kParsed) return Fail(error, path + ": the tool's text can't be read (parse result " + std::to_string(result) + ")");
  if (parsed.name != "RGT" && parsed.name != "rgw" && parsed.name != "RGT_Plugin") {
    return Fail(error, path + ": \"" + parsed.name + "\" is not a tool tree");
  }
  if (const std::size_t depth = InstanceManager::ToolDepth(parsed); depth > InstanceManager::kMaxToolDepth) {
    return Fail(error, path + ": tools are nested " + std::to_string(depth) + " levels deep; a model holds at most " +
                           std::to_string(InstanceManager::kMaxToolDepth));
  }
  tree = std::move(parsed);
  return true;
}

}  // namespace vuk::rgw::core
