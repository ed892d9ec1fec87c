// Scene files made to hurt: each is refused with its place named, or read
// and written back without losing what it holds, and nothing outside the
// scene's folder is ever read.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <functional>
#include <limits>
#include <vector>

#include "adaptor/standalone/gltffile.h"
#include "util/base64.h"

namespace vuk::rgw::adaptor::standalone {
namespace {

namespace fs = std::filesystem;

std::string Read(const fs::path& path) {
  std::ifstream in(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(in), {});
}

// A fresh folder for one case, with a file beside it that no scene in it may reach.
fs::path Folder(const std::string& name) {
  const fs::path folder = fs::path(testing::TempDir()) / "hostile" / name;
  fs::remove_all(folder);
  fs::create_directories(folder);
  std::ofstream(folder.parent_path() / "secret.bin") << "SECRET-CONTENTS";
  return folder;
}

std::string Nested(int depth) {
  return std::string(static_cast<std::size_t>(depth), '[') + "1" + std::string(static_cast<std::size_t>(depth), ']');
}

std::string WithExtras(const std::string& extras) {
  return R"({"asset":{"version":"2.0"},"scenes":[{"nodes":[0]}],"nodes":[{"name":"Arm","extras":)" + extras + "}]}";
}

// One node "Box" whose translation is keyed at the times with the values.
std::string Animated(const std::vector<float>& times, const std::vector<float>& values) {
  std::vector<float> floats = times;
  floats.insert(floats.end(), values.begin(), values.end());
  const std::string payload = util::Base64::Encode(reinterpret_cast<const std::uint8_t*>(floats.data()), floats.size() * 4);
  const std::string timeBytes = std::to_string(times.size() * 4), valueBytes = std::to_string(values.size() * 4);
  return R"({"asset":{"version":"2.0"},"scenes":[{"nodes":[0]}],"nodes":[{"name":"Box"}],
    "buffers":[{"byteLength":)" + std::to_string(floats.size() * 4) + R"(,"uri":"data:application/octet-stream;base64,)" + payload + R"("}],
    "bufferViews":[{"buffer":0,"byteLength":)" + timeBytes + R"(},{"buffer":0,"byteOffset":)" + timeBytes + R"(,"byteLength":)" + valueBytes + R"(}],
    "accessors":[{"bufferView":0,"componentType":5126,"count":)" + std::to_string(times.size()) + R"(,"type":"SCALAR"},
      {"bufferView":1,"componentType":5126,"count":)" + std::to_string(values.size() / 3) + R"(,"type":"VEC3"}],
    "animations":[{"samplers":[{"input":0,"output":1}],"channels":[{"sampler":0,"target":{"node":0,"path":"translation"}}]}]})";
}

// A mesh node over four bytes of buffer, with the view and accessor given.
std::string Viewed(const std::string& view, const std::string& accessor) {
  return R"({"asset":{"version":"2.0"},"scenes":[{"nodes":[0]}],"nodes":[{"mesh":0}],
    "meshes":[{"primitives":[{"attributes":{"POSITION":0}}]}],
    "buffers":[{"byteLength":12,"uri":"data:application/octet-stream;base64,AAAAAAAAAAAAAAAA"}],
    "bufferViews":[)" + view + R"(],"accessors":[)" + accessor + "]}";
}

std::string WithBuffer(const std::string& uri) {
  return R"({"asset":{"version":"2.0"},"buffers":[{"byteLength":15,"uri":")" + uri + R"("}]})";
}

using Prepare = std::function<void(const fs::path&)>;

// The case's scene file, in its own folder made ready first.
fs::path WriteScene(const char* name, const std::string& text, const Prepare& prepare) {
  const fs::path folder = Folder(name);
  prepare(folder);
  const fs::path path = folder / "scene.gltf";
  std::ofstream(path) << text;
  return path;
}

struct Hostile {
  const char* name;
  std::string text;
  const char* problem;
  Prepare prepare = [](const fs::path&) {};
};

class GltfHostile : public testing::TestWithParam<Hostile> {};

