#include "gui/viewport/viewport.h"

#include <QMouseEvent>
#include <QWheelEvent>
#include <algorithm>

namespace vuk::gui::viewport {

namespace {

// Radians a view turns per pixel the mouse moves.
constexpr float kTurnPerPixel = 0.008f;
// A wheel's notch is 120 units, one zoom step.
constexpr float kWheelNotch = 120;

}  // namespace

Viewport::Viewport(QWidget* parent) : QOpenGLWidget(parent) { setMinimumSize(160, 90); }

Viewport::~Viewport() {
  // The buffers go with the context they were made in.
  makeCurrent();
  renderer_.reset();
  doneCurrent();
}

void Viewport::FrameNodes(const std::vector<SceneNode*>& nodes) {
  if (!scene_) return;
  viewPoint_.LookThrough(nullptr);
  viewPoint_.orbit.Fit(*scene_, tick_, nodes);
  update();
}

void Viewport::SetScene(Scene* scene) {
  if (renderer_) {
    makeCurrent();
    renderer_->Forget();
    doneCurrent();
  }
  scene_ = scene;
  viewPoint_.LookThrough(nullptr);
  if (scene_) {
    tick_ = scene_->clock.GetTick();
    viewPoint_.orbit.Fit(*scene_, tick_);
  }
  update();
}

void Viewport::SetTime(double seconds) {
  if (scene_) tick_ = scene_->clock.TickOf(seconds);
  update();
}

void Viewport::LookThrough(const SceneNode* camera) {
  viewPoint_.LookThrough(camera);
  update();
}

void Viewport::initializeGL() {
  renderer_ = std::make_unique<SceneRenderer>();
  if (!renderer_->Initialize(problem_)) renderer_.reset();
}

void Viewport::paintGL() {
  if (!renderer_) return;
  const qreal scale = devicePixelRatioF();
  renderer_->Draw(scene_, tick_, viewPoint_, static_cast<int>(width() * scale), static_cast<int>(height() * scale));
}

void Viewport::mousePressEvent(QMouseEvent* event) { lastMouse_ = event->pos(); }

void Viewport::mouseMoveEvent(QMouseEvent* event) {
  const QPoint moved = event->pos() - lastMouse_;
  lastMouse_ = event->pos();
  if (viewPoint_.Camera()) return;
  const bool pan = event->buttons() & Qt::MiddleButton ||
                   (event->buttons() & Qt::LeftButton && event->modifiers() & Qt::ShiftModifier);
  if (pan) {
    const float height = static_cast<float>(std::max(this->height(), 1));
    viewPoint_.orbit.Pan(-moved.x() / height, moved.y() / height);
  } else if (event->buttons() & Qt::LeftButton) {
    viewPoint_.orbit.Orbit(-moved.x() * kTurnPerPixel, moved.y() * kTurnPerPixel);
  } else {
    return;
  }
  update();
}

void Viewport::wheelEvent(QWheelEvent* event) {
  if (viewPoint_.Camera()) return;
  viewPoint_.orbit.Zoom(static_cast<float>(event->angleDelta().y()) / kWheelNotch);
  update();
}

}  // namespace vuk::gui::viewport
