#pragma once
// Comparing the viewport's pictures.

#include <QImage>
#include <QRect>

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

}  // namespace vuk::gui::viewport
