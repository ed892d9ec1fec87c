#include "core/paths.h"

#include <gtest/gtest.h>

#include "tests/core/scopedenv.h"

namespace vuk::rgw::core {
namespace {

using testing_support::ScopedEnv;

struct Kind {
  const char* root;
  const char* kind;
  const char* path;
};

class GetPathKinds : public testing::TestWithParam<Kind> {};

TEST_P(GetPathKinds, AnswersBelowTheRoot) {
  ScopedEnv root("RIGWORKS_ROOT", GetParam().root);
  EXPECT_EQ(GetPath(GetParam().kind), GetParam().path);
}

INSTANTIATE_TEST_SUITE_P(Table, GetPathKinds,
                         testing::Values(Kind{"/opt/rw", "data", "/opt/rw/rigworks/data"},
                                         Kind{"/opt/rw", "plugin", "/opt/rw/rigworks/plugins/linux/x64"},
                                         Kind{"/opt/rw", "doc", "/opt/rw/rigworks/doc"},
                                         Kind{"/opt/rw", "prm", "/opt/rw/rigworks/prm"},
                                         Kind{"/opt/rw", "", "/opt/rw/rigworks"}, Kind{"/opt/rw", "rgw", "/opt/rw/rigworks"},
                                         // Names compare exactly: anything else is the root.
                                         Kind{"/opt/rw", "Data", "/opt/rw"}, Kind{"/opt/rw", "images", "/opt/rw"},
                                         // No root gives empty answers.
                                         Kind{"", "data", ""}, Kind{"", "rgw", ""}, Kind{"", "other", ""}));

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
