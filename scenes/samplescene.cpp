#include "scenes/samplescene.h"

#include <cmath>

#include "util/mesh.h"

namespace vuk::scenes {

using namespace rgw::adaptor::standalone;

void BuildSampleScene(Scene& scene) {
  SceneNode* ground = scene.CreateNode(ObjectKind::kMesh, "Ground");
  ground->SetMesh(util::CMesh_Box(20, 0.1, 20));
  SceneNode* car = scene.CreateNode(ObjectKind::kEmpty, "Car");
  SceneNode* body = scene.CreateNode(ObjectKind::kHelper, "Car_Body", car);
  body->SetMesh(util::CMesh_Box(2, 1, 4));
  body->wireframe = false;
  body->properties["rgw_note"] = "the body of the car";
  SceneNode* camera = scene.CreateNode(ObjectKind::kCamera, "Camera");
  camera->camera.fovDegrees.SetStaticKey({0, 50});
  camera->camera.targetDistance.SetStaticKey({0, 7.5});
  SceneNode* hidden = scene.CreateNode(ObjectKind::kEmpty, "Hidden");
  hidden->visible = false;
  scene.animate = true;
  for (int frame = 0; frame <= 60; ++frame) {
    const Tick tick = frame * 160;
    util::Matrix<double> pose = util::Matrix<double>::FromQuat(util::Quat<double>::FromAxisAngle({0, 1, 0}, 0.05 * frame));
    pose.SetTranslation({0.1 * frame, 0, std::sin(0.1 * frame)});
    scene.WriteWorld(car, tick, pose);
    util::Matrix<double> view;
    view.SetTranslation({0, 2 + 0.01 * frame, 10});
    scene.WriteWorld(camera, tick, view);
  }
  scene.animate = false;
}

}  // namespace vuk::scenes
