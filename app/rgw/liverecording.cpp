#include "app/rgw/liverecording.h"

#include <QEventLoop>
#include <algorithm>
#include <functional>

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
  rgw::core::RecordManager& recorder = *session.core.GetRecorder();
  recorder.countdownSeconds = take.countdownSeconds;
  // The take's own length ends it, not the scene's range.
  recorder.autoExpand = true;
  session.core.SetSpeedStep(take.slowMotion + 1);
  session.core.BeginRecording();
  const double end = recorder.startTime + take.seconds / recorder.timeScale;
  // The take ends in the tick that reaches its end, between the tick's frames
  // and the next arming of the timer.
  QEventLoop loop;
  const std::function<void()> between = recorder.processEvents;
  recorder.processEvents = [&] {
    between();
    if (recorder.time < end) return;
    session.core.StopRecording();
    loop.quit();
  };
  loop.exec();
  recorder.processEvents = between;
  session.core.SetSpeedStep(1);
  return recorder.time - recorder.startTime;
}

}  // namespace vuk::app
