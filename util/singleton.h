#pragma once

namespace vuk::util {

// One process-wide instance of T, made at its first use and destroyed at exit.
// T derives from Singleton<T> and befriends it when its constructor is private.
template <typename T>
class Singleton {
 public:
  static T& Instance() {
    static T instance;
    return instance;
  }

  Singleton(const Singleton&) = delete;
  Singleton& operator=(const Singleton&) = delete;

 protected:
  Singleton() = default;
  ~Singleton() = default;
};

}  // namespace vuk::util
