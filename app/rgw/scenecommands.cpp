#include <QGuiApplication>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <optional>

#include "app/rgw/bindingwords.h"
#include "app/rgw/commandoptions.h"
#include "app/rgw/commands.h"
#include "app/rgw/picture.h"
#include "app/rgw/sceneplot.h"
#include "app/rgw/session.h"
#include "app/rgw/toolfacts.h"
#include "app/rgw/wording.h"
#include "core/prmfile.h"
#include "core/resimulator.h"
#include "core/takefile.h"
#include "core/xmlfilemanager.h"
#include "scenes/drivingscene.h"
#include "scenes/samplescene.h"
#include "util/atomicfile.h"
#include "util/xml/element.h"

namespace vuk::app {

namespace {

using rgw::adaptor::standalone::ObjectKind;
using rgw::adaptor::standalone::SceneNode;
using rgw::adaptor::standalone::Tick;

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

// A lens value's keys on a line of their own, when it has any: how many,
// over what time, and from what value to what.
void PrintLensKeys(const std::string& indent, const char* what, const rgw::adaptor::standalone::ScalarTrack& track,
                   const char* unit) {
  const auto& keys = track.Keys();
  if (keys.empty()) return;
  std::printf("%s%s: %s, %.3f s to %.3f s, %.3f to %.3f%s\n", indent.c_str(), what, Counted(keys.size(), "key").c_str(),
              rgw::adaptor::standalone::SecondsFromTicks(keys.front().tick),
              rgw::adaptor::standalone::SecondsFromTicks(keys.back().tick), keys.front().value, keys.back().value, unit);
}

std::vector<std::string> ToolNames(const rgw::core::LibraryManager& library) {
  std::vector<std::string> names;
  for (const rgw::core::Plugin* tool : library.AllTools()) names.push_back(tool->ToolName());
  return names;
}

std::string NoSuchTool(const rgw::core::LibraryManager& library, const std::string& toolName) {
  return "no tool is called \"" + toolName + "\"; the tools are " + Listed(ToolNames(library));
}

std::vector<std::string> ChannelNames(const rgw::core::Instance& instance) {
  std::vector<std::string> names;
  for (const auto& channel : instance.Channels()) names.push_back(channel.name);
  return names;
}

// What a tool's bound channels are bound to: "1 channel of Tool_01: Position
// to Up and Down keys".
std::string Bindings(const rgw::core::Instance& instance) {
  std::vector<std::string> bindings;
  for (std::size_t i = 0; i < instance.Inputs().Count(); ++i) {
    const unidevice::Property& channel = *instance.Inputs().Get(i);
    const std::string words = BindingWords(channel.config);
    if (!words.empty()) bindings.push_back(channel.name + " to " + words);
  }
  return Counted(bindings.size(), "channel") + " of " + instance.InstanceName() +
         (bindings.empty() ? "" : ": " + Listed(bindings));
}

// Splits "LEFT=RIGHT" as an option's value; false with what it wants.
bool ReadPair(const std::string& option, const std::string& value, const char* form, std::string& left,
              std::string& right, std::string& error) {
  const std::size_t equals = value.find('=');
  if (equals == std::string::npos) {
    error = "--" + option + " wants " + form + ", not \"" + value + "\"";
    return false;
  }
  left = value.substr(0, equals);
  right = value.substr(equals + 1);
  return true;
}

// "X,Y,Z" as an offset; false with what --move wants.
bool ReadOffset(const std::string& text, util::Vector3<double>& offset, std::string& error) {
  int used = 0;
  const bool read = std::sscanf(text.c_str(), "%lf,%lf,%lf%n", &offset.x, &offset.y, &offset.z, &used) == 3 &&
                    static_cast<std::size_t>(used) == text.size() && std::isfinite(offset.x) &&
                    std::isfinite(offset.y) && std::isfinite(offset.z);
  if (!read) error = "--move wants three numbers X,Y,Z, not \"" + text + "\"";
  return read;
}

// A profile to apply: a file of its kind, else one of the tool's own by
// that name (a factory one or the user's); null with the reason.
const vuk::util::xml::Element* FindProfile(Session& session, const rgw::core::Instance& instance,
                                           const std::string& given, rgw::core::XMLFileManager::Kind kind,
                                           vuk::util::xml::Element& file, std::string& error) {
  const bool input = kind == rgw::core::XMLFileManager::Kind::kInput;
  const char* what = input ? "an input profile" : "a configuration profile";
  if (std::filesystem::exists(given)) {
    const vuk::util::xml::ParseResult parsed = file.Parse(given);
    if (parsed != vuk::util::xml::kParsed) {
      error = given + ": " + XmlProblem(parsed);
      return nullptr;
    }
    if (file.name == (input ? "unidevice" : "configprofile")) return input ? &file.GetChild("profile") : &file;
    error = given + ": not " + std::string(what);
    return nullptr;
  }
  const std::string toolName = instance.GetToolPlugin()->GetName();
  rgw::core::Plugin* tool = session.library.FindTool(toolName);
  rgw::core::XMLFileManager* profiles = !tool ? nullptr : input ? &tool->InputProfiles() : &tool->ConfigProfiles();
  const vuk::util::xml::Element* profile = profiles ? profiles->Find(given) : nullptr;
  if (!profile) {
    error = "\"" + given + "\" is neither a file nor " + what + " of " + toolName + "; its profiles are " +
            Listed(profiles ? profiles->Names() : std::vector<std::string>());
  }
  return profile;
}

// Makes the tool named by --tool, when there is one, moves it, links its
// nodes below scene nodes, puts scene nodes below its nodes and gives its
// helpers solids.
int CreateTool(Session& session, const Options& options, rgw::core::Instance*& made) {
  made = nullptr;
  const std::string toolName = options.Get("tool");
  if (toolName.empty()) return 0;
  if (!session.library.FindTool(toolName)) return Fail(NoSuchTool(session.library, toolName));
  rgw::core::InstanceReference* item = session.tools.Create(toolName, options.Get("name"));
  if (!item) return Fail("the tool \"" + toolName + "\" could not be made");
  made = item->instance.get();
  // Two tools of one name in a file: the next load would make only one.
  if (const Session::KeptTool* kept = session.FindKept(made->InstanceName())) {
    return Fail(Session::Where(*kept) + " is not loaded but has the name " + made->InstanceName() +
                "; give the new tool another with --name");
  }
  std::string error;
  if (options.Has("move")) {
    util::Vector3<double> offset;
    if (!ReadOffset(options.Get("move"), offset, error)) return Fail(error);
    session.Move(*made, offset);
  }
  std::string toolNode, sceneNode;
  const auto links = options.values.equal_range("link");
  for (auto it = links.first; it != links.second; ++it) {
    if (!ReadPair("link", it->second, "TOOLNODE=SCENENODE", toolNode, sceneNode, error) ||
        !session.Link(*made, toolNode, sceneNode, options.Has("keep-offset"), error)) {
      return Fail(error);
    }
  }
  const auto children = options.values.equal_range("child");
  for (auto it = children.first; it != children.second; ++it) {
    if (!ReadPair("child", it->second, "TOOLNODE=SCENENODE", toolNode, sceneNode, error) ||
        !session.Adopt(*made, toolNode, sceneNode, error)) {
      return Fail(error);
    }
  }
  const auto solids = options.values.equal_range("solid");
  for (auto it = solids.first; it != solids.second; ++it) {
    if (!session.Solidify(*made, it->second, error)) return Fail(error);
  }
  return 0;
}

// What the links of a made tool did: ", with TargetMesh on Car and Ramp
// below GravityDirectionMesh".
std::string Linked(const Options& options) {
  std::vector<std::string> links;
  const auto given = options.values.equal_range("link");
  for (auto it = given.first; it != given.second; ++it) {
    std::string link = it->second;
    link.replace(link.find('='), 1, options.Has("keep-offset") ? " linked below " : " on ");
    links.push_back(link);
  }
  const auto children = options.values.equal_range("child");
  for (auto it = children.first; it != children.second; ++it) {
    const std::size_t equals = it->second.find('=');
    links.push_back(it->second.substr(equals + 1) + " below " + it->second.substr(0, equals));
  }
  std::vector<std::string> solids;
  const auto drawn = options.values.equal_range("solid");
  for (auto it = drawn.first; it != drawn.second; ++it) solids.push_back(it->second);
  if (!solids.empty()) links.push_back("solids on " + Listed(solids));
  const std::string moved = options.Has("move") ? ", moved by " + options.Get("move") : "";
  return moved + (links.empty() ? "" : ", with " + Listed(links));
}

// Parses a command's options, opens its scene and finds the tool named by
// --instance. Answers nothing to go on, else the exit code: help asked for
// ends the command as well as an error does.
std::optional<int> OpenTool(const Arguments& args, const char* usage, std::initializer_list<const char*> required,
                            Options& options, Session& session, rgw::core::InstanceReference*& item) {
  if (const auto code = options.Read(args, usage, required)) return code;
  if (const auto code = OpenScene(options, session)) return code;
  item = session.tools.Find(options.Get("instance"));
  if (item) return std::nullopt;
  if (const Session::KeptTool* kept = session.FindKept(options.Get("instance"))) {
    return Fail(Session::Where(*kept) + " is not loaded (" + session.WhyNotLoaded(*kept) +
                "): it stays in the file as it is and can't be changed");
  }
  const std::vector<std::string> names = session.tools.InstanceNames();
  return Fail(options.file + ": no tool \"" + options.Get("instance") + "\"; " +
              (names.empty() ? std::string("it has no tools") : "its tools are " + Listed(names)));
}

// What the other commands take for a tool: node names for --link, channel
// names for a take, value labels with their ranges for set, profiles for bind.
int DescribeTool(const std::string& toolName) {
  Session session;
  rgw::core::Plugin* tool = session.library.FindTool(toolName);
  if (!tool) return Fail(NoSuchTool(session.library, toolName));
  ToolFacts facts;
  std::string error;
  if (!GatherTool(session, *tool, facts, error)) return Fail(error);
  std::printf("%s: %s (%s)\n", facts.name.c_str(), facts.title.c_str(), facts.categories.c_str());
  if (!facts.description.empty()) std::printf("  %s\n", facts.description.c_str());
  if (!facts.credits.empty()) std::printf("  credits: %s\n", facts.credits.c_str());
  std::printf("nodes: %s\n", Listed(facts.nodes).c_str());
  std::printf("channels:%s\n", facts.channels.empty() ? " none" : "");
  for (const ChannelFacts& channel : facts.channels) {
    std::printf("  %s (%s): %s\n", channel.name.c_str(), channel.controls.c_str(), channel.binding.c_str());
  }
  std::printf("values:%s\n", facts.settings.empty() ? " none" : "");
  for (const SettingFacts& setting : facts.settings) {
    const std::string indent(2 * static_cast<std::size_t>(setting.depth + 1), ' ');
    std::string line = setting.label + (setting.group ? ":" : "");
    if (!setting.value.empty()) line += " = " + setting.value;
    if (!setting.range.empty()) line += " (" + setting.range + ")";
    std::printf("%s%s\n", indent.c_str(), line.c_str());
  }
  std::printf("config profiles: %s\n", Listed(facts.configProfiles).c_str());
  std::printf("input profiles: %s\n", Listed(facts.inputProfiles).c_str());
  return 0;
}

// A plot's --from or --to, in seconds of scene time; false with the reason.
bool ReadPlotTime(const Options& options, const std::string& name, double& seconds, std::string& error) {
  if (!ReadNumber(options.Get(name), seconds, error)) {
    error = "--" + name + ": " + error;
    return false;
  }
  if (seconds >= 0 && seconds <= rgw::core::Resimulator::kMaxSceneSeconds) return true;
  error = "--" + name + " " + options.Get(name) + ": a plot lies within 0 s and " +
          Seconds(rgw::core::Resimulator::kMaxSceneSeconds) + " of scene time (a day)";
  return false;
}

// The ticks a node's path covers: without a range, the keys that move the
// node; a range given at one end only is held at that end.
void PlotRange(const Options& options, double from, double to, const rgw::adaptor::standalone::Clock& clock,
               const SceneNode& node, Tick& first, Tick& last) {
  first = last = 0;
  KeySpan(node, first, last);
  if (options.Has("from")) first = clock.TickOf(from);
  if (options.Has("to")) last = clock.TickOf(to);
  if (last < first && options.Has("from")) last = first;
  if (last < first) first = last;
}

int PlotScene(const Arguments& args) {
  const char* usage =
      "usage: rgw scene plot FILE --node NAME... --png OUT [--ground NODE] [--from S] [--to S]\n"
      "  Draws where the nodes go in one picture, from above and from the side: each over its keys\n"
      "  and those of the nodes above it, or from S to S, at the scene's frame rate. A node that\n"
      "  does not move is a dot. With --ground, a node with a mesh, the view from above is shaded\n"
      "  by the ground's height and the side view shows the ground below each path.\n";
  Options options{"node", "png", "ground", "from", "to"};
  if (const auto code = options.Read(args, usage, {"node", "png"})) return *code;
  std::string error;
  double from = 0, to = 0;
  if (options.Has("from") && !ReadPlotTime(options, "from", from, error)) return Fail(error);
  if (options.Has("to") && !ReadPlotTime(options, "to", to, error)) return Fail(error);
  if (options.Has("from") && options.Has("to") && to < from) {
    return Fail("the range ends at " + Seconds(to) + ", before it starts at " + Seconds(from));
  }
  const auto named = options.values.equal_range("node");
  if (static_cast<std::size_t>(std::distance(named.first, named.second)) > kPathColours) {
    return Fail("a plot draws at most " + Counted(kPathColours, "node") + ", each in a colour of its own");
  }
  Session session;
  if (!session.Open(options.file, error)) return Fail(error);
  const rgw::adaptor::standalone::Clock& clock = session.host.GetScene().clock;
  Plot plot;
  std::vector<std::string> names;
  Tick start = 0, end = 0;
  for (auto it = named.first; it != named.second; ++it) {
    const SceneNode* node = FindNode(session, options.file, it->second, error);
    if (!node) return Fail(error);
    Tick pathFrom = 0, pathTo = 0;
    PlotRange(options, from, to, clock, *node, pathFrom, pathTo);
    const Tick frames = (pathTo - pathFrom) / clock.GetTicksPerFrame();
    if (frames > rgw::core::Resimulator::kMaxFrames) {
      return Fail(node->hostName + " over " + Seconds(clock.SecondsOf(pathFrom)) + " to " +
                  Seconds(clock.SecondsOf(pathTo)) + " is " + std::to_string(frames) + " frames; a plot draws at most " +
                  std::to_string(rgw::core::Resimulator::kMaxFrames));
    }
    start = plot.paths.empty() ? pathFrom : std::min(start, pathFrom);
    end = plot.paths.empty() ? pathTo : std::max(end, pathTo);
    plot.paths.push_back(TracePath(*node, PathTicks(*node, clock, pathFrom, pathTo)));
    names.push_back(node->hostName);
  }
  std::unique_ptr<MeshGround> ground;
  if (options.Has("ground")) {
    const SceneNode* node = FindNode(session, options.file, options.Get("ground"), error);
    if (!node) return Fail("--ground: " + error);
    if (node->mesh.faces.empty()) return Fail("--ground " + node->hostName + ": the node has no mesh to stand on");
    // The ground as it stands where the plot starts.
    ground = std::make_unique<MeshGround>(*node, start);
    plot.ground = ground.get();
    plot.groundName = node->hostName;
  }
  plot.title = std::filesystem::path(options.file).filename().string() + ", " + Seconds(clock.SecondsOf(start)) +
               " to " + Seconds(clock.SecondsOf(end));
  DrawOffscreenWithoutDisplay();
  int argc = 1;
  char program[] = "rgw";
  char* argv[] = {program, nullptr};
  QGuiApplication application(argc, argv);
  const QImage picture = DrawPlot(plot);
  if (!SavePng(picture, options.Get("png"), error)) return Fail(error);
  const std::string over = plot.ground ? " over " + plot.groundName : "";
  std::printf("drew %s (%s)%s, %d by %d pixels, written to %s\n", Counted(plot.paths.size(), "path").c_str(),
              Listed(names).c_str(), over.c_str(), picture.width(), picture.height(), options.Get("png").c_str());
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
  Session session;
  for (const rgw::core::Plugin* tool : session.library.AllTools()) {
    std::printf("%-20s %-24s %s\n", tool->ToolName().c_str(), tool->plugin->GetTitle().c_str(),
                tool->plugin->GetCategory().c_str());
  }
  return 0;
}

namespace {

int DemoScene(const Arguments& args, const char* usage) {
  Options options({}, {"terrain"});
  if (const auto code = options.Read(args, usage, {})) return *code;
  Session session;
  if (options.Has("terrain")) {
    vuk::scenes::BuildDrivingScene(session.host.GetScene());
    return SaveAndSay(session, options.file, "made the demo terrain with a ramp");
  }
  vuk::scenes::BuildSampleScene(session.host.GetScene());
  return SaveAndSay(session, options.file, "made the demo scene");
}

}  // namespace

int SceneCommand(const Arguments& args) {
  const char* usage =
      "usage: rgw scene show FILE     what a scene holds: nodes, kinds, keys, lenses, tools\n"
      "       rgw scene demo OUT [--terrain]\n"
      "                               writes a small demo scene (a car driving, a camera); with\n"
      "                               --terrain, the ground to drive on: a rolling terrain with a ramp\n"
      "       rgw scene plot FILE --node NAME... --png OUT [--ground NODE] [--from S] [--to S]\n"
      "                               draws where nodes go, from above and from the side\n";
  if (!args.empty() && args[0] == "plot") return PlotScene(Arguments(args.begin() + 1, args.end()));
  if (!args.empty() && args[0] == "demo") return DemoScene(Arguments(args.begin() + 1, args.end()), usage);
  if (args.size() != 2 || WantsHelp(args)) return Usage(args, usage);
  Session session;
  std::string error;
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
        std::printf("  %s, %.3f s to %.3f s, local (%.3f, %.3f, %.3f) to (%.3f, %.3f, %.3f)", Counted(keys.size(), "key").c_str(),
                    rgw::adaptor::standalone::SecondsFromTicks(keys.front().tick),
                    rgw::adaptor::standalone::SecondsFromTicks(keys.back().tick), from.x, from.y, from.z, to.x, to.y,
                    to.z);
      }
      if (!node->visible) std::printf("  [hidden]");
      std::printf("\n");
      if (node->kind == ObjectKind::kCamera) {
        const std::string indent(2 * static_cast<std::size_t>(depth) + 2, ' ');
        PrintLensKeys(indent, "field of view", node->camera.fovDegrees, " degrees");
        PrintLensKeys(indent, "target distance", node->camera.targetDistance, "");
      }
    }
    for (auto it = node->children.rbegin(); it != node->children.rend(); ++it) pending.emplace_back(*it, depth + 1);
  }
  for (const auto& weights : session.File().WeightsAnimations()) {
    std::printf("weights of %s in clip \"%s\": %zu keys, %.3f s to %.3f s\n", weights.node.c_str(), weights.clip.c_str(),
                weights.keys, weights.from, weights.to);
  }
  for (const rgw::core::Instance* instance : session.tools.AllInstances()) {
    const std::vector<rgw::core::Instance::Channel> channels = instance->Channels();
    std::printf("tool %s (%s): %s, %s\n", instance->InstanceName().c_str(), instance->GetToolPlugin()->GetName().c_str(),
                Counted(channels.size(), "channel").c_str(), Counted(instance->RecordedTracks().size(), "recorded track").c_str());
    // The channels that are bound or hold a take: what a later run will read.
    for (std::size_t i = 0; i < channels.size(); ++i) {
      const auto& channel = channels[i];
      if (channel.boundTo.empty() && !channel.take) continue;
      std::printf("  channel %s:", channel.name.c_str());
      if (!channel.boundTo.empty()) std::printf(" bound to %s", BindingOf(*instance->Inputs().Get(i)).c_str());
      if (channel.take) {
        const auto& samples = channel.take->records;
        std::printf("%s take of %s, %.3f s to %.3f s", channel.boundTo.empty() ? "" : ",",
                    Counted(samples.size(), "sample").c_str(), samples.front().time, samples.back().time);
      }
      std::printf("\n");
    }
  }
  for (const Session::KeptTool& kept : session.host.KeptTools()) {
    std::printf("tool %s: not loaded: %s\n", Session::Named(kept).c_str(), session.WhyNotLoaded(kept).c_str());
  }
  SayUnfinishedTake(args[1]);
  return 0;
}

