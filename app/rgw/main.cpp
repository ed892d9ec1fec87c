// The rgw command line of the product, on the embedded scene host.
#include <malloc.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

#include "app/rgw/commands.h"

namespace vuk::app {

bool WantsHelp(const Arguments& args) {
  for (const std::string& arg : args) {
    if (arg == "--help" || arg == "-h") return true;
  }
  return false;
}

int Usage(const Arguments& args, const char* text) {
  const bool asked = WantsHelp(args);
  std::fputs(text, asked ? stdout : stderr);
  return asked ? 0 : 2;
}

}  // namespace vuk::app

namespace {

int Help(int code) {
  std::fprintf(code == 0 ? stdout : stderr,
               "usage: rgw COMMAND [ARGUMENTS]\n"
               "  tools [NAME]           the tools that can be made; with a name, that tool's\n"
               "                         nodes, channels with their bindings, values and profiles\n"
               "  scene show FILE        what a scene file holds\n"
               "  scene demo OUT         writes a small demo scene\n"
               "  create FILE --tool NAME --out OUT [--link TOOLNODE=SCENENODE]... [--keep-offset]\n"
               "                         makes a tool in a scene and saves it there; a linked\n"
               "                         node goes onto its scene node unless --keep-offset\n"
               "  run FILE --out OUT [--tool NAME ...] [--from S] [--to S]\n"
               "                         simulates the scene's tools and writes the keys\n"
               "  set FILE --instance NAME --value LABEL=NUMBER --out OUT\n"
               "  bind FILE --instance NAME --profile PROFILE --out OUT\n"
               "  take FILE --instance NAME --csv TAKE.csv --out OUT [--merge]\n"
               "  model FILE --instance NAME --out MODEL.prm     saves a tool as a pre-rigged model\n"
               "  create FILE --prm MODEL.prm --out OUT         makes the model's tools in a scene\n"
               "  layout show FILE --png OUT, layout page --png OUT\n"
               "                         renders a window to a picture\n"
               "  view FILE --png OUT [--time T] [--camera NODE] [--width W] [--height H]\n"
               "                         draws the scene as the viewport shows it\n"
               "  record FILE --seconds N --out OUT [--speed S] [--instance NAME]... [--channel NAME]...\n"
               "                         records a take live from the bound joysticks, no window\n"
               "  recover FILE --out OUT the take a recording cut short left beside FILE\n"
               "  gui [FILE]             the desktop app, with the scene FILE when given\n"
               "  doc FOLDER             writes the help pages of the app and of each tool\n"
               "Commands that write a scene take --fps N: the frame rate of its keys, which is\n"
               "otherwise the file's own.\n"
               "Each command takes --help and ends with a line saying what it did;\n"
               "--version says which rgw this is. The log is in the user folder (see README).\n");
  return code;
}

int Dispatch(const vuk::app::Arguments& args) {
  if (args.empty()) return Help(2);
  const vuk::app::Arguments rest(args.begin() + 1, args.end());
  const std::string& command = args[0];
  if (command == "--help" || command == "-h" || command == "help") return Help(0);
  if (command == "--version") {
    std::printf("rgw %s\n", RGW_VERSION);
    return 0;
  }
  if (command == "tools") return vuk::app::ToolsCommand(rest);
  if (command == "scene") return vuk::app::SceneCommand(rest);
  if (command == "run") return vuk::app::RunCommand(rest);
  if (command == "create") return vuk::app::CreateCommand(rest);
  if (command == "set") return vuk::app::SetCommand(rest);
  if (command == "take") return vuk::app::TakeCommand(rest);
  if (command == "bind") return vuk::app::BindCommand(rest);
  if (command == "model") return vuk::app::ModelCommand(rest);
  if (command == "layout") return vuk::app::LayoutCommand(rest);
  if (command == "view") return vuk::app::ViewCommand(rest);
  if (command == "record") return vuk::app::RecordCommand(rest);
  if (command == "recover") return vuk::app::RecoverCommand(rest);
  if (command == "gui") return vuk::app::GuiCommand(rest);
  if (command == "doc") return vuk::app::DocCommand(rest);
  std::fprintf(stderr, "rgw: no command \"%s\"\n", command.c_str());
  return Help(2);
}

// What a command printed is part of its answer: output that didn't reach
// its file or pipe (a full disk) fails the command.
int Finished(int code) {
  const bool flushed = std::fflush(stdout) == 0;
  if (flushed && !std::ferror(stdout)) return code;
  // A write that failed earlier left no reason behind.
  const std::string reason = flushed ? "" : std::string(" (") + std::strerror(errno) + ")";
  std::fprintf(stderr, "rgw: the output can't be written%s\n", reason.c_str());
  return code ? code : 1;
}

}  // namespace

int main(int argc, char** argv) {
  // Opening a scene of long takes allocates and frees blocks of megabytes,
  // one tool after another and on several threads. glibc would hand each
  // back to the system and fault in fresh pages for the next; kept in one
  // heap (blocks up to 32 MB, the most it allows) they are reused, which
  // makes such a scene open a tenth faster. rgw exits after one command, so
  // holding on to freed memory costs nothing.
  mallopt(M_ARENA_MAX, 1);
  mallopt(M_MMAP_THRESHOLD, 32 << 20);
  mallopt(M_TRIM_THRESHOLD, 1 << 30);
  return Finished(Dispatch(vuk::app::Arguments(argv + 1, argv + argc)));
}
