#pragma once
// Feeds the keyboard and tablet devices from Qt's events, on the main thread,
// before any widget sees them. It never consumes an event.

#include <QObject>
#include <QSizeF>
#include <functional>

#include "unidevice/driver/tabletdevice.h"

class QTabletEvent;

namespace vuk::unidevice::driver {

class KeyboardDevice;

// One tablet event as the tablet device reads it, over a screen of that size.
TabletSample TabletSampleFromEvent(const QTabletEvent& event, const QSizeF& screen);

class QtInputFilter : public QObject {
 public:
  // The tablet device is asked for at the first tablet event, so that it
  // exists only where a tablet does.
  QtInputFilter(KeyboardDevice* keyboard, std::function<TabletDevice*()> tablet);

  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  KeyboardDevice* keyboard_;
  std::function<TabletDevice*()> tablet_;
};

}  // namespace vuk::unidevice::driver