int CreateCommand(const Arguments& args) {
  const char* usage =
      "usage: rgw create FILE --tool NAME --out OUT [--name INSTANCE] [--move X,Y,Z] [--link TOOLNODE=SCENENODE]...\n"
      "                  [--keep-offset] [--child TOOLNODE=SCENENODE]... [--solid TOOLNODE]...\n"
      "       rgw create FILE --prm MODEL.prm --out OUT\n"
      "  Makes a tool (or the tools of a pre-rigged model) in the scene and saves the scene with it.\n"
      "  --move moves the new tool by X,Y,Z from where it makes itself. A linked node goes onto its\n"
      "  scene node; with --keep-offset it stays where it stands. A child scene node goes below the\n"
      "  tool's node where it stands (a vehicle's GravityDirectionMesh takes its ground so). --solid\n"
      "  hangs a mesh of a helper's shape below it, for viewers that draw no helpers.\n";
  Options options{{"tool", "name", "move", "link", "child", "solid", "prm", "out", "fps"}, {"keep-offset"}};
  if (const auto code = options.Read(args, usage, {"out"})) return *code;
  const bool fromModel = options.Has("prm");
  if (fromModel == options.Has("tool")) return Fail("give either --tool or --prm");
  Session session;
  std::string error;
  if (const auto code = OpenScene(options, session)) return *code;
  if (fromModel) {
    vuk::util::xml::Element tree;
    if (!rgw::core::LoadPrmFile(options.Get("prm"), tree, &error)) return Fail(ModelProblem(options.Get("prm"), error));
    const int made = session.tools.LoadToolTree(tree);
    return SaveAndSay(session, options.Get("out"),
                      "made " + Counted(static_cast<std::size_t>(made), "tool") + " from " + options.Get("prm"));
  }
  rgw::core::Instance* made = nullptr;
  if (const int failed = CreateTool(session, options, made)) return failed;
  return SaveAndSay(session, options.Get("out"), "made " + made->InstanceName() + Linked(options));
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
  if (!rgw::core::SavePrmFile(options.Get("out"), item->Serialize(0), &error)) return Fail(error);
  std::printf("saved %s as the pre-rigged model %s\n", item->instance->InstanceName().c_str(), options.Get("out").c_str());
  return 0;
}

