// Hands arbitrary bytes to every compiled-in tool as its saved data, as a
// scene file's tag does: a tool must refuse what it can't read, never crash,
// and save again what it took.
#include <cstdint>

#include "adaptor/standalone/standaloneadaptorinterface.h"
#include "core/corelibrary.h"
#include "core/messagebox.h"
#include "plugins/tools.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace vuk::rgw;
  if (size > (1 << 20)) return 0;
  core::SetSilentMode(true);
  static const core::CoreLibrary library(addon::BuiltInTools());
  for (const auto& tool : library.Tools()) {
    adaptor::standalone::StandaloneAdaptorInterface host;
    auto instance = tool->CreateInstance("", &host);
    if (!instance) continue;
    instance->SetSaveData(data, static_cast<std::int32_t>(size));
    if (instance->GetTool()->Load() == 0) instance->GetTool()->Save();
  }
  return 0;
}
