#pragma once
// What the core benchmarks share: the built-in tools' library, and a rig of
// instances on the embedded host that all take part in a run.

#include <memory>
#include <vector>

#include "adaptor/standalone/standaloneadaptorinterface.h"
#include "core/corelibrary.h"
#include "core/recordmanager.h"
#include "plugins/tools.h"

namespace vuk::rgw::bench {

inline const core::CoreLibrary& Library() {
  static const core::CoreLibrary library(addon::BuiltInTools());
  return library;
}

// `count` tools, the built-in tools in turn.
inline std::vector<core::Plugin*> ToolsInTurn(std::size_t count) {
  std::vector<core::Plugin*> tools;
  for (std::size_t i = 0; i < count; ++i) tools.push_back(Library().Tools()[i % Library().Tools().size()].get());
  return tools;
}

struct Rig : core::InstanceList {
  explicit Rig(const std::vector<core::Plugin*>& tools) {
    for (core::Plugin* tool : tools) instances.push_back(tool->CreateInstance("", &host));
  }
  std::vector<core::Instance*> AllInstances() override {
    std::vector<core::Instance*> all;
    for (auto& instance : instances) all.push_back(instance.get());
    return all;
  }
  std::vector<core::Instance*> CheckedInstances() override { return AllInstances(); }

  adaptor::standalone::StandaloneAdaptorInterface host;
  std::vector<std::unique_ptr<core::Instance>> instances;
};

}  // namespace vuk::rgw::bench
