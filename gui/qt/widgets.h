#pragma once
// Widgets the toolkit draws itself: an image button with its four states, a
// value curve, and a tree that reports drops instead of moving its items.

#include <QAbstractButton>
#include <QPixmap>
#include <QTreeWidget>
#include <QWidget>
#include <functional>
#include <utility>
#include <vector>

namespace vuk::gui::component::qt {

class ImageButton : public QAbstractButton {
 public:
  struct Images {
    QPixmap normal, hover, pressed, disabled;
    QPixmap toggledNormal, toggledHover, toggledPressed;
  };

  ImageButton(Images images, QWidget* parent);
  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  void enterEvent(QEvent* event) override;
  void leaveEvent(QEvent* event) override;

 private:
  const QPixmap& Current() const;
  Images images_;
  bool hovered_ = false;
};

class GraphWidget : public QWidget {
 public:
  GraphWidget(QWidget* parent, double left, double right, double top, double bottom);
  void SetPoints(std::vector<std::pair<double, double>> points);
  QSize sizeHint() const override { return {200, 120}; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  std::vector<std::pair<double, double>> points_;
  double left_, right_, top_, bottom_;
};

// The items are a mirror of what the code owns: a drop is handed to the code
// (the item dragged, and the new parent or null for the top level), which
// moves the real items and shows the tree again.
class DropTreeWidget : public QTreeWidget {
 public:
  using QTreeWidget::QTreeWidget;
  std::function<void(QTreeWidgetItem* dragged, QTreeWidgetItem* newParent)> onDrop;

 protected:
  void dropEvent(QDropEvent* event) override;
};

}  // namespace vuk::gui::component::qt
