#include "adaptor/standalone/gltffile.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <map>
#include <tuple>

#include "scenes/samplescene.h"
#include "tests/adaptor/standalone/scenefiles.h"

namespace vuk::rgw::adaptor::standalone {
namespace {

void ExpectSameScenes(Scene& a, Scene& b) {
  std::vector<SceneNode*> left, right;
  a.Walk([&](SceneNode& n) { left.push_back(&n); });
  b.Walk([&](SceneNode& n) { right.push_back(&n); });
  ASSERT_EQ(left.size(), right.size());
  for (std::size_t i = 1; i < left.size(); ++i) {
    SceneNode &l = *left[i], &r = *right[i];
    EXPECT_EQ(std::tie(l.hostName, l.kind, l.visible, l.properties, l.mesh.faces),
              std::tie(r.hostName, r.kind, r.visible, r.properties, r.mesh.faces));
    EXPECT_EQ(l.mesh.vertices.size(), r.mesh.vertices.size());
    ASSERT_EQ(l.track.Keys().size(), r.track.Keys().size()) << l.hostName;
    for (Tick tick : {Tick(0), Tick(800), Tick(4800), Tick(9000)}) {
      // Files hold floats.
      for (int e = 0; e < 16; ++e) EXPECT_NEAR(l.World(tick).m[e], r.World(tick).m[e], 2e-6) << l.hostName << " " << e;
    }
  }
}

// A loaded scene saved again carries no data of the keys it replaced: the
// file stays the same however often it is opened and saved, in one process
// or in many. The first file differs only by the view targets a reader adds.
TEST(GltfFile, RoundTripKeepsTheSceneAndSavingAgainTheBytes) {
  Scene scene;
  vuk::scenes::BuildSampleScene(scene);
  for (const std::string kind : {".gltf", ".glb"}) {
    std::string error;
    ASSERT_TRUE(GltfFile().Save(Temp("round_0" + kind), scene, &error)) << error;
    EXPECT_FALSE(std::filesystem::exists(Temp("round_0" + kind) + ".tmp"));
    for (int round = 1; round <= 3; ++round) {
      const std::string from = Temp("round_" + std::to_string(round - 1) + kind);
      const std::string to = Temp("round_" + std::to_string(round) + kind);
      Scene loaded;
      GltfFile file;
      ASSERT_TRUE(file.Load(from, loaded, &error)) << error;
      if (round == 1) ExpectSameScenes(scene, loaded);
      ASSERT_TRUE(file.Save(to, loaded, &error)) << error;
      ASSERT_TRUE(file.Save(Temp("round_twice" + kind), loaded, &error)) << error;
      EXPECT_EQ(Read(Temp("round_twice" + kind)), Read(to));
    }
    EXPECT_EQ(Read(Temp("round_3" + kind)), Read(Temp("round_1" + kind)));
  }
}

// A text file's data is written as Base64 in pieces: a mesh larger than
// one piece, of a length no piece divides, comes back whole.
TEST(GltfFile, DataOfManyPiecesComesBackWhole) {
  Scene scene;
  SceneNode* node = scene.CreateNode(ObjectKind::kMesh, "Strip");
  util::CMesh strip;
  for (int i = 0; i < 20001; ++i) strip.vertices.push_back({i * 0.25, (i % 7) * 0.5, -i * 0.125});
  for (std::int32_t i = 0; i + 2 < 20001; i += 3) strip.faces.insert(strip.faces.end(), {i, i + 1, i + 2});
  node->SetMesh(strip);
  std::string error;
  ASSERT_TRUE(GltfFile().Save(Temp("pieces.gltf"), scene, &error)) << error;
  Scene loaded;
  ASSERT_TRUE(GltfFile().Load(Temp("pieces.gltf"), loaded, &error)) << error;
  const util::CMesh& back = loaded.Root().children.at(0)->mesh;
  EXPECT_EQ(back.faces, strip.faces);
  ASSERT_EQ(back.vertices.size(), strip.vertices.size());
  for (std::size_t i = 0; i < back.vertices.size(); ++i) ASSERT_EQ(back.vertices[i], strip.vertices[i]) << i;
}

TEST(GltfFile, WhatTheHostDoesNotKnowComesBackUnchanged) {
  const std::string source = Temp("foreign.gltf");
  std::ofstream(source) << R"({"asset":{"version":"2.0"},"extensionsUsed":["KHR_materials_unlit"],
    "materials":[{"name":"Paint","extensions":{"KHR_materials_unlit":{}},"pbrMetallicRoughness":{"baseColorFactor":[1,0,0,1]}}],
    "scenes":[{"nodes":[0]}],"scene":0,
    "nodes":[{"name":"Car","translation":[1,2,3],"extras":{"RGT_tag":"<RGT_tag/>","owner":"me"}}]})";
  Scene scene;
  GltfFile file;
  std::string error;
  ASSERT_TRUE(file.Load(source, scene, &error)) << error;
  SceneNode* car = scene.Root().children.at(0);
  EXPECT_EQ(car->hostName, "Car");
  EXPECT_EQ(car->properties["RGT_tag"], "<RGT_tag/>");
  EXPECT_EQ(car->World(0).GetTranslation(), util::Vector3<double>(1, 2, 3));
  ASSERT_TRUE(file.Save(Temp("foreign_out.gltf"), scene, &error)) << error;
  const std::string written = Read(Temp("foreign_out.gltf"));
  EXPECT_NE(written.find("KHR_materials_unlit"), std::string::npos);
  EXPECT_NE(written.find("\"Paint\""), std::string::npos);
  EXPECT_NE(written.find("\"owner\": \"me\""), std::string::npos) << written;
}

