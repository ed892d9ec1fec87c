#include "adaptor/standalone/gltfblobs.h"

#include <gtest/gtest.h>
#include <tiny_gltf.h>

#include <cstring>
#include <filesystem>
#include <fstream>

#include "adaptor/standalone/gltffile.h"
#include "adaptor/standalone/gltfprune.h"
#include "tests/adaptor/standalone/scenefiles.h"
#include "util/base64.h"

namespace vuk::rgw::adaptor::standalone {
namespace {

// The JSON of a file: the whole of a text file, the first chunk of a binary one.
std::string Json(const std::string& path) {
  const std::string bytes = Read(path);
  if (bytes.compare(0, 4, "glTF") != 0) return bytes;
  std::uint32_t length = 0;
  std::memcpy(&length, bytes.data() + 12, 4);
  return bytes.substr(20, length);
}

std::string Text(std::size_t size) {
  std::string text;
  while (text.size() < size) text += "<masternode>" + std::to_string(text.size()) + "</masternode>";
  return text.substr(0, size);
}

struct BlobCase {
  const char* extension;
  std::size_t size;
  bool inJson;
};

class LongExtras : public testing::TestWithParam<BlobCase> {};

// Long texts leave the JSON of a binary file only; every text reads back whole.
TEST_P(LongExtras, ReadBackAsTheyWereWrittenAndStayInTheJsonWhereTheyShould) {
  const BlobCase& c = GetParam();
  const std::string text = Text(c.size), path = Temp("blob" + std::to_string(c.size) + c.extension);
  Scene scene;
  scene.CreateNode(ObjectKind::kEmpty, "Tagged")->properties["RGT_tag"] = text;
  scene.CreateNode(ObjectKind::kEmpty, "Small")->properties["RGT_tag"] = "<RGT_tag/>";
  std::string error;
  ASSERT_TRUE(GltfFile().Save(path, scene, &error)) << error;
  const std::string json = Json(path);
  EXPECT_EQ(json.find(text) != std::string::npos, c.inJson);
  EXPECT_EQ(json.find("rgw_blob") != std::string::npos, !c.inJson);

  Scene loaded;
  ASSERT_TRUE(GltfFile().Load(path, loaded, &error)) << error;
  ASSERT_EQ(loaded.Root().children.size(), 2u);
  EXPECT_EQ(loaded.Root().children[0]->properties["RGT_tag"], text);
  EXPECT_EQ(loaded.Root().children[1]->properties["RGT_tag"], "<RGT_tag/>");
}

INSTANTIATE_TEST_SUITE_P(Files, LongExtras,
                         testing::Values(BlobCase{".glb", kBlobThreshold + 1, false},
                                         BlobCase{".glb", kBlobThreshold, true},
                                         BlobCase{".glb", 3 * kBlobThreshold + 2, false},
                                         BlobCase{".gltf", kBlobThreshold + 1, true}));

// Quotes, backslashes, control characters and non-ASCII letters in a long
// text come back as they were, however the text file escapes them.
TEST(GltfBlobs, ALongTextWithEscapesReadsBackWhole) {
  std::string text;
  while (text.size() <= kBlobThreshold) text += "<a b=\"1\">\\ \n\t\x01 caf\xC3\xA9 \\\"</a>";
  Scene scene;
  scene.CreateNode(ObjectKind::kEmpty, "Tagged")->properties["RGT_tag"] = text;
  std::string error;
  const std::string path = Temp("escaped.gltf");
  ASSERT_TRUE(GltfFile().Save(path, scene, &error)) << error;
  Scene loaded;
  ASSERT_TRUE(GltfFile().Load(path, loaded, &error)) << error;
  EXPECT_EQ(loaded.Root().children.at(0)->properties["RGT_tag"], text);
}

// A mesh whose positions a long data URI holds: decoded whole, whichever
// header names the bytes and whether the file escapes its slashes; a
// character outside Base64 is refused.
TEST(GltfBlobs, ALongDataUriIsDecodedWholeOrRefused) {
  constexpr std::size_t kVertices = 6000;  // 72,000 bytes: past the threshold in Base64
  std::vector<float> positions(3 * kVertices);
  for (std::size_t i = 0; i < positions.size(); ++i) positions[i] = static_cast<float>(i) * 0.25f - 100.0f;
  const std::string base64 =
      util::Base64::Encode(reinterpret_cast<const std::uint8_t*>(positions.data()), positions.size() * sizeof(float));
  ASSERT_GT(base64.size(), kBlobThreshold);
  struct Case {
    std::string uri;
    bool loads;
  };
  const std::string damaged = base64.substr(0, 40000) + "!" + base64.substr(40001);
  const Case cases[] = {{"data:application/octet-stream;base64," + base64, true},
                        {"data:application/gltf-buffer;base64," + base64, true},
                        {"data:application\\/octet-stream;base64," + base64, true},
                        {"data:application/octet-stream;base64," + damaged, false}};
  for (const Case& c : cases) {
    const std::string path = Temp("long_data_uri.gltf");
    std::ofstream(path) << R"({"asset":{"version":"2.0"},"scenes":[{"nodes":[0]}],
      "nodes":[{"name":"Cloud","mesh":0}],"meshes":[{"primitives":[{"attributes":{"POSITION":0}}]}],
      "buffers":[{"byteLength":)" << positions.size() * sizeof(float) << R"(,"uri":")" << c.uri << R"("}],
      "bufferViews":[{"buffer":0,"byteLength":)" << positions.size() * sizeof(float) << R"(}],
      "accessors":[{"bufferView":0,"componentType":5126,"count":)" << kVertices << R"(,"type":"VEC3"}]})";
    Scene scene;
    std::string error;
    ASSERT_EQ(GltfFile().Load(path, scene, &error), c.loads) << c.uri.substr(0, 40) << ": " << error;
    if (!c.loads) {
      EXPECT_NE(error.find("long_data_uri.gltf"), std::string::npos) << error;
      continue;
    }
    const std::vector<util::Vector3<double>>& vertices = scene.Root().children.at(0)->mesh.vertices;
    ASSERT_EQ(vertices.size(), kVertices);
    for (std::size_t v = 0; v < kVertices; ++v) {
      ASSERT_EQ(vertices[v], util::Vector3<double>(positions[3 * v], positions[3 * v + 1], positions[3 * v + 2])) << v;
    }
  }
}

