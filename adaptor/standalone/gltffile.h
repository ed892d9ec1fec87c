#pragma once
// Scene files of the embedded host: glTF 2.0, in metres with Y up like the
// system itself. What the host understands (nodes, meshes, cameras, keyed
// transforms, node extras) becomes the scene; everything else the file
// holds (materials, textures, skins, clips, extensions) is kept and written
// back unchanged, so a user's file loses nothing. Only nodes whose track
// changed get new keys; the others keep their channels as they were.

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "adaptor/standalone/gltfblobs.h"
#include "adaptor/standalone/gltfjson.h"
#include "adaptor/standalone/gltfsplice.h"
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

  // Reads a glTF file, text or binary, into an empty scene, and sets the
  // scene's frame rate to the file's. On failure the scene is left as it was
  // and `error` names the file and the problem.
  bool Load(const std::string& path, Scene& scene, std::string* error = nullptr);
  // Writes the scene, with the rest of the loaded file, beside the target
  // first and then over it. ".glb", in any case, writes the binary form; a
  // file whose buffers were files beside it gets them beside the target.
  bool Save(const std::string& path, Scene& scene, std::string* error = nullptr);

  // A clip's keys on the morph target weights of a node.
  struct WeightsAnimation {
    std::string node, clip;
    std::size_t keys = 0;
    double from = 0, to = 0;
  };
  std::vector<WeightsAnimation> WeightsAnimations() const;

 private:
  bool Write(const std::string& path, std::string* error);

  std::unique_ptr<tinygltf::Model> model_;
  // glTF node index of each scene node read from the file.
  std::map<SceneNode::Handle, int> nodeOf_;
  // Where the model's relative URIs are read from.
  std::filesystem::path folder_;
  // The long texts of the save being written, which follow the first
  // buffer's bytes, or the pieces a text file's JSON is written with.
  LongTexts longTexts_;
  JsonSplicer splicer_;
  // What the file held that the parser dropped, put back by each save.
  std::vector<KeptMember> kept_;
};

}  // namespace vuk::rgw::adaptor::standalone
