#include "app/rgw/sceneplot.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QPen>
#include <algorithm>
#include <cmath>
#include <limits>

namespace vuk::app {

namespace {

constexpr double kNoGround = std::numeric_limits<double>::quiet_NaN();
const QColor kInk(40, 40, 40);
const QColor kGrid(225, 225, 225);
// Pale, so that the paths stand out over them: low ground blue, high ground brown.
const QColor kRamp[] = {{200, 222, 242}, {236, 234, 204}, {214, 180, 142}};
constexpr int kShadeCell = 4;  // pixels per ground sample, each way

// A span around the values, with room at both ends; a point gets a metre.
Span Padded(double low, double high) {
  const double pad = std::max(0.08 * (high - low), 0.5);
  return {low - pad, high + pad};
}

// Grows the span to the value; an empty span (from > to) takes it whole.
void Include(Span& span, double value) {
  if (std::isnan(value)) return;
  span.from = span.from > span.to ? value : std::min(span.from, value);
  span.to = std::max(span.to, value);
}
constexpr Span kEmpty{1, 0};

QColor RampColour(double t) {
  const double at = std::clamp(t, 0.0, 1.0) * 2;
  const int low = std::min(static_cast<int>(at), 1);
  const double f = at - low;
  const QColor& a = kRamp[low];
  const QColor& b = kRamp[low + 1];
  return QColor::fromRgbF(a.redF() + f * (b.redF() - a.redF()), a.greenF() + f * (b.greenF() - a.greenF()),
                          a.blueF() + f * (b.blueF() - a.blueF()));
}

// A tick step of 1, 2 or 5 times a power of ten, about every 80 pixels.
double TickStep(double length, double pixels) {
  const double raw = length / std::max(1.0, pixels / 80);
  const double magnitude = std::pow(10.0, std::floor(std::log10(raw)));
  for (const double factor : {1.0, 2.0, 5.0}) {
    if (factor * magnitude >= raw) return factor * magnitude;
  }
  return 10 * magnitude;
}

// The multiples of the step within the span.
std::vector<double> Ticks(const Span& span, double pixels) {
  const double step = TickStep(span.Length(), pixels);
  std::vector<double> ticks;
  for (double k = std::ceil(span.from / step); k * step <= span.to; ++k) ticks.push_back(k * step);
  return ticks;
}

QString Metres(double value) {
  // A sum of steps can miss zero by a rounding error, and print as "-0".
  return QString::number(std::abs(value) < 1e-9 ? 0.0 : value, 'g', 6);
}

void DrawAxes(QPainter& painter, const PanelMap& map, const QString& acrossLabel, const QString& upLabel) {
  const QRectF& box = map.Pixels();
  const QFontMetricsF metrics(painter.font());
  for (const double tick : Ticks(map.Across(), box.width())) {
    const double x = map.ToPixel(tick, map.Up().from).x();
    painter.setPen(kGrid);
    painter.drawLine(QPointF(x, box.top()), QPointF(x, box.bottom()));
    painter.setPen(kInk);
    painter.drawLine(QPointF(x, box.bottom()), QPointF(x, box.bottom() + 5));
    painter.drawText(QRectF(x - 40, box.bottom() + 6, 80, 16), Qt::AlignHCenter | Qt::AlignTop, Metres(tick));
  }
  for (const double tick : Ticks(map.Up(), box.height())) {
    const double y = map.ToPixel(map.Across().from, tick).y();
    painter.setPen(kGrid);
    painter.drawLine(QPointF(box.left(), y), QPointF(box.right(), y));
    painter.setPen(kInk);
    painter.drawLine(QPointF(box.left() - 5, y), QPointF(box.left(), y));
    painter.drawText(QRectF(box.left() - 66, y - 8, 58, 16), Qt::AlignRight | Qt::AlignVCenter, Metres(tick));
  }
  painter.setPen(kInk);
  painter.setBrush(Qt::NoBrush);
  painter.drawRect(box);
  painter.drawText(QRectF(box.left(), box.bottom() + 22, box.width(), 18), Qt::AlignHCenter, acrossLabel);
  // The up label reads bottom to top, left of the tick labels.
  painter.save();
  painter.translate(box.left() - 58, box.center().y());
  painter.rotate(-90);
  painter.drawText(QRectF(-box.height() / 2, -metrics.height(), box.height(), metrics.height()), Qt::AlignHCenter,
                   upLabel);
  painter.restore();
}

// Shades the panel by the ground's height below each cell; answers the
// heights found, empty when the ground is nowhere below the panel.
Span ShadeGround(QPainter& painter, const PanelMap& map, const Ground& ground) {
  const QRectF& box = map.Pixels();
  const int columns = static_cast<int>(std::ceil(box.width() / kShadeCell));
  const int rows = static_cast<int>(std::ceil(box.height() / kShadeCell));
  std::vector<double> heights(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows), kNoGround);
  Span found = kEmpty;
  for (int row = 0; row < rows; ++row) {
    for (int column = 0; column < columns; ++column) {
      double x = 0, z = 0, height = 0;
      map.ToWorld(box.topLeft() + QPointF((column + 0.5) * kShadeCell, (row + 0.5) * kShadeCell), x, z);
      if (!ground.HeightAt(x, z, height)) continue;
      heights[static_cast<std::size_t>(row * columns + column)] = height;
      Include(found, height);
    }
  }
  if (found.from > found.to) return found;
  QImage shade(columns, rows, QImage::Format_ARGB32);
  shade.fill(Qt::transparent);
  const double range = std::max(found.Length(), 1e-9);
  for (int row = 0; row < rows; ++row) {
    for (int column = 0; column < columns; ++column) {
      const double height = heights[static_cast<std::size_t>(row * columns + column)];
      if (!std::isnan(height)) shade.setPixelColor(column, row, RampColour((height - found.from) / range));
    }
  }
  painter.save();
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  painter.setClipRect(box);
  painter.drawImage(QRectF(box.topLeft(), QSizeF(columns * kShadeCell, rows * kShadeCell)), shade);
  painter.restore();
  return found;
}

// True when the node never moves: its path is a dot.
bool Still(const NodePath& path) {
  return std::all_of(path.points.begin(), path.points.end(), [&](const auto& p) { return p == path.points.front(); });
}

void DrawStart(QPainter& painter, const QPointF& at, const QColor& colour) {
  painter.setPen(QPen(Qt::white, 1.5));
  painter.setBrush(colour);
  painter.drawEllipse(at, 6, 6);
}

void DrawEnd(QPainter& painter, const QPointF& at, const QColor& colour) {
  painter.setPen(QPen(Qt::white, 1.5));
  painter.setBrush(colour);
  painter.drawRect(QRectF(at - QPointF(5.5, 5.5), QSizeF(11, 11)));
}

void DrawDot(QPainter& painter, const QPointF& at, const QColor& colour) {
  painter.setPen(QPen(kInk, 1));
  painter.setBrush(colour);
  painter.drawEllipse(at, 7, 7);
}

// A path through the pixels, its start and end marked; a dot when still.
void DrawTrace(QPainter& painter, const std::vector<QPointF>& pixels, bool still, const QColor& colour) {
  if (pixels.empty()) return;
  if (still) return DrawDot(painter, pixels.front(), colour);
  painter.setPen(QPen(colour, 3, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  painter.setBrush(Qt::NoBrush);
  painter.drawPolyline(pixels.data(), static_cast<int>(pixels.size()));
  DrawStart(painter, pixels.front(), colour);
  DrawEnd(painter, pixels.back(), colour);
}

// One path as the side panel shows it: the distance travelled up to each
// point, and the ground's height below it.
struct Profile {
  std::vector<double> distance;
  std::vector<double> ground;  // kNoGround where there is none
};

Profile ProfileOf(const NodePath& path, const Ground* ground) {
  Profile profile;
  double travelled = 0;
  for (std::size_t i = 0; i < path.points.size(); ++i) {
    if (i > 0) travelled += (path.points[i] - path.points[i - 1]).Length();
    profile.distance.push_back(travelled);
    double height = kNoGround;
    if (ground && !ground->HeightAt(path.points[i].x, path.points[i].z, height)) height = kNoGround;
    profile.ground.push_back(height);
  }
  return profile;
}

// The ground below a path in the side panel: a dashed line over a light
// fill, broken where there is no ground; a short dash under a dot.
void DrawGroundProfile(QPainter& painter, const PanelMap& map, const Profile& profile, const QColor& colour) {
  QColor fill = colour;
  fill.setAlpha(35);
  const double bottom = map.Pixels().bottom();
  std::size_t i = 0;
  while (i < profile.ground.size()) {
    if (std::isnan(profile.ground[i])) {
      ++i;
      continue;
    }
    QPolygonF line;
    for (; i < profile.ground.size() && !std::isnan(profile.ground[i]); ++i) {
      line << map.ToPixel(profile.distance[i], profile.ground[i]);
    }
    if (line.front() == line.back()) {
      const QPointF at = line.front();
      line.clear();
      line << at - QPointF(8, 0) << at + QPointF(8, 0);
    }
    QPolygonF area = line;
    area << QPointF(line.back().x(), bottom) << QPointF(line.front().x(), bottom);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawPolygon(area);
    painter.setPen(QPen(colour, 1.5, Qt::DashLine));
    painter.setBrush(Qt::NoBrush);
    painter.drawPolyline(line);
  }
}

void DrawLegend(QPainter& painter, const Plot& plot, QPointF at) {
  painter.setPen(kInk);
  for (std::size_t i = 0; i < plot.paths.size(); ++i, at.ry() += 22) {
    const QColor colour = PathColour(i);
    painter.setPen(QPen(colour, 3, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(at, at + QPointF(34, 0));
    painter.setPen(kInk);
    const std::string name = plot.paths[i].name + (Still(plot.paths[i]) ? " (does not move)" : "");
    painter.drawText(at + QPointF(44, 5), QString::fromStdString(name));
  }
  at.ry() += 8;
  DrawStart(painter, at + QPointF(6, 0), kInk);
  painter.setPen(kInk);
  painter.drawText(at + QPointF(18, 5), "start");
  DrawEnd(painter, at + QPointF(76, 0), kInk);
  painter.setPen(kInk);
  painter.drawText(at + QPointF(88, 5), "end");
  if (!plot.ground) return;
  at.ry() += 22;
  painter.setPen(QPen(kInk, 1.5, Qt::DashLine));
  painter.drawLine(at, at + QPointF(34, 0));
  painter.setPen(kInk);
  painter.drawText(at + QPointF(44, 5), QString::fromStdString("the ground below the path (" + plot.groundName + ")"));
}

// The colour ramp of the top panel's shading with its lowest and highest heights.
void DrawRampLegend(QPainter& painter, const Plot& plot, const Span& heights, const QRectF& bar) {
  painter.setPen(kInk);
  const QString name = QString::fromStdString(plot.groundName);
  if (heights.from > heights.to) {
    painter.drawText(bar.topLeft() + QPointF(0, 12), name + " is not below the top view");
    return;
  }
  painter.drawText(bar.topLeft() - QPointF(0, 8), "height of " + name + " (m), shading the view from above");
  QLinearGradient gradient(bar.topLeft(), bar.topRight());
  for (int stop = 0; stop <= 2; ++stop) gradient.setColorAt(stop / 2.0, RampColour(stop / 2.0));
  painter.setBrush(gradient);
  painter.drawRect(bar);
  const int flags = Qt::AlignTop;
  painter.drawText(QRectF(bar.left(), bar.bottom() + 4, bar.width(), 16), flags | Qt::AlignLeft,
                   QString::number(heights.from, 'f', 2));
  painter.drawText(QRectF(bar.left(), bar.bottom() + 4, bar.width(), 16), flags | Qt::AlignRight,
                   QString::number(heights.to, 'f', 2));
}

}  // namespace

PanelMap::PanelMap(const QRectF& pixels, Span across, Span up, bool down, bool equalScale)
    : pixels_(pixels), across_(across), up_(up), down_(down) {
  if (!equalScale) return;
  const double scale = std::min(pixels.width() / across.Length(), pixels.height() / up.Length());
  const auto widen = [](Span& span, double length) {
    const double middle = (span.from + span.to) / 2;
    span = {middle - length / 2, middle + length / 2};
  };
  widen(across_, pixels.width() / scale);
  widen(up_, pixels.height() / scale);
}

QPointF PanelMap::ToPixel(double across, double up) const {
  const double u = (across - across_.from) / across_.Length();
  const double v = (up - up_.from) / up_.Length();
  return {pixels_.left() + u * pixels_.width(), down_ ? pixels_.top() + v * pixels_.height() : pixels_.bottom() - v * pixels_.height()};
}

void PanelMap::ToWorld(const QPointF& pixel, double& across, double& up) const {
  const double u = (pixel.x() - pixels_.left()) / pixels_.width();
  const double v = down_ ? (pixel.y() - pixels_.top()) / pixels_.height() : (pixels_.bottom() - pixel.y()) / pixels_.height();
  across = across_.from + u * across_.Length();
  up = up_.from + v * up_.Length();
}

QRectF PlotLayout::TopPanel() { return {80, 64, 610, 670}; }
QRectF PlotLayout::SidePanel() { return {790, 64, 380, 320}; }

QColor PathColour(std::size_t index) {
  static const QColor colours[kPathColours] = {{214, 39, 40},  {31, 119, 180}, {44, 160, 44},   {255, 127, 14},
                                               {148, 103, 189}, {140, 86, 75},  {227, 119, 194}, {23, 190, 207}};
  return colours[index % kPathColours];
}

QImage DrawPlot(const Plot& plot) {
  QImage image(PlotLayout::kWidth, PlotLayout::kHeight, QImage::Format_ARGB32_Premultiplied);
  image.fill(Qt::white);
  QPainter painter(&image);
  painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
  QFont font = painter.font();
  font.setPixelSize(13);
  painter.setFont(font);

  Span xs = kEmpty, zs = kEmpty, distances{0, 0}, heights = kEmpty;
  std::vector<Profile> profiles;
  for (const NodePath& path : plot.paths) {
    profiles.push_back(ProfileOf(path, plot.ground));
    for (const auto& p : path.points) {
      Include(xs, p.x);
      Include(zs, p.z);
      Include(heights, p.y);
    }
    for (const double height : profiles.back().ground) Include(heights, height);
    for (const double distance : profiles.back().distance) Include(distances, distance);
  }

  painter.setPen(kInk);
  painter.drawText(QRectF(0, 6, PlotLayout::kWidth, 20), Qt::AlignHCenter, QString::fromStdString(plot.title));
  const PanelMap top(PlotLayout::TopPanel(), Padded(xs.from, xs.to), Padded(zs.from, zs.to), true, true);
  // Room at both ends of the distance, so that the marks there show whole.
  const double travelled = std::max(distances.to, 1.0);
  const PanelMap side(PlotLayout::SidePanel(), {-0.04 * travelled, 1.04 * travelled}, Padded(heights.from, heights.to),
                      false, false);
  painter.drawText(top.Pixels().topLeft() - QPointF(0, 8), "From above: X to the right, Z toward the bottom");
  painter.drawText(side.Pixels().topLeft() - QPointF(0, 8), "From the side: height over the distance travelled");

  const Span shaded = plot.ground ? ShadeGround(painter, top, *plot.ground) : kEmpty;
  DrawAxes(painter, top, "X (m)", "Z (m)");
  DrawAxes(painter, side, "distance along the path (m)", "height Y (m)");
  for (std::size_t i = 0; i < plot.paths.size(); ++i) {
    const NodePath& path = plot.paths[i];
    const bool still = Still(path);
    std::vector<QPointF> above, beside;
    for (std::size_t k = 0; k < path.points.size(); ++k) {
      above.push_back(top.ToPixel(path.points[k].x, path.points[k].z));
      beside.push_back(side.ToPixel(profiles[i].distance[k], path.points[k].y));
    }
    painter.save();
    painter.setClipRect(top.Pixels());
    DrawTrace(painter, above, still, PathColour(i));
    painter.setClipRect(side.Pixels());
    DrawGroundProfile(painter, side, profiles[i], PathColour(i));
    DrawTrace(painter, beside, still, PathColour(i));
    painter.restore();
  }
  DrawLegend(painter, plot, side.Pixels().bottomLeft() + QPointF(0, 80));
  if (plot.ground) DrawRampLegend(painter, plot, shaded, QRectF(790, 690, 380, 16));
  return image;
}

}  // namespace vuk::app
