#pragma once

#include <cstddef>
#include <vector>

#include "util/xml/element.h"

namespace vuk::util {

// Makes a T from an XML element it recognises, usually by the element's tag.
template <typename T>
class Factory {
 public:
  virtual ~Factory() = default;
  virtual bool CanCreate(const xml::Element& element) const = 0;
  // A new object owned by the caller.
  virtual T* Create(const xml::Element& element) const = 0;
};

// An ordered list of owned factories; the first that accepts an element wins,
// so registration order decides between factories that accept the same one.
template <typename T>
class FactoryList {
 public:
  FactoryList() = default;
  FactoryList(const FactoryList&) = delete;
  FactoryList& operator=(const FactoryList&) = delete;

  virtual ~FactoryList() { Clear(); }

  // Takes ownership; null is ignored.
  void Add(Factory<T>* factory) {
    if (factory) factories_.push_back(factory);
  }

  // Null when no factory accepts the element.
  const Factory<T>* Find(const xml::Element& element) const {
    for (const Factory<T>* factory : factories_) {
      if (factory->CanCreate(element)) return factory;
    }
    return nullptr;
  }

  // A new object from the first factory that accepts the element, or null.
  T* Create(const xml::Element& element) const {
    const Factory<T>* factory = Find(element);
    return factory ? factory->Create(element) : nullptr;
  }

  std::size_t Count() const { return factories_.size(); }

  // Factories go last to first.
  void Clear() {
    while (!factories_.empty()) {
      Factory<T>* last = factories_.back();
      factories_.pop_back();
      delete last;
    }
  }

 private:
  std::vector<Factory<T>*> factories_;
};

}  // namespace vuk::util
