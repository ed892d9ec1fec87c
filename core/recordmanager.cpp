#include "core/recordmanager.h"

#include <QCoreApplication>
#include <cmath>

#include "core/devicemanager.h"

namespace vuk::rgw::core {

namespace {

constexpr std::int64_t kSliceMs = 500;
constexpr double kEndTolerance = 1e-05;
constexpr int kMostFramesPerTick = 3;

// The host's scale is a whole positive number.
std::int32_t HostScale(double timeScale) { return std::max<std::int32_t>(1, static_cast<std::int32_t>(timeScale)); }

}  // namespace

RecordManager::RecordManager(AdaptorInterface* adaptor, DeviceManager* devices, InstanceList* instances)
    : adaptor_(adaptor), devices_(devices), instances_(instances) {
  clock = [this] { return Elapsed(); };
  processEvents = [] {
    if (QCoreApplication::instance()) QCoreApplication::processEvents();
  };
}

double RecordManager::FrameDuration() const {
  return useFixedFrameDuration ? fixedFrameDuration : adaptor_->GetFrameDuration();
}

std::int64_t RecordManager::FrameOf(double seconds) const {
  // A negative time between frames belongs to the frame before it.
  return static_cast<std::int64_t>(std::floor(seconds / FrameDuration()));
}

std::int32_t RecordManager::GetSpeedStep() const {
  return static_cast<std::int32_t>(std::log2(timeScale) + 0.001) + 1;
}

void RecordManager::SetSpeedStep(std::int32_t step) {
  timeScale = std::pow(2.0, step - 1);
  if (recording && !resimulating) adaptor_->SetTimeScale(HostScale(timeScale));
}

void RecordManager::StartInstancesOfTheTree() {
  // The checked ones take part.
  std::vector<Instance*> checked = instances_->CheckedInstances();
  std::vector<InstanceHandle> handles;
  for (Instance* instance : checked) handles.push_back(static_cast<CInterface*>(instance));
  adaptor_->BeginRecordingInstances(handles);
  BeginInstances(std::move(checked));
  firstTick = true;
}

void RecordManager::StartRecording() {
  if (recording) return;
  adaptor_->BeginUndo("Record");
  recording = true;
  startTime = adaptor_->GetTime();
  endTime = adaptor_->GetAnimationRange().second;
  time = startTime;
  frameIndex = FrameOf(time);
  StartInstancesOfTheTree();
  time = startTime - countdownSeconds;
  adaptor_->SetTimeScale(HostScale(timeScale));
  countdownShown = countdownSeconds != 0;
  countdownShownSeconds = countdownSeconds;
  countdownFraction = 0;
  StartTimer(kRecordTick, FrameDuration());
}

void RecordManager::BeginInstances(std::vector<Instance*> list) {
  recordInstances = std::move(list);
  if (devices_) devices_->Acquire();
  const Instance::Run run = resimulating ? Instance::Run::kResimulating : Instance::Run::kRecording;
  const double from = resimulating ? startTime : adaptor_->GetTime();
  for (Instance* instance : recordInstances) instance->Start(from, run);
}

void RecordManager::StepInstances(double frameTime) {
  if (devices_ && !resimulating) devices_->PollAll();
  for (Instance* instance : recordInstances) instance->Step(frameTime);
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
  const std::int64_t target = FrameOf(time);
  if (time > startTime) countdownShown = false;
  for (int done = 0; done < kMostFramesPerTick && frameIndex < target + 1; ++done) {
    ++frameIndex;
    const double d = FrameDuration();
    if (time >= endTime) {
      if (!autoExpand) {
        StopRecording();
        return;
      }
      // Doubling: a range ending at 10 s goes to 20, then 40; one ending at 0 stays.
      endTime = endTime + endTime;
      adaptor_->SetAnimationRange({adaptor_->GetAnimationRange().first, endTime});
    }
    if (time > startTime) StepInstances(static_cast<double>(frameIndex) * d);
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
  double wait = FrameDuration() - static_cast<double>(clock() - nowMs) / 1000.0;
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
  if (devices_) devices_->Unacquire();
  adaptor_->SetTimeScale(1);
  recording = false;
  adaptor_->EndRecording();
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
  adaptor_->BeginUndo("Resimulating");
  recording = resimulating = true;
  startTime = from;
  endTime = to;
  resimTime = from + 1.0 / adaptor_->GetFrameRate();
  progress = 0;
  savedTimeScale = timeScale;
  timeScale = 1.0;
  StartInstancesOfTheTree();
  resimStartMs = clock();
}

bool RecordManager::ResimStep() {
  const double fps = adaptor_->GetFrameRate();
  const std::int64_t sliceStart = clock();
  while (resimTime < endTime + kEndTolerance) {
    progress = static_cast<float>((resimTime - startTime) / (endTime - startTime));
    if (clock() - sliceStart > kSliceMs) return false;
    StepInstances(resimTime);
    resimTime += 1.0 / fps;
  }
  progress = 1.0f;
  return true;
}

void RecordManager::FinishResimulation() {
  if (!resimulating) return;
  for (Instance* instance : recordInstances) instance->Stop(endTime);
  recording = resimulating = false;
  timeScale = savedTimeScale;
  if (devices_) devices_->Unacquire();
  adaptor_->EndRecording();
  adaptor_->SetTime(startTime);
  adaptor_->EndUndo();
}

}  // namespace vuk::rgw::core