TEST_P(GltfHostile, IsRefusedWithThePlaceNamedAndNothingOfItsData) {
  const fs::path path = WriteScene(GetParam().name, GetParam().text, GetParam().prepare);
  Scene scene;
  std::string error;
  EXPECT_FALSE(GltfFile().Load(path.string(), scene, &error));
  EXPECT_NE(error.find(GetParam().problem), std::string::npos) << error;
  EXPECT_EQ(error.find("SECRET"), std::string::npos) << error;
  EXPECT_EQ(error.find("AAAAAAAAAAAA"), std::string::npos) << error;
  EXPECT_LT(error.size(), path.string().size() + 200) << error;
  EXPECT_TRUE(scene.Root().children.empty());
}

const std::string kHuge = "4611686018427387904";    // 2^62
const std::string kWraps = "18446744073709551612";  // 2^64 - 4

INSTANTIATE_TEST_SUITE_P(
    Bounds, GltfHostile,
    testing::Values(
        Hostile{"count", Viewed(R"({"buffer":0,"byteLength":12})", R"({"bufferView":0,"componentType":5126,"count":)" + kHuge + R"(,"type":"VEC3"})"),
                "accessor 0: byteOffset and count run past its buffer view 0"},
        Hostile{"accessor_offset", Viewed(R"({"buffer":0,"byteLength":12})", R"({"bufferView":0,"byteOffset":)" + kWraps + R"(,"componentType":5126,"count":1,"type":"VEC3"})"),
                "accessor 0: byteOffset and count run past"},
        Hostile{"view_offset", Viewed(R"({"buffer":0,"byteOffset":)" + kWraps + R"(,"byteLength":8})", R"({"bufferView":0,"componentType":5126,"count":1,"type":"VEC3"})"),
                "buffer view 0: byteOffset and byteLength run past buffer 0"},
        Hostile{"unused_view_length", Viewed(R"({"buffer":0,"byteLength":12},{"buffer":0,"byteLength":)" + kHuge + "}", R"({"bufferView":0,"componentType":5126,"count":1,"type":"VEC3"})"),
                "buffer view 1: byteOffset and byteLength run past buffer 0"},
        Hostile{"stride", Viewed(R"({"buffer":0,"byteLength":12,"byteStride":4})", R"({"bufferView":0,"componentType":5126,"count":1,"type":"VEC3"})"),
                "byteStride of buffer view 0 is shorter than an element"},
        Hostile{"component_type", Viewed(R"({"buffer":0,"byteLength":12})", R"({"bufferView":0,"componentType":5127,"count":1,"type":"VEC3"})"),
                "accessor 0: componentType"},
        Hostile{"payload", R"({"asset":{"version":"2.0"},"buffers":[{"byteLength":9,"uri":"data:application/octet-stream;base64,AAAAAAAAAAAAAAAAAAAAAAAAAAAA"}]})",
                "data:application/octet-stream;base64,..."}));

INSTANTIATE_TEST_SUITE_P(
    Values, GltfHostile,
    testing::Values(
        Hostile{"nan_time", Animated({0, std::nanf("")}, {0, 0, 0, 1, 1, 1}), "node \"Box\", translation keys: accessor 0 holds a key time"},
        Hostile{"far_time", Animated({0, 1e30f}, {0, 0, 0, 1, 1, 1}), "node \"Box\", translation keys: accessor 0 holds a key time"},
        Hostile{"infinite_value", Animated({0, 1}, {std::numeric_limits<float>::infinity(), 0, 0, 1, 1, 1}),
                "node \"Box\", translation keys: accessor 1 holds a value that is not a finite number"},
        Hostile{"huge_number", R"({"asset":{"version":"2.0"},"scenes":[{"nodes":[0]}],"nodes":[{"translation":[1e999,0,0]}]})",
                "nodes[0].translation[0] holds a number too large for a double"},
        Hostile{"deep", R"({"asset":{"version":"2.0"},"nodes":[{"extras":)" + Nested(62) + "}]}", "the JSON nests deeper than 64 levels"},
        Hostile{"extras_null", WithExtras(R"({"rig":{"bones":[1,null]}})"), "nodes[0].extras.rig.bones[1] holds null, which extras can't keep"},
        Hostile{"extras_empty", WithExtras(R"({"rig":{"bones":[]}})"), "nodes[0].extras.rig.bones holds nothing, which extras can't keep"},
        Hostile{"extras_long", WithExtras(R"({"id":4294967296})"), "nodes[0].extras.id holds a whole number beyond 32 bits"},
        Hostile{"deep_unclosed", std::string(100000, '['), "the JSON nests deeper than 64 levels"}));

