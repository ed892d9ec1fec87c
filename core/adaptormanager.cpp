#include "core/adaptormanager.h"

namespace vuk::rgw::core {

AdaptorManager::~AdaptorManager() {
  // The host is the last to hear of the core's end.
  if (adaptor_) adaptor_->Shutdown();
}

bool AdaptorManager::SetAdaptor(AdaptorInterface* adaptor) {
  if (adaptor_ || !adaptor) return false;
  adaptor_ = adaptor;
  return true;
}

}  // namespace vuk::rgw::core
