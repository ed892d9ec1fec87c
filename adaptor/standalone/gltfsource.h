#pragma once
// The files a scene is read from. A scene may come from a stranger: its
// buffers are read only from regular files inside its own folder, and its
// images never, so a file can't make us read, copy out or hang on anything
// else on the machine.

#include <cstdint>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace tinygltf {
struct FsCallbacks;
}

namespace vuk::rgw::adaptor::standalone {

// Larger files are refused rather than read: the most a binary glTF can
// hold, and the most the glTF parser takes in one text. A scene of several
// vehicles with hour-long takes runs to gigabytes.
constexpr std::uintmax_t kMaxSceneFileBytes = (std::uintmax_t(1) << 32) - 1;

// A regular file open for reading; devices, FIFOs and files over
// kMaxSceneFileBytes are refused without being waited on.
class RegularFile {
 public:
  RegularFile() = default;
  ~RegularFile();
  RegularFile(const RegularFile&) = delete;
  RegularFile& operator=(const RegularFile&) = delete;

  bool Open(const std::filesystem::path& path, std::string& problem);
  std::uint64_t Size() const { return size_; }
  // Exactly `length` bytes from `offset`, or false.
  bool ReadAt(std::uint64_t offset, void* into, std::size_t length) const;
  bool ReadAll(std::vector<unsigned char>& bytes, std::string& problem) const;

 private:
  int fd_ = -1;
  std::uint64_t size_ = 0;
};

// A regular file, whole, with the refusals of RegularFile.
bool ReadRegularFile(const std::filesystem::path& path, std::vector<unsigned char>& bytes, std::string& problem);

// The folder of a scene, and the files in it that its buffers may be read from.
class SceneFolder {
 public:
  explicit SceneFolder(const std::filesystem::path& folder);

  // Lets the parser read what the URI names: a relative path, after its
  // escapes, to a regular file inside the folder, symbolic links followed.
  // The problem names neither the file's contents nor its size.
  bool Allow(const std::string& uri, std::string& problem);

  // Data the parser reads by `uri` as if it were an allowed file, once.
  void Embed(const std::string& uri, std::vector<unsigned char> bytes);

  // Callbacks for the parser that read nothing but the allowed files.
  tinygltf::FsCallbacks Callbacks();
  const std::string& Path() const { return path_; }

 private:
  static bool Exists(const std::string& path, void* self);
  static std::string SamePath(const std::string& path, void*);
  static bool Read(std::vector<unsigned char>* bytes, std::string* problem, const std::string& path, void* self);
  bool IsAllowed(const std::string& path) const;

  std::filesystem::path folder_;
  std::string path_;
  std::set<std::filesystem::path> allowed_;
  std::map<std::string, std::vector<unsigned char>> embedded_;  // by the path the parser asks for
};

}  // namespace vuk::rgw::adaptor::standalone
