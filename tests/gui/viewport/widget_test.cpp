// The viewport widget as a window uses it: the time it is told moves what
// it draws; the mouse turns, moves and zooms the orbit, and leaves a camera
// looked through alone.
#include <gtest/gtest.h>

#include <QApplication>
#include <QMouseEvent>
#include <QWheelEvent>

#include "gui/viewport/viewport.h"
#include "tests/gui/viewport/pictures.h"

namespace vuk::gui::viewport {
namespace {

using rgw::adaptor::standalone::ObjectKind;

class Widget : public testing::Test {
 protected:
  Widget() {
    AddMovingBox(scene);
    camera = scene.CreateNode(ObjectKind::kCamera, "Camera");
    viewport.resize(320, 180);
    viewport.SetScene(&scene);
  }
  void Drag(Qt::MouseButton button, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QMouseEvent press(QEvent::MouseButtonPress, QPointF(100, 100), button, button, modifiers);
    QApplication::sendEvent(&viewport, &press);
    QMouseEvent move(QEvent::MouseMove, QPointF(130, 90), Qt::NoButton, button, modifiers);
    QApplication::sendEvent(&viewport, &move);
  }
  void Wheel(int notches) {
    QWheelEvent wheel(QPointF(100, 100), QPointF(100, 100), QPoint(), QPoint(0, 120 * notches), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&viewport, &wheel);
  }

  Scene scene;
  SceneNode* camera = nullptr;
  Viewport viewport;
};

TEST_F(Widget, DrawsTheSceneAtTheTimeItIsTold) {
  const QImage atStart = viewport.grabFramebuffer();
  ASSERT_EQ(viewport.Problem(), "");
  viewport.SetTime(1);
  const QImage later = viewport.grabFramebuffer();
  EXPECT_GT(DifferentPixels(atStart, later), 100);
  viewport.SetTime(0);
  EXPECT_EQ(DifferentPixels(atStart, viewport.grabFramebuffer()), 0);
}

TEST_F(Widget, TheMouseTurnsMovesAndZoomsTheOrbit) {
  const OrbitView before = viewport.View().orbit;
  Drag(Qt::LeftButton);
  EXPECT_GT((viewport.View().orbit.Eye() - before.Eye()).length(), 0.1f);
  EXPECT_EQ(viewport.View().orbit.Target(), before.Target());
  for (const Qt::MouseButton button : {Qt::MiddleButton, Qt::LeftButton}) {
    const QVector3D target = viewport.View().orbit.Target();
    Drag(button, button == Qt::LeftButton ? Qt::ShiftModifier : Qt::NoModifier);
    EXPECT_GT((viewport.View().orbit.Target() - target).length(), 0.1f) << button;
  }
  Wheel(2);
  EXPECT_LT(viewport.View().orbit.Distance(), before.Distance());
}

TEST_F(Widget, TheMouseLeavesACameraLookedThroughAlone) {
  viewport.LookThrough(camera);
  const OrbitView before = viewport.View().orbit;
  Drag(Qt::LeftButton);
  Drag(Qt::MiddleButton);
  Wheel(1);
  EXPECT_EQ(viewport.View().orbit.Eye(), before.Eye());
  EXPECT_EQ(viewport.View().Camera(), camera);
}

}  // namespace
}  // namespace vuk::gui::viewport