int RunCommand(const Arguments& args) {
  const char* usage =
      "usage: rgw run FILE --out OUT [--tool NAME [--move X,Y,Z] [--link TOOLNODE=SCENENODE]... [--keep-offset]\n"
      "               [--child TOOLNODE=SCENENODE]... [--solid TOOLNODE]...] [--from S] [--to S] [--fps N]\n"
      "  Simulates the scene's checked tools (and a new one when --tool is given) over the range,\n"
      "  by default from 0 to the end of the scene's keys or of the tools' takes, whichever is later,\n"
      "  and writes the scene with the keys, at the scene's frame rate or N frames per second.\n";
  Options options{{"tool", "name", "move", "link", "child", "solid", "from", "to", "out", "fps"}, {"keep-offset"}};
  if (const auto code = options.Read(args, usage, {"out"})) return *code;
  std::string error;
  double from = 0, to = 0;
  if (!ReadNumber(options.Get("from", "0"), from, error)) return Fail("--from: " + error);
  if (options.Has("to") && !ReadNumber(options.Get("to"), to, error)) return Fail("--to: " + error);
  // Key times in a scene file start at zero.
  if (from < 0) return Fail("--from " + options.Get("from") + ": a run starts at 0 s or later");
  Session session;
  if (const auto code = OpenScene(options, session)) return *code;
  rgw::core::Instance* made = nullptr;
  if (const int failed = CreateTool(session, options, made)) return failed;
  if (session.tools.CheckedInstances().empty()) return Fail(options.file + ": no tool to simulate");
  if (!options.Has("to")) to = session.DefaultEnd();
  if (to < from) return Fail("the range ends at " + Seconds(to) + ", before it starts at " + Seconds(from));
  const std::string tooLong =
      rgw::core::Resimulator::RangeProblem(from, to, rgw::core::TimeBase(session.host.GetFrameRate()));
  if (!tooLong.empty()) return Fail(tooLong);
  // A long run must not end in a write error.
  if (!vuk::util::AtomicFile::CanReplace(options.Get("out"), &error)) return Fail(error);
  session.Resimulate(from, to);
  char range[64];
  std::snprintf(range, sizeof range, " simulated over %.3f s to %.3f s: ", from, to);
  std::vector<std::string> kept;
  for (const Session::KeptTool& tool : session.host.KeptTools()) kept.push_back(Session::Where(tool));
  return SaveAndSay(session, options.Get("out"),
                    Counted(session.tools.CheckedInstances().size(), "tool") + range +
                        Counted(session.ToolKeyCount(), "key") + " on their nodes" +
                        (kept.empty() ? "" : "; not loaded and kept as they were: " + Listed(kept)));
}

