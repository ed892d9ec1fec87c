#include "app/rgw/session.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "adaptor/standalone/standalonenode.h"
#include "app/rgw/wording.h"
#include "core/resimulator.h"

namespace vuk::app {

using rgw::adaptor::standalone::SceneNode;

namespace {

void ShowProgress(const rgw::core::Resimulator& resimulator, double fps, std::int64_t elapsedMs) {
  const float progress = resimulator.Progress();
  const double first = resimulator.From() * fps, last = resimulator.To() * fps;
  const double current = first + progress * (last - first);
  const double done = current - first;
  const int left = done > 0 ? static_cast<int>((last - current) / done * static_cast<double>(elapsedMs) / 1000.0) : 0;
  const int width = 30, filled = static_cast<int>(progress * width);
  std::fprintf(stderr, "\r[%s%s] %3d%%  frame %d of %d  %d:%02d left ", std::string(filled, '#').c_str(),
               std::string(width - filled, '-').c_str(), static_cast<int>(progress * 100),
               static_cast<int>(current), static_cast<int>(last), left / 60, left % 60);
}

// The embedded host speaks the core's interface version, so the start gives
// the libraries and the tool tree.
rgw::core::CoreImplementation& Started(rgw::core::CoreImplementation& core,
                                       rgw::adaptor::standalone::StandaloneAdaptorInterface& host) {
  core.Start(&host, rgw::addon::BuiltInTools());
  return core;
}

}  // namespace

Session::Session() : library(*Started(core, host).GetLibraries()), tools(*core.GetInstances()) {
  host.SetSceneLoader([this](const vuk::util::xml::Element& tree) {
    tools.LoadToolTree(tree);
    return tools.InstanceNames();
  });
}

bool Session::Open(const std::string& path, std::string& error) {
  std::error_code ignored;
  if (!std::filesystem::is_regular_file(path, ignored)) {
    error = path + (std::filesystem::exists(path, ignored) ? ": not a scene file" : ": no such file");
    return false;
  }
  if (!file_.Load(path, host.GetScene(), &error)) {
    error = GltfProblem(path, error);
    return false;
  }
  path_ = path;
  host.GatherScene();
  return true;
}

bool Session::Save(const std::string& path, std::string& error) {
  tools.WriteNodeTags();
  host.WriteSceneTag(tools.SaveToolTreeForScene());
  const bool saved = file_.Save(path, host.GetScene(), &error);
  host.GetScene().Walk([](SceneNode& node) { node.properties.erase("RGT_tag"); });
  return saved;
}

SceneNode* Session::FindSceneNode(const std::string& name) {
  SceneNode* found = nullptr;
  host.GetScene().Walk([&](SceneNode& candidate) {
    if (!found && !candidate.isRoot && candidate.hostName == name) found = &candidate;
  });
  return found;
}

rgw::core::CoreNode* Session::FindToolNode(rgw::core::Instance& instance, const std::string& toolNode,
                                           std::string& error) {
  auto* node = static_cast<rgw::core::CoreNode*>(instance.FindNode(toolNode));
  if (!node) error = instance.InstanceName() + " has no node \"" + toolNode + "\"; its nodes are " + Listed(instance.NodeNames());
  return node;
}

bool Session::Link(rgw::core::Instance& instance, const std::string& toolNode, const std::string& sceneNode,
                   bool keepOffset, std::string& error) {
  rgw::core::CoreNode* node = FindToolNode(instance, toolNode, error);
  SceneNode* target = FindSceneNode(sceneNode);
  if (node && !target) error = path_ + ": no node \"" + sceneNode + "\"";
  if (!node || !target) return false;
  rgw::adaptor::standalone::StandaloneNode wrapper(&host, target);
  node->SetParent(&wrapper);
  if (keepOffset) return true;
  // On the scene node: keys from before would place it elsewhere.
  const double now = host.GetTime();
  node->InvalidateFrom(0);
  rgw::CSnapshot* snapshot = node->GetSnapshot(now);
  snapshot->SetLocalTransform(rgw::Matrix());
  node->ReleaseSnapshot(snapshot);
  return true;
}

bool Session::Adopt(rgw::core::Instance& instance, const std::string& toolNode, const std::string& sceneNode,
                    std::string& error) {
  rgw::core::CoreNode* node = FindToolNode(instance, toolNode, error);
  SceneNode* child = FindSceneNode(sceneNode);
  if (node && !child) error = path_ + ": no node \"" + sceneNode + "\"";
  if (!node || !child) return false;
  SceneNode* parent = static_cast<rgw::adaptor::standalone::StandaloneNode*>(node)->GetHostNode();
  for (const SceneNode* up = parent; up; up = up->parent) {
    if (up != child) continue;
    error = sceneNode + " can't go below " + parent->hostName + ", which hangs below it";
    return false;
  }
  auto& scene = host.GetScene();
  scene.SetParent(child, parent, scene.clock.TickOf(host.GetTime()));
  return true;
}

bool Session::Solidify(rgw::core::Instance& instance, const std::string& toolNode, std::string& error) {
  rgw::core::CoreNode* node = FindToolNode(instance, toolNode, error);
  if (!node) return false;
  SceneNode* helper = static_cast<rgw::adaptor::standalone::StandaloneNode*>(node)->GetHostNode();
  if (helper->mesh.faces.empty()) {
    error = instance.InstanceName() + "'s " + toolNode + " has no shape to draw";
    return false;
  }
  SceneNode* solid =
      host.GetScene().CreateNode(rgw::adaptor::standalone::ObjectKind::kMesh, helper->hostName + "_Solid", helper);
  solid->SetMesh(helper->mesh);
  return true;
}

void Session::Move(rgw::core::Instance& instance, const util::Vector3<double>& offset) {
  rgw::core::NodeVector nodes;
  host.GetInstanceNodes(&instance, nodes);
  const double now = host.GetTime();
  for (rgw::core::CoreNode* node : nodes.nodes) {
    if (!static_cast<rgw::adaptor::standalone::StandaloneNode*>(node)->GetHostNode()->parent->isRoot) continue;
    rgw::CSnapshot* snapshot = node->GetSnapshot(now);
    rgw::Matrix world = snapshot->GetWorldTransform();
    world.SetTranslation(world.GetTranslation() + offset);
    snapshot->SetWorldTransform(world);
    node->ReleaseSnapshot(snapshot);
  }
}

double Session::DefaultEnd() {
  double end = -1;
  host.GetScene().Walk([&](SceneNode& node) {
    if (!node.track.Keys().empty()) {
      end = std::max(end, rgw::adaptor::standalone::SecondsFromTicks(node.track.Keys().back().tick));
    }
  });
  // A take longer than the scene's keys is simulated to its end.
  for (const rgw::core::Instance* instance : tools.AllInstances()) {
    for (const auto& track : instance->RecordedTracks()) {
      if (!track.records.empty()) end = std::max(end, track.records.back().time);
    }
  }
  return end < 0 ? host.GetAnimationRange().second : end;
}

std::size_t Session::ToolKeyCount() {
  std::size_t count = 0;
  for (rgw::core::Instance* instance : tools.AllInstances()) {
    rgw::core::NodeVector nodes;
    host.GetInstanceNodes(instance, nodes);
    for (rgw::core::CoreNode* node : nodes.nodes) {
      count += static_cast<rgw::adaptor::standalone::StandaloneNode*>(node)->GetHostNode()->track.Keys().size();
    }
  }
  return count;
}

std::vector<std::string> Session::CheckedChannels() {
  std::vector<std::string> names;
  for (const rgw::core::Instance* instance : tools.CheckedInstances()) {
    for (const auto& channel : instance->Channels()) {
      if (std::find(names.begin(), names.end(), channel.name) == names.end()) names.push_back(channel.name);
    }
  }
  return names;
}

const Session::KeptTool* Session::FindKept(const std::string& name) const {
  for (const KeptTool& tool : host.KeptTools()) {
    if (tool.name == name) return &tool;
  }
  return nullptr;
}

std::string Session::WhyNotLoaded(const KeptTool& tool) const {
  if (!tool.reason.empty()) return tool.reason;
  if (!library.FindTool(tool.type)) return "this program has no tool \"" + tool.type + "\"";
  return "it failed to load from its saved data";
}

std::string Session::Named(const KeptTool& tool) {
  return (tool.name.empty() ? "?" : tool.name) + " (" + (tool.type.empty() ? "?" : tool.type) + ")";
}

std::string Session::Where(const KeptTool& tool) {
  return Named(tool) + (tool.node.empty() ? " on the scene's root" : " on node " + tool.node);
}

void Session::Resimulate(double from, double to) {
  const double fps = host.GetFrameRate();
  rgw::core::Resimulator resimulator(&host);
  host.SetTime(from);
  resimulator.Start(tools.CheckedInstances(), from, to, rgw::core::TimeBase(fps));
  const std::int64_t started = resimulator.clock();
  while (!resimulator.RunFor(rgw::core::Resimulator::kSliceMs)) {
    ShowProgress(resimulator, fps, resimulator.clock() - started);
  }
  ShowProgress(resimulator, fps, resimulator.clock() - started);
  std::fprintf(stderr, "\n");
  resimulator.Finish();
}

}  // namespace vuk::app
