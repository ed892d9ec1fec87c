#include "core/librarymanager.h"

#include <gtest/gtest.h>

#include "tests/core/testtools.h"

namespace vuk::rgw::core {
namespace {

TEST(LibraryManager, LoadsToolLibrariesAndSkipsTheRest) {
  LibraryManager manager(testing_support::TestTools());
  // The folder holds a tool library, one without exports and one of another version.
  EXPECT_EQ(manager.LoadFolder(RGW_TOOL_LIBRARIES), 1);
  ASSERT_EQ(manager.Libraries().size(), 1u);
  Plugin* external = manager.FindTool("ExternalCam");
  ASSERT_NE(external, nullptr);
  EXPECT_EQ(external->plugin->GetTitle(), "External Camera");
  EXPECT_NE(manager.FindTool("TestTool"), nullptr);
  // A second load of the same tools drops them: the name is taken.
  EXPECT_EQ(manager.LoadFolder(RGW_TOOL_LIBRARIES), 0);
  EXPECT_EQ(manager.LoadFolder("/nonexistent"), 0);
}

}  // namespace
}  // namespace vuk::rgw::core
