#pragma once
// The host's timeline: a slider to scrub scene time, play and stop, the
// animation range and the frame rate. It follows the clock, which a
// recording moves too.

#include <QElapsedTimer>
#include <QTimer>
#include <QWidget>

#include "adaptor/standalone/standaloneadaptorinterface.h"

class QDoubleSpinBox;
class QLabel;
class QPushButton;
class QSlider;
class QSpinBox;

namespace vuk::app::desktop {

class Timeline : public QWidget {
 public:
  // How often the timeline looks at the clock, and steps it while playing.
  static constexpr int kRefreshMs = 15;

  Timeline(rgw::adaptor::standalone::StandaloneAdaptorInterface& host, QWidget* parent = nullptr);

  // The user's controls, as code drives them.
  void Scrub(int frame);
  void SetRange(double from, double to);
  void SetFrameRate(int framesPerSecond);
  void Play();
  void Stop();
  bool IsPlaying() const { return playing_; }
  // Shows the clock, the range and the rate as the host has them now.
  void Follow();
  // Called after every look at the clock: the desktop's other parts follow it.
  std::function<void()> onTick;

 private:
  // One step of playback: scene time runs with the wall clock, round the range.
  void Advance();
  int FrameOf(double seconds) const;

  rgw::adaptor::standalone::StandaloneAdaptorInterface& host_;
  QSlider* slider_;
  QLabel* frame_;
  QPushButton* play_;
  QDoubleSpinBox* from_;
  QDoubleSpinBox* to_;
  QSpinBox* rate_;
  QTimer refresh_;
  QElapsedTimer wall_;
  bool playing_ = false;
};

}  // namespace vuk::app::desktop
