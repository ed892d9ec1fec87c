#pragma once
// What a component paints behind itself: a colour or a linear gradient,
// made by the "type" of a "background" element.

#include <cstdint>
#include <string>
#include <vector>

#include "util/dynamicobject.h"
#include "util/xml/element.h"

namespace vuk::gui {

struct Rgba {
  int r = 0, g = 0, b = 0, a = 255;
  static Rgba Read(const util::xml::Element& element);
};

class Background : public util::DynamicObject {
 public:
  // Null for an unknown "type".
  static Background* Create(const util::xml::Element& element);
};

class Color : public Background {
 public:
  explicit Color(const util::xml::Element& element) : color(Rgba::Read(element)) {}
  std::string GetTypeName() const override { return "color"; }
  Rgba color;
};

class Gradient_Linear : public Background {
 public:
  struct Stop {
    double position;
    Rgba color;
  };
  explicit Gradient_Linear(const util::xml::Element& element);
  std::string GetTypeName() const override { return "gradient-linear"; }

  double startX = 0, startY = 0, endX = 0, endY = 1;
  std::string spread;     // "mirror", "repeat", or pad
  bool absolute = false;  // coordinates in pixels rather than fractions
  std::vector<Stop> stops;
};

}  // namespace vuk::gui
