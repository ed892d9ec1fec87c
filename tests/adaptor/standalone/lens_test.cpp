// Camera lens values keyed over time on the embedded host: through the lens
// snapshot at its time, under undo and invalidation, and in glTF files.
#include <nlohmann/json.hpp>
#include <tiny_gltf.h>

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>

#include "adaptor/standalone/gltffile.h"
#include "adaptor/standalone/gltflens.h"
#include "adaptor/standalone/standaloneadaptorinterface.h"
#include "adaptor/standalone/standalonenode.h"
#include "tests/adaptor/standalone/scenefiles.h"
#include "tests/adaptor/testinstance.h"

namespace vuk::rgw::adaptor::standalone {
namespace {

using testing_support::TestInstance;

constexpr double kPi = 3.141592653589793;

// A tool's camera on the embedded host, lens written and read through
// snapshots as a tool does.
class Lens : public testing::Test {
 protected:
  void Write(double time, double fov, double distance) {
    CSnapshot_Lens* lens = camera->GetLensSnapshot(time);
    lens->SetFOV(fov);
    lens->SetTargetDistance(distance);
    camera->ReleaseLensSnapshot(lens);
  }
  std::pair<double, double> ReadLens(double time) {
    CSnapshot_Lens* lens = camera->GetLensSnapshot(time);
    const std::pair<double, double> read{lens->GetFOV(), lens->GetTargetDistance()};
    camera->ReleaseLensSnapshot(lens);
    return read;
  }
  // Frames 0 to 10 at 30 fps keyed with fov 40 + frame and distance 5 + 2 * frame, in one undo step.
  void RecordTake() {
    adaptor.BeginUndo("Record");
    adaptor.BeginRecording();
    for (int frame = 0; frame <= 10; ++frame) Write(frame / 30.0, 40 + frame, 5 + 2 * frame);
    adaptor.EndRecording();
    adaptor.EndUndo();
  }
  SceneNode& Host() { return *static_cast<StandaloneNode*>(camera)->GetHostNode(); }

