#include "adaptor/standalone/gltfsource.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>

#include <tiny_gltf.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>

#include "adaptor/standalone/gltfuris.h"

namespace vuk::rgw::adaptor::standalone {

namespace fs = std::filesystem;

namespace {

bool IsInside(const fs::path& file, const fs::path& folder) {
  const auto [inFolder, inFile] = std::mismatch(folder.begin(), folder.end(), file.begin(), file.end());
  return inFolder == folder.end() && inFile != file.end();
}

}  // namespace

namespace {

// A long take's file is hundreds of megabytes, and copying it in costs more
// in page faults than in reading: large pages, where the system lends them
// on request, take a five-hundredth of the faults.
void AdviseHugePages(const void* data, std::size_t size) {
  constexpr std::uintptr_t kHugePage = std::uintptr_t{2} << 20;
  const auto begin = reinterpret_cast<std::uintptr_t>(data);
  const std::uintptr_t from = (begin + kHugePage - 1) & ~(kHugePage - 1), to = (begin + size) & ~(kHugePage - 1);
  if (to > from) madvise(reinterpret_cast<void*>(from), to - from, MADV_HUGEPAGE);
}

}  // namespace

RegularFile::~RegularFile() {
  if (fd_ >= 0) close(fd_);
}

bool RegularFile::Open(const fs::path& path, std::string& problem) {
  std::error_code error;
  const fs::path real = fs::canonical(path, error);
  if (error) {
    problem = "can't be read (" + error.message() + ")";
    return false;
  }
  // Not waiting on a FIFO and not following a link swapped in since the
  // path was resolved.
  fd_ = open(real.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC);
  struct stat status {};
  if (fd_ < 0 || fstat(fd_, &status) != 0) {
    problem = "can't be read";
    return false;
  }
  if (!S_ISREG(status.st_mode)) {
    problem = "is not a regular file";
    return false;
  }
  if (static_cast<std::uintmax_t>(status.st_size) > kMaxSceneFileBytes) {
    problem = "is larger than this program reads";
    return false;
  }
  size_ = static_cast<std::uint64_t>(status.st_size);
  return true;
}

bool RegularFile::ReadAt(std::uint64_t offset, void* into, std::size_t length) const {
  auto* bytes = static_cast<unsigned char*>(into);
  std::size_t done = 0;
  while (done < length) {
    const ssize_t got = pread(fd_, bytes + done, length - done, static_cast<off_t>(offset + done));
    if (got <= 0) return false;
    done += static_cast<std::size_t>(got);
  }
  return true;
}

bool RegularFile::ReadAll(std::vector<unsigned char>& bytes, std::string& problem) const {
  bytes.reserve(static_cast<std::size_t>(size_));
  AdviseHugePages(bytes.data(), bytes.capacity());
  bytes.resize(static_cast<std::size_t>(size_));
  if (ReadAt(0, bytes.data(), bytes.size())) return true;
  problem = "can't be read";
  return false;
}

bool ReadRegularFile(const fs::path& path, std::vector<unsigned char>& bytes, std::string& problem) {
  RegularFile file;
  return file.Open(path, problem) && file.ReadAll(bytes, problem);
}

SceneFolder::SceneFolder(const fs::path& folder) {
  std::error_code error;
  folder_ = fs::canonical(folder, error);
  path_ = folder_.string();
}

bool SceneFolder::Allow(const std::string& uri, std::string& problem) {
  const fs::path relative(DecodedUri(uri));
  if (relative.empty() || relative.is_absolute() || relative.has_root_name()) {
    problem = "is not a path relative to the scene's folder";
    return false;
  }
  std::error_code error;
  const fs::path real = fs::canonical(folder_ / relative, error);
  if (error) {
    problem = "names no file in the scene's folder";
    return false;
  }
  if (folder_.empty() || !IsInside(real, folder_)) {
    problem = "leads outside the scene's folder";
    return false;
  }
  struct stat status {};
  if (stat(real.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
    problem = "is not a regular file";
    return false;
  }
  allowed_.insert(real);
  return true;
}

void SceneFolder::Embed(const std::string& uri, std::vector<unsigned char> bytes) {
  // The parser joins the folder and the URI as a path does.
  embedded_[(folder_ / uri).string()] = std::move(bytes);
}

tinygltf::FsCallbacks SceneFolder::Callbacks() {
  tinygltf::FsCallbacks callbacks{};
  callbacks.FileExists = &SceneFolder::Exists;
  callbacks.ExpandFilePath = &SceneFolder::SamePath;
  callbacks.ReadWholeFile = &SceneFolder::Read;
  callbacks.user_data = this;
  return callbacks;
}

bool SceneFolder::IsAllowed(const std::string& path) const {
  if (embedded_.count(path)) return true;
  std::error_code error;
  const fs::path real = fs::canonical(path, error);
  return !error && allowed_.count(real) > 0;
}

bool SceneFolder::Exists(const std::string& path, void* self) {
  return static_cast<const SceneFolder*>(self)->IsAllowed(path);
}

// No "~" or variables: a path in a file means what it says.
std::string SceneFolder::SamePath(const std::string& path, void*) { return path; }

bool SceneFolder::Read(std::vector<unsigned char>* bytes, std::string* problem, const std::string& path, void* self) {
  auto* folder = static_cast<SceneFolder*>(self);
  if (!folder->IsAllowed(path)) {
    *problem = "not a file of the scene";
    return false;
  }
  const auto embedded = folder->embedded_.find(path);
  if (embedded == folder->embedded_.end()) return ReadRegularFile(path, *bytes, *problem);
  bytes->swap(embedded->second);
  folder->embedded_.erase(embedded);
  return true;
}

}  // namespace vuk::rgw::adaptor::standalone
