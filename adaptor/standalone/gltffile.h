#pragma once
// Scene files of the embedded host: glTF 2.0, in metres with Y up like the
// system itself. What the host understands (nodes, meshes, cameras, keyed
// transforms, node extras) becomes the scene; everything else the file
// holds (materials, textures, skins, extensions) is kept and written back
// unchanged, so a user's file loses nothing.

#include <map>
#include <memory>
#include <string>

#include "adaptor/standalone/scene.h"

namespace tinygltf {
class Model;
}

namespace vuk::rgw::adaptor::standalone {

class GltfFile {
 public:
  GltfFile();
  ~GltfFile();
  GltfFile(const GltfFile&) = delete;
  GltfFile& operator=(const GltfFile&) = delete;

  // Reads a ".gltf" or ".glb" file into an empty scene. On failure the scene
  // is left as it was and `error` names the file and the problem.
  bool Load(const std::string& path, Scene& scene, std::string* error = nullptr);
  // Writes the scene, with the rest of the loaded file, beside the target
  // first and then over it. ".glb" writes the binary form.
  bool Save(const std::string& path, Scene& scene, std::string* error = nullptr);

 private:
  std::unique_ptr<tinygltf::Model> model_;
  // glTF node index of each scene node read from the file.
  std::map<SceneNode::Handle, int> nodeOf_;
};

}  // namespace vuk::rgw::adaptor::standalone
