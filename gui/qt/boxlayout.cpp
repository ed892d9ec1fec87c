#include "gui/qt/boxlayout.h"

#include <QWidget>

namespace vuk::gui::component::qt {

BoxLayout::BoxLayout(Direction direction, QWidget* container, Wishes wishes)
    : QBoxLayout(direction, container), wishes_(wishes) {
  // Without this, a minimum that the file gives the container would stand
  // in for the rows' own, and a short window would lay them over each other.
  setSizeConstraint(QLayout::SetMinimumSize);
}

QSize BoxLayout::Inner(const QSize& outer) const {
  const QMargins chrome = parentWidget() ? parentWidget()->contentsMargins() : QMargins();
  return outer - QSize(chrome.left() + chrome.right(), chrome.top() + chrome.bottom());
}

QSize BoxLayout::minimumSize() const { return QBoxLayout::minimumSize().expandedTo(Inner(wishes_.minimum)); }

QSize BoxLayout::sizeHint() const {
  return QBoxLayout::sizeHint().expandedTo(Inner(wishes_.desired)).expandedTo(minimumSize());
}

}  // namespace vuk::gui::component::qt
