#include "core/timermanager.h"

#include <QCoreApplication>
#include <QTimerEvent>

namespace vuk::rgw::core {

TimerManager::TimerManager() {
  clock_.invalidate();
  clock_.start();
}

void TimerManager::StartTimer(std::int32_t id, double seconds) {
  StopTimer(id);
  // Without an event loop (a test driving the ticks itself) no Qt timer is made.
  timers_[id] = QCoreApplication::instance() ? startTimer(static_cast<int>(seconds * 1000), Qt::PreciseTimer) : 0;
}

void TimerManager::StopTimer(std::int32_t id) {
  const auto found = timers_.find(id);
  if (found == timers_.end()) return;
  if (found->second != 0) killTimer(found->second);
  timers_.erase(found);
}

void TimerManager::timerEvent(QTimerEvent* event) {
  for (const auto& [id, qtId] : timers_) {
    if (qtId == event->timerId()) {
      TimerFired(id, Elapsed());
      return;
    }
  }
  killTimer(event->timerId());
  TimerFired(-1, Elapsed());
}

}  // namespace vuk::rgw::core
