#include "core/configadaptor/elements.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "gui/builder.h"
#include "gui/component/controls.h"

namespace vuk::rgw::core::configadaptor {
namespace {

// Records each change together with the variable's value at that moment.
class Recorder : public CInterface::Callback {
 public:
  void Changed(std::string label) override { changes.push_back(label + "=" + std::to_string(*watched)); }
  double* watched = nullptr;
  std::vector<std::string> changes;
};

// A page as a tool builds it: a group with a spinner, an int spinner, a
// check box, a text box and a combo box.
struct Page {
  Page() {
    recorder.watched = &stiffness;
    auto* group = root.Add(new element::Group(0, "Suspension", "", nullptr));
    group->Add(new element::Spinner(1, "Stiffness", "Spring stiffness", &recorder, &stiffness, 0, 1e6, 0.5, 0));
    group->Add(new element::Spinner_Int(2, "Wheels", "", &recorder, &wheels, 2, 8, 1, 0));
    root.Add(new element::CheckBox(3, "Hide Helpers", "", &recorder, &hide));
    root.Add(new element::TextBox(4, "Note", "", &recorder, &note));
    root.Add(new element::ComboBox(5, "Mode", "", &recorder, &mode, {"Off", "Soft", "Hard"}));
  }
  element::Root root;
  Recorder recorder;
  double stiffness = 0.1;
  std::int32_t wheels = 4;
  bool hide = true;
  std::string note = "a < b & \"c\"";
  std::int32_t mode = 2;
};

TEST(ConfigPage, AProfileReadsBackBitForBit) {
  std::mt19937_64 random(12);
  for (int round = 0; round < 100; ++round) {
    Page page;
    std::uint64_t bits = random();
    std::memcpy(&page.stiffness, &bits, 8);
    if (std::isnan(page.stiffness)) continue;
    page.wheels = static_cast<std::int32_t>(random() % 1000) - 500;
    page.hide = random() % 2;
    page.mode = 1;
    const std::string text = page.root.WriteNamedProfile("Racing").Write();

    Page back;
    util::xml::Element parsed;
    ASSERT_EQ(parsed.ParseText(text), util::xml::kParsed);
    EXPECT_FALSE(back.root.ReadAnyProfile(parsed));
    EXPECT_EQ(std::memcmp(&back.stiffness, &page.stiffness, 8), 0) << text;
    EXPECT_EQ(back.wheels, page.wheels);
    EXPECT_EQ(back.hide, page.hide);
    EXPECT_EQ(back.note, page.note);
    EXPECT_EQ(back.mode, 1);
  }
}

TEST(ConfigPage, ProfileForm) {
  Page page;
  page.stiffness = 0.5;
  EXPECT_EQ(page.root.WriteNamedProfile("Racing").Write("", ""),
            "<configprofile version=\"2.0\" name=\"Racing\"><group id=\"-1\" label=\"Suspension\">"
            "<item id=\"1\" label=\"Stiffness\" type=\"blob\">AAAAAAAA4D8=</item>"
            "<item id=\"2\" label=\"Wheels\">4</item></group><item id=\"3\" label=\"Hide Helpers\">1</item>"
            "<item id=\"4\" label=\"Note\" type=\"text\">a &#60; b &#38; \"c\"</item>"
            "<item id=\"5\" label=\"Mode\">2</item></configprofile>");
}

TEST(ConfigPage, MissingItemsLeaveTheirVariables) {
  Page page;
  util::xml::Element profile;
  profile.ParseText("<configprofile version=\"2.0\"><item id=\"2\">6</item><item id=\"99\">1</item></configprofile>");
  page.root.ReadAnyProfile(profile);
  EXPECT_EQ(page.wheels, 6);
  EXPECT_EQ(page.stiffness, 0.1);
  EXPECT_TRUE(page.hide);
}

TEST(ConfigPage, AnOldProfileIsConverted) {
  Page page;
  util::xml::Element old;
  old.ParseText("<configprofile version=\"1.0\" name=\"Old\"><group label=\"Suspension\">"
                "<spinner id=\"1\">2.5</spinner></group><check id=\"3\">0</check>"
                "<string id=\"4\">hello</string></configprofile>");
  EXPECT_TRUE(page.root.ReadAnyProfile(old));
  EXPECT_EQ(page.stiffness, 2.5);
  EXPECT_FALSE(page.hide);
  EXPECT_EQ(page.note, "hello");
  // A wrapped current profile is unwrapped, not converted.
  util::xml::Element wrapped;
  wrapped.ParseText("<configprofile><configprofile version=\"2.0\"><item id=\"2\">3</item></configprofile>"
                    "</configprofile>");
  EXPECT_FALSE(page.root.ReadAnyProfile(wrapped));
  EXPECT_EQ(page.wheels, 3);
}

TEST(ConfigPage, LayoutHasTheLiteralForms) {
  Page page;
  const util::xml::Element layout = page.root.BuildLayout();
  EXPECT_EQ(layout.name, "scroll");
  const util::xml::Element& group = layout.GetChild("list").GetChild("group");
  const util::xml::Element& outer = group.GetChild("list");
  EXPECT_EQ(outer.GetAttribute("padding"), "5 0 0 0");
  EXPECT_EQ(outer.GetAttribute("desiredwidth"), "500");
  EXPECT_EQ(outer.GetChild("label").GetAttribute("label"), "Suspension");
  EXPECT_EQ(outer.GetChild("border").GetAttribute("padding"), "0 15 0 0");
  const util::xml::Element& rows = outer.GetChild("border").GetChild("list");
  EXPECT_EQ(rows.GetAttribute("id"), "1");
  const util::xml::Element& spinner = rows.GetChild("list", 0).GetChild("spinner");
  EXPECT_EQ(spinner.GetAttribute("max"), "1e+06");
  EXPECT_EQ(rows.GetChild("list", 1).GetChild("spinner").GetAttribute("decimals"), "0");
  EXPECT_EQ(layout.GetChild("list").GetChild("list", 0).GetChild("checkbox").GetAttribute("defaultstate"), "true");
}

TEST(ConfigPage, AControlChangeWritesTheVariableBeforeTheToolHears) {
  Page page;
  std::unique_ptr<gui::Component> view = gui::BuildComponent(page.root.BuildLayout());
  ASSERT_NE(view, nullptr);
  page.root.AttachView(view.get());
  auto* spinner = dynamic_cast<gui::component::Spinner*>(Node::FindControlIn(*view, 1));
  ASSERT_NE(spinner, nullptr);
  EXPECT_EQ(spinner->value, 0.1);
  spinner->ChangeValue(42.0);
  EXPECT_EQ(page.stiffness, 42.0);
  ASSERT_EQ(page.recorder.changes.size(), 1u);
  EXPECT_EQ(page.recorder.changes[0], "Stiffness=42.000000");
  // Code's change to the variable reaches the control through UpdateViews.
  page.stiffness = 7;
  page.root.UpdateViews();
  EXPECT_EQ(spinner->value, 7.0);
  page.root.DetachView(view.get());
  spinner->ChangeValue(1.0);
  EXPECT_EQ(page.stiffness, 7.0);
}

TEST(ConfigPage, WithoutAViewValuesGoByIdOnly) {
  Page page;
  EXPECT_TRUE(page.root.SetValueById(2, 6.0));
  EXPECT_EQ(page.wheels, 6);
  double value = 0;
  EXPECT_TRUE(page.root.GetValueById(3, value));
  EXPECT_EQ(value, 1.0);
  EXPECT_FALSE(page.root.SetValueById(77, 1.0));
  page.root.UpdateViews();
  // Labels have ids of their own count: one that shares a control's id and
  // comes first leaves the control to be found.
  element::Root labelled;
  std::int32_t gears = 4;
  labelled.Add(new element::Label(0, "Gearbox", 0));
  labelled.Add(new element::Spinner_Int(0, "Gears", "", nullptr, &gears, 1, 8, 1, 0));
  EXPECT_TRUE(labelled.SetValueById(0, 6.0));
  EXPECT_TRUE(labelled.GetValueById(0, value));
  EXPECT_EQ(value, 6.0);
  EXPECT_EQ(gears, 6);
}

}  // namespace
}  // namespace vuk::rgw::core::configadaptor
