// Reads arbitrary bytes as a profile file of either kind, then stores and
// exports every profile read: no crash, and nothing read is lost on the way.
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "core/xmlfilemanager.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using vuk::rgw::core::XMLFileManager;
  const std::string folder = "/tmp/rgw_fuzz_profiles_" + std::to_string(getpid());
  std::filesystem::create_directories(folder);
  const std::string path = folder + "/input.xml";
  if (FILE* file = std::fopen(path.c_str(), "wb")) {
    std::fwrite(data, 1, size, file);
    std::fclose(file);
  }
  for (auto kind : {XMLFileManager::Kind::kConfig, XMLFileManager::Kind::kInput}) {
    XMLFileManager manager(kind, folder + "/user");
    manager.AddFile(path);
    manager.Load();
    for (const std::string& name : manager.Names()) {
      if (!manager.Find(name)) std::abort();
      manager.Export(name, folder + "/out.xml");
    }
  }
  std::error_code ignored;
  std::filesystem::remove_all(folder, ignored);
  return 0;
}
