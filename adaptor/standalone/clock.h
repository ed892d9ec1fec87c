#pragma once
// The scene's clock: the current tick, the host frame rate as a whole number
// with its ticks per frame, and the animation range.

#include <cstdint>
#include <functional>

#include "adaptor/standalone/ticks.h"

namespace vuk::rgw::adaptor::standalone {

class Clock {
 public:
  std::int32_t GetFrameRate() const { return frameRate_; }
  // Ticks per frame are the whole-number quotient, as hosts keep them.
  void SetFrameRate(std::int32_t framesPerSecond);
  Tick GetTicksPerFrame() const { return ticksPerFrame_; }

  // Seconds: ticks over (ticks per frame x frame rate).
  double GetTime() const;
  Tick GetTick() const { return tick_; }
  // Truncates (frame rate x ticks per frame x seconds) toward zero.
  void SetTime(double seconds);
  void SetTick(Tick tick);
  Tick TickOf(double seconds) const;
  double SecondsOf(Tick tick) const;

  Tick GetRangeStart() const { return rangeStart_; }
  Tick GetRangeEnd() const { return rangeEnd_; }
  void SetRange(Tick start, Tick end);

  // Called with the new time in seconds whenever the current time moves.
  std::function<void(double)> onTimeChanged;

 private:
  std::int32_t frameRate_ = 30;
  Tick ticksPerFrame_ = kTicksPerSecond / 30;
  Tick tick_ = 0;
  Tick rangeStart_ = 0;
  Tick rangeEnd_ = 100 * (kTicksPerSecond / 30);
};

}  // namespace vuk::rgw::adaptor::standalone
