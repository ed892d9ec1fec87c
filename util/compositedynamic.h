#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace vuk::util {

// A node that owns its children of type T.
template <typename T>
class Composite_Dynamic {
 public:
  Composite_Dynamic() = default;
  Composite_Dynamic(const Composite_Dynamic&) = delete;
  Composite_Dynamic& operator=(const Composite_Dynamic&) = delete;

  // Children go last to first, the reverse of how they were built.
  virtual ~Composite_Dynamic() {
    while (!children_.empty()) {
      T* last = children_.back();
      children_.pop_back();
      delete last;
    }
  }

  // Takes ownership; null is ignored.
  void AddChild(T* child) {
    if (child) children_.push_back(child);
  }

  // Frees the child; false when it isn't one of ours.
  bool RemoveChild(T* child) {
    const auto found = std::find(children_.begin(), children_.end(), child);
    if (found == children_.end()) return false;
    children_.erase(found);
    delete child;
    return true;
  }

  // Takes the child out without freeing it; false when it isn't one of ours.
  bool TakeChild(T* child) {
    const auto found = std::find(children_.begin(), children_.end(), child);
    if (found == children_.end()) return false;
    children_.erase(found);
    return true;
  }

  // Takes ownership at a position, clamped to the end; null is ignored.
  void InsertChild(std::size_t index, T* child) {
    if (child) children_.insert(children_.begin() + static_cast<std::ptrdiff_t>(std::min(index, children_.size())), child);
  }

  std::size_t GetChildCount() const { return children_.size(); }

  // Null outside the range.
  T* GetChild(std::size_t index) const { return index < children_.size() ? children_[index] : nullptr; }

 private:
  std::vector<T*> children_;
};

}  // namespace vuk::util
