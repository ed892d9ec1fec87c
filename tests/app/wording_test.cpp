#include "app/rgw/wording.h"

#include <gtest/gtest.h>

namespace vuk::app {
namespace {

struct CountCase {
  std::size_t count;
  const char* noun;
  const char* expected;
};

class Counts : public testing::TestWithParam<CountCase> {};

TEST_P(Counts, TakeThePluralOnlyForOtherThanOne) {
  EXPECT_EQ(Counted(GetParam().count, GetParam().noun), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Nouns, Counts,
                         testing::Values(CountCase{0, "key", "0 keys"}, CountCase{1, "key", "1 key"},
                                         CountCase{2, "key", "2 keys"}, CountCase{1, "tool", "1 tool"},
                                         CountCase{61, "sample", "61 samples"}));

TEST(Listed, JoinsWithCommasAndSaysNoneForNothing) {
  EXPECT_EQ(Listed({"TargetMesh", "LookAtCam"}), "TargetMesh, LookAtCam");
  EXPECT_EQ(Listed({"Position"}), "Position");
  EXPECT_EQ(Listed({}), "none");
}

struct ProblemCase {
  const char* reader;
  const char* expected;
};

class GltfProblems : public testing::TestWithParam<ProblemCase> {};

// What the glTF reader says of a broken file, as the user reads it: one line
// naming the file.
TEST_P(GltfProblems, AreOneLineInTheUsersTerms) {
  const std::string line = GltfProblem("scene.gltf", GetParam().reader);
  EXPECT_EQ(line, std::string("scene.gltf: ") + GetParam().expected);
  EXPECT_EQ(line.find('\n'), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(
    ReaderMessages, GltfProblems,
    testing::Values(
        ProblemCase{"scene.gltf: [json.exception.parse_error.101] parse error at line 1, column 1: syntax error while "
                    "parsing value - invalid literal; last read: 'h'",
                    "not a glTF file"},
        ProblemCase{"scene.gltf: [json.exception.parse_error.101] parse error at line 7, column 6: syntax error while "
                    "parsing object key - unexpected end of input; expected string literal",
                    "the file ends too early"},
        ProblemCase{"scene.gltf: JSON string too short.\n", "not a glTF file"},
        ProblemCase{"Root element is not a JSON object\n", "not a glTF file"},
        ProblemCase{"scene.gltf: Too short data size for glTF Binary.", "the file ends too early"},
        ProblemCase{"Invalid magic.", "not a glTF file"},
        ProblemCase{"Empty file.", "the file is empty"},
        ProblemCase{"File not found : scene.bin\n", "a file it refers to is missing"},
        ProblemCase{"File open error : scene.gltf\n", "can't be read"},
        ProblemCase{"\"asset\" object not found in .gltf or not an object type\n",
                    "the file lacks a part that glTF requires"},
        ProblemCase{"'nodes' property is missing in scene.\n", "the file lacks a part that glTF requires"},
        ProblemCase{"Invalid `byteStride' value. `byteStride' must be the multiple of 4 : 3\n",
                    "a damaged glTF file (the log has the details)"},
        // The host's own findings pass as they are.
        ProblemCase{"scene.gltf: node 0 names a missing mesh", "node 0 names a missing mesh"}));

class ModelProblems : public testing::TestWithParam<ProblemCase> {};

TEST_P(ModelProblems, AreOneLineInTheUsersTerms) {
  EXPECT_EQ(ModelProblem("rig.prm", GetParam().reader), std::string("rig.prm: ") + GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    ReaderMessages, ModelProblems,
    testing::Values(ProblemCase{"rig.prm: can't be read", "can't be read"},
                    ProblemCase{"rig.prm: not a pre-rigged model (data chunk at byte 0: header cut short)",
                                "the file ends too early"},
                    ProblemCase{"rig.prm: not a pre-rigged model (data chunk at byte 0: negative data size -4)",
                                "not a pre-rigged model"},
                    ProblemCase{"rig.prm: the tool's text can't be read (parse result 3)",
                                "the model's tool description is damaged"},
                    ProblemCase{"rig.prm: \"scene\" is not a tool tree", "not a pre-rigged model"}));

struct XmlCase {
  util::xml::ParseResult result;
  const char* expected;
};

class XmlProblems : public testing::TestWithParam<XmlCase> {};

TEST_P(XmlProblems, SayWhatIsWrongWithTheFile) { EXPECT_EQ(XmlProblem(GetParam().result), GetParam().expected); }

INSTANTIATE_TEST_SUITE_P(
    ParseResults, XmlProblems,
    testing::Values(XmlCase{util::xml::kUnreadable, "can't be read"}, XmlCase{util::xml::kNoRoot, "not an XML file"},
                    XmlCase{util::xml::kBadPosition, "not an XML file"},
                    XmlCase{util::xml::kMissingClose, "the file ends too early"},
                    XmlCase{util::xml::kCloseMismatch, "a closing tag doesn't match the element it closes"}));

}  // namespace
}  // namespace vuk::app
