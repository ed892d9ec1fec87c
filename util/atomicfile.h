#pragma once
// A file that is replaced whole or not at all. The bytes go to a temporary
// file of a unique name beside the target, made for this writer alone (never
// through a link, never over anything already there); Commit puts them on
// the disk and renames the file over the target. Until then the target is
// untouched, and a writer that gives up (Rollback, or destroyed uncommitted)
// removes its own temporary file and nothing else.

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace vuk::util {

class AtomicFile {
 public:
  explicit AtomicFile(std::string path);
  ~AtomicFile();
  AtomicFile(const AtomicFile&) = delete;
  AtomicFile& operator=(const AtomicFile&) = delete;

  // Creates the temporary file, with the target's permissions when it has
  // one. False when the folder is missing or refuses it, or the target is a
  // folder.
  bool Open();
  bool Write(const void* data, std::size_t size);
  bool Write(std::string_view bytes) { return Write(bytes.data(), bytes.size()); }
  // The bytes written so far.
  std::uint64_t Written() const { return written_; }
  // Syncs and closes the temporary file, renames it over the target and syncs
  // the folder. A failure before the rename leaves the target as it was.
  bool Commit();
  void Rollback();

  // What went wrong, naming the target: "PATH: can't be written (reason)".
  const std::string& Error() const { return error_; }

  // The whole of `bytes` as the target's new content.
  static bool Replace(const std::string& path, std::string_view bytes, std::string* error = nullptr);
  // Whether the target can be replaced now: its temporary file is made and
  // removed again, so that a long job learns before it starts.
  static bool CanReplace(const std::string& path, std::string* error = nullptr);

 private:
  // Records the failure with the reason in errno and rolls back.
  bool Fail(const char* what);

  std::string path_;
  std::string temporary_;
  std::string error_;
  int fd_ = -1;
  std::uint64_t written_ = 0;
};

}  // namespace vuk::util
