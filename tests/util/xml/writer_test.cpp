#include <gtest/gtest.h>

#include <random>
#include <string>

#include "util/xml/element.h"
#include "util/xml/tag.h"

namespace vuk::util::xml {
namespace {

Element Sample() {
  Tag root("profile");
  root.SetAttribute("name") = "Factory Settings";
  root.SetAttribute("version") = "2.0";
  Tag group("group");
  group.AddChild(TagWithData("item", 3));
  group.AddChild(Tag("empty"));
  root.AddChild(group);
  root.AddChild(TagWithData("label", "a < b & c"));
  return root;
}

TEST(WriterTest, IndentsTagsAndKeepsTextInline) {
  EXPECT_EQ(Sample().Write("\n", "  "),
            "<profile name=\"Factory Settings\" version=\"2.0\">\n"
            "  <group>\n"
            "    <item>3</item>\n"
            "    <empty/>\n"
            "  </group>\n"
            "  <label>a &#60; b &#38; c</label>\n"
            "</profile>");
}

TEST(WriterTest, EmptyLineEndAndIndentGiveOneLine) {
  EXPECT_EQ(Sample().Write("", ""),
            "<profile name=\"Factory Settings\" version=\"2.0\"><group><item>3</item><empty/></group>"
            "<label>a &#60; b &#38; c</label></profile>");
}

TEST(WriterTest, StartsAtTheGivenIndent) {
  Tag a("a");
  a.AddChild(Tag("b"));
  EXPECT_EQ(a.Write("\n", "\t", ">"), "><a>\n>\t<b/>\n></a>");
}

TEST(WriterTest, CommentGainsDashesOnEachRoundTrip) {
  Element element;
  ASSERT_EQ(element.ParseText("<r><!-- hi --></r>"), kParsed);
  const std::string once = element.Write("", "");
  EXPECT_EQ(once, "<r><!-- -- hi ---- ></r>");
  ASSERT_EQ(element.ParseText(once), kParsed);
  EXPECT_EQ(element.Write("", ""), "<r><!-- -- -- hi ---- -- ></r>");
}

struct QuoteCase {
  const char* value;
  const char* written;
};

class QuoteTest : public testing::TestWithParam<QuoteCase> {};

TEST_P(QuoteTest, ChoosesTheQuoteAndReadsBackWhole) {
  Tag a("a");
  a.SetAttribute("v") = GetParam().value;
  const std::string written = a.Write("", "");
  EXPECT_EQ(written, GetParam().written);
  Element read;
  ASSERT_EQ(read.ParseText(written), kParsed);
  EXPECT_EQ(read.GetAttribute("v"), GetParam().value);
}

INSTANTIATE_TEST_SUITE_P(Values, QuoteTest,
                         testing::Values(QuoteCase{"plain", "<a v=\"plain\"/>"},
                                         QuoteCase{"say \"hi\"", "<a v='say \"hi\"'/>"},
                                         QuoteCase{"it's", "<a v=\"it's\"/>"},
                                         QuoteCase{"it's \"x\"", "<a v=\"it's &#34;x&#34;\"/>"},
                                         QuoteCase{"a&b<c", "<a v=\"a&#38;b&#60;c\"/>"},
                                         QuoteCase{"tab\tnew\nline", "<a v=\"tab\tnew&#10;line\"/>"}));

TEST(WriterTest, GreaterThanIsLeftAsItIsAndBreaksTheRoundTrip) {
  Tag a("a");
  a.SetAttribute("v") = "x>y";
  const std::string written = a.Write("", "");
  EXPECT_EQ(written, "<a v=\"x>y\"/>");
  Element read;
  EXPECT_NE(read.ParseText(written), kParsed);
}

TEST(WriterTest, NeighbouringTextsBecomeOneTextWithABlank) {
  Tag a("a");
  a.AddChild(Text("one"));
  a.AddChild(Text("two"));
  const std::string written = a.Write();
  EXPECT_EQ(written, "<a>one two</a>");
  Element read;
  ASSERT_EQ(read.ParseText(written), kParsed);
  ASSERT_EQ(read.children.size(), 1u);
  EXPECT_EQ(read.GetText(), "one two");
}

TEST(WriterTest, NonAsciiBytesAreWrittenAsReferencesAndReadBack) {
  Tag a("a");
  a.AddChild(Text("Caf\xC3\xA9"));
  const std::string written = a.Write();
  EXPECT_EQ(written, "<a>Caf&#195;&#169;</a>");
  Element read;
  ASSERT_EQ(read.ParseText(written), kParsed);
  EXPECT_EQ(read.GetText(), "Caf\xC3\xA9");
}

TEST(WriterTest, EmptyAndUnknownKindsWriteNothing) {
  Element empty;
  EXPECT_EQ(empty.Write(), "");
  Element odd;
  odd.kind = 3;
  odd.name = "x";
  EXPECT_EQ(odd.Write(), "");
}

// Random trees of the kind the system writes: tags with attributes and text,
// never two texts side by side. With textAlone, a text is an only child:
// indentation written next to a text would join it when read back.
class RandomTrees {
 public:
  RandomTrees(unsigned seed, bool textAlone) : rng_(seed), textAlone_(textAlone) {}

