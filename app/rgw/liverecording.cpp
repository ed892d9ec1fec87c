#include "app/rgw/liverecording.h"

#include <QEventLoop>
#include <QTimer>
#include <algorithm>

namespace vuk::app {

OnlyTheseTools::OnlyTheseTools(rgw::core::InstanceManager& tools, const std::vector<std::string>& names) {
  for (const std::string& name : tools.InstanceNames()) {
    rgw::core::InstanceReference* item = tools.Find(name);
    auto& checked = item->states[rgw::core::TreeItem::kChecked];
    saved_.emplace_back(item, checked);
    checked = std::find(names.begin(), names.end(), name) != names.end() ? 1 : 0;
  }
}

OnlyTheseTools::~OnlyTheseTools() {
  for (const auto& [item, checked] : saved_) item->states[rgw::core::TreeItem::kChecked] = checked;
}

double RecordLive(Session& session, const LiveTake& take) {
  // How often the end of the take is looked for: well within a frame.
  constexpr int kWatchMs = 5;
  rgw::core::RecordManager& recorder = *session.core.GetRecorder();
  recorder.countdownSeconds = take.countdownSeconds;
  // The take's own length ends it, not the scene's range.
  recorder.autoExpand = true;
  session.core.SetSpeedStep(take.slowMotion + 1);
  session.core.BeginRecording();
  const double end = recorder.startTime + take.seconds / recorder.timeScale;
  QEventLoop loop;
  QTimer watch;
  QObject::connect(&watch, &QTimer::timeout, [&] {
    if (recorder.IsRecording() && recorder.time < end) return;
    if (recorder.IsRecording()) session.core.StopRecording();
    loop.quit();
  });
  watch.start(kWatchMs);
  loop.exec();
  session.core.SetSpeedStep(1);
  return std::max(0.0, std::min(recorder.time, end) - recorder.startTime);
}

}  // namespace vuk::app