int SetCommand(const Arguments& args) {
  const char* usage =
      "usage: rgw set FILE --instance NAME [--profile PROFILE] [--value LABEL=NUMBER]... --out OUT\n"
      "  Changes the configuration of a tool in the scene: first the whole of a configuration\n"
      "  profile (a .ccp file, or the name of one of the tool's profiles), then values by their\n"
      "  labels ('rgw tools TOOL' lists them with their ranges and the profiles).\n";
  Options options{"instance", "profile", "value", "out", "fps"};
  Session session;
  rgw::core::InstanceReference* item = nullptr;
  if (const auto code = OpenTool(args, usage, {"instance", "out"}, options, session, item)) return *code;
  if (!options.Has("profile") && !options.Has("value")) {
    std::fprintf(stderr, "rgw: give --profile or --value\n%s", usage);
    return 2;
  }
  rgw::core::Instance& instance = *item->instance;
  std::vector<std::string> labels;
  for (const auto& value : instance.Values()) labels.push_back(value.label);
  std::string error;
  std::vector<std::string> changes;
  std::string profileName;
  if (options.Has("profile")) {
    vuk::util::xml::Element file;
    const vuk::util::xml::Element* profile = FindProfile(session, instance, options.Get("profile"),
                                                         rgw::core::XMLFileManager::Kind::kConfig, file, error);
    if (!profile) return Fail(error);
    instance.ApplyConfigProfile(*profile);
    profileName = "the profile " + options.Get("profile");
  }
  const auto values = options.values.equal_range("value");
  for (auto it = values.first; it != values.second; ++it) {
    const std::size_t equals = it->second.find('=');
    if (equals == std::string::npos) return Fail("--value wants LABEL=NUMBER, not \"" + it->second + "\"");
    const std::string label = it->second.substr(0, equals);
    if (std::find(labels.begin(), labels.end(), label) == labels.end()) {
      return Fail(instance.InstanceName() + " has no value \"" + label + "\"; its values are " + Listed(labels));
    }
    double value = 0;
    if (!ReadNumber(it->second.substr(equals + 1), value, error)) return Fail(error);
    if (!instance.SetValue(label, value, error)) return Fail(error);
    changes.push_back(label + " to " + it->second.substr(equals + 1));
  }
  const std::string then = profileName.empty() || changes.empty() ? "" : ", then ";
  const std::string listed = changes.empty() ? "" : Listed(changes);
  return SaveAndSay(session, options.Get("out"), "set " + profileName + then + listed + " on " + instance.InstanceName());
}

