#include "core/resimulator.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <iomanip>
#include <sstream>

namespace vuk::rgw::core {

namespace {

// A last frame that lies on `to` but comes out of the division a hair late is still stepped.
constexpr double kEndTolerance = 1e-05;

std::int64_t SteadyMs() {
  return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now().time_since_epoch())
      .count();
}

// As the user reads them: "1e+18", "0.5", "414720000".
std::string Number(double value) {
  std::ostringstream text;
  text << std::setprecision(15) << value;
  return text.str();
}

std::string Seconds(double value) { return Number(value) + " s"; }

}  // namespace

std::vector<InstanceHandle> HandlesOf(const std::vector<Instance*>& instances) {
  std::vector<InstanceHandle> handles;
  for (Instance* instance : instances) handles.push_back(static_cast<CInterface*>(instance));
  return handles;
}

Resimulator::Resimulator(AdaptorInterface* adaptor) : clock(SteadyMs), adaptor_(adaptor) {}

std::string Resimulator::RangeProblem(double from, double to, const TimeBase& base) {
  if (!(from >= 0 && to <= kMaxSceneSeconds)) {
    return "a run lies within 0 s and " + Seconds(kMaxSceneSeconds) + " of scene time (a day), not " + Seconds(from) +
           " to " + Seconds(to);
  }
  const double frames = (to - from) * base.FramesPerSecond();
  if (frames > static_cast<double>(kMaxFrames)) {
    return Seconds(from) + " to " + Seconds(to) + " at " + Number(base.FramesPerSecond()) + " fps is " +
           Number(std::floor(frames)) + " frames; a run steps at most " + std::to_string(kMaxFrames);
  }
  return {};
}

bool Resimulator::Start(std::vector<Instance*> instances, double from, double to, TimeBase base) {
  started_ = RangeProblem(from, to, base).empty();
  if (!started_) return false;
  instances_ = std::move(instances);
  from_ = from;
  to_ = to;
  base_ = base;
  next_ = 1;
  adaptor_->BeginUndo("Resimulating");
  adaptor_->BeginRecordingInstances(HandlesOf(instances_));
  // A start on the frame grid is given as its frame's own time, so that a
  // tool finds the state it kept at that frame.
  const double start = base_.TimeAfter(from_, 0);
  for (Instance* instance : instances_) instance->Start(start, Instance::Run::kResimulating);
  return true;
}

bool Resimulator::FramesLeft() const { return started_ && NextFrameTime() < to_ + kEndTolerance; }

float Resimulator::Progress() const {
  if (!FramesLeft()) return 1.0f;
  return static_cast<float>(std::min(1.0, (NextFrameTime() - from_) / (to_ - from_)));
}

void Resimulator::StepNextFrame() {
  const double time = NextFrameTime();
  for (Instance* instance : instances_) instance->Step(time);
  ++next_;
}

bool Resimulator::RunFor(std::int64_t budgetMs) {
  const std::int64_t sliceStart = clock();
  while (FramesLeft()) {
    if (clock() - sliceStart > budgetMs) return false;
    StepNextFrame();
  }
  return true;
}

void Resimulator::RunToEnd() {
  while (FramesLeft()) StepNextFrame();
}

void Resimulator::Finish() {
  if (!started_) return;
  started_ = false;
  for (Instance* instance : instances_) instance->Stop(to_);
  adaptor_->EndRecording();
  adaptor_->SetTime(from_);
  adaptor_->EndUndo();
}

}  // namespace vuk::rgw::core
