#include "scenes/drivingscene.h"

#include "scenes/terrain.h"

namespace vuk::scenes {

using namespace rgw::adaptor::standalone;

util::CMesh RampMesh(double width, double length, double height) {
  const double x = width / 2;
  util::CMesh mesh;
  // 0, 1: the foot; 2, 3: the lip; 4, 5: under the lip.
  mesh.vertices = {{-x, 0, 0}, {x, 0, 0}, {-x, height, -length}, {x, height, -length}, {-x, 0, -length}, {x, 0, -length}};
  mesh.faces = {0, 1, 2, 1, 3, 2,  // the slope
                2, 3, 4, 3, 5, 4,  // the drop
                0, 2, 4, 1, 5, 3};  // the sides
  return mesh;
}

void BuildDrivingScene(Scene& scene) {
  SceneNode* terrain = scene.CreateNode(ObjectKind::kMesh, "Terrain");
  terrain->SetMesh(RollingTerrain(kDrivingTerrainCells, kDrivingTerrainSize));
  // The terrain is flat along x = 0, so the ramp stands on it there.
  SceneNode* ramp = scene.CreateNode(ObjectKind::kMesh, "Ramp");
  ramp->SetMesh(RampMesh(4, 8, 1.2));
  util::Matrix<double> rampPose;
  rampPose.SetTranslation({0, RollingHeight(0, -40), -40});
  scene.WriteWorld(ramp, 0, rampPose);
  SceneNode* camera = scene.CreateNode(ObjectKind::kCamera, "Overview");
  camera->camera.fovDegrees.SetStaticKey({0, 60});
  camera->camera.fovType = 1;
  camera->camera.targetDistance.SetStaticKey({0, 60});
  // Up and behind the start, looking down the -Z road.
  util::Matrix<double> view = util::Matrix<double>::FromQuat(util::Quat<double>::FromAxisAngle({1, 0, 0}, -0.35));
  view.SetTranslation({0, 20, 25});
  scene.WriteWorld(camera, 0, view);
}

}  // namespace vuk::scenes