// A property the scene dropped after a save is gone from the next save too,
// with its bytes.
TEST(GltfBlobs, APropertyDroppedBetweenTwoSavesLeavesNothingBehind) {
  Scene scene;
  SceneNode* node = scene.CreateNode(ObjectKind::kEmpty, "Tagged");
  node->properties["RGT_tag"] = Text(2 * kBlobThreshold);
  GltfFile file;
  std::string error;
  ASSERT_TRUE(file.Save(Temp("dropped_first.glb"), scene, &error)) << error;
  node->properties.clear();
  for (const char* extension : {".glb", ".gltf"}) {
    const std::string path = Temp(std::string("dropped_second") + extension);
    ASSERT_TRUE(file.Save(path, scene, &error)) << error;
    EXPECT_EQ(Read(path).find("masternode"), std::string::npos) << extension;
    Scene loaded;
    ASSERT_TRUE(GltfFile().Load(path, loaded, &error)) << error;
    EXPECT_TRUE(loaded.Root().children.at(0)->properties.empty()) << extension;
  }
}

// A text file whose data is a file beside it keeps long texts there too,
// after its own bytes, which stay as they were.
TEST(GltfBlobs, ATextFileWithItsDataBesideItKeepsLongTextsThere) {
  const std::string folder = Temp("blobs_beside");
  std::filesystem::create_directories(folder);
  std::ofstream(folder + "/data.bin", std::ios::binary) << "0123456789AB";
  std::ofstream(folder + "/scene.gltf") << R"({"asset":{"version":"2.0"},"scenes":[{"nodes":[0]}],
    "nodes":[{"name":"Box","mesh":0}],"meshes":[{"primitives":[{"attributes":{"POSITION":0}}]}],
    "buffers":[{"byteLength":12,"uri":"data.bin"}],"bufferViews":[{"buffer":0,"byteLength":12}],
    "accessors":[{"bufferView":0,"componentType":5126,"count":1,"type":"VEC3"}]})";
  Scene scene;
  GltfFile file;
  std::string error;
  ASSERT_TRUE(file.Load(folder + "/scene.gltf", scene, &error)) << error;
  const std::string text = Text(2 * kBlobThreshold + 3);
  scene.Root().children.at(0)->properties["RGT_tag"] = text;
  ASSERT_TRUE(file.Save(folder + "/out.gltf", scene, &error)) << error;

  const std::string json = Read(folder + "/out.gltf"), bytes = Read(folder + "/out.bin");
  EXPECT_EQ(json.find(text), std::string::npos);
  EXPECT_NE(json.find("rgw_blob"), std::string::npos);
  EXPECT_EQ(bytes.substr(0, 12), "0123456789AB");
  EXPECT_EQ(bytes.substr(12), text);
  Scene loaded;
  ASSERT_TRUE(GltfFile().Load(folder + "/out.gltf", loaded, &error)) << error;
  EXPECT_EQ(loaded.Root().children.at(0)->properties["RGT_tag"], text);
}

