#include "gui/qt/widgets.h"

#include <QDropEvent>
#include <QPainter>
#include <QPainterPath>

namespace vuk::gui::component::qt {

ImageButton::ImageButton(Images images, QWidget* parent) : QAbstractButton(parent), images_(std::move(images)) {
  setCursor(Qt::PointingHandCursor);
}

QSize ImageButton::sizeHint() const { return images_.normal.isNull() ? QSize(24, 24) : images_.normal.size(); }

const QPixmap& ImageButton::Current() const {
  const auto pick = [](const QPixmap& wanted, const QPixmap& fallback) -> const QPixmap& {
    return wanted.isNull() ? fallback : wanted;
  };
  if (!isEnabled()) return pick(images_.disabled, images_.normal);
  if (isChecked() && !images_.toggledNormal.isNull()) {
    if (isDown()) return pick(images_.toggledPressed, images_.toggledNormal);
    if (hovered_) return pick(images_.toggledHover, images_.toggledNormal);
    return images_.toggledNormal;
  }
  if (isDown()) return pick(images_.pressed, pick(images_.hover, images_.normal));
  if (hovered_) return pick(images_.hover, images_.normal);
  return images_.normal;
}

void ImageButton::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const QPixmap& pixmap = Current();
  if (!pixmap.isNull()) {
    painter.drawPixmap(QPoint((width() - pixmap.width()) / 2, (height() - pixmap.height()) / 2), pixmap);
  }
  if (!text().isEmpty()) painter.drawText(rect(), Qt::AlignCenter, text());
}

void ImageButton::enterEvent(QEvent* event) {
  hovered_ = true;
  update();
  QAbstractButton::enterEvent(event);
}

void ImageButton::leaveEvent(QEvent* event) {
  hovered_ = false;
  update();
  QAbstractButton::leaveEvent(event);
}

GraphWidget::GraphWidget(QWidget* parent, double left, double right, double top, double bottom)
    : QWidget(parent), left_(left), right_(right), top_(top), bottom_(bottom) {}

void GraphWidget::SetPoints(std::vector<std::pair<double, double>> points) {
  points_ = std::move(points);
  update();
}

void GraphWidget::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.fillRect(rect(), palette().base());
  painter.setPen(QPen(palette().mid().color(), 1));
  painter.drawRect(rect().adjusted(0, 0, -1, -1));
  if (points_.size() < 2 || right_ == left_ || top_ == bottom_) return;
  const auto map = [this](const std::pair<double, double>& p) {
    return QPointF((p.first - left_) / (right_ - left_) * (width() - 1),
                   (top_ - p.second) / (top_ - bottom_) * (height() - 1));
  };
  QPainterPath path(map(points_.front()));
  for (std::size_t i = 1; i < points_.size(); ++i) path.lineTo(map(points_[i]));
  painter.setPen(QPen(palette().highlight().color(), 2));
  painter.drawPath(path);
}

void DropTreeWidget::dropEvent(QDropEvent* event) {
  QTreeWidgetItem* dragged = currentItem();
  QTreeWidgetItem* target = itemAt(event->pos());
  // Between two items the new parent is theirs.
  if (target && dropIndicatorPosition() != QAbstractItemView::OnItem) target = target->parent();
  event->setDropAction(Qt::IgnoreAction);
  event->accept();
  // The code rebuilds the items, which must not happen inside their own drop.
  if (dragged && onDrop) {
    QMetaObject::invokeMethod(this, [this, dragged, target] { onDrop(dragged, target); }, Qt::QueuedConnection);
  }
}

}  // namespace vuk::gui::component::qt
