#include "unidevice/device.h"

#include <gtest/gtest.h>

#include "tests/unidevice/testdevice.h"
#include "unidevice/driver.h"
#include "util/xml/tag.h"

namespace vuk::unidevice {
namespace {

using testing_support::TestDevice;

TEST(Device, DetectsTheLargestMoveBeyondTheThreshold) {
  TestDevice device("Pad", 4, "Axis");
  for (int i = 0; i < 4; ++i) device.GetControl(i)->changeThreshold = 0.1;
  device.Queue(0, 0.3);
  device.Queue(1, -0.8);
  device.Queue(2, 0.1);  // exactly the threshold: no change
  EXPECT_EQ(device.DetectControl({}), device.GetControl(1));
  // Excluded even though it moved the most.
  device.Queue(1, 0.2);  // a move of 1.0 from -0.8
  device.Queue(3, 0.5);
  EXPECT_EQ(device.DetectControl({device.GetControl(1)}), device.GetControl(3));
  // Nothing moves: null.
  EXPECT_EQ(device.DetectControl({}), nullptr);
}

TEST(Driver, DetectionComparesTheDevicesAnswers) {
  Driver driver("test");
  auto* a = new TestDevice("A", 2, "Axis");
  auto* b = new TestDevice("B", 2, "Axis");
  driver.AddDevice(a);
  driver.AddDevice(b);
  a->Queue(0, 0.75);
  b->Queue(1, 1.0);
  EXPECT_EQ(driver.DetectControl({}), b->GetControl(1));
  a->Queue(0, 0.0);   // moves 0.75
  b->Queue(1, 0.25);  // moves 0.75 too: the first device's answer stands
  EXPECT_EQ(driver.DetectControl({}), a->GetControl(0));
}

TEST(Control, SavedFormAndMatching) {
  TestDevice device("Joystick", 3, "Axis");
  device.deviceIndex = 1;
  const util::xml::Element saved = device.GetControl(2)->Save();
  EXPECT_EQ(saved.Write("", ""),
            "<control type=\"Axis\" index=\"2\" device=\"Joystick\" devindex=\"1\">"
            "<description>Joystick: Axis 3</description></control>");
  EXPECT_EQ(device.FindControl(saved), device.GetControl(2));
  // Without an index any control of the type matches; the first is found.
  util::xml::Element anyAxis = saved;
  anyAxis.attributes.erase(anyAxis.attributes.begin() + 1);
  EXPECT_EQ(device.FindControl(anyAxis), device.GetControl(0));
  util::xml::Element otherDevice = saved;
  otherDevice.SetAttribute("device") = "Wheel";
  EXPECT_EQ(device.FindControl(otherDevice), nullptr);
  device.deviceIndex = 0;
  EXPECT_EQ(device.GetControl(0)->Save().GetAttribute("devindex"), "");
}

TEST(Driver, NewDevicesTakeTheLowestFreeIndexOfTheirName) {
  Driver driver("test");
  auto* second = new TestDevice("Pad", 1);
  second->deviceIndex = 1;  // the first was unplugged
  driver.AddDevice(second);
  EXPECT_EQ(driver.NextDeviceIndex("Pad"), 0);
  driver.AddDevice(new TestDevice("Pad", 1));
  EXPECT_EQ(driver.NextDeviceIndex("Pad"), 2);
  EXPECT_EQ(driver.NextDeviceIndex("Wheel"), 0);
}

}  // namespace
}  // namespace vuk::unidevice
