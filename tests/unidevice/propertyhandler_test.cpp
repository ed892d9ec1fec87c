#include "unidevice/propertyhandler.h"

#include <gtest/gtest.h>

#include "tests/unidevice/testdevice.h"
#include "unidevice/driver.h"
#include "unidevice/driverlist.h"

namespace vuk::unidevice {
namespace {

using testing_support::TestDevice;

class Profiles : public testing::Test {
 protected:
  Profiles() { DriverList::Instance().Register(&driver); }
  ~Profiles() override { DriverList::Instance().Unregister(&driver); }
  Driver driver{"test"};
};

TEST_F(Profiles, ProfileRoundTripKeepsNumbersAndBindings) {
  auto* pad = new TestDevice("Pad", 3, "Axis");
  driver.AddDevice(pad);
  PropertyHandler handler;
  Property* steering = handler.Add("Steering");
  steering->exponent = 1.3;
  steering->deadzone = 0.15;
  steering->multiplier = -0.1;  // no short decimal form
  steering->Bind(pad->GetControl(1));
  handler.Add("Gas");
  const util::xml::Element profile = handler.SaveProfile("Racing");
  PropertyHandler back;
  Property* again = back.Add("Steering");
  back.Add("Gas");
  back.LoadProfile(util::xml::Element(profile));
  // The numbers are checked by saving again, byte for byte.
  EXPECT_EQ(again->source, pad->GetControl(1));
  EXPECT_EQ(back.Find("Gas")->source, nullptr);
  EXPECT_EQ(back.SaveProfile("Racing").Write(), profile.Write());
}

// Binding when the device comes is the instance's test, and again after a
// hot-plug the Linux driver's; here, what a binding does while it waits.
TEST_F(Profiles, AWaitingBindingKeepsItsTextAndReadsTheOffset) {
  util::xml::Element profile;
  profile.ParseText("<profile name=\"Drive\"><property name=\"Steering\"><control type=\"Axis\" index=\"0\" "
                    "device=\"Wheel\"><description>Wheel: Axis 1</description></control></property></profile>");
  PropertyHandler handler;
  Property* steering = handler.Add("Steering");
  handler.LoadProfile(profile);
  EXPECT_EQ(steering->source, nullptr);
  EXPECT_TRUE(DriverList::Instance().IsWaiting(steering));
  EXPECT_EQ(handler.SaveProfile("Drive").GetChild("property").GetChild("control").Write(),
            profile.GetChild("property").GetChild("control").Write());
  steering->offset = 0.25;
  EXPECT_EQ(steering->Evaluate(), 0.25);
}

TEST_F(Profiles, BadNumbersKeepTheCurrentValues) {
  util::xml::Element profile;
  profile.ParseText("<profile name=\"x\"><property name=\"Steering\"><exponent>fast</exponent><deadzone>0.2</deadzone>"
                    "</property></profile>");
  PropertyHandler handler;
  Property* steering = handler.Add("Steering");
  handler.LoadProfile(profile);
  EXPECT_EQ(steering->exponent, 1.0);
  EXPECT_EQ(steering->deadzone, 0.2);
}

}  // namespace
}  // namespace vuk::unidevice
