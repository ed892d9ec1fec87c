#include "core/messagebox.h"

#include "core/corelog.h"

namespace vuk::rgw::core {

namespace {

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
  CoreLog::Instance().Info("box \"" + caption + "\": " + text);
  if (State().silent && !force) return 0;
  return State().sink ? State().sink(text, caption, style) : 0;
}

}  // namespace vuk::rgw::core
