#pragma once
// A force-feedback effect through SDL's haptic interface.

#include <SDL.h>

#include <cstdint>

#include "unidevice/ffeffect.h"

namespace vuk::unidevice::driver {

class SdlHapticEffect : public FFEffect {
 public:
  // Null when the device can't play that kind (SDL has no square wave).
  static SdlHapticEffect* Create(SDL_Haptic* haptic, std::int32_t kind);
  ~SdlHapticEffect() override;

  bool Start(std::int32_t repeat) override;
  bool Stop() override;
  void SetMagnitude(double magnitude) override;
  void SetStartLevel(double level) override;
  void SetEndLevel(double level) override;
  void SetGain(double gain) override;
  void SetOffset(double offset) override;
  void SetPeriod(double seconds) override;
  void SetDuration(double seconds) override;
  void SetEnvelope(double attackSeconds, double fadeSeconds) override;
  bool Commit() override;

 private:
  SdlHapticEffect(SDL_Haptic* haptic, const SDL_HapticEffect& effect, int id) : haptic_(haptic), effect_(effect), id_(id) {}
  bool IsPeriodic() const;

  SDL_Haptic* haptic_;
  SDL_HapticEffect effect_;
  int id_;
};

}  // namespace vuk::unidevice::driver
