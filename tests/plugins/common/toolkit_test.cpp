// The kit's pieces that the built-in tools don't use yet: aliases, former
// node names, and saved data of another chunk or version.
#include <gtest/gtest.h>

#include "plugins/common/saveddata.h"
#include "plugins/common/toolnode.h"
#include "plugins/common/toolplugin.h"
#include "tests/plugins/toolharness.h"

namespace vuk::rgw::addon {
namespace {

struct CProbeObject : CCamera {
  using CCamera::CCamera;
  static const ToolInfo kInfo;
};
const ToolInfo CProbeObject::kInfo = {"Probe", "utility/probe", "Probe", "Accessory", "", "", {"OldProbe", "Probe2"}};

TEST(ToolPlugin, AnswersItsRecordAndAppendsItsAliases) {
  CToolPlugin<CProbeObject> plugin;
  EXPECT_EQ(plugin.GetName() + plugin.GetPath() + plugin.GetCategory(), "Probeutility/probeAccessory");
  EXPECT_TRUE(plugin.HasExtension(extension::kAliases));
  std::vector<std::string> names{"Other"};
  plugin.Extension(extension::kAliases, &names);
  EXPECT_EQ(names, (std::vector<std::string>{"Other", "OldProbe", "Probe2"}));
}

struct Renamed : ToolNode {
  Renamed(CCamera* object, std::vector<std::string> former) : ToolNode(object, "NewName", std::move(former)) {}
  void Create() override {}
};

TEST(ToolNode, IsFoundByAFormerName) {
  testing_support::ToolHarness harness("LookAtCam");
  Renamed found(harness.Instance().GetTool(), {"Gone", "TargetMesh"});
  EXPECT_TRUE(found.Find());
  EXPECT_EQ(found.handle, harness.Instance().FindNode("TargetMesh"));
  Renamed missing(harness.Instance().GetTool(), {"Gone"});
  EXPECT_FALSE(missing.Find());
  EXPECT_EQ(missing.handle, nullptr);
}

TEST(SavedData, RefusesAnotherChunkOrVersion) {
  testing_support::ToolHarness harness("LookAtCam");
  SavedData::Store(&harness.Instance(), SavedData("Probe", 100).Begin());
  util::DataChunk chunk;
  EXPECT_TRUE(SavedData("Probe", 100).Read(&harness.Instance(), chunk));
  EXPECT_FALSE(SavedData("Probe", 101).Read(&harness.Instance(), chunk));
  EXPECT_FALSE(SavedData("Other", 100).Read(&harness.Instance(), chunk));
}

}  // namespace
}  // namespace vuk::rgw::addon
