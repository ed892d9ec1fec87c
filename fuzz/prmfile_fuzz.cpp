// Reads arbitrary bytes as a pre-rigged model file and makes its tools in an
// empty scene; what was made saves as a model that reads back.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "adaptor/standalone/standaloneadaptorinterface.h"
#include "core/instancemanager.h"
#include "core/librarymanager.h"
#include "core/messagebox.h"
#include "core/prmfile.h"
#include "fuzz/inputfile.h"
#include "plugins/tools.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace vuk::rgw;
  const std::string path = WriteInputFile("model.prm", data, size);
  vuk::util::xml::Element tree;
  std::string error;
  if (core::LoadPrmFile(path, tree, &error)) {
    core::SetSilentMode(true);
    adaptor::standalone::StandaloneAdaptorInterface host;
    static const core::LibraryManager library(addon::BuiltInTools());
    core::InstanceManager tools(&host, &library);
    tools.LoadToolTree(tree);
    if (!core::SavePrmFile(path, tools.SaveToolTree(), &error)) std::abort();
    if (!core::LoadPrmFile(path, tree, &error)) std::abort();
  } else if (error.empty()) {
    std::abort();
  }
  std::remove(path.c_str());
  return 0;
}
