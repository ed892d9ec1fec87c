#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <string>

#include "util/xml/element.h"

namespace vuk::util::xml {
namespace {

struct ResultCase {
  const char* label;
  const char* markup;
  ParseResult expected;
};

class ParseResultTest : public testing::TestWithParam<ResultCase> {};

TEST_P(ParseResultTest, GivesTheResultCode) {
  Element element;
  EXPECT_EQ(element.ParseText(GetParam().markup), GetParam().expected) << GetParam().markup;
  if (GetParam().expected != kParsed) {
    EXPECT_TRUE(element.IsEmpty());
  }
}

INSTANTIATE_TEST_SUITE_P(
    Markup, ParseResultTest,
    testing::Values(ResultCase{"empty_tag", "<a/>", kParsed},
                    ResultCase{"declaration_then_root", "<?xml version=\"1.0\"?><a></a>", kParsed},
                    ResultCase{"trailing_junk_ignored", "<a/></b></c>", kParsed},
                    ResultCase{"nothing", "", kNoRoot},
                    ResultCase{"only_white_space", " \n\t ", kNoRoot},
                    ResultCase{"text_first", "hello <a/>", kNoRoot},
                    ResultCase{"comment_first", "<!-- c --><a/>", kNoRoot},
                    ResultCase{"close_first", "</a>", kNoRoot},
                    ResultCase{"stray_close_after_declaration", "<?xml?></a>", kNoRoot},
                    ResultCase{"attribute_without_equals", "<a b/>", kNoRoot},
                    ResultCase{"attribute_without_quote", "<a b=c/>", kNoRoot},
                    ResultCase{"attribute_value_unterminated", "<a b=\"c/>", kNoRoot},
                    ResultCase{"missing_close", "<a><b></b>", kMissingClose},
                    ResultCase{"markup_ends_inside_tag", "<a><b", kMissingClose},
                    ResultCase{"mismatched_close", "<a><b></a></b>", kCloseMismatch},
                    ResultCase{"declaration_only", "<?xml version=\"1.0\"?>", kBadPosition}),
    [](const testing::TestParamInfo<ResultCase>& info) { return std::string(info.param.label); });

TEST(ParserTest, TextIsDecodedTwiceAttributesOnce) {
  Element element;
  ASSERT_EQ(element.ParseText("<a v=\"&#38;#60;\">&#38;#60;</a>"), kParsed);
  EXPECT_EQ(element.GetText(), "<");
  EXPECT_EQ(element.GetAttribute("v"), "&#60;");
}

TEST(ParserTest, NamedEntitiesAreNotKnown) {
  Element element;
  ASSERT_EQ(element.ParseText("<a v='&amp;'>&amp;</a>"), kParsed);
  EXPECT_EQ(element.GetText(), "&amp;");
  EXPECT_EQ(element.GetAttribute("v"), "&amp;");
}

TEST(ParserTest, NumericReferencesInBothBases) {
  struct Case {
    const char* markup;
    const char* text;
  };
  const Case cases[] = {
      {"<a>&#65;</a>", "A"},
      {"<a>&#x41;</a>", "A"},
      {"<a>&#x4a;&#x4A;</a>", "JJ"},
      {"<a>&#65</a>", "A"},      // the terminator is skipped whatever it is, even missing
      {"<a>&#65xB</a>", "AB"},   // ... so here the "x" goes
      {"<a>&#6A;</a>", "\x06"},  // decimal rules stop at the letter; the run of hex digits is consumed
      {"<a>&#321;</a>", "A"},    // one char: the low byte of 321
      {"<a>a & b</a>", "a & b"},
  };
  for (const Case& c : cases) {
    Element element;
    ASSERT_EQ(element.ParseText(c.markup), kParsed) << c.markup;
    EXPECT_EQ(element.GetText(), c.text) << c.markup;
  }
}

TEST(ParserTest, GreaterThanInsideAnAttributeEndsTheTag) {
  Element element;
  EXPECT_EQ(element.ParseText("<a v=\"x>y\"/>"), kNoRoot);
  EXPECT_EQ(element.ParseText("<r><a v=\"x>y\"/></r>"), kNoRoot);
}

TEST(ParserTest, CommentKeepsEverythingAfterTheBang) {
  Element element;
  ASSERT_EQ(element.ParseText("<r><!-- note &#60; --></r>"), kParsed);
  ASSERT_EQ(element.children.size(), 1u);
  EXPECT_EQ(element.children[0]->kind, Element::kComment);
  EXPECT_EQ(element.children[0]->name, "-- note < --");
}

TEST(ParserTest, WhiteSpaceBeforeATagIsDroppedAndBeforeTextKept) {
  Element element;
  ASSERT_EQ(element.ParseText("<r>\n  <a/>  text  <b/>\n</r>"), kParsed);
  ASSERT_EQ(element.children.size(), 3u);
  EXPECT_EQ(element.children[0]->name, "a");
  EXPECT_EQ(element.children[1]->kind, Element::kText);
  EXPECT_EQ(element.children[1]->name, "  text  ");
  EXPECT_EQ(element.children[2]->name, "b");
}

TEST(ParserTest, AttributesKeepTheirOrderAndEitherQuote) {
  Element element;
  ASSERT_EQ(element.ParseText("<a  z='1' y = \"it's\"\tx=\"\"  />"), kParsed);
  ASSERT_EQ(element.attributes.size(), 3u);
  EXPECT_EQ(element.attributes[0], Element::Attribute("z", "1"));
  EXPECT_EQ(element.attributes[1], Element::Attribute("y", "it's"));
  EXPECT_EQ(element.attributes[2], Element::Attribute("x", ""));
}

TEST(ParserTest, AttributesStopAtAQuestionMark) {
  Element element;
  ASSERT_EQ(element.ParseText("<a b='1' ? c/>"), kParsed);
  EXPECT_EQ(element.attributes.size(), 1u);
}

TEST(ParserTest, OnlyTheFirstTokenMayBeADeclaration) {
  Element element;
  ASSERT_EQ(element.ParseText("<?xml?><?pi?>"), kMissingClose);  // the second is an ordinary open tag
}

TEST(ParserTest, ATextRootAfterADeclarationIsAnElement) {
  Element element;
  ASSERT_EQ(element.ParseText("<?xml?>just text"), kParsed);
  EXPECT_EQ(element.kind, Element::kText);
  EXPECT_EQ(element.name, "just text");
}

TEST(ParserTest, ANulEndsTheMarkup) {
  Element element;
  const std::string markup("<a>x</a>\0<b/>", 13);
  ASSERT_EQ(element.ParseText(std::string("<r>", 3) + std::string("\0</r>", 5)), kMissingClose);
  ASSERT_EQ(element.ParseText(markup), kParsed);
  EXPECT_EQ(element.GetText(), "x");
}

TEST(ParserTest, ReparsingReplacesTheOldTree) {
  Element element;
  ASSERT_EQ(element.ParseText("<a x='1'><b/></a>"), kParsed);
  ASSERT_EQ(element.ParseText("<c/>"), kParsed);
  EXPECT_EQ(element.name, "c");
  EXPECT_TRUE(element.attributes.empty());
  EXPECT_TRUE(element.children.empty());
}

TEST(ParserTest, DeepNestingNeitherOverflowsNorFails) {
  const int depth = 200000;
  std::string markup;
  for (int i = 0; i < depth; ++i) markup += "<d>";
  std::string unclosed = markup;
  for (int i = 0; i < depth; ++i) markup += "</d>";

  Element element;
  ASSERT_EQ(element.ParseText(markup), kParsed);
  const Element* e = &element;
  int levels = 1;
  while (!e->children.empty()) {
    e = e->children[0].get();
    ++levels;
  }
  EXPECT_EQ(levels, depth);
  Element copy(element);
  std::string written;
  for (int i = 1; i < depth; ++i) written += "<d>";
  written += "<d/>";
  for (int i = 1; i < depth; ++i) written += "</d>";
  EXPECT_EQ(copy.Write("", ""), written);
  EXPECT_EQ(element.ParseText(unclosed), kMissingClose);
}

class FileParseTest : public testing::Test {
 protected:
  void SetUp() override {
    path_ = testing::TempDir() + "parser_test_" + std::to_string(reinterpret_cast<std::uintptr_t>(this)) + ".xml";
  }
  void TearDown() override { std::remove(path_.c_str()); }
  void WriteFile(const std::string& content) { std::ofstream(path_, std::ios::binary) << content; }
  std::string path_;
};

TEST_F(FileParseTest, LineEndsAreDroppedFromFiles) {
  WriteFile("<a>one\r\ntwo\nthree</a>\n");
  Element element;
  ASSERT_EQ(element.Parse(path_), kParsed);
  EXPECT_EQ(element.GetText(), "onetwothree");
  Element constructed(path_);
  EXPECT_EQ(constructed.GetText(), "onetwothree");
}

TEST_F(FileParseTest, AMissingFileIsUnreadable) {
  Element element;
  EXPECT_EQ(element.Parse(path_ + ".missing"), kUnreadable);
  EXPECT_EQ(element.Parse(""), kUnreadable);
  EXPECT_TRUE(element.IsEmpty());
}

TEST_F(FileParseTest, AHundredMegabyteLineParses) {
  std::string markup = "<a v='1'>";
  markup.append(100u << 20, 'x');
  markup += "</a>";
  WriteFile(markup);
  markup.clear();
  Element element;
  ASSERT_EQ(element.Parse(path_), kParsed);
  EXPECT_EQ(element.GetText().size(), 100u << 20);
}

TEST(ResourceParseTest, ColonPathsReadTheResourceTree) {
  Element element;
  ASSERT_EQ(element.Parse(":/rigworks/test/layout.xml"), kParsed);
  EXPECT_EQ(element.name, "dialog");
  EXPECT_EQ(element.GetAttribute("title"), "Resource & test");
  EXPECT_EQ(element.GetChild("label").GetAttribute("text"), "one");
  EXPECT_EQ(element.Parse(":/rigworks/test/none.xml"), kUnreadable);
}

}  // namespace
}  // namespace vuk::util::xml
