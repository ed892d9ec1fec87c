#pragma once

namespace vuk::util {

// Receives one value of T; lets an interface hand back a list or an element
// without agreeing on who allocates it.
template <typename T>
class ReturnValue {
 public:
  virtual ~ReturnValue() = default;
  virtual void Set(const T& value) = 0;
};

// Stores the received value at a place of the caller's.
template <typename T>
class ReturnInto : public ReturnValue<T> {
 public:
  explicit ReturnInto(T& target) : target_(target) {}
  void Set(const T& value) override { target_ = value; }

 private:
  T& target_;
};

}  // namespace vuk::util
