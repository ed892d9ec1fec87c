#pragma once
// The commands of the rgw command line. Each takes its own arguments and
// answers an exit code: 0 done, 1 failed (a message on standard error),
// 2 wrong usage.

#include <string>
#include <vector>

namespace vuk::app {

using Arguments = std::vector<std::string>;

int LayoutCommand(const Arguments& args);
int ToolsCommand(const Arguments& args);
int SceneCommand(const Arguments& args);
int RunCommand(const Arguments& args);
int CreateCommand(const Arguments& args);
int SetCommand(const Arguments& args);
int TakeCommand(const Arguments& args);
int BindCommand(const Arguments& args);
int ModelCommand(const Arguments& args);
int ViewCommand(const Arguments& args);
int RecordCommand(const Arguments& args);
int RecoverCommand(const Arguments& args);
// One line about the take journal beside a scene file, when it has one.
void SayUnfinishedTake(const std::string& scenePath);
int GuiCommand(const Arguments& args);
int DocCommand(const Arguments& args);

// True when the arguments ask for help.
bool WantsHelp(const Arguments& args);
// A command's usage: asked for, on standard output with the code 0;
// otherwise, after wrong arguments, on standard error with the code 2.
int Usage(const Arguments& args, const char* text);

}  // namespace vuk::app
