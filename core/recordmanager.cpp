#include "core/recordmanager.h"

#include <QCoreApplication>
#include <cmath>

#include "core/devicemanager.h"
#include "util/avar.h"

namespace vuk::rgw::core {

namespace {

constexpr int kMostFramesPerTick = 3;

// The host's scale is a whole positive number.
std::int32_t HostScale(double timeScale) { return std::max<std::int32_t>(1, static_cast<std::int32_t>(timeScale)); }

// Histories and keys make room for the take up to the end of the range, and
// for ten minutes at least: a frame of the take never waits on one growing.
void ReserveTake(double from, double to, const TimeBase& base) {
  constexpr double kLeastSeconds = 600;
  util::SetHistoryHorizon(static_cast<std::size_t>(std::max(to - from, kLeastSeconds) / base.FrameDuration()) + 1);
}

}  // namespace

RecordManager::RecordManager(AdaptorInterface* adaptor, DeviceManager* devices, InstanceList* instances)
    : adaptor_(adaptor), devices_(devices), instances_(instances), resimulator_(adaptor) {
  clock = [this] { return Elapsed(); };
  resimulator_.clock = [this] { return clock(); };
  processEvents = [] {
    if (QCoreApplication::instance()) QCoreApplication::processEvents();
  };
}

TimeBase RecordManager::Base() const {
  return TimeBase(useFixedFrameDuration ? 1.0 / fixedFrameDuration : adaptor_->GetFrameRate());
}

std::int32_t RecordManager::GetSpeedStep() const {
  return static_cast<std::int32_t>(std::log2(timeScale) + 0.001) + 1;
}

void RecordManager::SetSpeedStep(std::int32_t step) {
  timeScale = std::pow(2.0, step - 1);
  if (recording && !resimulating) adaptor_->SetTimeScale(HostScale(timeScale));
}

void RecordManager::StartRecording() {
  if (recording) return;
  if (lowPolyOnRecord) lowPolyTake_.Begin(instances_->AllInstances());
  adaptor_->BeginUndo("Record");
  recording = true;
  startTime = adaptor_->GetTime();
  endTime = adaptor_->GetAnimationRange().second;
  time = startTime;
  frameIndex = Base().FrameAt(time);
  ReserveTake(startTime, endTime, Base());
  std::vector<Instance*> checked = instances_->CheckedInstances();
  adaptor_->BeginRecordingInstances(HandlesOf(checked));
  BeginInstances(std::move(checked));
  if (journal) journal->Begin(recordInstances, startTime, timeScale, punchIn.channels);
  firstTick = true;
  time = startTime - countdownSeconds;
  adaptor_->SetTimeScale(HostScale(timeScale));
  countdownShown = countdownSeconds != 0;
  countdownShownSeconds = countdownSeconds;
  countdownFraction = 0;
  StartTimer(kRecordTick, Base().FrameDuration());
}

void RecordManager::BeginInstances(std::vector<Instance*> list) {
  recordInstances = std::move(list);
  if (devices_) devices_->Acquire();
  const double from = adaptor_->GetTime();
  punchIn.Begin(recordInstances, from);
  for (Instance* instance : recordInstances) instance->Start(from, Instance::Run::kRecording);
}

void RecordManager::StepInstances(double frameTime) {
  if (devices_ && !resimulating) devices_->PollAll();
  punchIn.Feed(frameTime);
  for (Instance* instance : recordInstances) instance->Step(frameTime);
  if (journal && !resimulating) journal->Append(frameTime, recordInstances);
}

void RecordManager::OnTimeChanged(double newTime) {
  const std::vector<Instance*> listeners = recording ? recordInstances : instances_->AllInstances();
  for (Instance* instance : listeners) instance->GetTool()->TimeChanged(newTime);
}

void RecordManager::TimerFired(std::int32_t id, std::int64_t) {
  if (id == kRecordTick) Tick(clock());
}

void RecordManager::Tick(std::int64_t nowMs) {
  if (firstTick) {
    firstTick = false;
    lastTickMs = nowMs;
  }
  StopTimer(kRecordTick);
  time += static_cast<double>(nowMs - lastTickMs) * 0.001 / timeScale;
  lastTickMs = nowMs;
  const TimeBase base = Base();
  const std::int64_t target = base.FrameAt(time);
  if (time > startTime) countdownShown = false;
  for (int done = 0; done < kMostFramesPerTick && frameIndex < target + 1; ++done) {
    ++frameIndex;
    if (time >= endTime) {
      if (!autoExpand) {
        StopRecording();
        return;
      }
      // Doubling: a range ending at 10 s goes to 20, then 40; one ending at 0 stays.
      endTime = endTime + endTime;
      adaptor_->SetAnimationRange({adaptor_->GetAnimationRange().first, endTime});
      ReserveTake(time, endTime, base);
    }
    if (time > startTime) StepInstances(base.TimeOf(frameIndex));
  }
  if (time < startTime) {
    const double left = startTime - time;
    countdownShownSeconds = static_cast<std::int32_t>(left + 0.999);
    countdownFraction = std::fmod(left, 1.0);
    if (countdownShownSeconds < 1) {
      countdownShownSeconds = 1;
      countdownFraction = 0.0;
    }
  }
  adaptor_->SetTime(time);
  double wait = base.FrameDuration() - static_cast<double>(clock() - nowMs) / 1000.0;
  if (wait <= 0) wait = 0.001;
  processEvents();
  if (recording) StartTimer(kRecordTick, wait);
}

void RecordManager::StopRecording() {
  countdownShown = false;
  StopTimer(kRecordTick);
  // Stopped in the countdown, the clock goes back to where the take began.
  if (time < startTime) {
    time = startTime;
    adaptor_->SetTime(time);
  }
  for (Instance* instance : recordInstances) instance->Stop(endTime);
  punchIn.End();
  if (journal) journal->Close();
  if (devices_) devices_->Unacquire();
  adaptor_->SetTimeScale(1);
  recording = false;
  util::SetHistoryHorizon(0);
  adaptor_->EndRecording();
  lowPolyTake_.End();
  adaptor_->EndUndo();
}

void RecordManager::RetakeAfterUndo() {
  if (!recording || resimulating) return;
  StopRecording();
  if (adaptor_->Undo()) StartRecording();
}

bool RecordManager::OnKey(std::int32_t code, bool control, bool alt, bool shift, bool meta) {
  constexpr std::int32_t kZ = 90;
  if (code != kZ || !control || alt || shift || meta || !recording || resimulating) return false;
  RetakeAfterUndo();
  return true;
}

void RecordManager::StartResimulation(double from, double to) {
  if (recording) return;
  recording = resimulating = true;
  startTime = from;
  endTime = to;
  savedTimeScale = timeScale;
  timeScale = 1.0;
  recordInstances = instances_->CheckedInstances();
  if (devices_) devices_->Acquire();
  resimulator_.Start(recordInstances, from, to, Base());
  resimStartMs = clock();
}

bool RecordManager::ResimStep() { return resimulator_.RunFor(Resimulator::kSliceMs); }

void RecordManager::FinishResimulation() {
  if (!resimulating) return;
  // Cleared first, so that the clock's return to the start reaches every tool.
  recording = resimulating = false;
  timeScale = savedTimeScale;
  if (devices_) devices_->Unacquire();
  resimulator_.Finish();
}

}  // namespace vuk::rgw::core
