// The keyboard and the tablet, fed by Qt's events.
#include <gtest/gtest.h>

#include <QKeyEvent>
#include <QTabletEvent>

#include "unidevice/driver/keyboarddevice.h"
#include "unidevice/driver/qtinputfilter.h"
#include "unidevice/driver/tabletdevice.h"
#include "unidevice/driver/virtualkeys.h"

namespace vuk::unidevice::driver {
namespace {

struct KeyCase {
  int qtKey;
  Qt::KeyboardModifiers modifiers;
  int virtualKey;
};

class VirtualKeys : public testing::TestWithParam<KeyCase> {};

TEST_P(VirtualKeys, MapLikeTheKeyboardLayout) {
  EXPECT_EQ(VirtualKeyFromQt(GetParam().qtKey, GetParam().modifiers), GetParam().virtualKey);
}

INSTANTIATE_TEST_SUITE_P(
    Table, VirtualKeys,
    testing::Values(KeyCase{Qt::Key_Z, Qt::ShiftModifier, 0x5A}, KeyCase{Qt::Key_7, Qt::NoModifier, 0x37},
                    KeyCase{Qt::Key_Ampersand, Qt::ShiftModifier, 0x37}, KeyCase{Qt::Key_7, Qt::KeypadModifier, 0x67},
                    KeyCase{Qt::Key_F12, Qt::NoModifier, 0x7B}, KeyCase{Qt::Key_BraceLeft, Qt::ShiftModifier, 0xDB},
                    KeyCase{Qt::Key_Left, Qt::KeypadModifier, 0x64}, KeyCase{Qt::Key_Shift, Qt::ShiftModifier, 0x10},
                    KeyCase{Qt::Key_unknown, Qt::NoModifier, -1}));

TEST(QtInputFilter, KeyEventsDriveOneControlPerVirtualKeyAndRepeatKeepsThemDown) {
  KeyboardDevice keyboard;
  ASSERT_EQ(keyboard.GetControlCount(), 256);
  EXPECT_EQ(keyboard.GetControl(0x25)->description, "Left");
  EXPECT_EQ(keyboard.GetControl(0x72)->description, "F3");
  EXPECT_EQ(keyboard.GetControl(0xFF)->description, "Key_255");
  EXPECT_EQ(keyboard.GetControl(0x20)->changeThreshold, 0.5);
  QtInputFilter filter(&keyboard, nullptr);
  QObject target;
  QKeyEvent press(QEvent::KeyPress, Qt::Key_W, Qt::NoModifier);
  EXPECT_FALSE(filter.eventFilter(&target, &press));
  EXPECT_EQ(keyboard.GetControl('W')->value, 1.0);
  // Auto-repeat comes as a release and a press, both marked.
  for (const QEvent::Type type : {QEvent::KeyRelease, QEvent::KeyPress}) {
    QKeyEvent repeat(type, Qt::Key_W, Qt::NoModifier, QString(), true);
    filter.eventFilter(&target, &repeat);
    EXPECT_EQ(keyboard.GetControl('W')->value, 1.0);
  }
  QKeyEvent release(QEvent::KeyRelease, Qt::Key_W, Qt::NoModifier);
  filter.eventFilter(&target, &release);
  EXPECT_EQ(keyboard.GetControl('W')->value, 0.0);
  EXPECT_EQ(keyboard.GetControl('W')->previousValue, 1.0);
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

TEST(QtInputFilter, TheTabletIsAskedForAtTheFirstEventAndFedItsControls) {
  TabletDevice tablet;
  const char* names[] = {"Cursor X", "Cursor Y", "Tilt X", "Tilt Y", "Pen pressure", "Button 1", "Button 2",
                         "Button 3"};
  ASSERT_EQ(tablet.GetControlCount(), 8);
  for (int i = 0; i < 8; ++i) EXPECT_EQ(tablet.GetControl(i)->description, names[i]);
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
  EXPECT_EQ(tablet.GetControl(5)->value, 1.0);
  EXPECT_EQ(tablet.GetControl(6)->value, 0.0);
}

}  // namespace
}  // namespace vuk::unidevice::driver
