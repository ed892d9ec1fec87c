#pragma once
// The one way errors and questions reach the user: a modal box. Every box
// is logged. One that is suppressed, or that no one can answer (no window:
// the command line, tests), gives 1, as a closed box does; the unanswered
// one goes to standard error as well.

#include <cstdint>
#include <functional>
#include <string>

namespace vuk::rgw::core {

using MessageBoxSink = std::function<std::int32_t(const std::string& text, const std::string& caption,
                                                  std::int32_t style)>;

// The desktop app puts its dialogs here.
void SetMessageBoxSink(MessageBoxSink sink);
// Silent mode suppresses the boxes that aren't forced.
void SetSilentMode(bool silent);
// OK 0, Cancel 1, Yes 2, No 3; suppressed or unanswered, 1.
std::int32_t ShowMessageBox(const std::string& text, const std::string& caption, std::int32_t style,
                            bool force = false);
// The same through another sink: a host adaptor's own dialogs.
std::int32_t ShowMessageBoxThrough(const MessageBoxSink& sink, const std::string& text, const std::string& caption,
                                   std::int32_t style, bool force = false);

}  // namespace vuk::rgw::core