// The root's strings are the glTF scene's string extras; the others stay.
TEST(GltfFile, TheRootsStringsAreTheScenesExtras) {
  const std::string source = Temp("scene_extras.gltf");
  std::ofstream(source) << R"({"asset":{"version":"2.0"},"scene":0,
    "scenes":[{"nodes":[0],"extras":{"RGT_tag":"<RGT/>","author":"me","level":3}}],"nodes":[{"name":"Car"}]})";
  Scene scene;
  GltfFile file;
  std::string error;
  ASSERT_TRUE(file.Load(source, scene, &error)) << error;
  EXPECT_EQ(scene.Root().properties, (std::map<std::string, std::string>{{"RGT_tag", "<RGT/>"}, {"author", "me"}}));
  scene.Root().properties.erase("RGT_tag");
  scene.Root().properties["note"] = "kept";
  ASSERT_TRUE(file.Save(Temp("scene_extras_out.gltf"), scene, &error)) << error;
  Scene loaded;
  ASSERT_TRUE(GltfFile().Load(Temp("scene_extras_out.gltf"), loaded, &error)) << error;
  EXPECT_EQ(loaded.Root().properties, (std::map<std::string, std::string>{{"author", "me"}, {"note", "kept"}}));
  EXPECT_NE(Read(Temp("scene_extras_out.gltf")).find("\"level\": 3"), std::string::npos);
}

TEST(GltfFile, SteppedAndCubicAnimationsBecomeKeys) {
  const std::string source = Temp("animated.gltf");
  // Times 0, 1 and values for a STEP translation and a CUBICSPLINE scale
  // (in-tangent, value, out-tangent per key), as base64 of little-endian floats.
  std::ofstream(source) << R"({"asset":{"version":"2.0"},"scenes":[{"nodes":[0]}],"nodes":[{"name":"Box"}],
    "buffers":[{"byteLength":104,"uri":"data:application/octet-stream;base64,AAAAAAAAgD8AAAAAAAAAAAAAAAAAACBBAAAAAAAAAAAAAAAAAAAAAAAAAAAAAIA/AACAPwAAgD8AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAABAAAAAQAAAAEAAAAAAAAAAAAAAAAA="}],
    "bufferViews":[{"buffer":0,"byteOffset":0,"byteLength":8},{"buffer":0,"byteOffset":8,"byteLength":24},{"buffer":0,"byteOffset":32,"byteLength":72}],
    "accessors":[{"bufferView":0,"componentType":5126,"count":2,"type":"SCALAR","min":[0],"max":[1]},
      {"bufferView":1,"componentType":5126,"count":2,"type":"VEC3"},{"bufferView":2,"componentType":5126,"count":6,"type":"VEC3"}],
    "animations":[{"samplers":[{"input":0,"output":1,"interpolation":"STEP"},{"input":0,"output":2,"interpolation":"CUBICSPLINE"}],
      "channels":[{"sampler":0,"target":{"node":0,"path":"translation"}},{"sampler":1,"target":{"node":0,"path":"scale"}}]}]})";
  Scene scene;
  GltfFile file;
  std::string error;
  ASSERT_TRUE(file.Load(source, scene, &error)) << error;
  SceneNode* box = scene.Root().children.at(0);
  const std::vector<TransformKey>& keys = box->track.Keys();
  ASSERT_EQ(keys.size(), 2u);
  EXPECT_EQ(keys[1].tick, 4800);
  EXPECT_EQ(std::make_pair(keys[0].position.x, keys[1].position.x), std::make_pair(0.0, 10.0));
  EXPECT_EQ(std::make_pair(keys[0].scale.x, keys[1].scale.z), std::make_pair(1.0, 2.0));
}

