#include "core/window/resimulatewindow.h"

#include <cmath>

#include "gui/component/containers.h"
#include "gui/component/controls.h"

namespace vuk::rgw::core {

namespace {

constexpr std::int32_t kStop = 99;
constexpr std::int32_t kProgress = 100;
constexpr std::int32_t kRange = 101;
constexpr std::int32_t kFramesDone = 102;
constexpr std::int32_t kTimeLeft = 103;
constexpr std::int32_t kCurrentFrame = 104;
constexpr std::int32_t kUpdateViewport = 112;

std::int64_t FrameOf(double time, double fps) { return std::llround(time * fps); }

// "3 minutes and 5 seconds"
std::string MinutesAndSeconds(std::int64_t seconds) {
  return std::to_string(seconds / 60) + " minutes and " + std::to_string(seconds % 60) + " seconds";
}

}  // namespace

RecordManager::ResimulateWindow::ResimulateWindow(RecordManager& recorder, AdaptorInterface& adaptor)
    : WindowBase("ResimulateWindow", ReadLayout(kLayout)), recorder_(recorder), adaptor_(adaptor) {
  On(kStop, [this](std::int32_t) { Stop(); });
  QObject::connect(&timer_, &QTimer::timeout, [this] { Tick(); });
}

bool RecordManager::ResimulateWindow::UpdatesViewport() const {
  const auto* box = ControlOf<gui::component::CheckBox>(kUpdateViewport);
  return box && box->GetState() == gui::component::CheckBox::kOn;
}

void RecordManager::ResimulateWindow::SetLabel(std::int32_t id, const std::string& text) {
  if (auto* label = ControlOf<gui::component::Label>(id)) label->SetText(text);
}

void RecordManager::ResimulateWindow::Start() {
  lastViewportMs_ = recorder_.clock();
  ShowProgress();
  Show();
  timer_.start();
}

void RecordManager::ResimulateWindow::Stop() {
  timer_.stop();
  recorder_.FinishResimulation();
  Close();
  if (onFinished) onFinished();
}

void RecordManager::ResimulateWindow::Tick() {
  if (!recorder_.IsResimulating()) {
    Stop();
    return;
  }
  const bool followViewport = UpdatesViewport();
  if (followViewport) {
    ShowBar();
  } else {
    ShowProgress();
  }
  if (recorder_.ResimStep()) {
    ShowProgress();
    Stop();
    return;
  }
  const std::int64_t now = recorder_.clock();
  if (followViewport && now - lastViewportMs_ >= kViewportEveryMs) {
    lastViewportMs_ = now;
    ShowProgress();
    adaptor_.SetTime(recorder_.Resimulation().NextFrameTime());
  }
}

std::int32_t RecordManager::ResimulateWindow::ShowBar() {
  const auto percent = static_cast<std::int32_t>(recorder_.Resimulation().Progress() * 100.0f);
  if (auto* bar = ControlOf<gui::component::ProgressBar>(kProgress)) bar->SetProgress(percent);
  return percent;
}

void RecordManager::ResimulateWindow::ShowProgress() {
  const Resimulator& run = recorder_.Resimulation();
  const float progress = run.Progress();
  const double fps = adaptor_.GetFrameRate();
  const std::int64_t first = FrameOf(run.From(), fps);
  const std::int64_t last = FrameOf(run.To(), fps);
  const std::int64_t current = progress >= 1.0f ? last : FrameOf(run.NextFrameTime(), fps);
  const std::int64_t done = current - first;
  const double elapsed = static_cast<double>(recorder_.clock() - recorder_.resimStartMs) / 1000.0;
  const auto secondsLeft =
      done > 0 ? static_cast<std::int64_t>(static_cast<double>(last - current) / static_cast<double>(done) * elapsed) : 0;
  const std::int32_t percent = ShowBar();
  if (auto* dialog = dynamic_cast<gui::component::Dialog*>(Root())) {
    dialog->SetTitle(std::to_string(percent) + "% - " + MinutesAndSeconds(secondsLeft));
  }
  if (auto* group = dynamic_cast<gui::component::Group*>(Root() ? Root()->FindComponentById(kCurrentFrame) : nullptr)) {
    group->label = "Current frame: " + std::to_string(current);
    group->ModelChanged();
  }
  SetLabel(kRange, "Resimulating frame " + std::to_string(first) + " to " + std::to_string(last) + "...");
  SetLabel(kFramesDone, std::to_string(done) + " out of " + std::to_string(last - first) + " frames.");
  SetLabel(kTimeLeft, MinutesAndSeconds(secondsLeft) + ".");
}

}  // namespace vuk::rgw::core
