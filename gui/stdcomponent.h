#pragma once
// What every component kind shares: the common attributes, read once when
// the component is made from its element.

#include <memory>
#include <string>

#include "gui/attributes.h"
#include "gui/background.h"
#include "gui/component.h"

namespace vuk::gui {

constexpr int kNoLimit = 16777215;

class StdComponent : public Component {
 public:
  explicit StdComponent(const util::xml::Element& element);

  // Takes "tooltip" and "background" children.
  void Consume(const util::xml::Element& child) override;

  std::string tag;
  int left = 0, top = 0;
  int width = -1, height = -1;
  int desiredWidth = -1, desiredHeight = -1;
  int minWidth = 0, minHeight = 0;
  int maxWidth = kNoLimit, maxHeight = kNoLimit;
  Fixed fixed = Fixed::kNo;
  bool visible = true;
  bool enabled = true;
  std::string label;
  std::string tooltip;
  int tooltipId = -1;
  bool tabStop = true;
  std::string focusMarkerColor;
  Box padding;
  Box margin;
  HAlign halign = HAlign::kDefault;
  VAlign valign = VAlign::kDefault;
  std::unique_ptr<Background> background;
};

}  // namespace vuk::gui
