#pragma once
// The progress window of a resimulation: it runs the resimulation in slices
// on its timer, shows the frame, the share done and the time left, and stops
// the run at the user's word.

#include <QTimer>
#include <cstdint>
#include <functional>
#include <string>

#include "core/recordmanager.h"
#include "core/window/windowbase.h"

namespace vuk::rgw::core {

class RecordManager::ResimulateWindow : public WindowBase {
 public:
  static constexpr const char* kLayout = "/core/layout/rgw_resimulate.xml";
  // With "Update viewport" on, the labels and the viewports follow at most this often.
  static constexpr std::int64_t kViewportEveryMs = 2000;

  ResimulateWindow(RecordManager& recorder, AdaptorInterface& adaptor);

  // Shows the window and runs the resimulation under way until it is done or stopped.
  void Start();
  // Ends the run under way and closes; the frames written stay.
  void Stop();
  // Called once a run has ended, done or stopped.
  std::function<void()> onFinished;

 private:
  void Tick();
  // The labels, the bar and the title.
  void ShowProgress();
  // The bar alone; answers its percent.
  std::int32_t ShowBar();
  void SetLabel(std::int32_t id, const std::string& text);
  bool UpdatesViewport() const;

  RecordManager& recorder_;
  AdaptorInterface& adaptor_;
  QTimer timer_;
  std::int64_t lastViewportMs_ = 0;
};

}  // namespace vuk::rgw::core
