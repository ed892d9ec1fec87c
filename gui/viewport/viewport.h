#pragma once
// The 3D view of the embedded host's scene, for a window. Without a camera
// to look through, the left button turns the view around its centre, the
// middle button (or the left with Shift) moves it, and the wheel zooms; it
// takes no keys, so that the keyboard stays with the recording's inputs.

#include <QOpenGLWidget>
#include <QPoint>
#include <memory>
#include <string>
#include <vector>

#include "gui/viewport/scenerenderer.h"

namespace vuk::gui::viewport {

class Viewport : public QOpenGLWidget {
 public:
  explicit Viewport(QWidget* parent = nullptr);
  ~Viewport() override;

  // The scene to draw (null for none), framed whole. It must outlive the
  // viewport or be replaced first.
  void SetScene(Scene* scene);
  // Draws the scene at that time from now on.
  void SetTime(double seconds);
  // Looks through a camera node of the scene; null goes back to the orbit.
  void LookThrough(const SceneNode* camera);
  // Back to the orbit, fitted to the nodes and what hangs below them, or to
  // the whole scene when none is given.
  void FrameNodes(const std::vector<SceneNode*>& nodes);
  // Draws again, after the scene changed at the same time.
  void Redraw() { update(); }

  // Empty while the drawing works; else why it doesn't.
  const std::string& Problem() const { return problem_; }
  const ViewPoint& View() const { return viewPoint_; }

 protected:
  void initializeGL() override;
  void paintGL() override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;

 private:
  Scene* scene_ = nullptr;
  Tick tick_ = 0;
  ViewPoint viewPoint_;
  // Made and freed with the widget's context current.
  std::unique_ptr<SceneRenderer> renderer_;
  std::string problem_;
  QPoint lastMouse_;
};

}  // namespace vuk::gui::viewport