  StandaloneAdaptorInterface adaptor;
  TestInstance tool{"Cam01"};
  core::CoreNode* camera = adaptor.CreateCameraNode(&tool, "Camera", nullptr, 0);
};

struct LensAt {
  double time, fov, distance;
};

class LensKeys : public Lens, public testing::WithParamInterface<LensAt> {};

// Keys hold on their ticks, are linear between them and held outside them.
TEST_P(LensKeys, AreReadAtTheSnapshotsTime) {
  Write(0, 30, 2);  // before the take: the static lens
  RecordTake();
  const auto [fov, distance] = ReadLens(GetParam().time);
  EXPECT_NEAR(fov, GetParam().fov, 1e-12);
  EXPECT_NEAR(distance, GetParam().distance, 1e-12);
}

INSTANTIATE_TEST_SUITE_P(Lens, LensKeys,
                         testing::Values(LensAt{0, 40, 5}, LensAt{3 / 30.0, 43, 11}, LensAt{10 / 30.0, 50, 25},
                                         LensAt{2.5 / 30.0, 42.5, 10}, LensAt{0.25 / 30.0, 40.25, 5.5},
                                         LensAt{-1, 40, 5}, LensAt{2, 50, 25}));

TEST_F(Lens, OutsideATakeTheLensChangesWithoutKeys) {
  Write(1, 60, 9);
  EXPECT_TRUE(Host().camera.fovDegrees.Keys().empty());
  EXPECT_EQ(ReadLens(0), std::make_pair(60.0, 9.0));
  RecordTake();
  // A keyed lens written outside a take shows the value at that time only.
  Write(5 / 30.0, 70, 1);
  EXPECT_EQ(ReadLens(5 / 30.0), std::make_pair(70.0, 1.0));
  EXPECT_EQ(ReadLens(4 / 30.0), std::make_pair(44.0, 13.0));
  EXPECT_EQ(ReadLens(5 / 30.0), std::make_pair(45.0, 15.0));
  EXPECT_EQ(Host().camera.fovDegrees.Keys().size(), 11u);
}

TEST_F(Lens, OneUndoTakesBackTheLensKeysOfARecordingAndRedoBringsThem) {
  Write(0, 30, 2);
  RecordTake();
  ASSERT_EQ(Host().camera.fovDegrees.Keys().size(), 11u);
  ASSERT_TRUE(adaptor.Undo());
  EXPECT_FALSE(Host().camera.HasKeys());
  EXPECT_EQ(ReadLens(5 / 30.0), std::make_pair(30.0, 2.0));
  ASSERT_TRUE(adaptor.GetScene().undo.Redo());
  EXPECT_EQ(Host().camera.targetDistance.Keys().size(), 11u);
  EXPECT_EQ(ReadLens(5 / 30.0), std::make_pair(45.0, 15.0));
}

TEST_F(Lens, InvalidateFromCutsTheLensKeysAtAndAfterItsTime) {
  RecordTake();
  adaptor.BeginUndo("Resimulate");
  camera->InvalidateFrom(4 / 30.0);
  adaptor.EndUndo();
  ASSERT_EQ(Host().camera.fovDegrees.Keys().size(), 4u);
  EXPECT_EQ(Host().camera.targetDistance.Keys().back().tick, 3 * 160);
  // The last key holds after it.
  EXPECT_EQ(ReadLens(8 / 30.0), std::make_pair(43.0, 11.0));
  ASSERT_TRUE(adaptor.Undo());
  EXPECT_EQ(Host().camera.fovDegrees.Keys().size(), 11u);
}

// glTF's yfov for lenses worked out by hand: a 90 degree horizontal lens at
// 2:1 shows half the width's tangent over the height, atan(1 / 2) either
// side; a diagonal one at 4:3 spans the 5 of a 3-4-5 diagonal.
struct Conversion {
  double degrees;
  std::int32_t type;
  double aspect, yfov;
};

class FovConversion : public testing::TestWithParam<Conversion> {};

TEST_P(FovConversion, GivesTheVerticalFieldOfView) {
  EXPECT_NEAR(VerticalFov(GetParam().degrees, GetParam().type, GetParam().aspect), GetParam().yfov, 1e-15);
}

INSTANTIATE_TEST_SUITE_P(Lens, FovConversion,
                         testing::Values(Conversion{90, 0, 2.0, 2 * std::atan(0.5)},
                                         Conversion{90, 0, 1.0, kPi / 2},
                                         Conversion{120, 0, 16.0 / 9.0, 2 * std::atan(std::sqrt(3.0) * 9 / 16)},
                                         Conversion{60, 1, 16.0 / 9.0, kPi / 3},
                                         Conversion{90, 2, 4.0 / 3.0, 2 * std::atan(3.0 / 5.0)}));

tinygltf::Model Parsed(const std::string& path) {
  tinygltf::Model model;
  std::string error, warning;
  tinygltf::TinyGLTF().LoadASCIIFromFile(&model, &error, &warning, path);
  return model;
}

// A horizontal lens keyed in a take, in a file and back: exact, and the
// same bytes saved again; a viewer sees the vertical field of view of the
// camera's aspect through the pointer.
TEST_F(Lens, KeysComeBackExactlyAndTheFileAgainByteForByte) {
  Write(0, 50.123456789012345, 7.25);
  RecordTake();
  Write(20 / 30.0, 33.3, 2);  // live, past the keys: not saved
  for (const std::string kind : {".gltf", ".glb"}) {
    std::string error;
    ASSERT_TRUE(GltfFile().Save(Temp("lens_0" + kind), adaptor.GetScene(), &error)) << error;
    Scene loaded;
    GltfFile file;
    ASSERT_TRUE(file.Load(Temp("lens_0" + kind), loaded, &error)) << error;
    const CameraData& back = loaded.Root().children.at(0)->camera;
    const CameraData& lens = Host().camera;
    EXPECT_EQ(back.fovType, 0);
    EXPECT_EQ(back.fovDegrees.StaticKey().value, 50.123456789012345);
    EXPECT_EQ(back.targetDistance.StaticKey().value, 7.25);
    EXPECT_EQ(back.fovDegrees.Keys(), lens.fovDegrees.Keys());
    EXPECT_EQ(back.targetDistance.Keys(), lens.targetDistance.Keys());
    ASSERT_TRUE(file.Save(Temp("lens_1" + kind), loaded, &error)) << error;
    Scene again;
    GltfFile second;
    ASSERT_TRUE(second.Load(Temp("lens_1" + kind), again, &error)) << error;
    ASSERT_TRUE(second.Save(Temp("lens_2" + kind), again, &error)) << error;
    EXPECT_EQ(Read(Temp("lens_2" + kind)), Read(Temp("lens_1" + kind)));
  }
  const tinygltf::Model model = Parsed(Temp("lens_1.gltf"));
  EXPECT_EQ(model.extensionsUsed, std::vector<std::string>{"KHR_animation_pointer"});
  EXPECT_TRUE(model.extensionsRequired.empty());
  const std::string written = Read(Temp("lens_1.gltf"));
  EXPECT_NE(written.find("\"pointer\": \"/cameras/0/perspective/yfov\""), std::string::npos) << written;
  const double yfov = model.cameras.at(0).perspective.yfov;
  EXPECT_NEAR(yfov, 2 * std::atan(std::tan(50.123456789012345 * kPi / 360) * 9 / 16), 1e-15);
}

// A user's file that animates by pointer: its channels, ours or not, come
// back as they were, and a camera's yfov keys become its lens keys.
TEST(LensFile, AUsersPointerAnimationsComeBackUntouched) {
  const std::string source = Temp("pointers.gltf");
  // Three keys at 0, 0.5 and 1 s: yfov 0.5, 1 and 0.75; a material colour beside it.
  std::ofstream(source) << R"({"asset":{"version":"2.0"},"extensionsUsed":["KHR_animation_pointer"],
    "scene":0,"scenes":[{"nodes":[0]}],"nodes":[{"name":"Cam","camera":0}],
    "cameras":[{"type":"perspective","perspective":{"yfov":0.5,"znear":0.1,"aspectRatio":1.5}}],
    "materials":[{"name":"Paint"}],
    "buffers":[{"byteLength":36,"uri":"data:application/octet-stream;base64,AAAAAAAAAD8AAIA/AAAAPwAAgD8AAEA/AAAAAAAAAD8AAIA/"}],
    "bufferViews":[{"buffer":0,"byteOffset":0,"byteLength":12},{"buffer":0,"byteOffset":12,"byteLength":12},
                   {"buffer":0,"byteOffset":24,"byteLength":12}],
    "accessors":[{"bufferView":0,"componentType":5126,"count":3,"type":"SCALAR","min":[0],"max":[1]},
                 {"bufferView":1,"componentType":5126,"count":3,"type":"SCALAR"},
                 {"bufferView":2,"componentType":5126,"count":3,"type":"SCALAR"}],
    "animations":[{"name":"Zoom","samplers":[{"input":0,"output":1},{"input":0,"output":2}],
      "channels":[{"sampler":0,"target":{"path":"pointer","extensions":{"KHR_animation_pointer":{"pointer":"/cameras/0/perspective/yfov"}}}},
                  {"sampler":1,"target":{"path":"pointer","extensions":{"KHR_animation_pointer":{"pointer":"/materials/0/alphaCutoff"}}}}]}]})";
  Scene scene;
  GltfFile file;
  std::string error;
  ASSERT_TRUE(file.Load(source, scene, &error)) << error;
  const CameraData& lens = scene.Root().children.at(0)->camera;
  EXPECT_EQ(lens.fovType, 1);
  ASSERT_EQ(lens.fovDegrees.Keys().size(), 3u);
  EXPECT_EQ(lens.fovDegrees.Keys()[1].tick, 2400);
  EXPECT_NEAR(lens.fovDegrees.Keys()[2].value, 0.75 * 180 / kPi, 1e-12);
  ASSERT_TRUE(file.Save(Temp("pointers_out.gltf"), scene, &error)) << error;
  const nlohmann::json original = nlohmann::json::parse(Read(source));
  const nlohmann::json written = nlohmann::json::parse(Read(Temp("pointers_out.gltf")));
  EXPECT_EQ(written["extensionsUsed"], original["extensionsUsed"]);
  EXPECT_EQ(written["cameras"], original["cameras"]);
  EXPECT_EQ(written["animations"][0]["channels"], original["animations"][0]["channels"]);
  EXPECT_EQ(written["animations"][0]["samplers"].size(), 2u);
  // And read again, the keys are the same.
  Scene again;
  ASSERT_TRUE(GltfFile().Load(Temp("pointers_out.gltf"), again, &error)) << error;
  EXPECT_EQ(again.Root().children.at(0)->camera.fovDegrees.Keys(), lens.fovDegrees.Keys());
}

}  // namespace
}  // namespace vuk::rgw::adaptor::standalone
