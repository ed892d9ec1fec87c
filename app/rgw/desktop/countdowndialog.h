#pragma once
// The recording's countdown over the viewport: the whole seconds left before
// the take starts, and a ring that empties with the current second.

#include <QWidget>

namespace vuk::app::desktop {

class CountdownDialog : public QWidget {
 public:
  static constexpr int kSide = 160;

  explicit CountdownDialog(QWidget* over);

  // Shows the seconds and the fraction left of the current one, centred on
  // the widget it is over.
  void ShowCount(int seconds, double fraction);
  int Seconds() const { return seconds_; }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  int seconds_ = 0;
  double fraction_ = 0;
};

}  // namespace vuk::app::desktop
