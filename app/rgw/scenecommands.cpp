#include <QCoreApplication>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <thread>

#include "adaptor/standalone/gltffile.h"
#include "adaptor/standalone/standaloneadaptorinterface.h"
#include "adaptor/standalone/standalonenode.h"
#include "app/rgw/commands.h"
#include "core/corelibrary.h"
#include "core/recordmanager.h"
#include "scenes/samplescene.h"

namespace vuk::app {

namespace {

using rgw::adaptor::standalone::GltfFile;
using rgw::adaptor::standalone::ObjectKind;
using rgw::adaptor::standalone::SceneNode;
using rgw::adaptor::standalone::StandaloneAdaptorInterface;

int Fail(const std::string& message) {
  std::fprintf(stderr, "rgw: %s\n", message.c_str());
  return 1;
}

int Usage(const char* text) {
  std::fprintf(stderr, "%s", text);
  return 2;
}

const char* KindName(ObjectKind kind) {
  switch (kind) {
    case ObjectKind::kEmpty: return "empty";
    case ObjectKind::kHelper: return "helper";
    case ObjectKind::kMesh: return "mesh";
    case ObjectKind::kCamera: return "camera";
    case ObjectKind::kShape: return "shape";
  }
  return "?";
}

SceneNode* FindByName(rgw::adaptor::standalone::Scene& scene, const std::string& name) {
  SceneNode* found = nullptr;
  scene.Walk([&](SceneNode& node) {
    if (!found && !node.isRoot && node.hostName == name) found = &node;
  });
  return found;
}

// The tool taking part in a run: all instances are the one.
class OneInstance : public rgw::core::InstanceList {
 public:
  explicit OneInstance(rgw::core::Instance* only) : instance_(only) {}
  std::vector<rgw::core::Instance*> AllInstances() override { return {instance_}; }
  std::vector<rgw::core::Instance*> CheckedInstances() override { return {instance_}; }