// Past 2048 s a float can't hold a tick: keys come back on the ticks they
// were written at, their float times still rise, and the frame rate stays.
TEST(GltfFile, KeysOfLongTakesComeBackOnTheirTicks) {
  Scene scene;
  scene.clock.SetFrameRate(24);
  SceneNode* node = scene.CreateNode(ObjectKind::kEmpty, "Rig");
  const Tick late = 7200 * kTicksPerSecond;
  for (Tick tick : {Tick(0), late - 1, late, late + 1}) {
    TransformKey key;
    key.tick = tick;
    key.position.x = static_cast<double>(tick);
    node->track.SetKey(key);
  }
  std::string error;
  for (const std::string kind : {".gltf", ".GLB"}) {
    ASSERT_TRUE(GltfFile().Save(Temp("long" + kind), scene, &error)) << error;
    EXPECT_EQ(Read(Temp("long" + kind)).rfind("glTF", 0) == 0, kind == ".GLB");
    Scene loaded;
    ASSERT_TRUE(GltfFile().Load(Temp("long" + kind), loaded, &error)) << error;
    std::vector<Tick> ticks;
    for (const TransformKey& key : loaded.Root().children.at(0)->track.Keys()) ticks.push_back(key.tick);
    EXPECT_EQ(ticks, (std::vector<Tick>{0, late - 1, late, late + 1}));
    EXPECT_EQ(loaded.clock.GetFrameRate(), 24);
  }
}

struct BadFile {
  const char* name;
  const char* text;
  const char* problem;
};

class GltfFileBad : public testing::TestWithParam<BadFile> {};

TEST_P(GltfFileBad, IsRefusedWithTheFileNamedAndTheSceneUntouched) {
  const std::string path = Temp(GetParam().name);
  std::ofstream(path) << GetParam().text;
  Scene scene;
  scene.CreateNode(ObjectKind::kEmpty, "Kept");
  GltfFile file;
  std::string error;
  EXPECT_FALSE(file.Load(path, scene, &error));
  EXPECT_EQ(error.rfind(path + ": ", 0), 0u) << error;
  EXPECT_NE(error.find(GetParam().problem), std::string::npos) << error;
  ASSERT_EQ(scene.Root().children.size(), 1u);
  EXPECT_EQ(scene.Root().children[0]->hostName, "Kept");
}

INSTANTIATE_TEST_SUITE_P(
    Samples, GltfFileBad,
    testing::Values(
        BadFile{"past_end.gltf",
                R"({"asset":{"version":"2.0"},"scenes":[{"nodes":[0]}],"nodes":[{"mesh":0}],
                  "meshes":[{"primitives":[{"attributes":{"POSITION":0}}]}],
                  "buffers":[{"byteLength":4,"uri":"data:application/octet-stream;base64,AAAAAA=="}],
                  "bufferViews":[{"buffer":0,"byteLength":4}],
                  "accessors":[{"bufferView":0,"componentType":5126,"count":3,"type":"VEC3"}]})",
                "run past its buffer view 0"},
        BadFile{"missing_mesh.gltf", R"({"asset":{"version":"2.0"},"scenes":[{"nodes":[0]}],"nodes":[{"mesh":4}]})",
                "missing mesh"}));

TEST(GltfFile, ACycleInTheFileIsTakenOnce) {
  const std::string path = Temp("cycle.gltf");
  std::ofstream(path) << R"({"asset":{"version":"2.0"},"scenes":[{"nodes":[0,2]}],
    "nodes":[{"name":"A","children":[1]},{"name":"B","children":[0]},{"name":"C"}]})";
  Scene scene;
  std::string error;
  ASSERT_TRUE(GltfFile().Load(path, scene, &error)) << error;
  std::string order;
  scene.Walk([&](SceneNode& node) { order += node.hostName + " "; });
  // Parents first, each with its children before its next sibling.
  EXPECT_EQ(order, "Scene Root A B C ");
}

}  // namespace
}  // namespace vuk::rgw::adaptor::standalone
