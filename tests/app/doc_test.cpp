// The help pages: `rgw doc` writes one per tool the main window offers, at
// the name its Help menu opens, each naming the tool's channels and every
// item of its configuration page; and the escaping that every text goes
// through.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "app/rgw/helppages.h"
#include "app/rgw/session.h"
#include "core/configadaptor/node.h"
#include "tests/app/rgwprogram.h"

namespace vuk::app {
namespace {

std::string Read(const std::string& path) {
  std::ifstream file(path);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

// Every label of the page below `node`, groups and notes included.
void Labels(rgw::core::configadaptor::Node& node, std::vector<std::string>& labels) {
  for (std::size_t i = 0; i < node.GetChildCount(); ++i) {
    rgw::core::configadaptor::Node& child = *node.GetChild(i);
    if (!child.label.empty()) labels.push_back(child.label);
    Labels(child, labels);
  }
}

TEST(HelpPages, EscapeHtmlWritesMarkupCharactersAsEntities) {
  const struct {
    const char* text;
    const char* escaped;
  } cases[] = {{"plain words", "plain words"},
               {"a < b > c", "a &lt; b &gt; c"},
               {"Salt & Pepper", "Salt &amp; Pepper"},
               {"say \"hi\"", "say &quot;hi&quot;"},
               {"&lt;", "&amp;lt;"},
               {"<a href=\"x\">", "&lt;a href=&quot;x&quot;&gt;"}};
  for (const auto& c : cases) EXPECT_EQ(EscapeHtml(c.text), c.escaped) << c.text;
}

TEST(HelpPages, DocWritesThePageOfEachCreatableToolWhereTheHelpMenuLooks) {
  const std::string folder = testing::TempDir() + "/rgw_doc/pages";
  std::filesystem::remove_all(folder);
  const Ran ran = Rgw("doc " + folder);
  ASSERT_EQ(ran.code, 0) << ran.output;
  EXPECT_EQ(ran.output.substr(ran.output.rfind(", written to ")), ", written to " + folder + "\n");
  const std::string index = Read(folder + "/index.html");
  EXPECT_NE(index.find("Create New Group"), std::string::npos);
  Session session;
  int pages = 0;
  for (rgw::core::Plugin* tool : session.library.AllTools()) {
    if (!tool->IsCreatable()) continue;
    ++pages;
    const std::string page = Read(folder + "/" + tool->GetHelpFileName());
    ASSERT_FALSE(page.empty()) << tool->GetHelpFileName();
    EXPECT_NE(index.find("<a href=\"" + tool->GetHelpFileName() + "\">"), std::string::npos) << tool->ToolName();
    rgw::core::InstanceReference* item = session.tools.Create(tool->ToolName());
    ASSERT_NE(item, nullptr) << tool->ToolName();
    for (const auto& channel : item->instance->Channels()) {
      EXPECT_NE(page.find("<td>" + EscapeHtml(channel.name) + "</td>"), std::string::npos) << channel.name;
    }
    std::vector<std::string> labels;
    Labels(*item->instance->GetPage(), labels);
    for (const std::string& label : labels) {
      EXPECT_NE(page.find(">" + EscapeHtml(label)), std::string::npos) << tool->ToolName() << ": " << label;
    }
  }
  EXPECT_GT(pages, 0);
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), pages + 1);
}

TEST(HelpPages, DocSaysWhatIsWrongWithItsArguments) {
  const std::string folder = testing::TempDir() + "/rgw_doc/refused";
  std::filesystem::remove_all(folder);
  std::filesystem::create_directories(folder);
  std::ofstream(folder + "/file") << "not a folder";
  const struct {
    std::string arguments;
    int code;
    std::string said;
  } cases[] = {{"--help", 0, "usage: rgw doc FOLDER\n"},
               {"", 2, "rgw: the folder comes first\nusage: rgw doc FOLDER\n"},
               {folder + " --pdf", 2, "rgw: unknown option --pdf\nusage: rgw doc FOLDER\n"},
               {folder + "/file/doc", 1, "rgw: " + folder + "/file/doc: the folder can't be made (Not a directory)\n"}};
  for (const auto& c : cases) {
    const Ran ran = Rgw("doc " + c.arguments);
    EXPECT_EQ(ran.code, c.code) << c.arguments;
    EXPECT_EQ(ran.output.substr(0, c.said.size()), c.said) << c.arguments;
  }
  EXPECT_FALSE(std::filesystem::exists(folder + "/index.html"));
}

}  // namespace
}  // namespace vuk::app