INSTANTIATE_TEST_SUITE_P(
    Structure, GltfHostile,
    testing::Values(
        Hostile{"scene_index", R"({"asset":{"version":"2.0"},"scene":3,"scenes":[{"nodes":[0]}],"nodes":[{}]})", "\"scene\" names a missing scene"},
        Hostile{"no_scenes", R"({"asset":{"version":"2.0"},"nodes":[{"name":"Lost"}]})", "the file has nodes but no scene"},
        Hostile{"scene_roots", R"({"asset":{"version":"2.0"},"scenes":[{"nodes":[0,7]}],"nodes":[{}]})", "scene 0: \"nodes\" names a missing node"},
        Hostile{"children", R"({"asset":{"version":"2.0"},"scenes":[{"nodes":[0]}],"nodes":[{"name":"Arm","children":[9]}]})",
                "node \"Arm\": \"children\" names a missing node"},
        Hostile{"scale_string", R"({"asset":{"version":"2.0"},"scenes":[{"nodes":[0]}],"nodes":[{"scale":"big"}]})", "nodes[0].scale must be an array"},
        Hostile{"scale_short", R"({"asset":{"version":"2.0"},"scenes":[{"nodes":[0]}],"nodes":[{"name":"Arm","scale":[1,2]}]})",
                "node \"Arm\": \"scale\" must hold 3 numbers"},
        Hostile{"mesh_name", R"({"asset":{"version":"2.0"},"scenes":[{"nodes":[0]}],"nodes":[{"mesh":"Car"}]})", "nodes[0].mesh must be a number"},
        Hostile{"negative_camera", R"({"asset":{"version":"2.0"},"scenes":[{"nodes":[0]}],"nodes":[{"camera":-4}]})",
                "node 0: \"camera\" names a missing camera"}));

INSTANTIATE_TEST_SUITE_P(
    Uris, GltfHostile,
    testing::Values(
        Hostile{"absolute", WithBuffer("/etc/passwd"), "buffer 0: \"uri\" is not a path relative to the scene's folder"},
        Hostile{"parent", WithBuffer("../secret.bin"), "buffer 0: \"uri\" leads outside the scene's folder"},
        Hostile{"escaped_parent", WithBuffer("%2E%2E/secret.bin"), "buffer 0: \"uri\" leads outside the scene's folder"},
        Hostile{"link", WithBuffer("link.bin"), "buffer 0: \"uri\" leads outside the scene's folder",
                [](const fs::path& folder) { fs::create_symlink(folder.parent_path() / "secret.bin", folder / "link.bin"); }},
        Hostile{"fifo", WithBuffer("pipe.bin"), "buffer 0: \"uri\" is not a regular file",
                [](const fs::path& folder) { ASSERT_EQ(mkfifo((folder / "pipe.bin").c_str(), 0600), 0); }},
        Hostile{"device", WithBuffer("%2Fdev%2Fzero"), "is not a path relative to the scene's folder"},
        Hostile{"missing", WithBuffer("nothing.bin"), "buffer 0: \"uri\" names no file in the scene's folder"}));

// The file as written again after loading; empty when either fails.
std::string Resaved(const fs::path& path) {
  Scene scene;
  GltfFile file;
  std::string error;
  const fs::path out = path.parent_path() / "out.gltf";
  const bool done = file.Load(path.string(), scene, &error) && file.Save(out.string(), scene, &error);
  EXPECT_TRUE(done) << error;
  return done ? Read(out) : std::string();
}

