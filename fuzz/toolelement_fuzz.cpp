// Reads arbitrary markup as a saved tool tree ("RGT" or "RGT_Plugin") into
// an empty scene: unknown tools, damaged blobs and missing nodes must all be
// taken without a crash.
#include <cstdint>
#include <string>

#include "adaptor/standalone/standaloneadaptorinterface.h"
#include "core/librarymanager.h"
#include "core/instancemanager.h"
#include "core/messagebox.h"
#include "plugins/tools.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace vuk::rgw;
  vuk::util::xml::Element tree;
  if (tree.ParseText(std::string(reinterpret_cast<const char*>(data), size)) != vuk::util::xml::kParsed) return 0;
  core::SetSilentMode(true);
  adaptor::standalone::StandaloneAdaptorInterface host;
  static const core::LibraryManager library(addon::BuiltInTools());
  core::InstanceManager tools(&host, &library);
  tools.LoadToolTree(tree);
  tools.SaveToolTree();
  return 0;
}
