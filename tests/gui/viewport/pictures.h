#pragma once
// Comparing the viewport's pictures, and a scene whose picture moves.

#include <QImage>
#include <QRect>

#include "adaptor/standalone/scene.h"
#include "util/mesh.h"

namespace vuk::gui::viewport {

// Pixels of the area (the whole picture when empty) whose colour differs
// between two pictures; all of them for pictures of two sizes.
inline int DifferentPixels(const QImage& a, const QImage& b, QRect area = {}) {
  if (area.isEmpty()) area = a.rect();
  if (a.size() != b.size()) return area.width() * area.height();
  const QImage left = a.convertToFormat(QImage::Format_RGB32);
  const QImage right = b.convertToFormat(QImage::Format_RGB32);
  int different = 0;
  for (int y = area.top(); y <= area.bottom(); ++y) {
    for (int x = area.left(); x <= area.right(); ++x) different += left.pixel(x, y) != right.pixel(x, y);
  }
  return different;
}

// A 2 m box keyed to move 3 m along X from 0 s to 1 s.
inline rgw::adaptor::standalone::SceneNode* AddMovingBox(rgw::adaptor::standalone::Scene& scene) {
  rgw::adaptor::standalone::SceneNode* box = scene.CreateNode(rgw::adaptor::standalone::ObjectKind::kMesh, "Box");
  box->SetMesh(util::CMesh_Box(2, 2, 2));
  scene.animate = true;
  for (int second = 0; second <= 1; ++second) {
    util::Matrix<double> pose;
    pose.SetTranslation({3.0 * second, 0, 0});
    scene.WriteWorld(box, scene.clock.TickOf(second), pose);
  }
  scene.animate = false;
  return box;
}

}  // namespace vuk::gui::viewport
