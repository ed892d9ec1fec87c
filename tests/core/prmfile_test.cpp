#include "core/prmfile.h"

#include <gtest/gtest.h>

#include <fstream>

#include "adaptor/standalone/standaloneadaptorinterface.h"
#include "core/instancemanager.h"
#include "util/datachunk.h"

namespace vuk::rgw::core {
namespace {

TEST(PrmFile, AToolTreeTravelsThroughAPrmFile) {
  const std::string path = testing::TempDir() + "/rig.prm";
  LibraryManager library;
  adaptor::standalone::StandaloneAdaptorInterface source;
  InstanceManager tools(&source, &library);
  InstanceReference* parent = tools.Create("LookAtCam");
  tools.Create("LookAtCam", "", parent);
  std::string error;
  ASSERT_TRUE(SavePrmFile(path, parent->Serialize(0), &error)) << error;

  util::xml::Element tree;
  ASSERT_TRUE(LoadPrmFile(path, tree, &error)) << error;
  adaptor::standalone::StandaloneAdaptorInterface target;
  InstanceManager loaded(&target, &library);
  EXPECT_EQ(loaded.LoadToolTree(tree), 2);
  EXPECT_EQ(loaded.Root().GetChild(0)->GetChildCount(), 1u);
}

struct BadPrm {
  const char* name;
  std::string bytes;
  const char* problem;
};

class PrmFileBad : public testing::TestWithParam<BadPrm> {};

TEST_P(PrmFileBad, GivesAMessageNamingTheFile) {
  const std::string path = testing::TempDir() + "/" + GetParam().name;
  std::ofstream(path, std::ios::binary) << GetParam().bytes;
  util::xml::Element tree;
  std::string error;
  EXPECT_FALSE(LoadPrmFile(path, tree, &error));
  EXPECT_TRUE(tree.IsEmpty());
  EXPECT_EQ(error.rfind(path + ": ", 0), 0u) << error;
  EXPECT_NE(error.find(GetParam().problem), std::string::npos) << error;
}

std::string Chunk(const std::string& text) {
  const util::Bytes flat = util::DataChunk("RGT", util::Bytes(text.begin(), text.end())).Flatten();
  return std::string(flat.begin(), flat.end());
}

INSTANTIATE_TEST_SUITE_P(Samples, PrmFileBad,
                         testing::Values(BadPrm{"short.prm", "ab", "not a pre-rigged model"},
                                         BadPrm{"broken.prm", Chunk("<RGT><RGT_Plugin>"), "parse result 3"},
                                         BadPrm{"other.prm", Chunk("<dialog/>"), "\"dialog\" is not a tool tree"},
                                         BadPrm{"missing.prm", "", "not a pre-rigged model"}));

}  // namespace
}  // namespace vuk::rgw::core
