#include "gui/attributes.h"

#include <locale>
#include <sstream>

namespace vuk::gui::attribute {

bool YesNo(const util::xml::Element& element, const char* name, bool fallback, bool trueFalse) {
  const std::string value = element.GetAttribute(name);
  if (value == "yes" || (trueFalse && value == "true")) return true;
  if (value == "no" || (trueFalse && value == "false")) return false;
  return fallback;
}

int Int(const util::xml::Element& element, const char* name, int fallback) {
  std::istringstream in(element.GetAttribute(name));
  in.imbue(std::locale::classic());
  int value = fallback;
  return (in >> value) ? value : fallback;
}

double Double(const util::xml::Element& element, const char* name, double fallback) {
  std::istringstream in(element.GetAttribute(name));
  in.imbue(std::locale::classic());
  double value = fallback;
  return (in >> value) ? value : fallback;
}

Box FourInts(const util::xml::Element& element, const char* name) {
  std::istringstream in(element.GetAttribute(name));
  in.imbue(std::locale::classic());
  Box box;
  int* sides[] = {&box.left, &box.top, &box.right, &box.bottom};
  for (int* side : sides) {
    int value = 0;
    if (!(in >> value)) break;
    *side = value;
  }
  return box;
}

HAlign HorizontalAlign(const util::xml::Element& element) {
  const std::string value = element.GetAttribute("halign");
  if (value == "left") return HAlign::kLeft;
  if (value == "center") return HAlign::kCenter;
  if (value == "right") return HAlign::kRight;
  return HAlign::kDefault;
}

VAlign VerticalAlign(const util::xml::Element& element) {
  const std::string value = element.GetAttribute("valign");
  if (value == "top") return VAlign::kTop;
  if (value == "center") return VAlign::kCenter;
  if (value == "bottom") return VAlign::kBottom;
  return VAlign::kDefault;
}

Fixed FixedDirection(const util::xml::Element& element) {
  const std::string value = element.GetAttribute("fixed");
  if (value == "yes") return Fixed::kBoth;
  if (value == "horizontal") return Fixed::kHorizontal;
  if (value == "vertical") return Fixed::kVertical;
  return Fixed::kNo;
}

}  // namespace vuk::gui::attribute
