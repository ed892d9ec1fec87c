#pragma once

#include <string>

#include "util/factory.h"
#include "util/singleton.h"
#include "util/xml/tag.h"

namespace vuk::util {

// Like AbstractFactory, for products whose factories are looked up by tag
// before the caller decides to create: the node kinds of the template tools'
// MathScript expressions.
template <typename T>
class FactoryManager : public FactoryList<T>, public Singleton<FactoryManager<T>> {
  friend class Singleton<FactoryManager<T>>;

 public:
  using Factory = util::Factory<T>;
  using FactoryList<T>::Find;

  // The first factory that accepts an element with this tag, or null.
  const Factory* Find(const std::string& tag) const { return Find(xml::Tag(tag)); }

 protected:
  FactoryManager() = default;
};

}  // namespace vuk::util