int TakeCommand(const Arguments& args) {
  const char* usage =
      "usage: rgw take FILE --instance NAME --csv TAKE.csv --out OUT [--merge]\n"
      "  Imports a take into a tool's recorded tracks: a CSV file whose header is \"time\" and\n"
      "  the channel names, one row per sample of the raw values. It replaces the tool's take;\n"
      "  with --merge its samples join it, replacing those of the same times.\n";
  Options options{{"instance", "csv", "out", "fps"}, {"merge"}};
  Session session;
  rgw::core::InstanceReference* item = nullptr;
  if (const auto code = OpenTool(args, usage, {"instance", "csv", "out"}, options, session, item)) return *code;
  rgw::core::Instance& instance = *item->instance;
  std::string error;
  const bool merge = options.Has("merge");
  if (!rgw::core::ImportTakeCsv(options.Get("csv"), instance, &error,
                                merge ? rgw::core::TakeImport::kMerge : rgw::core::TakeImport::kReplace)) {
    return Fail(error);
  }
  std::size_t channels = 0, samples = 0;
  for (const auto& channel : instance.Channels()) {
    if (!channel.take) continue;
    ++channels;
    samples = std::max(samples, channel.take->records.size());
  }
  const std::string take = Counted(samples, "sample") + " on " + Counted(channels, "channel");
  return SaveAndSay(session, options.Get("out"),
                    merge ? "merged " + options.Get("csv") + " into the take of " + instance.InstanceName() + ", now " + take
                          : "replaced the take of " + instance.InstanceName() + " with " + take + " from " + options.Get("csv"));
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
  const std::string& given = options.Get("profile");
  vuk::util::xml::Element file;
  std::string error;
  const vuk::util::xml::Element* profile =
      FindProfile(session, *item->instance, given, rgw::core::XMLFileManager::Kind::kInput, file, error);
  if (!profile) return Fail(error);
  // Applying unbinds every channel first: a profile that binds none of them
  // would only take the bindings away.
  const std::vector<std::string> channels = ChannelNames(*item->instance);
  bool bindsOne = false;
  for (std::size_t i = 0, n = profile->CountChildren("property"); i < n; ++i) {
    const std::string channel = profile->GetChild("property", i).GetAttribute("name");
    bindsOne = bindsOne || std::find(channels.begin(), channels.end(), channel) != channels.end();
  }
  if (!bindsOne) {
    const std::string tool = item->instance->InstanceName();
    return Fail("\"" + given + "\" " +
                (profile->CountChildren("property") == 0
                     ? "is empty: it would unbind every channel of " + tool
                     : "names none of the channels of " + tool + "; its channels are " + Listed(channels)));
  }
  item->instance->ApplyInputProfile(*profile);
  return SaveAndSay(session, options.Get("out"), "bound " + Bindings(*item->instance));
}

}  // namespace vuk::app
