#pragma once
// Where the viewport looks from: an orbit around a point, which the mouse
// turns, moves and zooms, or a camera node of the scene looked through.

#include <QMatrix4x4>
#include <QRect>
#include <QVector2D>
#include <QVector3D>
#include <vector>

#include "adaptor/standalone/scene.h"

namespace vuk::gui::viewport {

using rgw::adaptor::standalone::Scene;
using rgw::adaptor::standalone::SceneNode;
using rgw::adaptor::standalone::Tick;

// What one frame is drawn with.
struct Frame {
  QMatrix4x4 view;        // world to eye
  QMatrix4x4 projection;  // eye to clip
  // The part of the picture drawn into, in pixels from the bottom left; the
  // rest is a letterbox.
  QRect area;
};

class OrbitView {
 public:
  static constexpr float kFovDegrees = 45;

  // Looks at the box from above and aside, with all of it in sight.
  void Fit(const QVector3D& lower, const QVector3D& upper);
  // Fits the meshes of the scene's shown nodes at the tick, or of those at
  // and below the given nodes; where none has a mesh, a box of 2 around each
  // given node, or the origin.
  void Fit(Scene& scene, Tick tick, const std::vector<SceneNode*>& below = {});
  // Turns around the target by radians: about the vertical, and up or down
  // short of straight above or below.
  void Orbit(float yaw, float pitch);
  // Moves the target across the view, by fractions of the view's height.
  void Pan(float right, float up);
  // Nearer for positive steps, farther for negative ones.
  void Zoom(float steps);

  QVector3D Eye() const;
  QVector3D Target() const { return target_; }
  float Distance() const { return distance_; }
  QMatrix4x4 View() const;

 private:
  QVector3D target_;
  float distance_ = 30;
  float yaw_ = 0.6f;     // about Y, from +Z towards +X
  float pitch_ = 0.45f;  // above the horizon
};

class ViewPoint {
 public:
  OrbitView orbit;

  // A camera node to look through; null for the orbit.
  void LookThrough(const SceneNode* camera) { camera_ = camera; }
  // The camera looked through, while it is in the scene; else null.
  const SceneNode* Camera() const;
  // Through a camera: its pose and lens at the tick, in the largest part of
  // the picture with the scene's aspect. Else the orbit, on the whole picture.
  Frame FrameAt(Tick tick, int width, int height) const;

 private:
  const SceneNode* camera_ = nullptr;
};

// The vertical field of view of a camera node at a tick, in degrees, for a
// picture of the scene's aspect.
float VerticalFovDegrees(const SceneNode& camera, Tick tick);
// How far its picture reaches, across and up, at a distance of 1.
QVector2D LensSpread(const SceneNode& camera, Tick tick);

// Column-major doubles of the scene to a Qt matrix.
QMatrix4x4 ToQt(const util::Matrix<double>& matrix);

}  // namespace vuk::gui::viewport
