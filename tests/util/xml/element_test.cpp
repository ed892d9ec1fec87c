#include "util/xml/element.h"

#include <gtest/gtest.h>

#include <string>

#include "util/xml/tag.h"

namespace vuk::util::xml {
namespace {

TEST(ElementTest, AnEmptyElementWithoutChildrenIsNotAdded) {
  Tag parent("p");
  EXPECT_EQ(parent.AddChild(Element()), nullptr);
  Element negative;
  negative.kind = -1;
  EXPECT_EQ(parent.AddChild(negative), nullptr);
  Element holder;  // kind 0, but it carries children: kept
  holder.AddChild(Tag("x"));
  EXPECT_NE(parent.AddChild(holder), nullptr);
  EXPECT_EQ(parent.children.size(), 1u);
}

TEST(ElementTest, AddChildCopiesDeeply) {
  Tag child("c");
  child.AddChild(Tag("grandchild"));
  Tag parent("p");
  parent.AddChild(child);
  child.children[0]->name = "changed";
  EXPECT_EQ(parent.GetChild("c").GetChild(0).name, "grandchild");
}

TEST(ElementTest, LookupsOfMissingChildrenChainToTheSharedEmptyElement) {
  Element element;
  ASSERT_EQ(element.ParseText("<r><item>1</item><item>2</item><other/></r>"), kParsed);
  EXPECT_EQ(element.CountChildren("item"), 2u);
  EXPECT_EQ(element.GetChild("item", 1).GetText(), "2");
  const Element& missing = element.GetChild("item", 5);
  EXPECT_EQ(&missing, &Element::Empty());
  EXPECT_EQ(&missing.GetChild("deeper", 0).GetChild(3), &Element::Empty());
  EXPECT_EQ(missing.GetAttribute("x"), "");
  EXPECT_EQ(missing.GetText(), "");
  EXPECT_EQ(&element.GetChild(9), &Element::Empty());
  EXPECT_TRUE(Element::Empty().IsEmpty());
}

TEST(ElementTest, GetTextAnswersOnlyATextFirstChild) {
  Element element;
  ASSERT_EQ(element.ParseText("<r><a/>after</r>"), kParsed);
  EXPECT_EQ(element.GetText(), "");
}

TEST(ElementTest, SetAttributeGivesTheSlotAndCreatesItOnce) {
  Tag tag("t");
  tag.SetAttribute("id") = "7";
  tag.SetAttribute("label") = "x";
  tag.SetAttribute("id") = "8";
  ASSERT_EQ(tag.attributes.size(), 2u);
  EXPECT_EQ(tag.attributes[0], Element::Attribute("id", "8"));
  EXPECT_EQ(tag.GetAttribute("label"), "x");
}

TEST(ElementTest, DataIsTextAsAStreamPrintsIt) {
  EXPECT_EQ(Data(42).name, "42");
  EXPECT_EQ(Data(-3).name, "-3");
  EXPECT_EQ(Data(0.1).name, "0.1");
  EXPECT_EQ(Data(1.0 / 3.0).name, "0.333333");  // six digits: doubles that matter travel as blobs
  EXPECT_EQ(Data(true).name, "1");
  EXPECT_EQ(Data(std::string("s p")).name, "s p");
  EXPECT_EQ(Data(1).kind, Element::kText);

  const TagWithData tag("count", 12);
  EXPECT_EQ(tag.kind, Element::kTag);
  EXPECT_EQ(tag.GetValue<int>(), 12);
  EXPECT_DOUBLE_EQ(TagWithData("d", 2.5).GetValue<double>(), 2.5);
  EXPECT_EQ(Data(17).GetValue<long>(), 17);
  EXPECT_EQ(Tag("none").GetValue<int>(), 0);
  EXPECT_EQ(TagWithData("bad", "abc").GetValue<int>(), 0);
}

TEST(ElementTest, AssignCopiesAndReplaces) {
  Element source;
  ASSERT_EQ(source.ParseText("<a x='1'><b><c>t</c></b></a>"), kParsed);
  Element target;
  ASSERT_EQ(target.ParseText("<old y='2'><z/></old>"), kParsed);
  target.Assign(source);
  EXPECT_EQ(target.Write("", ""), source.Write("", ""));
  source.children.clear();
  EXPECT_EQ(target.GetChild("b").GetChild("c").GetText(), "t");
}

TEST(ElementTest, AssignFromOwnSubtreeIsSafe) {
  Element element;
  ASSERT_EQ(element.ParseText("<a><b k='v'><c/></b></a>"), kParsed);
  element.Assign(*element.children[0]);
  EXPECT_EQ(element.Write("", ""), "<b k=\"v\"><c/></b>");
}

TEST(ElementTest, MoveLeavesTheSourceUsable) {
  Element source;
  ASSERT_EQ(source.ParseText("<a><b/></a>"), kParsed);
  Element moved(std::move(source));
  EXPECT_EQ(moved.Write("", ""), "<a><b/></a>");
  source = moved;
  EXPECT_EQ(source.Write("", ""), "<a><b/></a>");
}

}  // namespace
}  // namespace vuk::util::xml
