#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <optional>

#include "app/rgw/commands.h"
#include "app/rgw/session.h"
#include "core/prmfile.h"
#include "core/takefile.h"
#include "scenes/samplescene.h"
#include "util/xml/element.h"

namespace vuk::app {

namespace {

using rgw::adaptor::standalone::ObjectKind;
using rgw::adaptor::standalone::SceneNode;

int Fail(const std::string& message) {
  std::fprintf(stderr, "rgw: %s\n", message.c_str());
  return 1;
}


const char* KindName(ObjectKind kind) {
  switch (kind) {
    case ObjectKind::kEmpty: return "empty";
    case ObjectKind::kHelper: return "helper";
    case ObjectKind::kMesh: return "mesh";
    case ObjectKind::kCamera: return "camera";
    case ObjectKind::kShape: return "shape";
    case ObjectKind::kLight: return "light";
  }
  return "?";
}

// "--name value" options after the file; repeated ones are kept in order.
// A command's arguments: the scene file, then "--name value" pairs of the
// options the command knows.
struct Options {
  explicit Options(std::initializer_list<const char*> knownOptions) : known(knownOptions.begin(), knownOptions.end()) {}

  // Nothing to go on; else the usage asked for, or what is wrong with the
  // arguments (exit 2): an unknown option, a value or a required option missing.
  std::optional<int> Read(const Arguments& args, const char* usage, std::initializer_list<const char*> required) {
    if (WantsHelp(args)) return Usage(args, usage);
    if (args.empty() || args[0].rfind("--", 0) == 0) return Misuse("the scene file comes first", usage);
    file = args[0];
    for (std::size_t i = 1; i < args.size(); i += 2) {
      if (args[i].rfind("--", 0) != 0) return Misuse("\"" + args[i] + "\" is not an option", usage);
      const std::string name = args[i].substr(2);
      if (std::find(known.begin(), known.end(), name) == known.end()) return Misuse("unknown option " + args[i], usage);
      if (i + 1 >= args.size()) return Misuse(args[i] + " wants a value", usage);
      values.emplace(name, args[i + 1]);
    }
    for (const char* name : required) {
      if (!values.count(name)) return Misuse(std::string("--") + name + " is missing", usage);
    }
    return std::nullopt;
  }
  std::string Get(const std::string& name, const std::string& fallback = "") const {
    const auto found = values.find(name);
    return found == values.end() ? fallback : found->second;
  }

  std::vector<std::string> known;
  std::string file;
  std::multimap<std::string, std::string> values;

