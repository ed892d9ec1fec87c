#pragma once
// The core's log file. One entry per line: an ISO 8601 UTC timestamp with
// milliseconds, the level, and the message; lines of a message after the
// first are indented with a tab, so every entry starts at column 0.
//   2026-11-22T16:20:01.123Z INFO core started with the standalone adaptor

#include <fstream>
#include <string>

#include "util/singleton.h"

namespace vuk::rgw::core {

class CoreLog : public util::Singleton<CoreLog> {
 public:
  enum class Level { kInfo, kWarning, kError };

  // Appends to the file; false when it can't be opened, and then entries go
  // to standard error instead.
  bool Open(const std::string& path);
  void Close();
  bool IsOpen() const { return file_.is_open(); }
  const std::string& GetPath() const { return path_; }

  void Write(Level level, const std::string& message);
  void Info(const std::string& message) { Write(Level::kInfo, message); }
  void Warning(const std::string& message) { Write(Level::kWarning, message); }
  void Error(const std::string& message) { Write(Level::kError, message); }

  // The text of one entry, without the line end.
  static std::string Format(Level level, const std::string& message, long long unixMilliseconds);

 private:
  std::ofstream file_;
  std::string path_;
};

}  // namespace vuk::rgw::core
