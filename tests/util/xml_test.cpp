#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <random>
#include <string>
#include <tuple>

#include "util/xml/element.h"
#include "util/xml/tag.h"

namespace vuk::util::xml {
namespace {

Element Parsed(const std::string& markup) {
  Element element;
  EXPECT_EQ(element.ParseText(markup), kParsed) << markup;
  return element;
}

std::string Repeated(const std::string& text, int times) {
  std::string out;
  while (times-- > 0) out += text;
  return out;
}

TEST(XmlParse, ResultCodesAndOnFailureAnEmptyElement) {
  const std::pair<std::string, ParseResult> cases[] = {
      {"<a/>", kParsed}, {"<?xml version=\"1.0\"?><a></a>", kParsed},
      {"<a/></b></c>", kParsed},  // anything after the root is ignored
      {"", kNoRoot}, {"hello <a/>", kNoRoot}, {"<!-- c --><a/>", kNoRoot}, {"<a b=c/>", kNoRoot},
      {"<r><a v=\"x>y\"/></r>", kNoRoot},  // no quote awareness: a ">" inside a value ends the tag
      {"<a><b></b>", kMissingClose}, {"<a><b", kMissingClose}, {std::string("<r>\0</r>", 8), kMissingClose},
      {"<?xml?><?pi?>", kMissingClose},  // only the first token may be a declaration
      {"<a><b></a></b>", kCloseMismatch}, {"<?xml version=\"1.0\"?>", kBadPosition}};
  for (const auto& [markup, expected] : cases) {
    Element element = Parsed("<old a='1'><b/></old>");
    EXPECT_EQ(element.ParseText(markup), expected) << markup;
    EXPECT_TRUE(expected == kParsed || element.IsEmpty()) << markup;
  }
}

// Text is decoded twice, attribute values once. Only numeric references are
// known; the character after the digits is skipped whatever it is.
TEST(XmlParse, DecodingOfTextAndAttributes) {
  const struct {
    const char *markup, *text, *attribute;
  } cases[] = {{"<a v=\"&#38;#60;\">&#38;#60;</a>", "<", "&#60;"},
               {"<a v='&amp;'>&amp;</a>", "&amp;", "&amp;"},
               {"<a v='&#x4a;&#x4A;'>&#65;</a>", "A", "JJ"},
               {"<a v='&#321;'>&#6A;</a>", "\x06", "A"},  // the low byte; decimal rules stop at a letter
               {"<a v='a & b'>a & b</a>", "a & b", "a & b"}};
  for (const auto& c : cases) {
    const Element element = Parsed(c.markup);
    EXPECT_EQ(element.GetText(), c.text) << c.markup;
    EXPECT_EQ(element.GetAttribute("v"), c.attribute) << c.markup;
  }
}

TEST(XmlParse, CommentsWhiteSpaceAndAttributes) {
  const Element element = Parsed("<r z='1' y = \"it's\"\tx=\"\" ? w/>");
  // In order, either quote; a "?" ends them.
  EXPECT_EQ(element.attributes, (std::vector<Element::Attribute>{{"z", "1"}, {"y", "it's"}, {"x", ""}}));

  const Element body = Parsed("<r>\n  <!-- note &#60; -->  text  <b/>\n</r>");
  ASSERT_EQ(body.children.size(), 3u);  // white space before a tag is dropped, before text kept
  EXPECT_EQ(body.children[0]->kind, Element::kComment);
  EXPECT_EQ(body.children[0]->name, "-- note < --");
  EXPECT_EQ(body.children[1]->name, "  text  ");
  EXPECT_EQ(body.children[2]->name, "b");

  const Element text = Parsed("<?xml?>just text");
  EXPECT_TRUE(text.kind == Element::kText && text.name == "just text");
}

TEST(XmlParse, DeepNestingNeitherOverflowsNorFails) {
  const std::string open = Repeated("<d>", 200000), close = Repeated("</d>", 200000);
  Element element = Parsed(open + close);
  const Element copy(element);
  EXPECT_EQ(copy.Write("", ""), open.substr(3) + "<d/>" + close.substr(4));
  EXPECT_EQ(element.ParseText(open), kMissingClose);
}

TEST(XmlElement, DepthCountsLevelsAllOrThroughOneName) {
  const std::string deep = Repeated("<t>", 100000) + Repeated("</t>", 100000);
  const std::tuple<std::string, std::string, std::size_t> cases[] = {
      {"<a/>", "", 1}, {"<a>text</a>", "", 2}, {"<a><b/><c><d><e/></d></c></a>", "", 4},
      {"<a><b/><c><d><e/></d></c></a>", "c", 2}, {"<a><t><x><t/></x></t><t><t><t/></t></t></a>", "t", 4},
      {deep, "", 100000}, {deep, "t", 100000}};
  for (const auto& [markup, through, depth] : cases) EXPECT_EQ(Parsed(markup).Depth(through), depth) << markup.substr(0, 40);
}

TEST(XmlParse, FilesDropLineEndsAndResourcesReadWhole) {
  const std::string path = testing::TempDir() + "xml_test_file.xml";
  std::ofstream(path, std::ios::binary) << "<a>one\r\ntwo\nthree</a>\n";
  EXPECT_EQ(Element(path).GetText(), "onetwothree");
  std::remove(path.c_str());
  Element element;
  EXPECT_EQ(element.Parse(path), kUnreadable);
  EXPECT_TRUE(element.IsEmpty());

  ASSERT_EQ(element.Parse(":/rigworks/test/layout.xml"), kParsed);
  EXPECT_EQ(element.GetAttribute("title"), "Resource & test");
  EXPECT_EQ(element.GetChild("label").GetAttribute("text"), "one");
  EXPECT_EQ(element.Parse(":/rigworks/test/none.xml"), kUnreadable);
}

// An empty element is refused, copied or given away.
TEST(XmlElement, AddChildCopiesDeeplyButNotAnEmptyElement) {
  Tag parent("p");
  const Element empty;
  EXPECT_EQ(parent.AddChild(empty), nullptr);
  EXPECT_EQ(parent.AddChild(Element()), nullptr);
  Tag child("c");
  child.AddChild(Tag("grandchild"));
  Element holder;  // kind 0, but it carries children: kept
  holder.AddChild(child);
  ASSERT_NE(parent.AddChild(holder), nullptr);
  holder.children[0]->children[0]->name = "changed";
  EXPECT_EQ(parent.GetChild(0).GetChild("c").GetChild(0).name, "grandchild");
}

// A child given away is taken over as it is, long text included.
TEST(XmlElement, AChildGivenAwayIsMovedNotCopied) {
  Tag parent("p");
  TagWithData blob("savedata", std::string(100000, 'A'));
  const char* text = blob.GetText().data();
  Element* added = parent.AddChild(std::move(blob));
  ASSERT_NE(added, nullptr);
  EXPECT_EQ(parent.GetChild("savedata").GetText().data(), text);
  EXPECT_EQ(parent.GetChild("savedata").GetText(), std::string(100000, 'A'));
}

TEST(XmlElement, LookupsOfMissingChildrenChainToTheSharedEmptyElement) {
  Element element = Parsed("<r><item>1</item><item>2</item><a/>after</r>");
  EXPECT_EQ(element.GetChild("item", 1).GetText(), "2");
  const Element& missing = element.GetChild("item", 5);
  EXPECT_EQ(&missing, &Element::Empty());
  EXPECT_EQ(&missing.GetChild("deeper").GetChild(3), &Element::Empty());
  EXPECT_EQ(element.GetText(), "");  // the first child isn't text
  element.SetAttribute("id") = "7";
  element.SetAttribute("label") = "x";
  element.SetAttribute("id") = "8";
  EXPECT_EQ(element.attributes, (std::vector<Element::Attribute>{{"id", "8"}, {"label", "x"}}));
}

TEST(XmlElement, DataIsTextAsAStreamPrintsAndReadsIt) {
  EXPECT_EQ(Data(1.0 / 3.0).name, "0.333333");  // six digits: doubles that matter travel as blobs
  EXPECT_EQ(TagWithData("count", -12).Write(), "<count>-12</count>");
  EXPECT_EQ(Tag("none").GetValue<int>() + TagWithData("bad", "abc").GetValue<int>(), 0);
}

TEST(XmlElement, AssignCopiesAWholeTreeEvenFromItsOwnSubtree) {
  Element target = Parsed("<a x='1'><b><c>t</c></b></a>");
  target.Assign(*target.children[0]);
  EXPECT_EQ(target.Write("", ""), "<b><c>t</c></b>");
}

TEST(XmlWrite, IndentsTagsKeepsTextInlineAndStartsAtTheIndent) {
  const Element root = Parsed("<profile name='Factory Settings'><group><item>3</item><empty/></group>"
                              "<label>a &#60; b &#38; c</label></profile>");
  EXPECT_EQ(root.Write("\n", "  ", ">"),
            "><profile name=\"Factory Settings\">\n"
            ">  <group>\n"
            ">    <item>3</item>\n"
            ">    <empty/>\n"
            ">  </group>\n"
            ">  <label>a &#60; b &#38; c</label>\n"
            "></profile>");
}

// Writing and reading again, where the two don't quite meet.
TEST(XmlWrite, RoundTripOddities) {
  Element comment = Parsed("<r><!-- hi --></r>");  // a comment gains dashes each time
  EXPECT_EQ(comment.Write("", ""), "<r><!-- -- hi ---- ></r>");
  EXPECT_EQ(Parsed(comment.Write("", "")).Write("", ""), "<r><!-- -- -- hi ---- -- ></r>");

  Tag texts("a");  // neighbouring texts become one text with a blank
  texts.AddChild(Text("one"));
  texts.AddChild(Text("two"));
  EXPECT_EQ(texts.Write(), "<a>one two</a>");
  EXPECT_EQ(Parsed(texts.Write()).children.size(), 1u);

  Tag utf8("a");  // bytes outside ASCII are references, read back byte for byte
  utf8.AddChild(Text("Caf\xC3\xA9"));
  EXPECT_EQ(utf8.Write(), "<a>Caf&#195;&#169;</a>");
}

TEST(XmlWrite, QuotesAreChosenByTheValue) {
  const std::pair<const char*, const char*> cases[] = {
      {"plain", "<a v=\"plain\"/>"},
      {"say \"hi\"", "<a v='say \"hi\"'/>"},
      {"it's \"x\"", "<a v=\"it's &#34;x&#34;\"/>"},
      {"a&b<c", "<a v=\"a&#38;b&#60;c\"/>"},
      {"tab\tnew\nline", "<a v=\"tab\tnew&#10;line\"/>"},
      {"x>y", "<a v=\"x>y\"/>"}};  // not escaped, so it breaks the tag when read
  for (const auto& [value, written] : cases) {
    Tag a("a");
    a.SetAttribute("v") = value;
    EXPECT_EQ(a.Write(), written);
  }
}

// Random trees of the kind the system writes: tags with attributes and text,
// never two texts side by side. Indented, a text must be an only child: the
// indentation next to it would join it when read back. Such trees differ
// exactly where their one-line forms do.
class RandomTree {
 public:
  RandomTree(unsigned seed, bool textAlone) : rng_(seed), textAlone_(textAlone) {
    for (int c = 1; c < 256; ++c) anyByte_ += c == '>' ? '"' : static_cast<char>(c);  // all a value can carry
  }

