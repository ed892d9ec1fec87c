#include "core/messagebox.h"

#include <iostream>

#include "core/corelog.h"

namespace vuk::rgw::core {

namespace {

// The answer of a box that is closed without a button.
constexpr std::int32_t kUnanswered = 1;

struct Boxes {
  MessageBoxSink sink;
  bool silent = false;
};

Boxes& State() {
  static Boxes boxes;
  return boxes;
}

}  // namespace

void SetMessageBoxSink(MessageBoxSink sink) { State().sink = std::move(sink); }

void SetSilentMode(bool silent) { State().silent = silent; }

std::int32_t ShowMessageBox(const std::string& text, const std::string& caption, std::int32_t style, bool force) {
  return ShowMessageBoxThrough(State().sink, text, caption, style, force);
}

std::int32_t ShowMessageBoxThrough(const MessageBoxSink& sink, const std::string& text, const std::string& caption,
                                   std::int32_t style, bool force) {
  CoreLog::Instance().Info("box \"" + caption + "\": " + text);
  if (State().silent && !force) return kUnanswered;
  if (sink) return sink(text, caption, style);
  // No window to show it in: the command line user still reads it.
  std::cerr << caption << ": " << text << std::endl;
  return kUnanswered;
}

}  // namespace vuk::rgw::core
