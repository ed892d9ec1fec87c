#include "core/corelog.h"

#include <chrono>
#include <cstdio>
#include <ctime>
#include <iostream>

namespace vuk::rgw::core {

namespace {

const char* LevelWord(CoreLog::Level level) {
  switch (level) {
    case CoreLog::Level::kInfo: return "INFO";
    case CoreLog::Level::kWarning: return "WARNING";
    case CoreLog::Level::kError: return "ERROR";
  }
  return "INFO";
}

}  // namespace

bool CoreLog::Open(const std::string& path) {
  Close();
  file_.open(path, std::ios::out | std::ios::app);
  path_ = file_.is_open() ? path : std::string();
  return file_.is_open();
}

void CoreLog::Close() {
  if (file_.is_open()) file_.close();
  path_.clear();
}

std::string CoreLog::Format(Level level, const std::string& message, long long unixMilliseconds) {
  const std::time_t seconds = static_cast<std::time_t>(unixMilliseconds / 1000);
  std::tm utc{};
  gmtime_r(&seconds, &utc);
  char stamp[64];
  std::snprintf(stamp, sizeof stamp, "%04d-%02d-%02dT%02d:%02d:%02d.%03dZ", utc.tm_year + 1900, utc.tm_mon + 1,
                utc.tm_mday, utc.tm_hour, utc.tm_min, utc.tm_sec, static_cast<int>(unixMilliseconds % 1000));
  std::string entry = std::string(stamp) + " " + LevelWord(level) + " ";
  for (char c : message) {
    if (c == '\r') continue;
    entry += c;
    if (c == '\n') entry += '\t';
  }
  return entry;
}

void CoreLog::Write(Level level, const std::string& message) {
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  const long long milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
  const std::string entry = Format(level, message, milliseconds);
  if (file_.is_open()) {
    file_ << entry << '\n';
    file_.flush();
  } else {
    std::cerr << entry << '\n';
  }
}

}  // namespace vuk::rgw::core
