#pragma once
// A picture of where scene nodes went, in two panels: from above (the ground
// plane as seen looking down the Y axis: X to the right, Z toward the bottom
// of the page) and from the side (height over the distance travelled along
// each path). Over a ground, the top panel is shaded by the ground's height
// and the side panel shows the ground below each path. Drawing text needs a
// QGuiApplication.

#include <QColor>
#include <QImage>
#include <QPointF>
#include <QRectF>
#include <string>
#include <vector>

#include "app/rgw/scenepaths.h"

namespace vuk::app {

// A stretch of one world axis, in metres.
struct Span {
  double from = 0;
  double to = 0;
  double Length() const { return to - from; }
};

// A panel's world coordinates (across the page, and up or down it) onto its
// pixels.
class PanelMap {
 public:
  // `down`: the second coordinate grows toward the bottom of the page. With
  // `equalScale` a metre is as long across as up, the shorter span widened
  // about its middle to fill the pixels.
  PanelMap(const QRectF& pixels, Span across, Span up, bool down, bool equalScale);

  QPointF ToPixel(double across, double up) const;
  // The world coordinates at a pixel.
  void ToWorld(const QPointF& pixel, double& across, double& up) const;

  const QRectF& Pixels() const { return pixels_; }
  const Span& Across() const { return across_; }
  const Span& Up() const { return up_; }
  bool Down() const { return down_; }

 private:
  QRectF pixels_;
  Span across_;
  Span up_;
  bool down_;
};

// Where the panels lie in the picture.
struct PlotLayout {
  static constexpr int kWidth = 1200;
  static constexpr int kHeight = 800;
  static QRectF TopPanel();
  static QRectF SidePanel();
};

// Each path has a colour of its own, from this many.
constexpr std::size_t kPathColours = 8;
QColor PathColour(std::size_t index);

struct Plot {
  std::string title;
  std::vector<NodePath> paths;  // at most kPathColours, each of one point or more
  const Ground* ground = nullptr;
  std::string groundName;
};

QImage DrawPlot(const Plot& plot);

}  // namespace vuk::app
