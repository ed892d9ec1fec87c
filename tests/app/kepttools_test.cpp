// A scene holding a tool that can't be loaded, through the command line:
// the tool is listed with why, kept in every file written as it came, and
// the commands that would change it refuse.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <functional>

#include "adaptor/standalone/gltffile.h"
#include "adaptor/standalone/standaloneadaptorinterface.h"
#include "app/rgw/session.h"
#include "scenes/samplescene.h"
#include "tests/app/rgwprogram.h"
#include "tests/core/scopedenv.h"
#include "util/base64.h"
#include "util/compressedblock.h"

namespace vuk::app {
namespace {

using rgw::adaptor::standalone::GltfFile;
using rgw::adaptor::standalone::SceneNode;
using rgw::adaptor::standalone::StandaloneAdaptorInterface;

const std::string kMaster = "LookAtCam_01_TargetMesh";
const std::string kOther = "LookAtCam_01_LookAtCam";

// The "RGT_tag" of the file's node by its name, as the file holds it.
std::string TagIn(const std::string& path, const std::string& nodeName) {
  StandaloneAdaptorInterface host;
  std::string error;
  EXPECT_TRUE(GltfFile().Load(path, host.GetScene(), &error)) << error;
  std::string tag;
  host.GetScene().Walk([&](SceneNode& node) {
    if (node.hostName == nodeName) tag = node.properties["RGT_tag"];
  });
  return tag;
}

// Changes the packed state of a tag, as text.
std::string Repacked(const std::string& tag, const std::function<void(std::string&)>& change) {
  const std::string open = "compressed=\"1\">";
  const std::size_t from = tag.find(open) + open.size(), to = tag.find("</RGT_Plugin>", from);
  util::Bytes packed, unpacked;
  util::Base64::Decode(tag.substr(from, to - from), packed);
  EXPECT_EQ(util::CompressedBlock::Unpack(packed, unpacked), util::CompressedBlock::Unpacked::kUnpacked);
  std::string text(unpacked.begin(), unpacked.end());
  change(text);
  return tag.substr(0, from) + util::Base64::Encode(util::CompressedBlock::Pack(text)) + tag.substr(to);
}

void Replace(std::string& text, const std::string& from, const std::string& to) {
  const std::size_t at = text.find(from);
  ASSERT_NE(at, std::string::npos) << from;
  text.replace(at, from.size(), to);
}

struct Damage {
  const char* what;
  std::function<std::string(const std::string&)> apply;  // to the master tag
  std::string named;                                      // "NAME (TYPE)"
  std::string reason;
};

const Damage kDamages[] = {
    {"CutTag", [](const std::string& tag) { return tag.substr(0, tag.size() / 2); }, "LookAtCam_01 (?)",
     "its tag is damaged"},
    {"DamagedState",
     [](const std::string& tag) {
       const std::string open = "compressed=\"1\">";
       const std::size_t from = tag.find(open) + open.size();
       return tag.substr(0, from) + "AQIDBAUGBwg=" + tag.substr(tag.find("</RGT_Plugin>", from));
     },
     "LookAtCam_01 (?)", "its saved data is damaged"},
    {"MissingTool",
     [](const std::string& tag) {
       return Repacked(tag, [](std::string& text) { Replace(text, "<type>LookAtCam</type>", "<type>Gone</type>"); });
     },
     "LookAtCam_01 (Gone)", "this program has no tool \"Gone\""},
    {"NewerVersion",
     [](const std::string& tag) {
       return Repacked(tag, [](std::string& text) { Replace(text, "version=\"2.5\"", "version=\"3.0\""); });
     },
     "LookAtCam_01 (LookAtCam)", "it was saved by a newer version (3.0)"},
    {"RefusedState",
     [](const std::string& tag) {
       return Repacked(tag, [](std::string& text) {
         const std::size_t from = text.find("<savedata>") + 10;
         text.replace(from, text.find("</savedata>") - from, "AA==");
       });
     },
     "LookAtCam_01 (LookAtCam)", "it failed to load from its saved data"},
};

// The demo scene with a LookAt camera, whose state is then damaged, and a
// 1D positioner with a take to run.
class KeptTool : public testing::TestWithParam<Damage> {
 protected:
  // Each test of a damage its own: tests run side by side.
  static std::string FolderOfThisTest() {
    std::string name = testing::UnitTest::GetInstance()->current_test_info()->name();
    std::replace(name.begin(), name.end(), '/', '_');
    return testing::TempDir() + "/kepttool_" + name;
  }

