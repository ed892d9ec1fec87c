#pragma once
// The box of a container. The sizes a layout file wishes for the container
// are taken as wishes: the container is never made smaller than its rows
// need, so that they never overlap, whatever the file's numbers say.

#include <QBoxLayout>
#include <QSize>

namespace vuk::gui::component::qt {

class BoxLayout : public QBoxLayout {
 public:
  // Outer sizes of the container; 0 wishes nothing in that direction.
  struct Wishes {
    QSize minimum;
    QSize desired;
  };

  BoxLayout(Direction direction, QWidget* container, Wishes wishes);

  // What the rows need, or the wished minimum when that is more. The
  // container takes this as its own minimum each time the box is laid out.
  QSize minimumSize() const override;
  // The desired size, but never below the minimum.
  QSize sizeHint() const override;

 private:
  // An outer size less the container's own frame and title.
  QSize Inner(const QSize& outer) const;

  Wishes wishes_;
};

}  // namespace vuk::gui::component::qt
