#include "core/paths.h"

#include <gtest/gtest.h>

#include <tuple>

#include "tests/core/scopedenv.h"

namespace vuk::rgw::core {
namespace {

using testing_support::ScopedEnv;

TEST(GetPath, AnswersBelowTheRoot) {
  const std::tuple<const char*, const char*, const char*> table[] = {
      {"/opt/rw", "data", "/opt/rw/rigworks/data"}, {"/opt/rw", "plugin", "/opt/rw/rigworks/plugins/linux/x64"},
      {"/opt/rw", "doc", "/opt/rw/rigworks/doc"},   {"/opt/rw", "prm", "/opt/rw/rigworks/prm"},
      {"/opt/rw", "", "/opt/rw/rigworks"},          {"/opt/rw", "rgw", "/opt/rw/rigworks"},
      // Names compare exactly: anything else is the root.
      {"/opt/rw", "Data", "/opt/rw"}, {"/opt/rw", "images", "/opt/rw"},
      // No root gives empty answers.
      {"", "data", ""}, {"", "rgw", ""}, {"", "other", ""}};
  for (const auto& [root, kind, path] : table) {
    ScopedEnv variable("RIGWORKS_ROOT", root);
    EXPECT_EQ(GetPath(kind), path) << root << " " << kind;
  }
}

TEST(GetPath, WithoutTheVariableTheRootIsAboveTheExecutable) {
  ScopedEnv unset("RIGWORKS_ROOT", nullptr);
  // This test program lives in <build>/tests/core.
  const std::string root = GetInstallRoot();
  EXPECT_FALSE(root.empty());
  EXPECT_EQ(GetPath("data"), root + "/rigworks/data");
}

TEST(GetUserFolder, FollowsTheXdgDataHomeOrDefaultsBelowHome) {
  {
    ScopedEnv dataHome("XDG_DATA_HOME", "/tmp/xdg");
    EXPECT_EQ(GetUserFolder(), "/tmp/xdg/rigworks");
    EXPECT_EQ(GetCoreDataFolder(), "/tmp/xdg/rigworks/data/core");
  }
  ScopedEnv dataHome("XDG_DATA_HOME", nullptr);
  ScopedEnv home("HOME", "/home/anim");
  EXPECT_EQ(GetUserFolder(), "/home/anim/.local/share/rigworks");
}

}  // namespace
}  // namespace vuk::rgw::core
