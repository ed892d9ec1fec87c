#include "app/rgw/desktop/recordingkeys.h"

#include <QCoreApplication>
#include <QKeyEvent>

namespace vuk::app::desktop {

RecordingKeys::RecordingKeys(std::function<bool()> recording) : recording_(std::move(recording)) {
  QCoreApplication::instance()->installEventFilter(this);
}

RecordingKeys::~RecordingKeys() { QCoreApplication::instance()->removeEventFilter(this); }

bool RecordingKeys::eventFilter(QObject*, QEvent* event) {
  if (event->type() != QEvent::ShortcutOverride || !recording_()) return false;
  if (static_cast<QKeyEvent*>(event)->matches(QKeySequence::Undo)) return false;
  // Accepted, the override sends the key on as a key press instead.
  event->accept();
  return true;
}

}  // namespace vuk::app::desktop
