// Where the viewport looks from: the orbit the mouse moves, and the frame
// of a camera looked through, its field of view of each type and its
// letterbox.
#include <gtest/gtest.h>

#include <cmath>

#include "gui/viewport/viewpoint.h"
#include "util/mesh.h"

namespace vuk::gui::viewport {
namespace {

using rgw::adaptor::standalone::ObjectKind;

constexpr float kTolerance = 1e-4f;

// Where a world point lands in the frame, from -1 to 1 across and up.
QVector3D Projected(const Frame& frame, const QVector3D& point) {
  return (frame.projection * frame.view).map(point);
}

TEST(OrbitView, ZoomMovesAlongTheLineOfSightAndPanAcrossIt) {
  OrbitView orbit;
  orbit.Fit({-1, -1, -1}, {1, 1, 1});
  const QVector3D target = orbit.Target();
  const QVector3D forward = (target - orbit.Eye()).normalized();
  const float distance = orbit.Distance();
  EXPECT_NEAR((orbit.Eye() - target).length(), distance, kTolerance);

  orbit.Zoom(1);
  EXPECT_LT(orbit.Distance(), distance);
  EXPECT_NEAR(QVector3D::dotProduct((target - orbit.Eye()).normalized(), forward), 1, kTolerance);
  orbit.Zoom(-1);
  EXPECT_NEAR(orbit.Distance(), distance, kTolerance);

  orbit.Pan(0.25f, -0.5f);
  const QVector3D moved = orbit.Target() - target;
  EXPECT_GT(moved.length(), 0.1f);
  EXPECT_NEAR(QVector3D::dotProduct(moved, forward), 0, kTolerance);
}

TEST(OrbitView, TurnsAroundItsTargetAndStopsShortOfStraightDown) {
  OrbitView orbit;
  const QVector3D target = orbit.Target();
  const QVector3D eye = orbit.Eye();
  orbit.Orbit(1, 0);
  EXPECT_NEAR((orbit.Eye() - target).length(), (eye - target).length(), kTolerance);
  EXPECT_NEAR(orbit.Eye().y(), eye.y(), kTolerance);
  EXPECT_GT((orbit.Eye() - eye).length(), 1);
  orbit.Orbit(0, 10);
  const QVector3D above = (orbit.Eye() - target).normalized();
  EXPECT_LT(above.y(), 1);
  EXPECT_GT(above.y(), 0.99f);
  // Straight above, the view's up would be undefined.
  EXPECT_FALSE(std::isnan(orbit.View()(0, 0)));
}

// Framing the whole scene, a node with what hangs below it, or a node with
// nothing to draw.
TEST(OrbitView, FitsTheSceneOrTheGivenNodesAndTheirChildren) {
  Scene scene;
  const auto placed = [&scene](ObjectKind kind, const char* name, double x) {
    SceneNode* node = scene.CreateNode(kind, name);
    if (kind == ObjectKind::kMesh) node->SetMesh(util::CMesh_Box(2, 2, 2));
    util::Matrix<double> pose;
    pose.SetTranslation({x, 0, 0});
    scene.WriteWorld(node, 0, pose);
    return node;
  };
  SceneNode* near = placed(ObjectKind::kMesh, "Near", 0);
  SceneNode* far = placed(ObjectKind::kMesh, "Far", 100);
  SceneNode* rig = placed(ObjectKind::kHelper, "Rig", 40);
  scene.SetParent(far, rig, 0);
  SceneNode* empty = placed(ObjectKind::kHelper, "Empty", -30);

  OrbitView orbit;
  orbit.Fit(scene, 0);
  EXPECT_NEAR(orbit.Target().x(), 50, kTolerance);
  const float whole = orbit.Distance();
  orbit.Fit(scene, 0, {near});
  EXPECT_NEAR(orbit.Target().x(), 0, kTolerance);
  EXPECT_LT(orbit.Distance(), whole / 10);
  // The rig draws nothing itself; the mesh below it does.
  orbit.Fit(scene, 0, {rig});
  EXPECT_NEAR(orbit.Target().x(), 100, kTolerance);
  orbit.Fit(scene, 0, {empty});
  EXPECT_NEAR(orbit.Target().x(), -30, kTolerance);
  EXPECT_LT(orbit.Distance(), whole / 10);
}

struct LensCase {
  std::int32_t fovType;
  double fovDegrees;
  // A point at 10 m in front of the camera, and where it lands on the picture.
  QVector3D point;
  QVector3D lands;
};

class LookingThrough : public testing::TestWithParam<LensCase> {};

// A camera at (0, 0, 10) looking down -Z, at the origin: its field of view
// of each type reaches the edge of the picture of the scene's aspect.
TEST_P(LookingThrough, TheFieldOfViewReachesThePicturesEdge) {
  const LensCase& lens = GetParam();
  rgw::adaptor::standalone::Scene scene;
  SceneNode* camera = scene.CreateNode(ObjectKind::kCamera, "Camera");
  camera->camera.fovType = lens.fovType;
  camera->camera.fovDegrees.SetStaticKey({0, lens.fovDegrees});
  util::Matrix<double> pose;
  pose.SetTranslation({0, 0, 10});
  scene.WriteWorld(camera, 0, pose);
  ViewPoint viewPoint;
  viewPoint.LookThrough(camera);
  const Frame frame = viewPoint.FrameAt(0, 1600, 900);
  const QVector3D at = Projected(frame, lens.point);
  EXPECT_NEAR(at.x(), lens.lands.x(), 1e-3) << lens.fovType;
  EXPECT_NEAR(at.y(), lens.lands.y(), 1e-3) << lens.fovType;
  EXPECT_NEAR(Projected(frame, {0, 0, 0}).x(), 0, kTolerance);
}

// tan(45) x 10 m is 10 m; the diagonal of 16:9 is 18.36 across 9 up.
INSTANTIATE_TEST_SUITE_P(Lens, LookingThrough,
                         testing::Values(LensCase{0, 90, {10, 0, 0}, {1, 0, 0}}, LensCase{1, 90, {0, 10, 0}, {0, 1, 0}},
                                         LensCase{2, 90, {10 * 16 / 18.357559f, 10 * 9 / 18.357559f, 0}, {1, 1, 0}}));

TEST(ViewPoint, ACameraIsSeenInALetterboxOfTheScenesAspectAndTheOrbitOnTheWholePicture) {
  rgw::adaptor::standalone::Scene scene;
  SceneNode* camera = scene.CreateNode(ObjectKind::kCamera, "Camera");
  ViewPoint viewPoint;
  EXPECT_EQ(viewPoint.FrameAt(0, 1000, 1000).area, QRect(0, 0, 1000, 1000));
  viewPoint.LookThrough(camera);
  EXPECT_EQ(viewPoint.FrameAt(0, 1000, 1000).area, QRect(0, 218, 1000, 563));
  EXPECT_EQ(viewPoint.FrameAt(0, 2000, 900).area, QRect(200, 0, 1600, 900));
  // A camera taken out of the scene is looked through no more.
  scene.DeleteNode(camera);
  EXPECT_EQ(viewPoint.Camera(), nullptr);
  EXPECT_EQ(viewPoint.FrameAt(0, 1000, 1000).area, QRect(0, 0, 1000, 1000));
}

}  // namespace
}  // namespace vuk::gui::viewport
