#pragma once
// A take recorded again over some of its channels only. The other channels
// play back from their kept tracks while the tools run live, and keep those
// tracks exactly; a punched channel takes the new values over the range
// recorded and keeps its old values after it.

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "core/instance.h"
#include "unidevice/control.h"
#include "util/avar.h"

namespace vuk::rgw::core {

// A punched track, as recorded from `from` on over the track `before`, gets
// back the old values around its new ones: those from `from` up to its first
// new value and those after its last. A track with no new value is `before`.
void KeepAroundPunch(util::AVar_Linear<double>& punched, const util::AVar_Linear<double>& before, double from);

class PunchIn {
 public:
  // The channels recorded anew, by name, in every tool taking part; empty,
  // an ordinary take records them all.
  std::vector<std::string> channels;

  bool IsActive() const { return !channels.empty(); }
  // Before the tools start a take at `from`: keeps every track as it is and
  // puts a stand-in in place of each channel that plays back.
  void Begin(const std::vector<Instance*>& instances, double from);
  // Before each frame's step: the stand-ins take their tracks' values at `time`.
  void Feed(double time);
  // After the tools stopped: the channels get their own controls again, the
  // played-back tracks are put back as they were, and each punched track
  // keeps its old values before the first frame recorded and after the last.
  void End();

 private:
  struct Kept {
    Instance* instance;
    std::size_t channel;
    util::AVar_Linear<double> before;
    // Null for a punched channel.
    std::unique_ptr<unidevice::Control> standIn;
    unidevice::Control* real;
  };

  bool IsPunched(const std::string& channel) const;

  std::vector<Kept> kept_;
  double from_ = 0;
};

}  // namespace vuk::rgw::core
