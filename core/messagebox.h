#pragma once
// The one way errors and questions reach the user: a modal box. Until a
// window exists the text goes to standard error and the answer is OK.

#include <cstdint>
#include <functional>
#include <string>

namespace vuk::rgw::core {

using MessageBoxSink = std::function<std::int32_t(const std::string& text, const std::string& caption,
                                                  std::int32_t style)>;

// The desktop app puts its dialogs here.
void SetMessageBoxSink(MessageBoxSink sink);
// Silent mode suppresses boxes that aren't forced; they answer OK.
void SetSilentMode(bool silent);
// OK 0, Cancel 1, Yes 2, No 3.
std::int32_t ShowMessageBox(const std::string& text, const std::string& caption, std::int32_t style,
                            bool force = false);

}  // namespace vuk::rgw::core
