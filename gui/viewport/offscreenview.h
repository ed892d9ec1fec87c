#pragma once
// The viewport's drawing without a window: a scene drawn from a view point
// into a picture of a given size, on an offscreen surface. Needs the Qt GUI
// application and an OpenGL of 2.1 or later (a display, or Mesa under Xvfb).

#include <QImage>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFramebufferObject>
#include <memory>
#include <string>

#include "gui/viewport/scenerenderer.h"

namespace vuk::gui::viewport {

class OffscreenView {
 public:
  OffscreenView(int width, int height);
  ~OffscreenView();
  OffscreenView(const OffscreenView&) = delete;
  OffscreenView& operator=(const OffscreenView&) = delete;

  // Empty when it can draw; else why not.
  const std::string& Problem() const { return problem_; }

  // Draws the frame and waits until it is done.
  void Redraw(Scene* scene, Tick tick, const ViewPoint& viewPoint);
  // The picture of the last frame drawn.
  QImage Picture();

 private:
  int width_;
  int height_;
  std::string problem_;
  QOffscreenSurface surface_;
  QOpenGLContext context_;
  std::unique_ptr<QOpenGLFramebufferObject> target_;
  std::unique_ptr<SceneRenderer> renderer_;
};

}  // namespace vuk::gui::viewport
