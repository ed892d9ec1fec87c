#include "unidevice/driver/qtinputfilter.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QScreen>
#include <QTabletEvent>
#include <algorithm>

#include "unidevice/driver/keyboarddevice.h"
#include "unidevice/driver/virtualkeys.h"

namespace vuk::unidevice::driver {

namespace {

constexpr double kFullTiltDegrees = 60.0;

QSizeF ScreenSize() {
  const QScreen* screen = QGuiApplication::primaryScreen();
  return screen ? QSizeF(screen->geometry().size()) : QSizeF(1, 1);
}

double Fraction(double value, double extent) { return extent > 0 ? std::clamp(value / extent, 0.0, 1.0) : 0.0; }

}  // namespace

TabletSample TabletSampleFromEvent(const QTabletEvent& event, const QSizeF& screen) {
  TabletSample sample;
  sample.x = Fraction(event.globalPosF().x(), screen.width());
  sample.y = Fraction(event.globalPosF().y(), screen.height());
  sample.tiltX = std::clamp(event.xTilt() / kFullTiltDegrees, -1.0, 1.0);
  sample.tiltY = std::clamp(event.yTilt() / kFullTiltDegrees, -1.0, 1.0);
  sample.pressure = std::clamp(event.pressure(), 0.0, 1.0);
  const Qt::MouseButtons held = event.buttons();
  sample.buttons = (held & Qt::LeftButton ? 1u : 0u) | (held & Qt::RightButton ? 2u : 0u) |
                   (held & Qt::MiddleButton ? 4u : 0u);
  return sample;
}

QtInputFilter::QtInputFilter(KeyboardDevice* keyboard, std::function<TabletDevice*()> tablet)
    : keyboard_(keyboard), tablet_(std::move(tablet)) {}

bool QtInputFilter::eventFilter(QObject*, QEvent* event) {
  switch (event->type()) {
    case QEvent::KeyPress:
    case QEvent::KeyRelease: {
      const auto* key = static_cast<QKeyEvent*>(event);
      const int code = VirtualKeyFromQt(key->key(), key->modifiers());
      if (code < 0 || !keyboard_) break;
      if (event->type() == QEvent::KeyPress) {
        keyboard_->KeyDown(code);
      } else if (!key->isAutoRepeat()) {
        keyboard_->KeyUp(code);
      }
      break;
    }
    case QEvent::TabletMove:
    case QEvent::TabletPress:
    case QEvent::TabletRelease:
      if (TabletDevice* tablet = tablet_ ? tablet_() : nullptr) {
        tablet->Feed(TabletSampleFromEvent(*static_cast<QTabletEvent*>(event), ScreenSize()));
      }
      break;
    default:
      break;
  }
  return false;
}

}  // namespace vuk::unidevice::driver
