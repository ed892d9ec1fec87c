#pragma once
// A scene file opened with its tools: the embedded host, the tool library
// and the tool tree, loaded from the file's tags and saved back into them.

#include <memory>
#include <string>

#include "adaptor/standalone/gltffile.h"
#include "adaptor/standalone/standaloneadaptorinterface.h"
#include "core/instancemanager.h"
#include "core/librarymanager.h"
#include "plugins/tools.h"

namespace vuk::app {

class Session {
 public:
  Session();
  // Reads the scene and rebuilds the tools its tags describe.
  bool Open(const std::string& path, std::string& error);
  // Writes the scene with every tool's tags; the tags don't stay in the scene.
  bool Save(const std::string& path, std::string& error);
  // Links a tool's node below a scene node, keeping where it stands.
  bool Link(rgw::core::Instance& instance, const std::string& toolNode, const std::string& sceneNode,
            std::string& error);
  // Simulates every checked tool over the range, with a progress bar.
  void Resimulate(double from, double to);
  // The end of the scene's keys or of the tools' takes, whichever is later;
  // the end of the scene's range when there are neither.
  double DefaultEnd();
  const rgw::adaptor::standalone::GltfFile& File() const { return file_; }

  rgw::adaptor::standalone::StandaloneAdaptorInterface host;
  // The compiled-in tools and those of the plugin folders.
  rgw::core::LibraryManager library{rgw::addon::BuiltInTools()};
  rgw::core::InstanceManager tools{&host, &library};

 private:
  rgw::adaptor::standalone::GltfFile file_;
  std::string path_;
};

}  // namespace vuk::app
