#include "unidevice/driver/keyboarddevice.h"

#include <gtest/gtest.h>

#include <QKeyEvent>

#include "unidevice/driver/qtinputfilter.h"
#include "unidevice/driver/virtualkeys.h"

namespace vuk::unidevice::driver {
namespace {

TEST(KeyboardDevice, OneControlPerVirtualKey) {
  KeyboardDevice keyboard;
  ASSERT_EQ(keyboard.GetControlCount(), 256);
  EXPECT_EQ(keyboard.GetControl(0x41)->description, "A");
  EXPECT_EQ(keyboard.GetControl(0x25)->description, "Left");
  EXPECT_EQ(keyboard.GetControl(0x72)->description, "F3");
  EXPECT_EQ(keyboard.GetControl(0xFF)->description, "Key_255");
  EXPECT_EQ(keyboard.GetControl(0x20)->changeThreshold, 0.5);
  EXPECT_EQ(keyboard.GetControl(0x20)->index, 0x20);
  EXPECT_EQ(keyboard.GetControl(256), nullptr);
}

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
    testing::Values(KeyCase{Qt::Key_A, Qt::NoModifier, 0x41}, KeyCase{Qt::Key_Z, Qt::ShiftModifier, 0x5A},
                    KeyCase{Qt::Key_7, Qt::NoModifier, 0x37}, KeyCase{Qt::Key_Ampersand, Qt::ShiftModifier, 0x37},
                    KeyCase{Qt::Key_7, Qt::KeypadModifier, 0x67}, KeyCase{Qt::Key_F12, Qt::NoModifier, 0x7B},
                    KeyCase{Qt::Key_Left, Qt::NoModifier, 0x25}, KeyCase{Qt::Key_Left, Qt::KeypadModifier, 0x64},
                    KeyCase{Qt::Key_Space, Qt::NoModifier, 0x20}, KeyCase{Qt::Key_Shift, Qt::ShiftModifier, 0x10},
                    KeyCase{Qt::Key_BraceLeft, Qt::ShiftModifier, 0xDB}, KeyCase{Qt::Key_unknown, Qt::NoModifier, -1}));

TEST(QtInputFilter, KeyEventsDriveTheKeysAndRepeatKeepsThemDown) {
  KeyboardDevice keyboard;
  QtInputFilter filter(&keyboard, nullptr);
  QObject target;
  QKeyEvent press(QEvent::KeyPress, Qt::Key_W, Qt::NoModifier);
  EXPECT_FALSE(filter.eventFilter(&target, &press));
  EXPECT_EQ(keyboard.GetControl('W')->value, 1.0);
  // Auto-repeat comes as a release and a press, both marked.
  QKeyEvent repeatRelease(QEvent::KeyRelease, Qt::Key_W, Qt::NoModifier, QString(), true);
  QKeyEvent repeatPress(QEvent::KeyPress, Qt::Key_W, Qt::NoModifier, QString(), true);
  filter.eventFilter(&target, &repeatRelease);
  EXPECT_EQ(keyboard.GetControl('W')->value, 1.0);
  filter.eventFilter(&target, &repeatPress);
  EXPECT_EQ(keyboard.GetControl('W')->value, 1.0);
  QKeyEvent release(QEvent::KeyRelease, Qt::Key_W, Qt::NoModifier);
  filter.eventFilter(&target, &release);
  EXPECT_EQ(keyboard.GetControl('W')->value, 0.0);
  EXPECT_EQ(keyboard.GetControl('W')->previousValue, 1.0);
}

}  // namespace
}  // namespace vuk::unidevice::driver
