#include "plugins/common/toolrandom.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace vuk::rgw::addon {
namespace {

// The sequence the C standard's sample generator gives from seed 1, which the
// noise formulas' 15-bit range was made for.
TEST(ToolRandom, GivesTheSampleSequenceOfTheCStandard) {
  ToolRandom random(1);
  for (const int expected : std::array<int, 5>{16838, 5758, 10113, 17515, 31051}) EXPECT_EQ(random.Next(), expected);
}

TEST(ToolRandom, ContinuesFromASavedState) {
  ToolRandom first(2024);
  for (int i = 0; i < 100; ++i) first.Next();
  ToolRandom second(first.State());
  for (int i = 0; i < 100; ++i) ASSERT_EQ(first.Next(), second.Next());
}

TEST(ToolRandom, CoversTheWholeRange) {
  ToolRandom random(7);
  int lowest = ToolRandom::kMax, highest = 0;
  for (int i = 0; i < 200000; ++i) {
    const int value = random.Next();
    lowest = std::min(lowest, value);
    highest = std::max(highest, value);
  }
  EXPECT_EQ(lowest, 0);
  EXPECT_EQ(highest, ToolRandom::kMax);
}

}  // namespace
}  // namespace vuk::rgw::addon
