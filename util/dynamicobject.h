#pragma once

#include <string>

namespace vuk::util {

// Base of objects that are made by name and always owned through a base pointer.
class DynamicObject {
 public:
  virtual ~DynamicObject() = default;

  // The name of the object's kind, as XML elements spell it.
  virtual std::string GetTypeName() const { return "DynamicObject"; }
};

}  // namespace vuk::util
