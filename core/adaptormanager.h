#pragma once
// The core's link to the host: the one adaptor, set once at start, through
// which all host calls go.

#include "core/adaptorinterface.h"
#include "core/coresubsystem.h"

namespace vuk::rgw::core {

class AdaptorManager : public CoreSubSystem {
 public:
  explicit AdaptorManager(CoreImplementation* core) : CoreSubSystem(core) {}
  ~AdaptorManager() override;

  // Set once by the start; a second call is refused.
  bool SetAdaptor(AdaptorInterface* adaptor);
  AdaptorInterface* GetAdaptor() const { return adaptor_; }

 private:
  AdaptorInterface* adaptor_ = nullptr;
};

}  // namespace vuk::rgw::core
