#include "core/prmfile.h"

#include <gtest/gtest.h>

#include <fstream>
#include <tuple>

#include "util/datachunk.h"

namespace vuk::rgw::core {
namespace {

std::string Chunk(const std::string& text) {
  const util::Bytes flat = util::DataChunk("RGT", util::Bytes(text.begin(), text.end())).Flatten();
  return std::string(flat.begin(), flat.end());
}

// A good file travels through the command line's "model" and "create --prm".
TEST(PrmFile, ABadFileGivesAMessageNamingIt) {
  const std::pair<std::string, const char*> files[] = {{"ab", "not a pre-rigged model"},
                                                       {Chunk("<RGT><RGT_Plugin>"), "parse result 3"},
                                                       {Chunk("<dialog/>"), "\"dialog\" is not a tool tree"}};
  const std::string path = testing::TempDir() + "/bad.prm";
  for (const auto& [bytes, problem] : files) {
    std::ofstream(path, std::ios::binary) << bytes;
    util::xml::Element tree;
    std::string error;
    EXPECT_FALSE(LoadPrmFile(path, tree, &error));
    EXPECT_TRUE(tree.IsEmpty());
    EXPECT_EQ(error.rfind(path + ": ", 0), 0u) << error;
    EXPECT_NE(error.find(problem), std::string::npos) << error;
  }
}

std::string NestedTools(int levels) {
  std::string text;
  for (int i = 0; i < levels; ++i) text += "<RGT_Plugin><type>Counter</type>";
  for (int i = 0; i < levels; ++i) text += "</RGT_Plugin>";
  return text;
}

// Tools load recursively: a model nests them no deeper than the loader goes.
TEST(PrmFile, ToolsNestedTooDeepAreRefused) {
  const std::tuple<std::string, const char*> files[] = {
      {"<RGT>" + NestedTools(64) + "</RGT>", ""},
      {NestedTools(64), ""},
      {"<RGT>" + NestedTools(65) + "</RGT>", "tools are nested 65 levels deep; a model holds at most 64"},
      {NestedTools(100000), "tools are nested 100000 levels deep; a model holds at most 64"}};
  const std::string path = testing::TempDir() + "/deep.prm";
  for (const auto& [text, problem] : files) {
    std::ofstream(path, std::ios::binary) << Chunk(text);
    util::xml::Element tree;
    std::string error;
    EXPECT_EQ(LoadPrmFile(path, tree, &error), *problem == '\0');
    EXPECT_EQ(error, *problem ? path + ": " + problem : "");
  }
}

}  // namespace
}  // namespace vuk::rgw::core
