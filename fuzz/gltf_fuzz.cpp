// Reads arbitrary bytes as a scene file, in both forms, then writes what was
// read: damaged files must give a message, never a crash or a read past
// their buffers.
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <string>

#include "adaptor/standalone/gltffile.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace vuk::rgw::adaptor::standalone;
  const std::string base = "/tmp/rgw_fuzz_gltf_" + std::to_string(getpid());
  for (const char* extension : {".gltf", ".glb"}) {
    const std::string path = base + extension;
    if (FILE* file = std::fopen(path.c_str(), "wb")) {
      std::fwrite(data, 1, size, file);
      std::fclose(file);
    }
    Scene scene;
    GltfFile gltf;
    if (gltf.Load(path, scene)) gltf.Save(base + ".out" + extension, scene);
    std::remove(path.c_str());
    std::remove((base + ".out" + extension).c_str());
  }
  return 0;
}
