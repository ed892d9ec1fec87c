#pragma once
// The value rules of layout attributes, shared by every component kind.

#include <cstdint>
#include <string>

#include "util/xml/element.h"

namespace vuk::gui {

struct Box {
  int left = 0, top = 0, right = 0, bottom = 0;
};

enum class HAlign { kDefault, kLeft, kCenter, kRight };
enum class VAlign { kDefault, kTop, kCenter, kBottom };
enum class Fixed { kNo, kBoth, kHorizontal, kVertical };

namespace attribute {

// "yes" or "no"; with `trueFalse`, "true" and "false" as well. Anything else
// is the fallback.
bool YesNo(const util::xml::Element& element, const char* name, bool fallback, bool trueFalse = false);
// An integer read with a stream; the fallback when missing or not a number.
int Int(const util::xml::Element& element, const char* name, int fallback);
double Double(const util::xml::Element& element, const char* name, double fallback);
// Up to four integers, left, top, right, bottom; the ones not given stay 0.
Box FourInts(const util::xml::Element& element, const char* name);
HAlign HorizontalAlign(const util::xml::Element& element);
VAlign VerticalAlign(const util::xml::Element& element);
Fixed FixedDirection(const util::xml::Element& element);

}  // namespace attribute
}  // namespace vuk::gui
