#include "adaptor/standalone/gltfglb.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <fstream>

#include "adaptor/standalone/gltffile.h"
#include "adaptor/standalone/gltfsource.h"
#include "tests/adaptor/standalone/scenefiles.h"

namespace vuk::rgw::adaptor::standalone {
namespace {

void PutWord(std::string& out, std::uint32_t word) { out.append(reinterpret_cast<const char*>(&word), 4); }

// A binary glTF from its JSON and the bytes of its binary chunk.
std::string Glb(std::string json, std::string bin) {
  json.resize((json.size() + 3) / 4 * 4, ' ');
  bin.resize((bin.size() + 3) / 4 * 4, '\0');
  std::string out = "glTF";
  PutWord(out, 2);
  PutWord(out, static_cast<std::uint32_t>(12 + 8 + json.size() + 8 + bin.size()));
  PutWord(out, static_cast<std::uint32_t>(json.size()));
  PutWord(out, 0x4E4F534A);
  out += json;
  PutWord(out, static_cast<std::uint32_t>(bin.size()));
  PutWord(out, 0x004E4942);
  return out + bin;
}

const std::string kText(1000, 'T');

// A triangle's corner in view 0 (12 bytes), a node's long text in view 1
// after it, as the writer lays them out; `views` and `accessorView` vary that.
std::string TriangleAndText(const std::string& views, int accessorView = 0, const std::string& extras = R"({"RGT_tag":{"rgw_blob":{"bufferView":1}}})") {
  const std::string json =
      R"({"asset":{"version":"2.0"},"scenes":[{"nodes":[0,1]}],"nodes":[{"name":"Box","mesh":0},{"name":"Tool","extras":)" +
      extras + R"(}],"meshes":[{"primitives":[{"attributes":{"POSITION":0}}]}],"buffers":[{"byteLength":1012}],"bufferViews":)" +
      views + R"(,"accessors":[{"bufferView":)" + std::to_string(accessorView) +
      R"(,"componentType":5126,"count":1,"type":"VEC3","min":[0,0,0],"max":[0,0,0]}]})";
  return Glb(json, std::string(12, '\0') + kText);
}

const std::string kAsWritten = R"([{"buffer":0,"byteLength":12},{"buffer":0,"byteOffset":12,"byteLength":1000}])";

struct LayoutCase {
  const char* name;
  std::string file;
  bool inParts;
  std::string text;  // what the node's text reads as
};

class GlbLayouts : public testing::TestWithParam<LayoutCase> {};

// Only a file laid out as we write it is read in parts; any other still
// reads, whole, to the same scene.
TEST_P(GlbLayouts, ReadInPartsOnlyAsWrittenAndLoadAlike) {
  const LayoutCase& c = GetParam();
  const std::string path = Temp(std::string("layout_") + c.name + ".glb");
  std::ofstream(path, std::ios::binary) << c.file;
  RegularFile file;
  std::string problem;
  ASSERT_TRUE(file.Open(path, problem)) << problem;
  GlbChunks chunks;
  ASSERT_TRUE(ReadGlbChunks(file, chunks));
  GlbParts parts;
  ASSERT_EQ(ReadGlbParts(file, chunks, parts), c.inParts);
  if (c.inParts) {
    EXPECT_EQ(parts.texts.at(1), kText);
    // The parser's container holds the first buffer's own bytes only.
    std::uint32_t binLength = 0, jsonLength = 0;
    std::memcpy(&jsonLength, parts.container.data() + 12, 4);
    std::memcpy(&binLength, parts.container.data() + 20 + jsonLength, 4);
    EXPECT_EQ(binLength, 12u);
  }
  Scene loaded;
  ASSERT_TRUE(GltfFile().Load(path, loaded, &problem)) << problem;
  EXPECT_EQ(loaded.Root().children.at(1)->properties["RGT_tag"], c.text);
}

INSTANTIATE_TEST_SUITE_P(
    Files, GlbLayouts,
    testing::Values(LayoutCase{"as_written", TriangleAndText(kAsWritten), true, kText},
                    LayoutCase{"accessor_on_text", TriangleAndText(kAsWritten, 1), false, kText},
                    LayoutCase{"text_overlaps_data",
                               TriangleAndText(R"([{"buffer":0,"byteLength":12},{"buffer":0,"byteOffset":8,"byteLength":1000}])"),
                               false, std::string(4, '\0') + kText.substr(0, 996)},
                    LayoutCase{"text_named_twice",
                               TriangleAndText(kAsWritten, 0,
                                               R"({"RGT_tag":{"rgw_blob":{"bufferView":1}},"b":{"rgw_blob":{"bufferView":1}}})"),
                               false, kText}),
    [](const testing::TestParamInfo<LayoutCase>& info) { return std::string(info.param.name); });

// A text's view past the end of the binary chunk is refused as before, by
// its place, and the file is not read in parts.
TEST(GlbLayouts, ATextPastTheBinaryChunkIsRefusedByItsView) {
  const std::string path = Temp("layout_past_end.glb");
  std::ofstream(path, std::ios::binary)
      << TriangleAndText(R"([{"buffer":0,"byteLength":12},{"buffer":0,"byteOffset":12,"byteLength":5000}])");
  Scene loaded;
  std::string problem;
  EXPECT_FALSE(GltfFile().Load(path, loaded, &problem));
  EXPECT_NE(problem.find("buffer view 1"), std::string::npos) << problem;
  EXPECT_TRUE(loaded.Root().children.empty());
}

}  // namespace
}  // namespace vuk::rgw::adaptor::standalone
