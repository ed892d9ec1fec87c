#pragma once
// A force-feedback effect on a device that offers it.

#include <cstdint>

namespace vuk::unidevice {

class FFEffect {
 public:
  enum Kind : std::int32_t {
    kConstant = 0,
    kRamp = 1,
    kSquare = 2,
    kSine = 3,
    kTriangle = 4,
    kSawtoothUp = 5,
    kSawtoothDown = 6,
  };

  virtual bool Start(std::int32_t repeat) = 0;
  virtual bool Stop() = 0;
  virtual void SetMagnitude(double magnitude) = 0;
  virtual void SetStartLevel(double level) = 0;
  virtual void SetEndLevel(double level) = 0;
  virtual void SetGain(double gain) = 0;
  virtual void SetOffset(double offset) = 0;
  virtual void SetPeriod(double seconds) = 0;
  virtual void SetDuration(double seconds) = 0;
  virtual void SetEnvelope(double attackSeconds, double fadeSeconds) = 0;
  // Sends the parameters set so far to the device.
  virtual bool Commit() = 0;
  virtual void Hook() {}
  virtual ~FFEffect() = default;
};

}  // namespace vuk::unidevice
