#include <cstdio>
#include <filesystem>

#include "app/rgw/commandoptions.h"
#include "app/rgw/commands.h"
#include "app/rgw/helppages.h"
#include "app/rgw/wording.h"
#include "util/atomicfile.h"

namespace vuk::app {

int DocCommand(const Arguments& args) {
  const char* usage =
      "usage: rgw doc FOLDER\n"
      "  Writes the help pages that the desktop app's Help menu opens into FOLDER, made when\n"
      "  missing: index.html, a guide to the app with a table of the tools, and one page for\n"
      "  each tool that can be made, with its nodes, channels, settings and profiles.\n";
  Options options({});
  options.firstArgument = "the folder";
  if (const auto code = options.Read(args, usage, {})) return *code;
  const std::string& folder = options.file;
  // Refused before the tools are made, which takes a while.
  std::error_code made;
  std::filesystem::create_directories(folder, made);
  if (made) return Fail(folder + ": the folder can't be made (" + made.message() + ")");
  Session session;
  std::vector<ToolFacts> tools;
  std::string error;
  for (rgw::core::Plugin* tool : session.library.AllTools()) {
    if (!tool->IsCreatable()) continue;
    tools.emplace_back();
    if (!GatherTool(session, *tool, tools.back(), error)) return Fail(error);
  }
  for (const ToolFacts& tool : tools) {
    if (!util::AtomicFile::Replace(folder + "/" + tool.helpFileName, ToolPage(tool), &error)) return Fail(error);
  }
  if (!util::AtomicFile::Replace(folder + "/index.html", IndexPage(tools, RGW_VERSION), &error)) return Fail(error);
  std::printf("index.html and the pages of %s, written to %s\n", Counted(tools.size(), "tool").c_str(),
              folder.c_str());
  return 0;
}

}  // namespace vuk::app
