// Writes the sample scene to the files given, for the glTF validator.
#include <cstdio>

#include "adaptor/standalone/gltffile.h"
#include "scenes/samplescene.h"

int main(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    vuk::rgw::adaptor::standalone::Scene scene;
    vuk::scenes::BuildSampleScene(scene);
    vuk::rgw::adaptor::standalone::GltfFile file;
    std::string error;
    if (!file.Save(argv[i], scene, &error)) {
      std::fprintf(stderr, "%s\n", error.c_str());
      return 1;
    }
  }
  return 0;
}
