#pragma once
// Base of the core's parts. Each registers itself in a process-wide list while
// the core is being built, so that the parts can be walked in their order.

#include <vector>

namespace vuk::rgw::core {

class CoreImplementation;

class CoreSubSystem {
 public:
  explicit CoreSubSystem(CoreImplementation* core);
  CoreSubSystem(const CoreSubSystem&) = delete;
  CoreSubSystem& operator=(const CoreSubSystem&) = delete;
  virtual ~CoreSubSystem();

  CoreImplementation* GetCore() const { return core_; }

  // The parts registered so far, in construction order.
  static const std::vector<CoreSubSystem*>& All();
  // Once the core stands, later parts no longer register; the list opens
  // again when the last part is gone.
  static void CloseList();
  static bool IsListClosed();

 private:
  CoreImplementation* core_;
};

}  // namespace vuk::rgw::core
