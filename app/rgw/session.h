#pragma once
// A scene file opened with its tools: the embedded host with the core started
// on it as a host starts it (log, settings, devices, tool libraries), and the
// tool tree, loaded from the file's tags and saved back into them.

#include <memory>
#include <string>
#include <vector>

#include "adaptor/standalone/gltffile.h"
#include "adaptor/standalone/standaloneadaptorinterface.h"
#include "core/coreimplementation.h"
#include "core/instancemanager.h"
#include "core/librarymanager.h"
#include "plugins/tools.h"

namespace vuk::app {

class Session {
 public:
  Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;
  // Reads the scene and rebuilds the tools its tags describe.
  bool Open(const std::string& path, std::string& error);
  // Writes the scene with every tool's tags; the tags don't stay in the scene.
  bool Save(const std::string& path, std::string& error);
  // Links a tool's node below a scene node: onto it, or where it stands when
  // the offset is kept.
  bool Link(rgw::core::Instance& instance, const std::string& toolNode, const std::string& sceneNode,
            bool keepOffset, std::string& error);
  // Puts a scene node below a tool's node where it stands, so that the tool
  // finds it among its node's scene children (a vehicle's ground, say).
  bool Adopt(rgw::core::Instance& instance, const std::string& toolNode, const std::string& sceneNode,
             std::string& error);
  // Hangs a mesh of a tool node's helper shape below it, which every viewer
  // draws where the helper, ours alone, is an empty; false with the reason.
  bool Solidify(rgw::core::Instance& instance, const std::string& toolNode, std::string& error);
  // Moves a tool's nodes that hang from the scene's root, and with them the
  // rest, by an offset in the world.
  void Move(rgw::core::Instance& instance, const util::Vector3<double>& offset);
  // Simulates every checked tool over the range, with a progress bar.
  void Resimulate(double from, double to);
  // The end of the scene's keys or of the tools' takes, whichever is later;
  // the end of the scene's range when there are neither.
  double DefaultEnd();
  const rgw::adaptor::standalone::GltfFile& File() const { return file_; }
  // The keys on the nodes of every tool.
  std::size_t ToolKeyCount();
  // The channels of the checked tools by name, each once, in tree order: the
  // channels a take can punch in.
  std::vector<std::string> CheckedChannels();

  using KeptTool = rgw::adaptor::standalone::StandaloneAdaptorInterface::KeptTool;
  // A tool of the file that isn't loaded, by its name; null when none is.
  const KeptTool* FindKept(const std::string& name) const;
  // Why it isn't loaded, in words.
  std::string WhyNotLoaded(const KeptTool& tool) const;
  // "Cam_01 (LookAtCam)", with "?" for what its tag can't tell.
  static std::string Named(const KeptTool& tool);
  // "Cam_01 (LookAtCam) on node Rig": which tool and where it is kept.
  static std::string Where(const KeptTool& tool);

  rgw::adaptor::standalone::StandaloneAdaptorInterface host;
  // Stops before the host goes: the tools leave the scene first.
  rgw::core::CoreImplementation core;
  // The core's compiled-in tools and those of the plugin folders.
  const rgw::core::LibraryManager& library;
  rgw::core::InstanceManager& tools;

 private:
  // The scene's node of that host name, not the root; null when none.
  rgw::adaptor::standalone::SceneNode* FindSceneNode(const std::string& name);
  // A tool's node by its name in the tool; null with the names it has.
  rgw::core::CoreNode* FindToolNode(rgw::core::Instance& instance, const std::string& toolNode, std::string& error);

  rgw::adaptor::standalone::GltfFile file_;
  std::string path_;
};

}  // namespace vuk::app
