// A user's scene through the command line: made here with every feature a
// glTF exporter writes, then a tool created, linked and run on it, and the
// result, saved to another folder, compared with what went in.
#include <gtest/gtest.h>
#include <tiny_gltf.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <set>

#include "scenefiles.h"

namespace {

namespace fs = std::filesystem;

using vuk::rgw::adaptor::standalone::Read;

const fs::path kRoot = fs::path(testing::TempDir()) / "gltf_cli";

// Runs rgw with the arguments; answers its standard output.
std::string Rgw(const std::string& arguments) {
  const std::string command = std::string(RGW_EXE) + " " + arguments + " 2>/dev/null";
  std::string output;
  FILE* pipe = popen(command.c_str(), "r");
  char line[4096];
  while (pipe && std::fgets(line, sizeof line, pipe)) output += line;
  EXPECT_EQ(pipe ? pclose(pipe) : -1, 0) << command;
  return output;
}

double Seconds(const std::string& arguments) {
  const auto start = std::chrono::steady_clock::now();
  Rgw(arguments);
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

bool Validates(const fs::path& file) {
  const std::string command = "NODE_PATH=" RGW_NODE_MODULES " node " RGW_VALIDATOR " " + file.string();
  return std::system(command.c_str()) == 0;
}

tinygltf::Model Load(const fs::path& path) {
  tinygltf::Model model;
  tinygltf::TinyGLTF loader;
  loader.SetImageLoader([](tinygltf::Image*, const int, std::string*, std::string*, int, int, const unsigned char*, int,
                           void*) { return true; },
                        nullptr);
  std::string err, warn;
  const bool binary = Read(path).rfind("glTF", 0) == 0;
  EXPECT_TRUE(binary ? loader.LoadBinaryFromFile(&model, &err, &warn, path.string())
                     : loader.LoadASCIIFromFile(&model, &err, &warn, path.string()))
      << err;
  return model;
}

// The bytes behind an accessor, as a reader sees them.
std::string Bytes(const tinygltf::Model& model, int index) {
  const tinygltf::Accessor& accessor = model.accessors.at(static_cast<std::size_t>(index));
  const tinygltf::BufferView& view = model.bufferViews.at(static_cast<std::size_t>(accessor.bufferView));
  const auto& data = model.buffers.at(static_cast<std::size_t>(view.buffer)).data;
  const std::size_t size = accessor.count * static_cast<std::size_t>(
      tinygltf::GetComponentSizeInBytes(static_cast<std::uint32_t>(accessor.componentType)) *
      tinygltf::GetNumComponentsInType(static_cast<std::uint32_t>(accessor.type)));
  return std::string(data.begin() + static_cast<std::ptrdiff_t>(view.byteOffset + accessor.byteOffset),
                     data.begin() + static_cast<std::ptrdiff_t>(view.byteOffset + accessor.byteOffset + size));
}

std::vector<float> Floats(const tinygltf::Model& model, int index) {
  const std::string bytes = Bytes(model, index);
  std::vector<float> values(bytes.size() / 4);
  std::memcpy(values.data(), bytes.data(), bytes.size());
  return values;
}

// An accessor in the model's one buffer; bounds when given.
template <typename T>
int Add(tinygltf::Model& model, const std::vector<T>& values, int type, int componentType,
        std::vector<double> min = {}, std::vector<double> max = {}) {
  auto& data = model.buffers[0].data;
  tinygltf::BufferView view;
  view.buffer = 0;
  view.byteOffset = data.size();
  view.byteLength = values.size() * sizeof(T);
  data.resize(data.size() + (view.byteLength + 3) / 4 * 4);
  std::memcpy(data.data() + view.byteOffset, values.data(), view.byteLength);
  model.bufferViews.push_back(view);
  tinygltf::Accessor accessor;
  accessor.bufferView = static_cast<int>(model.bufferViews.size() - 1);
  accessor.type = type;
  accessor.componentType = componentType;
  accessor.count = values.size() / static_cast<std::size_t>(tinygltf::GetNumComponentsInType(static_cast<std::uint32_t>(type)));
  accessor.minValues = min;
  accessor.maxValues = max;
  model.accessors.push_back(accessor);
  return static_cast<int>(model.accessors.size() - 1);
}

int AddFloats(tinygltf::Model& model, const std::vector<float>& values, int type) {
  return Add(model, values, type, TINYGLTF_COMPONENT_TYPE_FLOAT);
}

tinygltf::Value Extras(const std::string& key, int value) {
  return tinygltf::Value(tinygltf::Value::Object{{key, tinygltf::Value(value)}});
}

void AddClip(tinygltf::Model& model, const std::string& name, int input,
             const std::vector<std::tuple<int, std::string, std::string, int>>& channels) {
  tinygltf::Animation clip;
  clip.name = name;
  clip.extras = Extras("take", static_cast<int>(model.animations.size()));
  for (const auto& [node, path, interpolation, output] : channels) {
    tinygltf::AnimationSampler& sampler = clip.samplers.emplace_back();
    std::tie(sampler.input, sampler.output, sampler.interpolation) = std::make_tuple(input, output, interpolation);
    sampler.extras = Extras("curve", output);
    tinygltf::AnimationChannel& channel = clip.channels.emplace_back();
    std::tie(channel.sampler, channel.target_node, channel.target_path) =
        std::make_tuple(static_cast<int>(clip.samplers.size() - 1), node, path);
  }
  model.animations.push_back(clip);
}

// A 1x1 PNG.
const unsigned char kPng[] = {0x89, 0x50, 0x4E, 0x47, 0x0D, 0x0A, 0x1A, 0x0A, 0x00, 0x00, 0x00, 0x0D, 0x49, 0x48, 0x44,
                              0x52, 0x00, 0x00, 0x00, 0x01, 0x00, 0x00, 0x00, 0x01, 0x08, 0x06, 0x00, 0x00, 0x00, 0x1F,
                              0x15, 0xC4, 0x89, 0x00, 0x00, 0x00, 0x0D, 0x49, 0x44, 0x41, 0x54, 0x78, 0x9C, 0x63, 0xF8,
                              0xCF, 0xC0, 0xF0, 0x1F, 0x00, 0x05, 0x00, 0x01, 0xFF, 0x89, 0x99, 0x3D, 0x1D, 0x00, 0x00,
                              0x00, 0x00, 0x49, 0x45, 0x4E, 0x44, 0xAE, 0x42, 0x60, 0x82};

// Nodes: 0 Armature (non-uniform scale) with 1 Bone and 2 Bone2, 3 Body
// (textured, skinned, one morph target), 4 Camera, 5 Lamp, 6 Rig (where
// the tool goes). Clips on a 24 fps grid: Walk, linear; Wave, cubic and
// stepped; Blink, the morph weights.
tinygltf::Model UserScene() {
  tinygltf::Model model;
  model.asset.version = "2.0";
  model.asset.generator = "an exporter";
  model.buffers.emplace_back().uri = "scene.bin";
  const int positions = Add(model, std::vector<float>{0, 0, 0, 1, 0, 0, 0, 1, 0}, TINYGLTF_TYPE_VEC3,
                            TINYGLTF_COMPONENT_TYPE_FLOAT, {0, 0, 0}, {1, 1, 0});
  const int uvs = AddFloats(model, {0, 0, 1, 0, 0, 1}, TINYGLTF_TYPE_VEC2);
  const int joints = Add(model, std::vector<std::uint16_t>(12, 0), TINYGLTF_TYPE_VEC4, TINYGLTF_COMPONENT_TYPE_UNSIGNED_SHORT);
  const int weights = AddFloats(model, {1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0}, TINYGLTF_TYPE_VEC4);
  const int morph = Add(model, std::vector<float>{0, 0, 0.5f, 0, 0, 0.5f, 0, 0, 0.5f}, TINYGLTF_TYPE_VEC3,
                        TINYGLTF_COMPONENT_TYPE_FLOAT, {0, 0, 0.5}, {0, 0, 0.5});
  const int indices = Add(model, std::vector<std::uint16_t>{0, 1, 2}, TINYGLTF_TYPE_SCALAR, TINYGLTF_COMPONENT_TYPE_UNSIGNED_SHORT);
  std::vector<float> identities;
  for (int m = 0; m < 2; ++m) identities.insert(identities.end(), {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1});
  const int inverseBinds = AddFloats(model, identities, TINYGLTF_TYPE_MAT4);
  const int times = Add(model, std::vector<float>{0, 5.0f / 24, 1}, TINYGLTF_TYPE_SCALAR, TINYGLTF_COMPONENT_TYPE_FLOAT, {0}, {1});
  const int walk = AddFloats(model, {0, 0, 0, 0.5f, 0, 0, 1, 0, 0}, TINYGLTF_TYPE_VEC3);
  std::vector<float> wave;  // in-tangent, value, out-tangent per key
  for (float angle : {0.0f, 0.7f, 1.4f}) {
    wave.insert(wave.end(), {0, 0, 0.3f, 0, 0, 0, std::sin(angle), std::cos(angle), 0, 0, -0.3f, 0});
  }
  const int rotations = AddFloats(model, wave, TINYGLTF_TYPE_VEC4);
  const int steps = AddFloats(model, {1, 2, 0.5f, 1, 1, 1, 2, 2, 2}, TINYGLTF_TYPE_VEC3);
  const int blink = AddFloats(model, {0, 1, 0}, TINYGLTF_TYPE_SCALAR);

  model.images.emplace_back().uri = "textures/paint.png";
  model.samplers.emplace_back();
  model.textures.emplace_back().source = 0;
  model.textures[0].sampler = 0;
  model.materials.emplace_back().name = "Paint";
  model.materials[0].pbrMetallicRoughness.baseColorTexture.index = 0;
  tinygltf::Primitive primitive;
  primitive.attributes = {{"POSITION", positions}, {"TEXCOORD_0", uvs}, {"JOINTS_0", joints}, {"WEIGHTS_0", weights}};
  primitive.indices = indices;
  primitive.material = 0;
  primitive.mode = TINYGLTF_MODE_TRIANGLES;
  primitive.targets = {{{"POSITION", morph}}};
  model.meshes.emplace_back().name = "Body";
  model.meshes[0].primitives = {primitive};
  model.meshes[0].weights = {0};
  model.skins.emplace_back().joints = {1, 2};
  model.skins[0].inverseBindMatrices = inverseBinds;
  model.cameras.emplace_back().type = "perspective";
  model.cameras[0].perspective.yfov = 0.6;
  model.cameras[0].perspective.znear = 0.05;
  model.cameras[0].perspective.zfar = 100;
  tinygltf::Value::Object light{{"type", tinygltf::Value(std::string("point"))}, {"intensity", tinygltf::Value(20.0)}};
  model.extensions["KHR_lights_punctual"] = tinygltf::Value(tinygltf::Value::Object{
      {"lights", tinygltf::Value(tinygltf::Value::Array{tinygltf::Value(light)})}});
  model.extensionsUsed = {"KHR_lights_punctual"};

  model.nodes.resize(7);
  const char* names[] = {"Armature", "Bone", "Bone2", "Body", "Camera", "Lamp", "Rig"};
  for (std::size_t i = 0; i < model.nodes.size(); ++i) model.nodes[i].name = names[i];
  model.nodes[0].scale = {1, 2, 0.5};
  model.nodes[0].children = {1, 2};
  model.nodes[1].translation = {0, 1, 0};
  model.nodes[2].rotation = {0, 0, 0.38268343236, 0.92387953251};
  model.nodes[3].mesh = 0;
  model.nodes[3].skin = 0;
  model.nodes[3].extras = tinygltf::Value(tinygltf::Value::Object{{"prop", tinygltf::Value(std::string("from Blender"))},
                                                                  {"count", tinygltf::Value(3)}});
  model.nodes[4].camera = 0;
  model.nodes[4].translation = {0, 1, 5};
  model.nodes[5].extensions["KHR_lights_punctual"] = Extras("light", 0);
  model.nodes[6].translation = {2, 0, 0};
  model.scenes.emplace_back().nodes = {0, 3, 4, 5, 6};
  model.defaultScene = 0;
  AddClip(model, "Walk", times, {{1, "translation", "LINEAR", walk}});
  AddClip(model, "Wave", times, {{2, "rotation", "CUBICSPLINE", rotations}, {0, "scale", "STEP", steps}});
  AddClip(model, "Blink", times, {{3, "weights", "LINEAR", blink}});
  return model;
}

void Write(const tinygltf::Model& model, const fs::path& path) {
  fs::create_directories(path.parent_path() / "textures");
  std::ofstream(path.parent_path() / "textures/paint.png", std::ios::binary).write(reinterpret_cast<const char*>(kPng), sizeof kPng);
  tinygltf::TinyGLTF writer;
  ASSERT_TRUE(writer.WriteGltfSceneToFile(&model, path.string(), false, false, true, false));
}

// The channels of a clip on the given node, by path.
std::set<std::string> PathsOf(const tinygltf::Animation& clip, int node) {
  std::set<std::string> paths;
  for (const auto& channel : clip.channels) {
    if (channel.target_node == node) paths.insert(channel.target_path);
  }
  return paths;
}

int NodeNamed(const tinygltf::Model& model, const std::string& name) {
  for (std::size_t i = 0; i < model.nodes.size(); ++i) {
    if (model.nodes[i].name == name) return static_cast<int>(i);
  }
  return -1;
}

TEST(GltfCommandLine, AUsersSceneComesBackAsItWasMadeWithTheToolsKeysInTheFirstClip) {
  const fs::path input = kRoot / "user/scene.gltf";
  Write(UserScene(), input);
  const tinygltf::Model user = Load(input);
  const fs::path made = kRoot / "made/made.gltf";
  fs::create_directories(made.parent_path());
  Rgw("create " + input.string() + " --tool 1DPositioner --link RelativeCage=Rig --out " + made.string());
  for (const std::string kind : {".gltf", ".GLB"}) {
    const fs::path result = kRoot / "out" / ("result" + kind);
    fs::create_directories(result.parent_path());
    Rgw("run " + made.string() + " --to 1 --out " + result.string());
    EXPECT_TRUE(Validates(result)) << result;
    const tinygltf::Model out = Load(result);
    if (kind == ".gltf") {
      ASSERT_EQ(out.buffers.size(), 1u);
      EXPECT_EQ(out.buffers[0].uri, "result.bin");
      EXPECT_TRUE(fs::exists(result.parent_path() / "result.bin"));
    } else {
      EXPECT_EQ(Read(result).substr(0, 4), "glTF");
      EXPECT_EQ(out.buffers.at(0).uri, "");
    }
    // The texture is found from the output's folder.
    ASSERT_EQ(out.images.size(), 1u);
    EXPECT_EQ(Read(result.parent_path() / out.images[0].uri), Read(input.parent_path() / "textures/paint.png"));

    // Untouched parts are as they were, byte for byte behind their accessors.
    EXPECT_EQ(out.meshes, user.meshes);
    EXPECT_EQ(out.skins, user.skins);
    EXPECT_EQ(out.materials, user.materials);
    EXPECT_EQ(out.textures, user.textures);
    EXPECT_EQ(out.cameras, user.cameras);
    EXPECT_EQ(out.extensions, user.extensions);
    EXPECT_EQ(out.extensionsUsed, user.extensionsUsed);
    for (std::size_t a = 0; a < user.accessors.size(); ++a) {
      EXPECT_EQ(Bytes(out, static_cast<int>(a)), Bytes(user, static_cast<int>(a))) << a;
      EXPECT_EQ(std::tie(out.accessors[a].count, out.accessors[a].type, out.accessors[a].componentType, out.accessors[a].minValues),
                std::tie(user.accessors[a].count, user.accessors[a].type, user.accessors[a].componentType, user.accessors[a].minValues));
    }
    for (std::size_t n = 0; n < user.nodes.size(); ++n) {
      tinygltf::Node node = out.nodes[n];
      if (node.name == "Rig") node.children.clear();  // where the tool hangs
      EXPECT_EQ(node, user.nodes[n]) << user.nodes[n].name;
    }
    ASSERT_EQ(out.animations.size(), 3u);
    for (std::size_t c = 0; c < 3; ++c) {
      const tinygltf::Animation& was = user.animations[c];
      const tinygltf::Animation& is = out.animations[c];
      EXPECT_EQ(std::tie(is.name, is.extras), std::tie(was.name, was.extras));
      for (std::size_t k = 0; k < was.channels.size(); ++k) {
        EXPECT_EQ(is.channels[k], was.channels[k]);
        EXPECT_EQ(is.samplers[static_cast<std::size_t>(is.channels[k].sampler)], was.samplers[k]);
      }
    }
    // The tool's keys play in the first clip, on the scene's 24 fps frames.
    const int cage = NodeNamed(out, "1DPositioner_01_RelativeCage");
    ASSERT_GE(cage, 0);
    EXPECT_EQ(PathsOf(out.animations[0], cage), (std::set<std::string>{"translation", "rotation", "scale"}));
    const tinygltf::Animation& first = out.animations[0];
    const int input = first.samplers.at(static_cast<std::size_t>(first.channels.back().sampler)).input;
    for (const float time : Floats(out, input)) EXPECT_NEAR(time * 24, std::round(time * 24), 1e-3) << time;
    EXPECT_FALSE(out.nodes[static_cast<std::size_t>(cage)].mesh >= 0) << "a helper would show in renders";

    const std::string shown = Rgw("scene show " + result.string());
    EXPECT_NE(shown.find("Lamp (light)"), std::string::npos) << shown;
    EXPECT_NE(shown.find("weights of Body in clip \"Blink\": 3 keys, 0.000 s to 1.000 s"), std::string::npos) << shown;
  }
}

TEST(GltfCommandLine, ATwoHourTakeRerunGivesTheSameFileWithRisingTimes) {
  tinygltf::Model user;
  user.asset.version = "2.0";
  user.buffers.emplace_back().uri = "long.bin";
  user.buffers[0].data = {0, 0, 0, 0};  // a reader refuses an empty file
  user.nodes.emplace_back().name = "Rig";
  user.scenes.emplace_back().nodes = {0};
  const fs::path folder = kRoot / "long";
  Write(user, folder / "long.gltf");
  std::ofstream take(folder / "take.csv");
  take << "time,Position\n";
  for (int second = 0; second <= 7200; second += 10) take << second << "," << (second % 70) / 70.0 << "\n";
  take.close();
  const std::string scene = (folder / "long.gltf").string();
  Rgw("create " + scene + " --tool 1DPositioner --link RelativeCage=Rig --out " + scene);
  Rgw("take " + scene + " --instance 1DPositioner_01 --csv " + (folder / "take.csv").string() + " --out " + scene);
  std::vector<double> seconds;
  for (int run = 1; run <= 3; ++run) {
    const std::string from = run == 1 ? scene : (folder / ("run" + std::to_string(run - 1) + ".glb")).string();
    seconds.push_back(Seconds("run " + from + " --out " + (folder / ("run" + std::to_string(run) + ".glb")).string()));
  }
  std::printf("two-hour take: first run %.2f s, reruns %.2f s and %.2f s\n", seconds[0], seconds[1], seconds[2]);
  EXPECT_EQ(Read(folder / "run2.glb"), Read(folder / "run1.glb"));
  EXPECT_EQ(Read(folder / "run3.glb"), Read(folder / "run1.glb"));
  const tinygltf::Model out = Load(folder / "run3.glb");
  for (const auto& clip : out.animations) {
    for (const auto& sampler : clip.samplers) {
      const std::vector<float> times = Floats(out, sampler.input);
      ASSERT_GT(times.size(), 200000u);
      for (std::size_t k = 1; k < times.size(); ++k) ASSERT_LT(times[k - 1], times[k]) << k;
    }
  }
}

}  // namespace

// A camera whose field of view a file animates by pointer shows its lens keys.
TEST(GltfCommandLine, SceneShowListsACamerasLensKeys) {
  fs::create_directories(kRoot);
  const fs::path source = kRoot / "zoom.gltf";
  // yfov 0.5, 1 and 0.75 at 0, 0.5 and 1 s; a target distance of ours beside it.
  std::ofstream(source) << R"({"asset":{"version":"2.0"},"extensionsUsed":["KHR_animation_pointer"],
    "scene":0,"scenes":[{"nodes":[0]}],"nodes":[{"name":"Cam","camera":0,"extras":{"rgw_target_distance":3.5}}],
    "cameras":[{"type":"perspective","perspective":{"yfov":0.5,"znear":0.1}}],
    "buffers":[{"byteLength":24,"uri":"data:application/octet-stream;base64,AAAAAAAAAD8AAIA/AAAAPwAAgD8AAEA/"}],
    "bufferViews":[{"buffer":0,"byteOffset":0,"byteLength":12},{"buffer":0,"byteOffset":12,"byteLength":12}],
    "accessors":[{"bufferView":0,"componentType":5126,"count":3,"type":"SCALAR","min":[0],"max":[1]},
                 {"bufferView":1,"componentType":5126,"count":3,"type":"SCALAR"}],
    "animations":[{"samplers":[{"input":0,"output":1}],
      "channels":[{"sampler":0,"target":{"path":"pointer","extensions":{"KHR_animation_pointer":{"pointer":"/cameras/0/perspective/yfov"}}}}]}]})";
  const std::string shown = Rgw("scene show " + source.string());
  EXPECT_NE(shown.find("Cam (camera)\n  field of view: 3 keys, 0.000 s to 1.000 s, 28.648 to 42.972 degrees\n"),
            std::string::npos)
      << shown;
  EXPECT_EQ(shown.find("target distance:"), std::string::npos) << "no keys, no line: " << shown;
}
