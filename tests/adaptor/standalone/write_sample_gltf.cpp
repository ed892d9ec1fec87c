// Writes the sample scene to the files given, for the glTF validator. With
// "--keyed-lens" first, its camera's lens is keyed over a take: the lens is
// horizontal, so the file animates a converted yfov through
// KHR_animation_pointer.
#include <cstdio>
#include <cstring>

#include "adaptor/standalone/gltffile.h"
#include "scenes/samplescene.h"

using vuk::rgw::adaptor::standalone::CameraData;
using vuk::rgw::adaptor::standalone::ObjectKind;
using vuk::rgw::adaptor::standalone::Scene;
using vuk::rgw::adaptor::standalone::SceneNode;

namespace {

bool KeyLens(Scene& scene) {
  SceneNode* camera = nullptr;
  scene.Walk([&](SceneNode& node) {
    if (node.kind == ObjectKind::kCamera) camera = &node;
  });
  if (!camera || camera->camera.fovType != 0) return false;
  scene.animate = true;
  for (int frame = 0; frame <= 60; ++frame) {
    const auto tick = frame * scene.clock.GetTicksPerFrame();
    scene.WriteLens(camera, &CameraData::fovDegrees, tick, 80 - frame);
    scene.WriteLens(camera, &CameraData::targetDistance, tick, 4 + 0.1 * frame);
  }
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  const bool keyedLens = argc > 1 && std::strcmp(argv[1], "--keyed-lens") == 0;
  for (int i = keyedLens ? 2 : 1; i < argc; ++i) {
    Scene scene;
    vuk::scenes::BuildSampleScene(scene);
    if (keyedLens && !KeyLens(scene)) {
      std::fprintf(stderr, "the sample scene has no horizontal camera\n");
      return 1;
    }
    vuk::rgw::adaptor::standalone::GltfFile file;
    std::string error;
    if (!file.Save(argv[i], scene, &error)) {
      std::fprintf(stderr, "%s\n", error.c_str());
      return 1;
    }
  }
  return 0;
}
