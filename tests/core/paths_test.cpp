#include "core/paths.h"

#include <gtest/gtest.h>

#include "tests/core/scopedenv.h"

namespace vuk::rgw::core {
namespace {

using testing_support::ScopedEnv;

struct Kind {
  const char* kind;
  const char* path;
};

class GetPathKinds : public testing::TestWithParam<Kind> {};

TEST_P(GetPathKinds, AnswersBelowTheRoot) {
  ScopedEnv root("RIGWORKS_ROOT", "/opt/rw");
  EXPECT_EQ(GetPath(GetParam().kind), GetParam().path);
}

INSTANTIATE_TEST_SUITE_P(Table, GetPathKinds,
                         testing::Values(Kind{"data", "/opt/rw/rigworks/data"},
                                         Kind{"plugin", "/opt/rw/rigworks/plugins/linux/x64"},
                                         Kind{"doc", "/opt/rw/rigworks/doc"}, Kind{"prm", "/opt/rw/rigworks/prm"},
                                         Kind{"", "/opt/rw/rigworks"}, Kind{"rgw", "/opt/rw/rigworks"},
                                         // Names compare exactly: anything else is the root.
                                         Kind{"Data", "/opt/rw"}, Kind{"images", "/opt/rw"}));

TEST(GetPath, NoRootGivesEmptyAnswers) {
  ScopedEnv root("RIGWORKS_ROOT", "");
  EXPECT_EQ(GetPath("data"), "");
  EXPECT_EQ(GetPath("rgw"), "");
  EXPECT_EQ(GetPath("other"), "");
}

TEST(GetPath, WithoutTheVariableTheRootIsAboveTheExecutable) {
  ScopedEnv unset("RIGWORKS_ROOT", nullptr);
  // This test program lives in <build>/tests/core.
  const std::string root = GetInstallRoot();
  EXPECT_FALSE(root.empty());
  EXPECT_EQ(GetPath("data"), root + "/rigworks/data");
}

TEST(GetUserFolder, FollowsTheXdgDataHome) {
  ScopedEnv dataHome("XDG_DATA_HOME", "/tmp/xdg");
  EXPECT_EQ(GetUserFolder(), "/tmp/xdg/rigworks");
  EXPECT_EQ(GetCoreDataFolder(), "/tmp/xdg/rigworks/data/core");
}

TEST(GetUserFolder, DefaultsBelowHome) {
  ScopedEnv dataHome("XDG_DATA_HOME", nullptr);
  ScopedEnv home("HOME", "/home/anim");
  EXPECT_EQ(GetUserFolder(), "/home/anim/.local/share/rigworks");
}

}  // namespace
}  // namespace vuk::rgw::core