 private:
  rgw::core::Instance* instance_;
};

void ShowProgress(const rgw::core::RecordManager& recorder, double fps, std::int64_t elapsedMs) {
  const double first = recorder.startTime * fps, last = recorder.endTime * fps;
  const double current = recorder.startTime * fps + recorder.progress * (last - first);
  const double done = current - first;
  const int left = done > 0 ? static_cast<int>((last - current) / done * elapsedMs / 1000.0) : 0;
  const int width = 30, filled = static_cast<int>(recorder.progress * width);
  std::fprintf(stderr, "\r[%s%s] %3d%%  frame %d of %d  %d:%02d left ", std::string(filled, '#').c_str(),
               std::string(width - filled, '-').c_str(), static_cast<int>(recorder.progress * 100),
               static_cast<int>(current), static_cast<int>(last), left / 60, left % 60);
}

}  // namespace

int ToolsCommand(const Arguments& args) {
  if (WantsHelp(args)) return Usage("usage: rgw tools\n  Lists the tools that can be made, with their title and category.\n");
  rgw::core::CoreLibrary library;
  for (const auto& tool : library.Tools()) {
    std::printf("%-20s %-24s %s\n", tool->ToolName().c_str(), tool->plugin->GetTitle().c_str(),
                tool->plugin->GetCategory().c_str());
  }
  return 0;
}

int SceneCommand(const Arguments& args) {
  const char* usage =
      "usage: rgw scene show FILE     what a scene holds: nodes, kinds, keys\n"
      "       rgw scene demo OUT      writes a small demo scene (a car driving, a camera)\n";
  if (args.size() != 2 || WantsHelp(args)) return Usage(usage);
  StandaloneAdaptorInterface host;
  if (args[0] == "demo") {
    vuk::scenes::BuildSampleScene(host.GetScene());
    GltfFile file;
    std::string error;
    return file.Save(args[1], host.GetScene(), &error) ? 0 : Fail(error);
  }
  if (args[0] != "show") return Usage(usage);
  GltfFile file;
  std::string error;
  if (!file.Load(args[1], host.GetScene(), &error)) return Fail(error);
  std::vector<std::pair<const SceneNode*, int>> pending{{&host.GetScene().Root(), -1}};
  while (!pending.empty()) {
    const auto [node, depth] = pending.back();
    pending.pop_back();
    if (depth >= 0) {
      std::printf("%s%s (%s)", std::string(2 * static_cast<std::size_t>(depth), ' ').c_str(), node->hostName.c_str(),
                  KindName(node->kind));
      const auto& keys = node->track.Keys();
      if (!keys.empty()) {
        std::printf("  %zu keys, %.3f s to %.3f s", keys.size(), rgw::adaptor::standalone::SecondsFromTicks(keys.front().tick),
                    rgw::adaptor::standalone::SecondsFromTicks(keys.back().tick));
      }
      if (node->properties.count("RGT_tag")) std::printf("  [tool tag]");
      if (!node->visible) std::printf("  [hidden]");
      std::printf("\n");
    }
    for (auto it = node->children.rbegin(); it != node->children.rend(); ++it) pending.emplace_back(*it, depth + 1);
  }
  return 0;
}

int RunCommand(const Arguments& args) {
  const char* usage =
      "usage: rgw run FILE --tool NAME --out OUT [--link TOOLNODE=SCENENODE]... [--from S] [--to S]\n"
      "  Makes a tool in the scene, links its nodes below scene nodes, simulates it over the\n"
      "  range (by default the whole keyed range of the scene) and writes the scene with its keys.\n";
  if (args.empty() || WantsHelp(args)) return Usage(usage);
  std::string file = args[0], toolName, out;
  std::vector<std::pair<std::string, std::string>> links;
  double from = 0, to = -1;
  for (std::size_t i = 1; i < args.size(); ++i) {
    if (i + 1 >= args.size()) return Usage(usage);
    const std::string& value = args[i + 1];
    if (args[i] == "--tool") {
      toolName = value;
    } else if (args[i] == "--out") {
      out = value;
    } else if (args[i] == "--from") {
      from = std::atof(value.c_str());
    } else if (args[i] == "--to") {
      to = std::atof(value.c_str());
    } else if (args[i] == "--link" && value.find('=') != std::string::npos) {
      links.emplace_back(value.substr(0, value.find('=')), value.substr(value.find('=') + 1));
    } else {
      return Usage(usage);
    }
    ++i;
  }
  if (toolName.empty() || out.empty()) return Usage(usage);

  StandaloneAdaptorInterface host;
  GltfFile scene;
  std::string error;
  if (!scene.Load(file, host.GetScene(), &error)) return Fail(error);
  if (to < 0) {
    host.GetScene().Walk([&](SceneNode& node) {
      if (!node.track.Keys().empty()) to = std::max(to, rgw::adaptor::standalone::SecondsFromTicks(node.track.Keys().back().tick));
    });
    if (to < 0) to = host.GetAnimationRange().second;
  }
  rgw::core::CoreLibrary library;
  rgw::core::Plugin* plugin = library.FindTool(toolName);
  if (!plugin) return Fail("no tool is called \"" + toolName + "\"; 'rgw tools' lists them");
  std::unique_ptr<rgw::core::Instance> instance = plugin->CreateInstance("", &host);
  if (!instance) return Fail("the tool \"" + toolName + "\" could not be made");
  for (const auto& [toolNode, sceneNode] : links) {
    auto* node = static_cast<rgw::core::CoreNode*>(instance->FindNode(toolNode));
    SceneNode* target = FindByName(host.GetScene(), sceneNode);
    if (!node) return Fail("the tool has no node \"" + toolNode + "\"");
    if (!target) return Fail(file + ": no node \"" + sceneNode + "\"");
    rgw::adaptor::standalone::StandaloneNode wrapper(&host, target);
    node->SetParent(&wrapper);
  }

  OneInstance list(instance.get());
  rgw::core::RecordManager recorder(&host, nullptr, &list);
  host.SetTime(from);
  recorder.StartResimulation(from, to);
  const std::int64_t started = recorder.clock();
  while (!recorder.ResimStep()) ShowProgress(recorder, host.GetFrameRate(), recorder.clock() - started);
  ShowProgress(recorder, host.GetFrameRate(), recorder.clock() - started);
  std::fprintf(stderr, "\n");
  recorder.FinishResimulation();
  if (!scene.Save(out, host.GetScene(), &error)) return Fail(error);
  std::fprintf(stderr, "rgw: %s made %s over %.3f s to %.3f s, written to %s\n", toolName.c_str(),
               instance->util::MessageNode::GetName().c_str(), from, to, out.c_str());
  return 0;
}

}  // namespace vuk::app
