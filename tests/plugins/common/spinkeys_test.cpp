#include "plugins/common/spinkeys.h"

#include <gtest/gtest.h>

#include <vector>

namespace vuk::rgw::addon {
namespace {

// The airplane's first propeller turns at most this far between keys.
constexpr double kPropellerTurn = 3.1101767270538954;

struct KeysCase {
  double turn, largest;
  int count;
  std::vector<SpinKey> first;  // the leading keys
};

class SpinKeysOfAFrame : public testing::TestWithParam<KeysCase> {};

TEST_P(SpinKeysOfAFrame, OneForEachLargestTurnAtItsShareOfTheFrame) {
  const KeysCase &c = GetParam();
  const SpinKeys keys = spinKeys(c.turn, c.largest);
  ASSERT_EQ(keys.count, c.count);
  for (std::size_t k = 0; k < c.first.size(); ++k) {
    EXPECT_DOUBLE_EQ(keys.keys[k].fraction, c.first[k].fraction) << k;
    EXPECT_DOUBLE_EQ(keys.keys[k].turn, c.first[k].turn) << k;
  }
}

// Worked out by hand: key k turns k largest turns the frame's way, at the
// fraction k largest turns / |turn| of the frame.
constexpr double kLargest = kLargestTurnPerKey;
INSTANTIATE_TEST_SUITE_P(
    Turns, SpinKeysOfAFrame,
    testing::Values(KeysCase{3.0, kLargest, 0, {}},       // below the largest turn: none
                    KeysCase{kLargest, kLargest, 0, {}},  // exactly it: none
                    KeysCase{-4.0, kLargest, 1, {{0.7776219439578695, -kLargest}}},
                    KeysCase{7.0, kLargest, 2, {{0.444355396547354, kLargest}, {0.888710793094708, 2 * kLargest}}},
                    KeysCase{7.0,
                             kPropellerTurn,
                             2,
                             {{0.44431096100769935, kPropellerTurn}, {0.8886219220153987, 6.220353454107791}}}));

// 321 largest turns: split no further than 100 keys.
TEST(SpinKeys, StopAtTheCapacity) {
  const SpinKeys keys = spinKeys(1000.0);
  ASSERT_EQ(keys.count, SpinKeys::kCapacity);
  EXPECT_DOUBLE_EQ(keys.keys[SpinKeys::kCapacity - 1].fraction, 0.3110487775831478);
  EXPECT_DOUBLE_EQ(keys.keys[SpinKeys::kCapacity - 1].turn, 311.0487775831478);
}

}  // namespace
}  // namespace vuk::rgw::addon
