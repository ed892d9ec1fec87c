#pragma once

#include <map>
#include <string>

#include "util/dynamicobject.h"
#include "util/singleton.h"

namespace vuk::util {

// Makes DynamicObject kinds by the name they were registered under.
class DynamicRegistry : public Singleton<DynamicRegistry> {
 public:
  using Maker = DynamicObject* (*)();

  // The first registration of a name wins, so a name keeps meaning one kind.
  bool Register(const std::string& typeName, Maker maker) {
    return makers_.emplace(typeName, maker).second;
  }

  // A new object owned by the caller, or null for a name nobody registered.
  DynamicObject* Create(const std::string& typeName) const {
    const auto found = makers_.find(typeName);
    return found == makers_.end() ? nullptr : found->second();
  }

 private:
  std::map<std::string, Maker> makers_;
};

// Mix-in that gives T a static way of being made, by its factory or by name.
template <typename T>
class DynamicCreator {
 public:
  static T* Create() { return new T(); }

  static DynamicObject* CreateObject() { return new T(); }

  static bool RegisterAs(const std::string& typeName) {
    return DynamicRegistry::Instance().Register(typeName, &DynamicCreator::CreateObject);
  }
};

}  // namespace vuk::util
