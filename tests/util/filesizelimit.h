#pragma once
// Limits the size of the files this process writes, for the life of a test:
// a write past the limit fails (EFBIG) as on a full disk, instead of ending
// the process with SIGXFSZ.

#include <signal.h>
#include <sys/resource.h>

namespace vuk::testing_support {

class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) {
    getrlimit(RLIMIT_FSIZE, &old_);
    oldHandler_ = signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{bytes, old_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &old_);
    signal(SIGXFSZ, oldHandler_);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  rlimit old_{};
  sighandler_t oldHandler_ = SIG_DFL;
};

}  // namespace vuk::testing_support
