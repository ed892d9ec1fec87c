#pragma once

#include <string>

namespace vuk::util {

// Base of objects that are made by name and always owned through a base pointer.
class DynamicObject {
 public:
  virtual ~DynamicObject() = default;

  // The name the object was registered and is made under.
  virtual std::string GetTypeName() const { return "DynamicObject"; }

  // Frees an object owned through a base pointer; null is ignored.
  static void Destroy(DynamicObject* object) { delete object; }
};

}  // namespace vuk::util