 private:
  static int Misuse(const std::string& problem, const char* usage) {
    std::fprintf(stderr, "rgw: %s\n%s", problem.c_str(), usage);
    return 2;
  }
};

std::string Seconds(double seconds) {
  char text[32];
  std::snprintf(text, sizeof text, "%g s", seconds);
  return text;
}

// The whole text as a number; false with the reason in `error`.
bool ReadNumber(const std::string& text, double& value, std::string& error) {
  char* end = nullptr;
  value = std::strtod(text.c_str(), &end);
  if (!text.empty() && *end == '\0' && std::isfinite(value)) return true;
  error = "\"" + text + "\" is not a number";
  return false;
}

// Opens the command's scene; --fps, when given, replaces the frame rate the
// file has, for the keys a run writes and for the file written.
std::optional<int> OpenScene(const Options& options, Session& session) {
  std::string error;
  if (!session.Open(options.file, error)) return Fail(error);
  if (!options.values.count("fps")) return std::nullopt;
  double fps = 0;
  if (!ReadNumber(options.Get("fps"), fps, error)) return Fail("--fps: " + error);
  if (fps < 1 || fps > 4800 || fps != std::floor(fps)) return Fail("--fps " + options.Get("fps") + ": a whole number of frames per second from 1 to 4800");
  session.host.GetScene().clock.SetFrameRate(static_cast<std::int32_t>(fps));
  return std::nullopt;
}

// Makes the tool named by --tool, when there is one, and links its nodes.
int CreateTool(Session& session, const Options& options, rgw::core::Instance*& made) {
  made = nullptr;
  const std::string toolName = options.Get("tool");
  if (toolName.empty()) return 0;
  if (!session.library.FindTool(toolName)) return Fail("no tool is called \"" + toolName + "\"; 'rgw tools' lists them");
  rgw::core::InstanceReference* item = session.tools.Create(toolName, options.Get("name"));
  if (!item) return Fail("the tool \"" + toolName + "\" could not be made");
  made = item->instance.get();
  const auto links = options.values.equal_range("link");
  for (auto it = links.first; it != links.second; ++it) {
    const std::size_t equals = it->second.find('=');
    if (equals == std::string::npos) return Fail("--link wants TOOLNODE=SCENENODE, not \"" + it->second + "\"");
    std::string error;
    if (!session.Link(*made, it->second.substr(0, equals), it->second.substr(equals + 1), error)) return Fail(error);
  }
  return 0;
}

// Parses a command's options, opens its scene and finds the tool named by
// --instance. Answers nothing to go on, else the exit code: help asked for
// ends the command as well as an error does.
std::optional<int> OpenTool(const Arguments& args, const char* usage, std::initializer_list<const char*> required,
                            Options& options, Session& session, rgw::core::InstanceReference*& item) {
  if (const auto code = options.Read(args, usage, required)) return code;
  if (const auto code = OpenScene(options, session)) return code;
  item = session.tools.Find(options.Get("instance"));
  if (!item) return Fail(options.file + ": no tool \"" + options.Get("instance") + "\"");
  return std::nullopt;
}

std::string Joined(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) text += (text.empty() ? "" : ", ") + name;
  return text.empty() ? "(none)" : text;
}

// What the other commands take for a tool: node names for --link, channel
// names for a take, value labels with their ranges for set, profiles for bind.
int DescribeTool(const std::string& toolName) {
  Session session;
  rgw::core::Plugin* tool = session.library.FindTool(toolName);
  if (!tool) return Fail("no tool is called \"" + toolName + "\"; 'rgw tools' lists them");
  rgw::core::InstanceReference* item = session.tools.Create(toolName);
  if (!item) return Fail("the tool \"" + toolName + "\" could not be made");
  const rgw::core::Instance& instance = *item->instance;
  std::printf("%s: %s (%s)\n", tool->ToolName().c_str(), tool->plugin->GetTitle().c_str(),
              tool->plugin->GetCategory().c_str());
  std::printf("nodes: %s\n", Joined(instance.NodeNames()).c_str());
  std::vector<std::string> channels;
  for (const auto& channel : instance.Channels()) channels.push_back(channel.name);
  std::printf("channels: %s\n", Joined(channels).c_str());
  std::printf("values:\n");
  for (const auto& value : instance.Values()) {
    std::printf("  %s = %g (%s %g to %g)\n", value.label.c_str(), value.value, value.whole ? "whole" : "from",
                value.minimum, value.maximum);
  }
  std::printf("config profiles: %s\n", Joined(tool->ConfigProfiles().Names()).c_str());
  std::printf("input profiles: %s\n", Joined(tool->InputProfiles().Names()).c_str());
  return 0;
}

}  // namespace

int ToolsCommand(const Arguments& args) {
  if (WantsHelp(args) || args.size() > 1) {
    return Usage(args,
        "usage: rgw tools          the tools that can be made, with their title and category\n"
        "       rgw tools NAME     one tool: its nodes, channels, values with their ranges, and profiles\n");
  }
  if (args.size() == 1) return DescribeTool(args[0]);
  rgw::core::LibraryManager library(rgw::addon::BuiltInTools());
  library.ScanPluginFolders();
  for (const rgw::core::Plugin* tool : library.AllTools()) {
    std::printf("%-20s %-24s %s\n", tool->ToolName().c_str(), tool->plugin->GetTitle().c_str(),
                tool->plugin->GetCategory().c_str());
  }
  return 0;
}