// Images are never opened, whatever they name: a FIFO would hang the
// reader, and their URIs come back as they were.
TEST(GltfHostileImages, AreNeverReadAndKeepTheirUris) {
  const std::string written = Resaved(WriteScene("images", R"({"asset":{"version":"2.0"},"scenes":[{"nodes":[0]}],"nodes":[{"name":"Box"}],
    "images":[{"uri":"pipe.png"},{"uri":"../secret.bin"},{"uri":"/etc/passwd"}],"textures":[{"source":0},{"source":1},{"source":2}],
    "materials":[{"pbrMetallicRoughness":{"baseColorTexture":{"index":0}},"emissiveTexture":{"index":1},"occlusionTexture":{"index":2}}]})",
      [](const fs::path& folder) { ASSERT_EQ(mkfifo((folder / "pipe.png").c_str(), 0600), 0); }));
  for (const char* uri : {"\"pipe.png\"", "\"../secret.bin\"", "\"/etc/passwd\""}) EXPECT_NE(written.find(uri), std::string::npos) << uri;
  EXPECT_EQ(written.find("SECRET"), std::string::npos);
  EXPECT_EQ(written.find("root:"), std::string::npos);
}

struct Kept {
  const char* name;
  std::string text;
  const char* member;  // as the written file holds it
  Prepare prepare = [](const fs::path&) {};
};

class GltfKept : public testing::TestWithParam<Kept> {};

TEST_P(GltfKept, ComesBackInTheWrittenFile) {
  const std::string written = Resaved(WriteScene(GetParam().name, GetParam().text, GetParam().prepare));
  EXPECT_NE(written.find(GetParam().member), std::string::npos) << written;
}

INSTANTIATE_TEST_SUITE_P(
    Members, GltfKept,
    testing::Values(
        Kept{"nested_extras", WithExtras(R"({"rig":{"bones":[1,{"b":2.5}],"id":-2147483648}})"), "\"b\": 2.5"},
        Kept{"empty_extras", WithExtras("{}"), "\"Arm\""},
        Kept{"node_member", R"({"asset":{"version":"2.0"},"scenes":[{"nodes":[0]}],"nodes":[{"name":"Arm","x_rig":{"side":[1,"L"]}}]})",
             "\"side\""},
        Kept{"file_member", R"({"asset":{"version":"2.0"},"x_pipeline":"v7","scenes":[{"nodes":[0]}],"nodes":[{"name":"Arm"}]})",
             "\"x_pipeline\": \"v7\""},
        Kept{"empty_name", R"({"asset":{"version":"2.0"},"scenes":[{"nodes":[0]}],"nodes":[{"name":""}]})", "\"name\": \"\""},
        Kept{"camera_member", R"({"asset":{"version":"2.0"},"scenes":[{"nodes":[0]}],"nodes":[{"name":"Cam","camera":0}],
          "cameras":[{"type":"perspective","perspective":{"yfov":0.8,"znear":0.1},"x_lens":"35mm"}]})", "\"x_lens\": \"35mm\""},
        Kept{"deepest_extras", WithExtras(R"({"d":)" + Nested(60) + "}"), "\"d\""},
        Kept{"node_extension", R"({"asset":{"version":"2.0"},"scenes":[{"nodes":[0]}],"nodes":[{"name":"Arm","extensions":{"VENDOR_x":{"k":2}}}]})",
             "\"VENDOR_x\""},
        Kept{"escaped_name", R"({"asset":{"version":"2.0"},"scenes":[{"nodes":[0]}],"nodes":[{"name":"Arm \u00e9"}]})", "Arm \xc3\xa9"},
        Kept{"buffer_beside", R"({"asset":{"version":"2.0"},"scenes":[{"nodes":[0]}],"nodes":[{"name":"Box","mesh":0}],
          "meshes":[{"primitives":[{"attributes":{"POSITION":0}}]}],"buffers":[{"byteLength":15,"uri":"sub%20dir/../data.bin"}],
          "bufferViews":[{"buffer":0,"byteLength":12}],"accessors":[{"bufferView":0,"componentType":5126,"count":1,"type":"VEC3"}]})",
             "\"Box\"", [](const fs::path& folder) {
               fs::create_directory(folder / "sub dir");
               std::ofstream(folder / "data.bin") << "0123456789ABCDE";
             }}));

}  // namespace
}  // namespace vuk::rgw::adaptor::standalone
