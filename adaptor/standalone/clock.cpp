#include "adaptor/standalone/clock.h"

namespace vuk::rgw::adaptor::standalone {

void Clock::SetFrameRate(std::int32_t framesPerSecond) {
  if (framesPerSecond <= 0) return;
  frameRate_ = framesPerSecond;
  ticksPerFrame_ = kTicksPerSecond / framesPerSecond;
  if (ticksPerFrame_ == 0) ticksPerFrame_ = 1;
}

double Clock::SecondsOf(Tick tick) const {
  return static_cast<double>(tick) / static_cast<double>(ticksPerFrame_ * frameRate_);
}

Tick Clock::TickOf(double seconds) const {
  return TruncateTicks(static_cast<double>(frameRate_) * static_cast<double>(ticksPerFrame_) * seconds);
}

double Clock::GetTime() const { return SecondsOf(tick_); }

void Clock::SetTime(double seconds) { SetTick(TickOf(seconds)); }

void Clock::SetTick(Tick tick) {
  tick_ = tick;
  if (onTimeChanged) onTimeChanged(GetTime());
}

void Clock::SetRange(Tick start, Tick end) {
  rangeStart_ = start;
  rangeEnd_ = end < start ? start : end;
}

}  // namespace vuk::rgw::adaptor::standalone
