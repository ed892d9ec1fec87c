#pragma once
// Frame times from whole frame numbers. A time is always computed afresh as a
// frame number over the frame rate, never summed up frame by frame, so that a
// recording and a later resimulation give one frame the very same double: the
// inputs recorded at that time are read back exactly there.

#include <cmath>
#include <cstdint>

namespace vuk::rgw::core {

class TimeBase {
 public:
  explicit TimeBase(double framesPerSecond) : fps_(framesPerSecond) {}

  double FramesPerSecond() const { return fps_; }
  double FrameDuration() const { return 1.0 / fps_; }

  // Frame n counted from time zero.
  double TimeOf(std::int64_t frame) const { return static_cast<double>(frame) / fps_; }

  // The frame a time lies in. A time a hair below a frame, as double
  // arithmetic leaves it, belongs to that frame; a negative time between
  // frames belongs to the one before it.
  std::int64_t FrameAt(double seconds) const {
    return static_cast<std::int64_t>(std::floor(seconds * fps_ + kHair));
  }

  bool OnGrid(double seconds) const {
    const double frames = seconds * fps_;
    return std::abs(frames - std::round(frames)) <= kHair;
  }

  // The k-th frame after `start`. From a start on the grid it is the time a
  // recording gives that frame; from anywhere else, start + k / fps.
  double TimeAfter(double start, std::int64_t k) const {
    if (OnGrid(start)) return TimeOf(static_cast<std::int64_t>(std::llround(start * fps_)) + k);
    return start + static_cast<double>(k) / fps_;
  }

 private:
  // A share of a frame: far below any time a user sets, far above rounding.
  static constexpr double kHair = 1e-9;

  double fps_;
};

}  // namespace vuk::rgw::core
