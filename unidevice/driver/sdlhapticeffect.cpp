#include "unidevice/driver/sdlhapticeffect.h"

#include <algorithm>
#include <cstring>

namespace vuk::unidevice::driver {

namespace {

std::uint16_t WaveType(std::int32_t kind) {
  switch (kind) {
    case FFEffect::kConstant: return SDL_HAPTIC_CONSTANT;
    case FFEffect::kRamp: return SDL_HAPTIC_RAMP;
    case FFEffect::kSine: return SDL_HAPTIC_SINE;
    case FFEffect::kTriangle: return SDL_HAPTIC_TRIANGLE;
    case FFEffect::kSawtoothUp: return SDL_HAPTIC_SAWTOOTHUP;
    case FFEffect::kSawtoothDown: return SDL_HAPTIC_SAWTOOTHDOWN;
    default: return 0;
  }
}

// Levels -1..1 to SDL's signed 16-bit range.
std::int16_t Level(double value) { return static_cast<std::int16_t>(std::clamp(value, -1.0, 1.0) * 32767.0); }

std::uint16_t Milliseconds(double seconds) {
  return static_cast<std::uint16_t>(std::clamp(seconds * 1000.0, 0.0, 65534.0));
}

}  // namespace

SdlHapticEffect* SdlHapticEffect::Create(SDL_Haptic* haptic, std::int32_t kind) {
  const std::uint16_t type = WaveType(kind);
  if (!haptic || type == 0 || !(SDL_HapticQuery(haptic) & type)) return nullptr;
  SDL_HapticEffect effect;
  std::memset(&effect, 0, sizeof effect);
  effect.type = type;
  // One axis, Cartesian, infinite until stopped; one second where a length is needed.
  if (type == SDL_HAPTIC_CONSTANT) {
    effect.constant.direction.type = SDL_HAPTIC_CARTESIAN;
    effect.constant.direction.dir[0] = 1;
    effect.constant.length = SDL_HAPTIC_INFINITY;
  } else if (type == SDL_HAPTIC_RAMP) {
    effect.ramp.direction.type = SDL_HAPTIC_CARTESIAN;
    effect.ramp.direction.dir[0] = 1;
    effect.ramp.length = 1000;
  } else {
    effect.periodic.direction.type = SDL_HAPTIC_CARTESIAN;
    effect.periodic.direction.dir[0] = 1;
    effect.periodic.length = SDL_HAPTIC_INFINITY;
    effect.periodic.period = 100;
  }
  const int id = SDL_HapticNewEffect(haptic, &effect);
  if (id < 0) return nullptr;
  return new SdlHapticEffect(haptic, effect, id);
}

SdlHapticEffect::~SdlHapticEffect() { SDL_HapticDestroyEffect(haptic_, id_); }

bool SdlHapticEffect::IsPeriodic() const {
  return effect_.type != SDL_HAPTIC_CONSTANT && effect_.type != SDL_HAPTIC_RAMP;
}

bool SdlHapticEffect::Start(std::int32_t repeat) {
  return SDL_HapticRunEffect(haptic_, id_, repeat < 0 ? SDL_HAPTIC_INFINITY : static_cast<Uint32>(repeat)) == 0;
}

bool SdlHapticEffect::Stop() { return SDL_HapticStopEffect(haptic_, id_) == 0; }

void SdlHapticEffect::SetMagnitude(double magnitude) {
  if (effect_.type == SDL_HAPTIC_CONSTANT) effect_.constant.level = Level(magnitude);
  if (IsPeriodic()) effect_.periodic.magnitude = Level(magnitude);
}

void SdlHapticEffect::SetStartLevel(double level) {
  if (effect_.type == SDL_HAPTIC_RAMP) effect_.ramp.start = Level(level);
}

void SdlHapticEffect::SetEndLevel(double level) {
  if (effect_.type == SDL_HAPTIC_RAMP) effect_.ramp.end = Level(level);
}

void SdlHapticEffect::SetGain(double gain) {
  SDL_HapticSetGain(haptic_, static_cast<int>(std::clamp(gain, 0.0, 1.0) * 100.0));
}

void SdlHapticEffect::SetOffset(double offset) {
  if (IsPeriodic()) effect_.periodic.offset = Level(offset);
}

void SdlHapticEffect::SetPeriod(double seconds) {
  if (IsPeriodic()) effect_.periodic.period = Milliseconds(seconds);
}

void SdlHapticEffect::SetDuration(double seconds) {
  const std::uint32_t length = seconds < 0 ? SDL_HAPTIC_INFINITY : Milliseconds(seconds);
  if (effect_.type == SDL_HAPTIC_CONSTANT) effect_.constant.length = length;
  if (effect_.type == SDL_HAPTIC_RAMP) effect_.ramp.length = length;
  if (IsPeriodic()) effect_.periodic.length = length;
}

void SdlHapticEffect::SetEnvelope(double attackSeconds, double fadeSeconds) {
  const std::uint16_t attack = Milliseconds(attackSeconds), fade = Milliseconds(fadeSeconds);
  if (effect_.type == SDL_HAPTIC_CONSTANT) {
    effect_.constant.attack_length = attack;
    effect_.constant.fade_length = fade;
  } else if (effect_.type == SDL_HAPTIC_RAMP) {
    effect_.ramp.attack_length = attack;
    effect_.ramp.fade_length = fade;
  } else {
    effect_.periodic.attack_length = attack;
    effect_.periodic.fade_length = fade;
  }
}

bool SdlHapticEffect::Commit() { return SDL_HapticUpdateEffect(haptic_, id_, &effect_) == 0; }

}  // namespace vuk::unidevice::driver
