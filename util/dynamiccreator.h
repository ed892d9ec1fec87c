#pragma once

namespace vuk::util {

// Mix-in that gives T a static way of being made, for the factories that turn
// XML elements into devices, settings and configuration dialogs.
template <typename T>
class DynamicCreator {
 public:
  static T* Create() { return new T(); }
};

}  // namespace vuk::util
