#include "app/rgw/desktop/timeline.h"

#include <QDoubleSpinBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QSignalBlocker>
#include <QSlider>
#include <QSpinBox>
#include <cmath>

namespace vuk::app::desktop {

Timeline::Timeline(rgw::adaptor::standalone::StandaloneAdaptorInterface& host, QWidget* parent)
    : QWidget(parent),
      host_(host),
      slider_(new QSlider(Qt::Horizontal, this)),
      frame_(new QLabel(this)),
      play_(new QPushButton("Play", this)),
      from_(new QDoubleSpinBox(this)),
      to_(new QDoubleSpinBox(this)),
      rate_(new QSpinBox(this)) {
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(6, 4, 6, 4);
  play_->setToolTip("Play or stop (Space)");
  row->addWidget(play_);
  row->addWidget(slider_, 1);
  frame_->setMinimumWidth(120);
  row->addWidget(frame_);
  for (QDoubleSpinBox* field : {from_, to_}) {
    field->setRange(-100000, 100000);
    field->setDecimals(2);
    field->setSuffix(" s");
    field->setKeyboardTracking(false);
  }
  rate_->setRange(1, 240);
  rate_->setSuffix(" fps");
  rate_->setKeyboardTracking(false);
  row->addWidget(new QLabel("Range", this));
  row->addWidget(from_);
  row->addWidget(to_);
  row->addWidget(rate_);
  connect(slider_, &QSlider::valueChanged, this, [this](int frame) { Scrub(frame); });
  const auto playOrStop = [this] { playing_ ? Stop() : Play(); };
  connect(play_, &QPushButton::clicked, this, playOrStop);
  // Not the button's own shortcut: its text, changed, would drop it.
  connect(new QShortcut(Qt::Key_Space, this), &QShortcut::activated, this, playOrStop);
  const auto range = [this] { SetRange(from_->value(), to_->value()); };
  connect(from_, qOverload<double>(&QDoubleSpinBox::valueChanged), this, range);
  connect(to_, qOverload<double>(&QDoubleSpinBox::valueChanged), this, range);
  connect(rate_, qOverload<int>(&QSpinBox::valueChanged), this, [this](int fps) { SetFrameRate(fps); });
  refresh_.setInterval(kRefreshMs);
  connect(&refresh_, &QTimer::timeout, this, [this] {
    if (playing_) Advance();
    Follow();
    if (onTick) onTick();
  });
  refresh_.start();
  Follow();
}

int Timeline::FrameOf(double seconds) const { return static_cast<int>(std::lround(seconds * host_.GetFrameRate())); }

void Timeline::Follow() {
  const auto [from, to] = host_.GetAnimationRange();
  const QSignalBlocker quietSlider(slider_), quietFrom(from_), quietTo(to_), quietRate(rate_);
  slider_->setRange(FrameOf(from), FrameOf(to));
  slider_->setValue(FrameOf(host_.GetTime()));
  from_->setValue(from);
  to_->setValue(to);
  rate_->setValue(static_cast<int>(std::lround(host_.GetFrameRate())));
  frame_->setText(QString("frame %1  %2 s").arg(FrameOf(host_.GetTime())).arg(host_.GetTime(), 0, 'f', 2));
}

void Timeline::Scrub(int frame) {
  host_.SetTime(frame / host_.GetFrameRate());
  Follow();
  if (onTick) onTick();
}

void Timeline::SetRange(double from, double to) {
  host_.SetAnimationRange({from, std::max(from, to)});
  Follow();
}

void Timeline::SetFrameRate(int framesPerSecond) {
  // The rate of a running recording is the recorder's to set.
  if (host_.GetTimeScale() == 1) host_.GetScene().clock.SetFrameRate(framesPerSecond);
  Follow();
}

void Timeline::Play() {
  playing_ = true;
  play_->setText("Stop");
  wall_.start();
}

void Timeline::Stop() {
  playing_ = false;
  play_->setText("Play");
}

void Timeline::Advance() {
  const auto [from, to] = host_.GetAnimationRange();
  double now = host_.GetTime() + static_cast<double>(wall_.restart()) / 1000.0;
  if (now > to || now < from) now = from;
  host_.SetTime(now);
}

}  // namespace vuk::app::desktop
