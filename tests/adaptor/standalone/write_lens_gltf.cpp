// Writes the sample scene with its camera's lens keyed over a take to the
// files given, for the glTF validator: the lens is horizontal, so the file
// animates a converted yfov through KHR_animation_pointer.
#include <cstdio>

#include "adaptor/standalone/gltffile.h"
#include "scenes/samplescene.h"

using vuk::rgw::adaptor::standalone::CameraData;
using vuk::rgw::adaptor::standalone::ObjectKind;
using vuk::rgw::adaptor::standalone::Scene;
using vuk::rgw::adaptor::standalone::SceneNode;

int main(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    Scene scene;
    vuk::scenes::BuildSampleScene(scene);
    SceneNode* camera = nullptr;
    scene.Walk([&](SceneNode& node) {
      if (node.kind == ObjectKind::kCamera) camera = &node;
    });
    if (!camera || camera->camera.fovType != 0) {
      std::fprintf(stderr, "the sample scene has no horizontal camera\n");
      return 1;
    }
    scene.animate = true;
    for (int frame = 0; frame <= 60; ++frame) {
      const auto tick = frame * scene.clock.GetTicksPerFrame();
      scene.WriteLens(camera, &CameraData::fovDegrees, tick, 80 - frame);
      scene.WriteLens(camera, &CameraData::targetDistance, tick, 4 + 0.1 * frame);
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
