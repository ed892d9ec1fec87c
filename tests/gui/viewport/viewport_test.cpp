// The viewport's drawing, under Xvfb with Mesa: each kind of node draws,
// and draws nothing hidden; a helper as wires or solid as its flag says; a
// changed mesh drawn anew; a warm redraw allocates nothing; the widget
// draws what the offscreen view does.
#include <gtest/gtest.h>

#include <functional>
#include <ostream>

#include "gui/viewport/offscreenview.h"
#include "gui/viewport/viewport.h"
#include "tests/gui/viewport/pictures.h"
#include "tests/support/allocationcount.h"

namespace vuk::gui::viewport {
namespace {

using rgw::adaptor::standalone::ObjectKind;

constexpr int kWidth = 320;
constexpr int kHeight = 180;

// A scene with at most one node at the origin, seen from the orbit around it.
class Drawing : public testing::Test {
 protected:
  Drawing() : view(kWidth, kHeight) { viewPoint.orbit.Fit({-3, -3, -3}, {3, 3, 3}); }

  QImage Draw() {
    view.Redraw(&scene, 0, viewPoint);
    return view.Picture();
  }
  SceneNode* Box(ObjectKind kind, double size = 2) {
    SceneNode* node = scene.CreateNode(kind, "Node");
    node->SetMesh(util::CMesh_Box(size, size, size));
    return node;
  }

  OffscreenView view;
  Scene scene;
  ViewPoint viewPoint;
};

struct NodeCase {
  const char* what;
  std::function<void(SceneNode&)> make;
  ObjectKind kind;
};
void PrintTo(const NodeCase& node, std::ostream* out) { *out << node.what; }

class EachKind : public Drawing, public testing::WithParamInterface<NodeCase> {};

TEST_P(EachKind, DrawsShownAndNothingHidden) {
  ASSERT_EQ(view.Problem(), "");
  const QImage empty = Draw();
  SceneNode* node = Box(GetParam().kind);
  GetParam().make(*node);
  EXPECT_GT(DifferentPixels(Draw(), empty), 100) << GetParam().what;
  node->visible = false;
  EXPECT_EQ(DifferentPixels(Draw(), empty), 0) << GetParam().what;
}

INSTANTIATE_TEST_SUITE_P(
    Nodes, EachKind,
    testing::Values(NodeCase{"mesh", [](SceneNode&) {}, ObjectKind::kMesh},
                    NodeCase{"wire helper", [](SceneNode&) {}, ObjectKind::kHelper},
                    NodeCase{"solid helper", [](SceneNode& node) { node.wireframe = false; }, ObjectKind::kHelper},
                    NodeCase{"camera", [](SceneNode& node) { node.camera.targetDistance.SetStaticKey({0, 3}); },
                             ObjectKind::kCamera}),
    [](const testing::TestParamInfo<NodeCase>& info) { return std::to_string(info.index); });

TEST_F(Drawing, AHelperIsDrawnAsWiresOrSolidAsItsFlagSays) {
  const QImage empty = Draw();
  SceneNode* helper = Box(ObjectKind::kHelper);
  const int wires = DifferentPixels(Draw(), empty);
  helper->wireframe = false;
  const int solid = DifferentPixels(Draw(), empty);
  EXPECT_GT(wires, 100);
  EXPECT_GT(solid, 2 * wires);
}

TEST_F(Drawing, AChangedMeshIsDrawnAnew) {
  const QImage empty = Draw();
  SceneNode* mesh = Box(ObjectKind::kMesh, 1);
  const int small = DifferentPixels(Draw(), empty);
  mesh->SetMesh(util::CMesh_Box(4, 4, 4));
  EXPECT_GT(DifferentPixels(Draw(), empty), 2 * small);
}

TEST_F(Drawing, ARedrawAllocatesNothingOnceWarm) {
  Box(ObjectKind::kMesh);
  Box(ObjectKind::kHelper, 3);
  SceneNode* camera = scene.CreateNode(ObjectKind::kCamera, "Camera");
  util::Matrix<double> pose;
  pose.SetTranslation({0, 1, 8});
  scene.WriteWorld(camera, 0, pose);
  view.Redraw(&scene, 0, viewPoint);
  for (const SceneNode* through : {static_cast<const SceneNode*>(nullptr), static_cast<const SceneNode*>(camera)}) {
    viewPoint.LookThrough(through);
    const test::AllocationCount count;
    view.Redraw(&scene, 0, viewPoint);
    EXPECT_EQ(count.Made(), 0u) << (through ? "through the camera" : "from the orbit");
  }
}

TEST_F(Drawing, TheWidgetDrawsWhatTheOffscreenViewDoes) {
  Box(ObjectKind::kMesh);
  Viewport widget;
  widget.resize(kWidth, kHeight);
  widget.SetScene(&scene);
  viewPoint = widget.View();
  const QImage grabbed = widget.grabFramebuffer();
  ASSERT_EQ(widget.Problem(), "");
  ASSERT_EQ(grabbed.size(), QSize(kWidth, kHeight));
  EXPECT_LT(DifferentPixels(grabbed, Draw()), kWidth * kHeight / 100);
}

}  // namespace
}  // namespace vuk::gui::viewport