  KeptTool()
      : folder(FolderOfThisTest()),
        dataHome("XDG_DATA_HOME", (folder + "/user").c_str()) {
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    std::string error;
    {
      Session made;
      scenes::BuildSampleScene(made.host.GetScene());
      EXPECT_NE(made.tools.Create("LookAtCam"), nullptr);
      EXPECT_NE(made.tools.Create("1DPositioner"), nullptr);
      EXPECT_TRUE(made.Save(folder + "/made.gltf", error)) << error;
    }
    StandaloneAdaptorInterface host;
    GltfFile file;
    EXPECT_TRUE(file.Load(folder + "/made.gltf", host.GetScene(), &error)) << error;
    host.GetScene().Walk([&](SceneNode& node) {
      if (node.hostName == kMaster) node.properties["RGT_tag"] = GetParam().apply(node.properties["RGT_tag"]);
    });
    EXPECT_TRUE(file.Save(scene, host.GetScene(), &error)) << error;
  }

  std::string folder;
  rgw::testing_support::ScopedEnv dataHome;
  std::string scene = folder + "/damaged.gltf";
};

TEST_P(KeptTool, IsListedWithWhy) {
  const Ran shown = Rgw("scene show " + scene);
  EXPECT_EQ(shown.code, 0);
  EXPECT_NE(shown.output.find("tool " + GetParam().named + ": not loaded: " + GetParam().reason + "\n"),
            std::string::npos)
      << shown.output;
  EXPECT_NE(shown.output.find("tool 1DPositioner_01 (1DPositioner)"), std::string::npos) << shown.output;
}

TEST_P(KeptTool, StaysInTheFileARunWritesAsItCame) {
  const std::string out = folder + "/run.gltf";
  const Ran run = Rgw("run " + scene + " --to 0.1 --out " + out);
  EXPECT_EQ(run.code, 0) << run.output;
  EXPECT_NE(run.output.find("on their nodes; not loaded and kept as they were: " + GetParam().named + " on node " +
                            kMaster + ", written to "),
            std::string::npos)
      << run.output;
  for (const std::string& node : {kMaster, kOther}) {
    EXPECT_EQ(TagIn(out, node), TagIn(scene, node)) << node;
    EXPECT_FALSE(TagIn(out, node).empty()) << node;
  }
  // And through the next run, which reads what this one wrote.
  const Ran again = Rgw("run " + out + " --to 0.1 --out " + folder + "/again.gltf");
  EXPECT_EQ(again.code, 0) << again.output;
  EXPECT_EQ(TagIn(folder + "/again.gltf", kMaster), TagIn(scene, kMaster));
}

TEST_P(KeptTool, CommandsThatWouldChangeItRefuse) {
  const std::string tool = " --instance LookAtCam_01 ";
  const std::string unused = folder + "/unused.gltf";
  for (const std::string& command :
       {"set " + scene + tool + "--value Hide=1 --out " + unused, "bind " + scene + tool + "--profile Keyboard --out " + unused,
        "take " + scene + tool + "--csv " + folder + "/none.csv --out " + unused, "model " + scene + tool + "--out " + folder + "/m.prm"}) {
    const Ran refused = Rgw(command);
    EXPECT_EQ(refused.code, 1) << command;
    // The last line: the host's box about the nodes no tool claimed may come first.
    const std::size_t last = refused.output.rfind('\n', refused.output.size() - 2);
    EXPECT_EQ(refused.output.substr(last == std::string::npos ? 0 : last + 1), "rgw: " + GetParam().named + " on node " + kMaster + " is not loaded (" +
                                  GetParam().reason + "): it stays in the file as it is and can't be changed\n")
        << command;
  }
  EXPECT_FALSE(std::filesystem::exists(unused));
}

INSTANTIATE_TEST_SUITE_P(Damages, KeptTool, testing::ValuesIn(kDamages),
                         [](const testing::TestParamInfo<Damage>& info) { return std::string(info.param.what); });

}  // namespace
}  // namespace vuk::app
