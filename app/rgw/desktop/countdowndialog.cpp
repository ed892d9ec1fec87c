#include "app/rgw/desktop/countdowndialog.h"

#include <QPainter>

namespace vuk::app::desktop {

namespace {

// Qt counts arcs in sixteenths of a degree.
constexpr int kFullCircle = 360 * 16;

}  // namespace

CountdownDialog::CountdownDialog(QWidget* over) : QWidget(over) {
  setAttribute(Qt::WA_TransparentForMouseEvents);
  setFixedSize(kSide, kSide);
  hide();
}

void CountdownDialog::ShowCount(int seconds, double fraction) {
  const QWidget* over = parentWidget();
  move((over->width() - kSide) / 2, (over->height() - kSide) / 2);
  if (seconds != seconds_ || fraction != fraction_) update();
  seconds_ = seconds;
  fraction_ = fraction;
  show();
  raise();
}

void CountdownDialog::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const QRectF disc = QRectF(rect()).adjusted(8, 8, -8, -8);
  painter.setPen(Qt::NoPen);
  painter.setBrush(QColor(0, 0, 0, 150));
  painter.drawEllipse(disc);
  // The ring shows what is left of the second under way, from the top; a
  // whole second left is a whole ring.
  painter.setPen(QPen(QColor(230, 70, 60), 8, Qt::SolidLine, Qt::FlatCap));
  painter.setBrush(Qt::NoBrush);
  const double left = fraction_ > 0 ? fraction_ : 1;
  painter.drawArc(disc.adjusted(6, 6, -6, -6), kFullCircle / 4, static_cast<int>(kFullCircle * left));
  QFont font = painter.font();
  font.setPixelSize(kSide / 2);
  font.setBold(true);
  painter.setFont(font);
  painter.setPen(Qt::white);
  painter.drawText(disc, Qt::AlignCenter, QString::number(seconds_));
}

}  // namespace vuk::app::desktop
