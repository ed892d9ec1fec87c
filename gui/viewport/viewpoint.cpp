#include "gui/viewport/viewpoint.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "adaptor/standalone/gltflens.h"

namespace vuk::gui::viewport {

namespace {

using rgw::adaptor::standalone::kDefaultAspect;

constexpr float kPi = 3.14159265f;
// Short of straight up or down, where the view's up would be undefined.
constexpr float kMaxPitch = kPi / 2 - 0.01f;
constexpr float kZoomPerStep = 0.85f;
constexpr float kNearestDistance = 0.05f;
constexpr float kFarthestDistance = 1e5f;
// A camera's view reaches as far as a scene of a few kilometres.
constexpr float kCameraNear = 0.1f;
constexpr float kCameraFar = 5000;

float TanHalf(float degrees) { return std::tan(degrees * kPi / 360); }

}  // namespace

void OrbitView::Fit(const QVector3D& lower, const QVector3D& upper) {
  target_ = (lower + upper) / 2;
  const float radius = std::max((upper - lower).length() / 2, 1.0f);
  distance_ = std::clamp(radius / std::sin(kFovDegrees * kPi / 360), kNearestDistance, kFarthestDistance);
}

namespace {

bool IsAtOrBelow(const SceneNode& node, const std::vector<SceneNode*>& roots) {
  for (const SceneNode* up = &node; up; up = up->parent) {
    if (std::find(roots.begin(), roots.end(), up) != roots.end()) return true;
  }
  return false;
}

// Grows the box to hold the point.
void Hold(const QVector3D& at, QVector3D& lower, QVector3D& upper) {
  for (int axis = 0; axis < 3; ++axis) {
    lower[axis] = std::min(lower[axis], at[axis]);
    upper[axis] = std::max(upper[axis], at[axis]);
  }
}

}  // namespace

void OrbitView::Fit(Scene& scene, Tick tick, const std::vector<SceneNode*>& below) {
  constexpr float kMax = std::numeric_limits<float>::max();
  QVector3D lower(kMax, kMax, kMax);
  QVector3D upper = -lower;
  scene.Walk([&](SceneNode& node) {
    if (!node.visible || node.mesh.vertices.empty()) return;
    if (!below.empty() && !IsAtOrBelow(node, below)) return;
    const QMatrix4x4 world = ToQt(node.World(tick));
    for (const auto& vertex : node.mesh.vertices) {
      Hold(world.map(QVector3D(static_cast<float>(vertex.x), static_cast<float>(vertex.y), static_cast<float>(vertex.z))),
           lower, upper);
    }
  });
  if (lower.x() > upper.x()) {
    // Nothing drawn to fit: the given nodes' places, else the origin.
    lower = upper = QVector3D();
    for (std::size_t i = 0; i < below.size(); ++i) {
      const QVector3D at = ToQt(below[i]->World(tick)).map(QVector3D());
      if (i == 0) lower = upper = at;
      Hold(at, lower, upper);
    }
    lower -= QVector3D(1, 1, 1);
    upper += QVector3D(1, 1, 1);
  }
  Fit(lower, upper);
}

void OrbitView::Orbit(float yaw, float pitch) {
  yaw_ = std::remainder(yaw_ + yaw, 2 * kPi);
  pitch_ = std::clamp(pitch_ + pitch, -kMaxPitch, kMaxPitch);
}

void OrbitView::Pan(float right, float up) {
  const QMatrix4x4 toWorld = View().inverted();
  const float height = 2 * distance_ * TanHalf(kFovDegrees);
  target_ += (toWorld.column(0).toVector3D() * right + toWorld.column(1).toVector3D() * up) * height;
}

void OrbitView::Zoom(float steps) {
  distance_ = std::clamp(distance_ * std::pow(kZoomPerStep, steps), kNearestDistance, kFarthestDistance);
}

QVector3D OrbitView::Eye() const {
  const QVector3D direction(std::cos(pitch_) * std::sin(yaw_), std::sin(pitch_), std::cos(pitch_) * std::cos(yaw_));
  return target_ + direction * distance_;
}

QMatrix4x4 OrbitView::View() const {
  QMatrix4x4 view;
  view.lookAt(Eye(), target_, {0, 1, 0});
  return view;
}

const SceneNode* ViewPoint::Camera() const { return camera_ && camera_->IsInScene() ? camera_ : nullptr; }

Frame ViewPoint::FrameAt(Tick tick, int width, int height) const {
  Frame frame;
  const SceneNode* camera = Camera();
  if (!camera) {
    frame.area = QRect(0, 0, width, height);
    frame.view = orbit.View();
    const float near = std::max(orbit.Distance() * 0.01f, 0.01f);
    frame.projection.perspective(OrbitView::kFovDegrees, static_cast<float>(width) / std::max(height, 1), near,
                                 orbit.Distance() * 100 + 1000);
    return frame;
  }
  const int areaWidth = std::min(width, static_cast<int>(std::lround(height * kDefaultAspect)));
  const int areaHeight = std::min(height, static_cast<int>(std::lround(width / kDefaultAspect)));
  frame.area = QRect((width - areaWidth) / 2, (height - areaHeight) / 2, areaWidth, areaHeight);
  frame.view = ToQt(camera->World(tick)).inverted();
  frame.projection.perspective(VerticalFovDegrees(*camera, tick), static_cast<float>(kDefaultAspect), kCameraNear,
                               kCameraFar);
  return frame;
}

float VerticalFovDegrees(const SceneNode& camera, Tick tick) {
  const double radians = rgw::adaptor::standalone::VerticalFov(camera.camera.fovDegrees.At(tick).value,
                                                               camera.camera.fovType, kDefaultAspect);
  return static_cast<float>(radians * 180 / kPi);
}

QVector2D LensSpread(const SceneNode& camera, Tick tick) {
  const float up = TanHalf(VerticalFovDegrees(camera, tick));
  return {up * static_cast<float>(kDefaultAspect), up};
}

QMatrix4x4 ToQt(const util::Matrix<double>& matrix) {
  QMatrix4x4 result;
  for (int column = 0; column < 4; ++column) {
    for (int row = 0; row < 4; ++row) result(row, column) = static_cast<float>(matrix[4 * column + row]);
  }
  return result;
}

}  // namespace vuk::gui::viewport
