#pragma once
// Numbered timers on the Qt event loop of the main thread, and the time
// since start. A subclass hears each timer by its own number.

#include <QElapsedTimer>
#include <QObject>
#include <cstdint>
#include <map>

namespace vuk::rgw::core {

class TimerManager : public QObject {
 public:
  TimerManager();

  // Restarts the timer of that id; whole milliseconds, precise.
  void StartTimer(std::int32_t id, double seconds);
  void StopTimer(std::int32_t id);
  bool IsRunning(std::int32_t id) const { return timers_.count(id) != 0; }
  // Milliseconds since construction.
  std::int64_t Elapsed() const { return clock_.elapsed(); }

  // A timer fired; -1 for a Qt timer this object no longer knows.
  virtual void TimerFired(std::int32_t id, std::int64_t elapsedMs) = 0;

 protected:
  void timerEvent(QTimerEvent* event) override;

 private:
  QElapsedTimer clock_;
  std::map<std::int32_t, int> timers_;
};

}  // namespace vuk::rgw::core