tinygltf::Value::Object Reference(int view) {
  tinygltf::Value::Object inner{{"bufferView", tinygltf::Value(view)}};
  return {{"rgw_blob", tinygltf::Value(inner)}};
}

// Pruning drops the views nothing uses and renumbers the others, blob
// references included.
TEST(GltfBlobs, PruningKeepsAndRenumbersTheViewsOfBlobs) {
  tinygltf::Model model;
  model.buffers.emplace_back();
  model.buffers[0].data.assign(12, 0);
  for (int i = 0; i < 3; ++i) {
    tinygltf::BufferView view;
    view.buffer = 0;
    view.byteOffset = static_cast<std::size_t>(4 * i);
    view.byteLength = 4;
    model.bufferViews.push_back(view);
  }
  model.buffers[0].data[8] = 'x';
  model.nodes.emplace_back();
  tinygltf::Value::Object extras{{"RGT_tag", tinygltf::Value(Reference(2))}};
  model.nodes[0].extras = tinygltf::Value(extras);

  PruneUnusedData(model);
  ASSERT_EQ(model.bufferViews.size(), 1u);
  std::string problem;
  std::map<int, std::string> none;
  ASSERT_TRUE(RestoreLongExtras(model, none, problem)) << problem;
  EXPECT_EQ(model.nodes[0].extras.Get("RGT_tag").Get<std::string>(), std::string("x\0\0\0", 4));
}

TEST(GltfBlobs, AReferenceToMissingBytesIsRefusedWithItsName) {
  tinygltf::Model model;
  model.buffers.emplace_back();
  model.buffers[0].data.assign(4, 0);
  tinygltf::BufferView past;
  past.buffer = 0;
  past.byteOffset = 2;
  past.byteLength = 4;
  model.bufferViews.push_back(past);
  for (int view : {0, 1, -1}) {
    model.nodes.assign(1, tinygltf::Node());
    tinygltf::Value::Object extras{{"RGT_tag", tinygltf::Value(Reference(view))}};
    model.nodes[0].extras = tinygltf::Value(extras);
    std::string problem;
    std::map<int, std::string> none;
    EXPECT_FALSE(RestoreLongExtras(model, none, problem)) << view;
    EXPECT_NE(problem.find("\"RGT_tag\" names buffer view " + std::to_string(view)), std::string::npos) << problem;
  }
}

}  // namespace
}  // namespace vuk::rgw::adaptor::standalone
