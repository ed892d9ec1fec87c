#include "gui/viewport/offscreenview.h"

namespace vuk::gui::viewport {

OffscreenView::OffscreenView(int width, int height) : width_(width), height_(height) {
  surface_.create();
  if (!context_.create() || !context_.makeCurrent(&surface_)) {
    problem_ = "there is no OpenGL to draw with";
    return;
  }
  QOpenGLFramebufferObjectFormat format;
  format.setAttachment(QOpenGLFramebufferObject::Depth);
  target_ = std::make_unique<QOpenGLFramebufferObject>(width_, height_, format);
  renderer_ = std::make_unique<SceneRenderer>();
  if (!target_->isValid()) {
    problem_ = "OpenGL can't draw a picture of " + std::to_string(width_) + " by " + std::to_string(height_) + " pixels";
  } else if (!renderer_->Initialize(problem_)) {
    renderer_.reset();
  }
}

OffscreenView::~OffscreenView() {
  if (!context_.makeCurrent(&surface_)) return;
  renderer_.reset();
  target_.reset();
  context_.doneCurrent();
}

void OffscreenView::Redraw(Scene* scene, Tick tick, const ViewPoint& viewPoint) {
  if (!problem_.empty()) return;
  context_.makeCurrent(&surface_);
  target_->bind();
  renderer_->Draw(scene, tick, viewPoint, width_, height_);
  context_.functions()->glFinish();
}

QImage OffscreenView::Picture() {
  if (!problem_.empty()) return {};
  context_.makeCurrent(&surface_);
  return target_->toImage();
}

}  // namespace vuk::gui::viewport
