// Reads arbitrary bytes as a scene file, in both forms, then writes what was
// read: damaged files must give a message, never a crash or a read past
// their buffers. The input lies alone in a folder of its own, so that a URI
// in it can reach nothing else on the machine.
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "adaptor/standalone/gltffile.h"

namespace {

// A folder of our own for the run, gone with the process.
class Scratch {
 public:
  Scratch() {
    std::string pattern = (std::filesystem::temp_directory_path() / "rgw_fuzz_gltf_XXXXXX").string();
    if (!mkdtemp(pattern.data())) std::abort();
    folder_ = pattern;
  }
  ~Scratch() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }
  const std::filesystem::path& Folder() const { return folder_; }

 private:
  std::filesystem::path folder_;
};

const std::filesystem::path& Folder() {
  static const Scratch scratch;
  return scratch.Folder();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace vuk::rgw::adaptor::standalone;
  for (const char* extension : {".gltf", ".glb"}) {
    const std::filesystem::path input = Folder() / (std::string("scene") + extension);
    const std::filesystem::path output = Folder() / (std::string("out") + extension);
    std::ofstream(input, std::ios::binary).write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    Scene scene;
    GltfFile gltf;
    if (gltf.Load(input.string(), scene)) gltf.Save(output.string(), scene);
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator(Folder(), ignored)) std::filesystem::remove_all(entry.path(), ignored);
  }
  return 0;
}