  Tag Make(int depth) {
    Tag tag(Word("abcdefghijklmnopqrstuvwxyz0123456789_", 1, 8));
    for (int i = Pick(0, 3); i > 0; --i) tag.SetAttribute("k" + std::to_string(i)) = Word(anyByte_, 0, 12);
    const int children = depth > 0 ? Pick(0, 4) : 0;
    const bool noText = textAlone_ && children > 1;
    for (bool lastWasText = false; tag.children.size() < static_cast<std::size_t>(children);) {
      lastWasText = !noText && !lastWasText && Pick(0, 3) == 0;
      // Text is decoded twice, so "&#" would not come back; nor would text
      // that is only white space, which the reader drops before a tag.
      tag.AddChild(lastWasText ? Element(Text(Word("ab &<>'\";:\t\n\xC3\xA9", 0, 10) + "z"))
                               : Element(Make(depth - 1)));
    }
    return tag;
  }

 private:
  int Pick(int low, int high) { return std::uniform_int_distribution<int>(low, high)(rng_); }

  std::string Word(const std::string& alphabet, int minLength, int maxLength) {
    std::string word;
    for (int i = Pick(minLength, maxLength); i > 0; --i) word += alphabet[Pick(0, int(alphabet.size()) - 1)];
    return word;
  }

  std::mt19937 rng_;
  bool textAlone_;
  std::string anyByte_;
};

TEST(XmlWrite, RandomTreesRoundTripOnOneLineAndIndented) {
  for (const bool indented : {false, true}) {
    RandomTree trees(indented ? 7 : 20261122, indented);
    for (int i = 0; i < 300; ++i) {
      const Tag tree = trees.Make(4);
      EXPECT_EQ(Parsed(indented ? tree.Write("\n", "\t") : tree.Write("", "")).Write("", ""), tree.Write("", ""));
    }
  }
}

}  // namespace
}  // namespace vuk::util::xml
