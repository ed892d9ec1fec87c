#pragma once
// Steps tools again over a range of frames from their recorded inputs, as fast
// as the machine goes: in slices of the wall clock, so that a window or a
// progress bar stays alive, or all at once. The whole run is one host undo.

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "core/adaptorinterface.h"
#include "core/instance.h"
#include "core/timebase.h"

namespace vuk::rgw::core {

// The tool-interface handles of instances, as the adaptor takes them.
std::vector<InstanceHandle> HandlesOf(const std::vector<Instance*>& instances);

class Resimulator {
 public:
  // A slice short enough for the GUI to stay alive.
  static constexpr std::int64_t kSliceMs = 500;
  // A run lies within a day of scene time, far past any shot; frame numbers
  // up to it stay within 32 bits at any frame rate a scene takes.
  static constexpr double kMaxSceneSeconds = 86400;
  // Every frame keeps keys on the nodes and state in the tools, so a run
  // steps at most a day's frames at 30 fps: a few gigabytes for a large rig.
  static constexpr std::int64_t kMaxFrames = 2592000;

  // Empty when a run over the range can be made; else why not, with the range
  // allowed.
  static std::string RangeProblem(double from, double to, const TimeBase& base);

  explicit Resimulator(AdaptorInterface* adaptor);

  // Starts the instances on their recorded inputs. The frame at `from` holds
  // the start state and is not stepped; the frames after it are, up to `to`.
  // A range with a RangeProblem starts nothing, and false is the answer.
  bool Start(std::vector<Instance*> instances, double from, double to, TimeBase base);
  // Steps frames until all are done or the clock is more than `budgetMs` past
  // the call; true when all are done.
  bool RunFor(std::int64_t budgetMs);
  void RunToEnd();
  // Stops the instances and puts the host's clock back at the start. A run
  // stopped early keeps the frames written so far.
  void Finish();

  double From() const { return from_; }
  double To() const { return to_; }
  double NextFrameTime() const { return base_.TimeAfter(from_, next_); }
  // Share of the range up to the next frame, 0 to 1; 1 once all frames are done.
  float Progress() const;

  // The wall clock in milliseconds; tests put their own here.
  std::function<std::int64_t()> clock;

 private:
  bool FramesLeft() const;
  void StepNextFrame();

  AdaptorInterface* adaptor_;
  std::vector<Instance*> instances_;
  double from_ = 0;
  double to_ = 0;
  TimeBase base_{1.0};
  // The next frame to step, counted from the start.
  std::int64_t next_ = 1;
  bool started_ = false;
};

}  // namespace vuk::rgw::core
