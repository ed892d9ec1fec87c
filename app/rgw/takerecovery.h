#pragma once
// A take that a recording cut short left in the journal beside its scene:
// found, described, and recovered into the scene's tools.

#include <string>
#include <vector>

#include "app/rgw/session.h"
#include "core/takejournal.h"

namespace vuk::app {

struct UnfinishedTake {
  std::string path;
  // The journal file exists.
  bool found = false;
  rgw::core::JournalReading reading;

  // Read, with a frame at least.
  bool Recoverable() const;
  // Why it can't be recovered, or where it was cut; empty when whole.
  std::string Problem() const;
  // "2.480 s from 0.000 s with Car, damaged at its end".
  std::string Description() const;
};

// The journal of the scene file, when it has one.
UnfinishedTake FindUnfinishedTake(const std::string& scenePath);

// The journal's frames into the tools' recorded tracks from the take's start
// on, as the recording did, and the tools of the take simulated over it;
// false with the reason, naming the scene `file`.
bool RecoverTake(const rgw::core::JournalTake& take, Session& session, const std::string& file, std::string& error);

// "2.480 s from 0.000 s".
std::string Span(double seconds, double from);
std::vector<std::string> ToolsOf(const rgw::core::JournalTake& take);

}  // namespace vuk::app
