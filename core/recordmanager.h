#pragma once
// What makes time run. A recording follows the wall clock, slowed down by a
// power of two, and steps every taking-part tool once per frame while their
// live inputs are kept; a resimulation steps them again from their kept
// inputs as fast as the machine goes.

#include <cstdint>
#include <functional>
#include <vector>

#include "core/adaptorinterface.h"
#include "core/instance.h"
#include "core/polyvisibility.h"
#include "core/punchin.h"
#include "core/resimulator.h"
#include "core/takejournal.h"
#include "core/timebase.h"
#include "core/timermanager.h"

namespace vuk::rgw::core {

class DeviceManager;

// The instances of the tool tree: all of them in tree order, and the checked ones.
class InstanceList {
 public:
  virtual std::vector<Instance*> AllInstances() = 0;
  virtual std::vector<Instance*> CheckedInstances() = 0;

 protected:
  ~InstanceList() = default;
};

class RecordManager : public TimerManager {
 public:
  static constexpr std::int32_t kRecordTick = 123;
  // The progress window of a resimulation; it lives with the windows, as
  // the core runs without widgets.
  class ResimulateWindow;

  // The devices may be null: nothing is polled then.
  RecordManager(AdaptorInterface* adaptor, DeviceManager* devices, InstanceList* instances);

  bool IsRecording() const { return recording; }
  bool IsResimulating() const { return resimulating; }
  void StartRecording();
  void StopRecording();
  // Throws the take away and starts again at once; a failing host undo leaves it idle.
  void RetakeAfterUndo();
  // A key from the device layer: Control-Z alone (code 90) retakes. Answers
  // whether the key was taken.
  bool OnKey(std::int32_t code, bool control, bool alt, bool shift, bool meta);
  void StartResimulation(double from, double to);
  // One slice of at most 500 ms of the clock; true when all frames are done.
  bool ResimStep();
  // Ends a resimulation, done or stopped; the frames written stay.
  void FinishResimulation();
  // The running or the last resimulation: its range and progress.
  const Resimulator& Resimulation() const { return resimulator_; }
  std::int32_t GetSpeedStep() const;
  void SetSpeedStep(std::int32_t step);

  void BeginInstances(std::vector<Instance*> list);
  void StepInstances(double frameTime);
  // The host's time moved: the tools taking part, or all of them, hear it.
  void OnTimeChanged(double newTime);

  // One tick of the record timer at `nowMs` of the clock.
  void Tick(std::int64_t nowMs);
  void TimerFired(std::int32_t id, std::int64_t elapsedMs) override;

  // The wall clock in milliseconds; tests put their own here.
  std::function<std::int64_t()> clock;
  // Lets pending events run in the middle of a tick.
  std::function<void()> processEvents;
  // Where each take's raw values go as they are recorded; none when null.
  TakeJournal* journal = nullptr;
  // The channels a take records anew over the kept one; none, all of them.
  PunchIn punchIn;

  std::vector<Instance*> recordInstances;
  bool firstTick = true;
  double timeScale = 1.0;
  double startTime = 0;
  double endTime = 0;
  double fixedFrameDuration = 0.04;
  bool useFixedFrameDuration = false;
  std::int64_t lastTickMs = 0;
  std::int64_t frameIndex = 0;
  double time = 0;
  bool recording = false;
  bool resimulating = false;
  double savedTimeScale = 1.0;
  std::int32_t countdownSeconds = 3;
  // The main window's switches: resimulate from the range start, expand the range at its end.
  bool resimulateFromFirstFrame = false;
  bool autoExpand = false;
  // The main window's switch: a recording shows every tool's low-poly
  // models only, and puts the models back at its end.
  bool lowPolyOnRecord = false;
  // What the countdown shows: whole seconds left and the fraction of the current one.
  bool countdownShown = false;
  std::int32_t countdownShownSeconds = 0;
  double countdownFraction = 0;
  // When the resimulation started on the clock, for the estimate of time left.
  std::int64_t resimStartMs = 0;

 private:
  // The host's frame rate, or the fixed frame duration when that is set.
  TimeBase Base() const;

  AdaptorInterface* adaptor_;
  DeviceManager* devices_;
  InstanceList* instances_;
  Resimulator resimulator_;
  LowPolyTake lowPolyTake_;
};

}  // namespace vuk::rgw::core