int SceneCommand(const Arguments& args) {
  const char* usage =
      "usage: rgw scene show FILE     what a scene holds: nodes, kinds, keys, tools\n"
      "       rgw scene demo OUT      writes a small demo scene (a car driving, a camera)\n";
  if (args.size() != 2 || WantsHelp(args)) return Usage(args, usage);
  Session session;
  std::string error;
  if (args[0] == "demo") {
    vuk::scenes::BuildSampleScene(session.host.GetScene());
    return session.Save(args[1], error) ? 0 : Fail(error);
  }
  if (args[0] != "show") return Usage(args, usage);
  if (!session.Open(args[1], error)) return Fail(error);
  std::vector<std::pair<const SceneNode*, int>> pending{{&session.host.GetScene().Root(), -1}};
  while (!pending.empty()) {
    const auto [node, depth] = pending.back();
    pending.pop_back();
    if (depth >= 0) {
      std::printf("%s%s (%s)", std::string(2 * static_cast<std::size_t>(depth), ' ').c_str(), node->hostName.c_str(),
                  KindName(node->kind));
      const auto& keys = node->track.Keys();
      if (!keys.empty()) {
        // Where the node goes over its keys, in its parent's frame.
        const auto& from = keys.front().position;
        const auto& to = keys.back().position;
        std::printf("  %zu keys, %.3f s to %.3f s, local (%.3f, %.3f, %.3f) to (%.3f, %.3f, %.3f)", keys.size(),
                    rgw::adaptor::standalone::SecondsFromTicks(keys.front().tick),
                    rgw::adaptor::standalone::SecondsFromTicks(keys.back().tick), from.x, from.y, from.z, to.x, to.y,
                    to.z);
      }
      if (!node->visible) std::printf("  [hidden]");
      std::printf("\n");
    }
    for (auto it = node->children.rbegin(); it != node->children.rend(); ++it) pending.emplace_back(*it, depth + 1);
  }
  for (const auto& weights : session.File().WeightsAnimations()) {
    std::printf("weights of %s in clip \"%s\": %zu keys, %.3f s to %.3f s\n", weights.node.c_str(), weights.clip.c_str(),
                weights.keys, weights.from, weights.to);
  }
  for (const rgw::core::Instance* instance : session.tools.AllInstances()) {
    const std::vector<rgw::core::Instance::Channel> channels = instance->Channels();
    std::printf("tool %s (%s): %zu channels, %zu recorded tracks\n", instance->InstanceName().c_str(),
                instance->GetToolPlugin()->GetName().c_str(), channels.size(), instance->RecordedTracks().size());
    // The channels that are bound or hold a take: what a later run will read.
    for (const auto& channel : channels) {
      if (channel.boundTo.empty() && !channel.take) continue;
      std::printf("  channel %s:", channel.name.c_str());
      if (!channel.boundTo.empty()) std::printf(" bound to \"%s\"", channel.boundTo.c_str());
      if (channel.take) {
        const auto& samples = channel.take->records;
        std::printf("%s take of %zu samples, %.3f s to %.3f s", channel.boundTo.empty() ? "" : ",", samples.size(),
                    samples.front().time, samples.back().time);
      }
      std::printf("\n");
    }
  }
  return 0;
}

int CreateCommand(const Arguments& args) {
  const char* usage =
      "usage: rgw create FILE --tool NAME --out OUT [--name INSTANCE] [--link TOOLNODE=SCENENODE]...\n"
      "       rgw create FILE --prm MODEL.prm --out OUT\n"
      "  Makes a tool (or the tools of a pre-rigged model) in the scene and saves the scene with it.\n";
  Options options{"tool", "name", "link", "prm", "out", "fps"};
  if (const auto code = options.Read(args, usage, {"out"})) return *code;
  const bool fromModel = options.values.count("prm") != 0;
  if (fromModel == (options.values.count("tool") != 0)) return Fail("give either --tool or --prm");
  Session session;
  std::string error;
  if (const auto code = OpenScene(options, session)) return *code;
  if (fromModel) {
    vuk::util::xml::Element tree;
    if (!rgw::core::LoadPrmFile(options.Get("prm"), tree, &error)) return Fail(error);
    const int made = session.tools.LoadToolTree(tree);
    if (!session.Save(options.Get("out"), error)) return Fail(error);
    std::fprintf(stderr, "rgw: made %d tools from %s in %s\n", made, options.Get("prm").c_str(), options.Get("out").c_str());
    return 0;
  }
  rgw::core::Instance* made = nullptr;
  if (const int failed = CreateTool(session, options, made)) return failed;
  if (!session.Save(options.Get("out"), error)) return Fail(error);
  std::fprintf(stderr, "rgw: made %s in %s\n", made->InstanceName().c_str(), options.Get("out").c_str());
  return 0;
}

int ModelCommand(const Arguments& args) {
  const char* usage =
      "usage: rgw model FILE --instance NAME --out MODEL.prm\n"
      "  Saves a tool of the scene, with the tools below it, as a pre-rigged model.\n";
  Options options{"instance", "out"};
  Session session;
  rgw::core::InstanceReference* item = nullptr;
  if (const auto code = OpenTool(args, usage, {"instance", "out"}, options, session, item)) return *code;
  std::string error;
  return rgw::core::SavePrmFile(options.Get("out"), item->Serialize(0), &error) ? 0 : Fail(error);
}

