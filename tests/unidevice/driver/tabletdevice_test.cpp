#include "unidevice/driver/tabletdevice.h"

#include <gtest/gtest.h>

#include <QTabletEvent>

#include "unidevice/driver/qtinputfilter.h"

namespace vuk::unidevice::driver {
namespace {

TEST(TabletDevice, ControlsAndValues) {
  TabletDevice tablet;
  const char* names[] = {"Cursor X", "Cursor Y", "Tilt X", "Tilt Y", "Pen pressure", "Button 1", "Button 2",
                         "Button 3"};
  ASSERT_EQ(tablet.GetControlCount(), 8);
  for (int i = 0; i < 8; ++i) EXPECT_EQ(tablet.GetControl(i)->description, names[i]);
  EXPECT_EQ(tablet.GetControl(4)->type, "Axis");
  EXPECT_EQ(tablet.GetControl(6)->type, "Button");

  TabletSample sample;
  sample.x = 0.25;
  sample.pressure = 0.8;
  sample.buttons = 2;
  tablet.Feed(sample);
  EXPECT_EQ(tablet.GetControl(0)->value, 0.25);
  EXPECT_EQ(tablet.GetControl(4)->value, 0.8);
  EXPECT_EQ(tablet.GetControl(5)->value, 0.0);
  EXPECT_EQ(tablet.GetControl(6)->value, 1.0);
}

TEST(TabletDevice, EventsAreScaledToTheScreen) {
  const QTabletEvent event(QEvent::TabletMove, QPointF(100, 50), QPointF(480, 270), QTabletEvent::Stylus,
                           QTabletEvent::Pen, 0.6, 30, -90, 0, 0, 0, Qt::NoModifier, 1, Qt::LeftButton,
                           Qt::LeftButton);
  const TabletSample sample = TabletSampleFromEvent(event, QSizeF(1920, 1080));
  EXPECT_DOUBLE_EQ(sample.x, 0.25);
  EXPECT_DOUBLE_EQ(sample.y, 0.25);
  EXPECT_DOUBLE_EQ(sample.pressure, 0.6);
  EXPECT_DOUBLE_EQ(sample.tiltX, 0.5);
  EXPECT_DOUBLE_EQ(sample.tiltY, -1.0);
  EXPECT_EQ(sample.buttons, 1u);
}

TEST(QtInputFilter, TheTabletIsAskedForAtTheFirstEvent) {
  TabletDevice tablet;
  int asked = 0;
  QtInputFilter filter(nullptr, [&] {
    ++asked;
    return &tablet;
  });
  QObject target;
  QTabletEvent event(QEvent::TabletPress, QPointF(), QPointF(0, 0), QTabletEvent::Stylus, QTabletEvent::Pen, 1.0,
                     0, 0, 0, 0, 0, Qt::NoModifier, 1, Qt::LeftButton, Qt::LeftButton);
  EXPECT_FALSE(filter.eventFilter(&target, &event));
  EXPECT_EQ(asked, 1);
  EXPECT_EQ(tablet.GetControl(4)->value, 1.0);
}

}  // namespace
}  // namespace vuk::unidevice::driver
