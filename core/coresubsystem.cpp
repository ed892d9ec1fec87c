#include "core/coresubsystem.h"

#include <algorithm>

namespace vuk::rgw::core {

namespace {

struct SubSystemList {
  std::vector<CoreSubSystem*> parts;
  bool closed = false;
};

SubSystemList& List() {
  static SubSystemList list;
  return list;
}

}  // namespace

CoreSubSystem::CoreSubSystem(CoreImplementation* core) : core_(core) {
  if (!List().closed) List().parts.push_back(this);
}

CoreSubSystem::~CoreSubSystem() {
  auto& parts = List().parts;
  parts.erase(std::remove(parts.begin(), parts.end(), this), parts.end());
  if (parts.empty()) List().closed = false;
}

const std::vector<CoreSubSystem*>& CoreSubSystem::All() { return List().parts; }

void CoreSubSystem::CloseList() { List().closed = true; }

bool CoreSubSystem::IsListClosed() { return List().closed; }

}  // namespace vuk::rgw::core
