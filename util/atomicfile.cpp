#include "util/atomicfile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <random>
#include <utility>

namespace vuk::util {

namespace {

constexpr char kNameLetters[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789";
constexpr int kNameAttempts = 100;

std::string FolderOf(const std::string& path) {
  const std::filesystem::path folder = std::filesystem::path(path).parent_path();
  return folder.empty() ? "." : folder.string();
}

// ".NAME.XXXXXX.tmp" beside the target: hidden, and never a name the user
// gave to anything.
std::string TemporaryName(const std::string& path, std::random_device& random) {
  const std::filesystem::path target(path);
  std::uniform_int_distribution<std::size_t> pick(0, sizeof kNameLetters - 2);
  std::string name = "." + target.filename().string() + ".";
  for (int i = 0; i < 6; ++i) name += kNameLetters[pick(random)];
  return (target.parent_path() / (name + ".tmp")).string();
}

// The rename itself is only durable once the folder is on the disk.
bool SyncFolder(const std::string& folder) {
  const int fd = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (fd < 0) return false;
  const bool synced = ::fsync(fd) == 0;
  const int reason = errno;
  ::close(fd);
  errno = reason;
  return synced;
}

}  // namespace

AtomicFile::AtomicFile(std::string path) : path_(std::move(path)) {}

AtomicFile::~AtomicFile() { Rollback(); }

bool AtomicFile::Open() {
  Rollback();
  error_.clear();
  struct stat target {};
  const bool exists = ::stat(path_.c_str(), &target) == 0;
  if (exists && S_ISDIR(target.st_mode)) {
    errno = EISDIR;
    return Fail("can't be written");
  }
  std::random_device random;
  for (int attempt = 0; attempt < kNameAttempts && fd_ < 0; ++attempt) {
    const std::string name = TemporaryName(path_, random);
    // Exclusive creation fails on anything already there, links included.
    fd_ = ::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
    if (fd_ >= 0) {
      temporary_ = name;
    } else if (errno != EEXIST) {
      break;
    }
  }
  if (fd_ < 0) return Fail("can't be written");
  if (exists && ::fchmod(fd_, target.st_mode & 07777) != 0) return Fail("can't be written");
  return true;
}

bool AtomicFile::Write(const void* data, std::size_t size) {
  if (fd_ < 0) return false;
  const char* bytes = static_cast<const char*>(data);
  while (size > 0) {
    const ssize_t written = ::write(fd_, bytes, size);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return Fail("can't be written");
    bytes += written;
    size -= static_cast<std::size_t>(written);
    written_ += static_cast<std::uint64_t>(written);
  }
  return true;
}

bool AtomicFile::Commit() {
  if (fd_ < 0) return false;
  if (::fsync(fd_) != 0) return Fail("can't be written");
  const int fd = std::exchange(fd_, -1);
  if (::close(fd) != 0) return Fail("can't be written");
  if (::rename(temporary_.c_str(), path_.c_str()) != 0) return Fail("can't be replaced");
  temporary_.clear();
  return SyncFolder(FolderOf(path_)) || Fail("can't be written");
}

void AtomicFile::Rollback() {
  if (fd_ >= 0) ::close(std::exchange(fd_, -1));
  if (!temporary_.empty()) ::unlink(temporary_.c_str());
  temporary_.clear();
}

bool AtomicFile::Fail(const char* what) {
  const int reason = errno;
  Rollback();
  error_ = path_ + ": " + what + " (" + std::strerror(reason) + ")";
  return false;
}

bool AtomicFile::Replace(const std::string& path, std::string_view bytes, std::string* error) {
  AtomicFile file(path);
  const bool replaced = file.Open() && file.Write(bytes) && file.Commit();
  if (!replaced && error) *error = file.Error();
  return replaced;
}

bool AtomicFile::CanReplace(const std::string& path, std::string* error) {
  AtomicFile probe(path);
  if (probe.Open()) return true;
  if (error) *error = probe.Error();
  return false;
}

}  // namespace vuk::util