  Tag Make(int depth) {
    Tag tag(Word("abcdefghijklmnopqrstuvwxyz0123456789_", 1, 8));
    const int attributes = Pick(0, 3);
    for (int i = 0; i < attributes; ++i) tag.SetAttribute("k" + std::to_string(i)) = Value();
    const int children = depth > 0 ? Pick(0, 4) : 0;
    if (textAlone_ && children == 1 && Pick(0, 1) == 0) {
      tag.AddChild(Text(TextValue()));
      return tag;
    }
    bool lastWasText = false;
    for (int i = 0; i < children; ++i) {
      if (!lastWasText && !textAlone_ && Pick(0, 3) == 0) {
        tag.AddChild(Text(TextValue()));
        lastWasText = true;
      } else {
        tag.AddChild(Make(depth - 1));
        lastWasText = false;
      }
    }
    return tag;
  }

 private:
  int Pick(int low, int high) { return std::uniform_int_distribution<int>(low, high)(rng_); }

  std::string Word(const std::string& alphabet, int minLength, int maxLength) {
    std::string word;
    const int length = Pick(minLength, maxLength);
    for (int i = 0; i < length; ++i) word += alphabet[Pick(0, static_cast<int>(alphabet.size()) - 1)];
    return word;
  }

  // Any byte but NUL and ">", which the markup cannot carry in a value.
  std::string Value() {
    std::string value;
    const int length = Pick(0, 12);
    for (int i = 0; i < length; ++i) {
      char c = static_cast<char>(Pick(1, 255));
      value += c == '>' ? '"' : c;
    }
    return value;
  }

  // Text is decoded twice, so "&#" would not come back; it must not be only
  // white space either, which the reader drops before a tag.
  std::string TextValue() {
    std::string text = Word("ab &<>'\";:\t\n\xC3\xA9", 0, 10);
    return text + "z";
  }

  std::mt19937 rng_;
  bool textAlone_;
};

void ExpectSameTree(const Element& a, const Element& b) {
  ASSERT_EQ(a.kind, b.kind);
  ASSERT_EQ(a.name, b.name);
  ASSERT_EQ(a.attributes, b.attributes);
  ASSERT_EQ(a.children.size(), b.children.size()) << a.name;
  for (std::size_t i = 0; i < a.children.size(); ++i) ExpectSameTree(*a.children[i], *b.children[i]);
}

TEST(WriterTest, RandomTreesRoundTripOnOneLine) {
  RandomTrees trees(20261122, false);
  for (int i = 0; i < 300; ++i) {
    const Tag tree = trees.Make(4);
    Element read;
    ASSERT_EQ(read.ParseText(tree.Write("", "")), kParsed);
    ExpectSameTree(tree, read);
  }
}

TEST(WriterTest, RandomTreesRoundTripIndentedWhenTextStandsAlone) {
  RandomTrees trees(7, true);
  for (int i = 0; i < 300; ++i) {
    const Tag tree = trees.Make(4);
    Element read;
    ASSERT_EQ(read.ParseText(tree.Write("\n", "\t")), kParsed);
    ExpectSameTree(tree, read);
  }
}

}  // namespace
}  // namespace vuk::util::xml
