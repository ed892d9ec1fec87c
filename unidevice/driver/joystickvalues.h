#pragma once
// How raw joystick readings become control values, the same on every
// platform so that profiles move between them.

#include <cmath>
#include <cstdint>
#include <string>

namespace vuk::unidevice::driver {

// Axes and sliders read -1 to 1.
inline double AxisValue(std::int16_t raw) {
  const double value = raw / 32767.0;
  return value < -1.0 ? -1.0 : value;
}

// A hat held at an angle, in hundredths of a degree clockwise from up: the X
// control takes the sine, the Y control the cosine, each snapped to -1, 0, 1
// beyond 0.1. Released, both read 0.
inline double HatValue(bool held, std::int32_t hundredthsOfDegree, bool yControl) {
  if (!held) return 0.0;
  const double angle = hundredthsOfDegree * 0.00017453292519943296;
  const double component = yControl ? std::cos(angle) : std::sin(angle);
  if (component > 0.1) return 1.0;
  if (component < -0.1) return -1.0;
  return 0.0;
}

inline std::string AxisDescription(int axis) {
  static const char* const kNames[] = {"Axis 1 (X)", "Axis 2 (Y)", "Axis 3 (Z)", "Axis 4", "Axis 5", "Axis 6"};
  return kNames[axis];
}

inline std::string HatDescription(int hat, bool yControl) {
  return "Hat " + std::to_string(hat + 1) + (yControl ? " (Y axis)" : " (X axis)");
}

}  // namespace vuk::unidevice::driver