int RunCommand(const Arguments& args) {
  const char* usage =
      "usage: rgw run FILE --out OUT [--tool NAME [--link TOOLNODE=SCENENODE]...] [--from S] [--to S] [--fps N]\n"
      "  Simulates the scene's checked tools (and a new one when --tool is given) over the range,\n"
      "  by default from 0 to the end of the scene's keys or of the tools' takes, whichever is later,\n"
      "  and writes the scene with the keys, at the scene's frame rate or N frames per second.\n";
  Options options{"tool", "name", "link", "from", "to", "out", "fps"};
  if (const auto code = options.Read(args, usage, {"out"})) return *code;
  std::string error;
  double from = 0, to = 0;
  if (!ReadNumber(options.Get("from", "0"), from, error)) return Fail("--from: " + error);
  if (options.values.count("to") && !ReadNumber(options.Get("to"), to, error)) return Fail("--to: " + error);
  // Key times in a scene file start at zero.
  if (from < 0) return Fail("--from " + options.Get("from") + ": a run starts at 0 s or later");
  Session session;
  if (const auto code = OpenScene(options, session)) return *code;
  rgw::core::Instance* made = nullptr;
  if (const int failed = CreateTool(session, options, made)) return failed;
  if (session.tools.CheckedInstances().empty()) return Fail(options.file + ": no tool to simulate");
  if (!options.values.count("to")) to = session.DefaultEnd();
  if (to < from) return Fail("the range ends at " + Seconds(to) + ", before it starts at " + Seconds(from));
  session.Resimulate(from, to);
  if (!session.Save(options.Get("out"), error)) return Fail(error);
  std::fprintf(stderr, "rgw: %zu tools simulated over %.3f s to %.3f s, written to %s\n",
               session.tools.CheckedInstances().size(), from, to, options.Get("out").c_str());
  return 0;
}

int SetCommand(const Arguments& args) {
  const char* usage =
      "usage: rgw set FILE --instance NAME --value LABEL=NUMBER... --out OUT\n"
      "  Changes configuration values of a tool in the scene, by their labels ('rgw tools TOOL'\n"
      "  lists them with their ranges).\n";
  Options options{"instance", "value", "out", "fps"};
  Session session;
  rgw::core::InstanceReference* item = nullptr;
  if (const auto code = OpenTool(args, usage, {"instance", "value", "out"}, options, session, item)) return *code;
  std::string error;
  const auto values = options.values.equal_range("value");
  for (auto it = values.first; it != values.second; ++it) {
    const std::size_t equals = it->second.find('=');
    if (equals == std::string::npos) return Fail("--value wants LABEL=NUMBER, not \"" + it->second + "\"");
    double value = 0;
    if (!ReadNumber(it->second.substr(equals + 1), value, error)) return Fail(error);
    if (!item->instance->SetValue(it->second.substr(0, equals), value, error)) return Fail(error);
  }
  return session.Save(options.Get("out"), error) ? 0 : Fail(error);
}

int TakeCommand(const Arguments& args) {
  const char* usage =
      "usage: rgw take FILE --instance NAME --csv TAKE.csv --out OUT\n"
      "  Imports a take into a tool's recorded tracks: a CSV file whose header is \"time\" and\n"
      "  the channel names, one row per sample of the raw values.\n";
  Options options{"instance", "csv", "out", "fps"};
  Session session;
  rgw::core::InstanceReference* item = nullptr;
  if (const auto code = OpenTool(args, usage, {"instance", "csv", "out"}, options, session, item)) return *code;
  rgw::core::Instance* instance = item->instance.get();
  std::string error;
  if (!rgw::core::ImportTakeCsv(options.Get("csv"), *instance, &error)) return Fail(error);
  return session.Save(options.Get("out"), error) ? 0 : Fail(error);
}

int BindCommand(const Arguments& args) {
  const char* usage =
      "usage: rgw bind FILE --instance NAME --profile PROFILE --out OUT\n"
      "  Binds a tool's channels through an input profile: a .cip file, or the name of one of the tool's\n"
      "  profiles (factory or saved by the user). Controls not attached now bind when they come.\n";
  Options options{"instance", "profile", "out", "fps"};
  Session session;
  rgw::core::InstanceReference* item = nullptr;
  if (const auto code = OpenTool(args, usage, {"instance", "profile", "out"}, options, session, item)) return *code;
  std::string error;
  const std::string& given = options.Get("profile");
  vuk::util::xml::Element file;
  const vuk::util::xml::Element* profile = nullptr;
  if (std::filesystem::exists(given)) {
    if (file.Parse(given) != vuk::util::xml::kParsed || file.name != "unidevice") return Fail(given + ": not an input profile");
    profile = &file.GetChild("profile");
  } else {
    // Not a file: a profile the tool has by that name, a factory one or the user's.
    const std::string toolName = item->instance->GetToolPlugin()->GetName();
    rgw::core::Plugin* tool = session.library.FindTool(toolName);
    profile = tool ? tool->InputProfiles().Find(given) : nullptr;
    if (!profile) return Fail("\"" + given + "\" is neither a file nor an input profile of " + toolName);
  }
  item->instance->ApplyInputProfile(*profile);
  return session.Save(options.Get("out"), error) ? 0 : Fail(error);
}

}  // namespace vuk::app
