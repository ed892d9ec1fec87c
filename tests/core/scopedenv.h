#pragma once
// Sets an environment variable for the life of a test and puts the old value back.

#include <cstdlib>
#include <optional>
#include <string>

namespace vuk::rgw::testing_support {

class ScopedEnv {
 public:
  ScopedEnv(const char* name, const char* value) : name_(name) {
    if (const char* old = std::getenv(name)) old_ = old;
    Put(value);
  }
  ~ScopedEnv() { Put(old_ ? old_->c_str() : nullptr); }
  ScopedEnv(const ScopedEnv&) = delete;
  ScopedEnv& operator=(const ScopedEnv&) = delete;

 private:
  // A null value unsets the variable.
  void Put(const char* value) const { value ? setenv(name_.c_str(), value, 1) : unsetenv(name_.c_str()); }

  std::string name_;
  std::optional<std::string> old_;
};

}  // namespace vuk::rgw::testing_support
