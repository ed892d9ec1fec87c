#pragma once

#include "util/factory.h"
#include "util/singleton.h"

namespace vuk::util {

// The process-wide factories of one product kind (GUI components, backgrounds, ...).
template <typename T>
class AbstractFactory : public FactoryList<T>, public Singleton<AbstractFactory<T>> {
  friend class Singleton<AbstractFactory<T>>;

 protected:
  AbstractFactory() = default;
};

}  // namespace vuk::util
