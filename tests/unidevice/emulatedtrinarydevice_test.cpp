#include "unidevice/emulatedtrinarydevice.h"

#include <gtest/gtest.h>

#include "tests/unidevice/testdevice.h"
#include "unidevice/driverlist.h"
#include "unidevice/dummydriver.h"

namespace vuk::unidevice {
namespace {

using testing_support::TestDevice;

class EmulatedTrinary : public testing::Test {
 protected:
  EmulatedTrinary() {
    keys.AddDevice(keyboard);
    DriverList::Instance().Register(&keys);
  }
  ~EmulatedTrinary() override { DriverList::Instance().Unregister(&keys); }
  EmulatedTControl* Axis(int positive, int negative) {
    return emulator->AddControl(keyboard->GetControl(positive), keyboard->GetControl(negative));
  }

  DummyDriver dummy;  // the emulator joins it
  Driver keys{"keys"};
  TestDevice* keyboard = new TestDevice("Keyboard", 4);
  EmulatedTrinaryDevice* emulator = new EmulatedTrinaryDevice();
};

TEST_F(EmulatedTrinary, TwoKeysMakeThreeStates) {
  EmulatedTControl* axis = Axis(0, 1);
  EXPECT_EQ(emulator->driver, &dummy);
  keyboard->Press(0);
  EXPECT_EQ(axis->GetValue(), 1.0);
  keyboard->Press(1);
  EXPECT_EQ(axis->GetValue(), 0.0);  // both held
  keyboard->Press(0, 0.0);
  EXPECT_EQ(axis->GetValue(), -1.0);
}

TEST_F(EmulatedTrinary, AVanishedSourceReadsZero) {
  auto* spare = new TestDevice("Spare", 1);
  keys.AddDevice(spare);
  EmulatedTControl* axis = emulator->AddControl(keyboard->GetControl(0), spare->GetControl(0));
  keyboard->Press(0);
  keys.RemoveDevice(spare);
  delete spare;
  EXPECT_EQ(axis->negative, nullptr);
  EXPECT_EQ(axis->GetValue(), 0.0);
}

TEST_F(EmulatedTrinary, SavedFormBuildsTheSameControlInEitherOrderButNotFromOneSource) {
  EmulatedTControl* axis = Axis(2, 3);
  util::xml::Element saved = axis->Save();
  ASSERT_EQ(saved.CountChildren("control"), 2u);
  EXPECT_EQ(saved.GetChild("control", 0).GetAttribute("te_direction"), "positive");
  EXPECT_EQ(saved.GetChild("control", 1).GetAttribute("te_direction"), "negative");
  EXPECT_EQ(saved.GetAttribute("device"), "TrinaryEmulator");
  EXPECT_EQ(emulator->FindControl(saved), axis);

  // The children the other way round name the same pair.
  util::xml::Element reversed = saved;
  std::swap(reversed.children[1], reversed.children[2]);
  EXPECT_EQ(emulator->FindControl(reversed), axis);
  // A new pair's element makes its control (the command-line job binds one
  // so), but not with one source.
  reversed.children.pop_back();
  reversed.SetAttribute("index") = "7";
  EXPECT_EQ(emulator->FindControl(reversed), nullptr);
  EXPECT_EQ(emulator->GetControlCount(), 1);
}

TEST_F(EmulatedTrinary, OpenSettlesAndDetectsNothing) {
  EmulatedTControl* axis = Axis(0, 1);
  axis->value = 1.0;
  EXPECT_FALSE(emulator->Open(nullptr));
  EXPECT_EQ(axis->previousValue, 1.0);
  EXPECT_EQ(emulator->DetectControl({}), nullptr);
  emulator->ResetControls();
  EXPECT_EQ(axis->value, 0.0);
}

}  // namespace
}  // namespace vuk::unidevice
