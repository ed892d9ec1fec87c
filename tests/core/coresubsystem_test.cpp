#include "core/coresubsystem.h"

#include <gtest/gtest.h>

namespace vuk::rgw::core {
namespace {

TEST(CoreSubSystem, RegistersInOrderUntilTheListIsClosed) {
  ASSERT_TRUE(CoreSubSystem::All().empty());
  {
    CoreSubSystem first(nullptr);
    CoreSubSystem second(nullptr);
    EXPECT_EQ(CoreSubSystem::All(), (std::vector<CoreSubSystem*>{&first, &second}));
    CoreSubSystem::CloseList();
    CoreSubSystem late(nullptr);
    EXPECT_EQ(CoreSubSystem::All().size(), 2u);
    EXPECT_TRUE(CoreSubSystem::IsListClosed());
  }
  // The last one gone opens the list again.
  EXPECT_TRUE(CoreSubSystem::All().empty());
  EXPECT_FALSE(CoreSubSystem::IsListClosed());
}

}  // namespace
}  // namespace vuk::rgw::core
