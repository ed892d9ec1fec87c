#pragma once
// A take recorded live without a window: the recorder's timer on a Qt event
// loop, the tools reading the devices their channels are bound to, for a
// span of the wall clock.

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "app/rgw/session.h"

namespace vuk::app {

struct LiveTake {
  // Of the wall clock, after the countdown.
  double seconds = 0;
  // Scene time runs at 1 / 2^slowMotion of the wall clock.
  int slowMotion = 0;
  // Of scene time before the take, as the recorder counts them.
  int countdownSeconds = 0;
};

// While it lives only the named tools are checked; the tree's check states
// come back after.
class OnlyTheseTools {
 public:
  OnlyTheseTools(rgw::core::InstanceManager& tools, const std::vector<std::string>& names);
  ~OnlyTheseTools();
  OnlyTheseTools(const OnlyTheseTools&) = delete;
  OnlyTheseTools& operator=(const OnlyTheseTools&) = delete;

 private:
  std::vector<std::pair<rgw::core::InstanceReference*, std::int32_t>> saved_;
};

// Records the session's checked tools for the take's time, then stops, and
// answers the seconds of scene time recorded. A Qt application must exist.
// The recorder's clock and event hook are used as they are set, so that a
// test can drive them.
double RecordLive(Session& session, const LiveTake& take);

}  // namespace vuk::app
