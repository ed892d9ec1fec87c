#pragma once
// While a take is recorded every key is an input: no shortcut of the window,
// the viewport or the timeline may take it before the keyboard device sees
// it. Only undo stays a shortcut, as it throws the take away and retakes.

#include <QObject>
#include <functional>

namespace vuk::app::desktop {

class RecordingKeys : public QObject {
 public:
  // Watches the application's events while it lives; `recording` tells
  // whether a take is being recorded now.
  explicit RecordingKeys(std::function<bool()> recording);
  ~RecordingKeys() override;

  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  std::function<bool()> recording_;
};

}  // namespace vuk::app::desktop
