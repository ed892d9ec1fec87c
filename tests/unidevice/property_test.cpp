#include "unidevice/property.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/unidevice/testdevice.h"
#include "unidevice/control.h"

namespace vuk::unidevice {
namespace {

struct Shaping {
  double input;
  double deadzone;
  double exponent;
  double multiplier;
  double offset;
  double expected;
};

class PropertyEvaluate : public testing::TestWithParam<Shaping> {};

TEST_P(PropertyEvaluate, ShapesTheControlValue) {
  const Shaping& s = GetParam();
  Control control;
  control.value = s.input;
  Property property("Steering");
  property.deadzone = s.deadzone;
  property.exponent = s.exponent;
  property.multiplier = s.multiplier;
  property.offset = s.offset;
  property.Bind(&control);
  EXPECT_DOUBLE_EQ(property.Evaluate(), s.expected);
}

// Expected values worked out from (|x| - dz) / (1 - dz), raised, signed,
// scaled and offset.
INSTANTIATE_TEST_SUITE_P(
    Table, PropertyEvaluate,
    testing::Values(Shaping{0.55, 0.1, 1.0, 1.0, 0.0, 0.5},         // halfway out of the dead zone
                    Shaping{0.05, 0.1, 1.0, 1.0, 0.25, 0.25},       // inside: exactly the offset
                    Shaping{-0.1, 0.1, 1.0, 3.0, -0.5, -0.5},       // on the edge: still the offset
                    Shaping{-0.55, 0.1, 2.0, 1.0, 0.0, -0.25},      // exponent 2 keeps the sign
                    Shaping{-1.0, 0.0, 1.3, 2.0, 1.0, -1.0},        // -2 + 1
                    Shaping{0.5, 0.0, 0.5, 1.0, 0.0, std::sqrt(0.5)}));

TEST(Property, TheBindingFollowsItsControlAndFallsBackToTheOffset) {
  Control first;
  Property property("Brake");
  property.offset = -0.2;
  {
    Control second;
    second.value = 1.0;
    property.Bind(&first);
    property.Bind(&second);
    EXPECT_TRUE(first.targets.empty());
    ASSERT_EQ(second.targets.size(), 1u);
  }
  EXPECT_EQ(property.source, nullptr);
  EXPECT_EQ(property.Evaluate(), -0.2);
  property.Bind(&first);
  property.Bind(nullptr);
  EXPECT_TRUE(first.targets.empty());
}

}  // namespace
}  // namespace vuk::unidevice
