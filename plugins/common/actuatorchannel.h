#pragma once
// The channel of the one-dimensional actuators: an input channel with a
// latch that makes a push button a switch, a rate limit and an integrator in
// front of its two filter stages, and the histories that take it back to an
// earlier frame.

#include "plugins/common/inputchannel.h"
#include "sdk/cinterface.h"
#include "util/avar.h"
#include "util/datachunk.h"

namespace vuk::rgw::addon {

struct ActuatorChannel : InputChannel {
  using InputChannel::InputChannel;

  // The input stage over dt on `raw`: latch, rate limit, integrator, then
  // the stage memory towards maximum x value and the output towards it.
  void Feed(double dt);
  // At rest: nothing latched, nothing integrated, no output.
  void Reset();

  bool keepState = false;
  int lastState = 0;
  int storedState = 0;
  double changeLimit = 0;
  double lastOutput = 0;
  bool integrate = false;
  // The input after latch, limit and integrator.
  double value = 0;
};

// The channel's state frame by frame.
class ActuatorHistory {
 public:
  // Keeps the state after the frame at t; a record at exactly t is replaced.
  void Record(double t, const ActuatorChannel& channel);
  // Forgets the frames after t and puts the channel back as it stood after
  // the frame at t: at rest when no frame is left. Runs step the times a
  // recording stepped, so a run from t finds that frame's record at exactly t.
  // The forgotten frames go to the undo of `tool`: undoing the run brings them back.
  void RewindTo(double t, ActuatorChannel& channel, CInterface& tool);
  void SaveTo(util::DataChunk& chunk) const;
  // False when an entry is missing or damaged; the history is then empty.
  bool LoadFrom(const util::DataChunk& chunk);
  bool IsEmpty() const { return output_.records.empty(); }

 private:
  // Calls visit(key, history) for the six histories of a const or non-const self.
  template <typename Self, typename Visit>
  static void ForEach(Self& self, Visit visit);

  util::AVar_Nearest<double> output_, stage_, lastOutput_, value_;
  util::AVar_Latest<int> lastState_, storedState_;
};

}  // namespace vuk::rgw::addon
