#include "gui/component/containers.h"

namespace vuk::gui::component {

Dialog::Dialog(const util::xml::Element& element)
    : StdComponent(element),
      icon(element.GetAttribute("icon")),
      closeButton(attribute::YesNo(element, "closebtn", true)),
      maximizeButton(attribute::YesNo(element, "maximizebtn", false)),
      minimizeButton(attribute::YesNo(element, "minimizebtn", true)),
      titleBar(attribute::YesNo(element, "titlebar", true)),
      topmost(attribute::YesNo(element, "topmost", false)),
      modal(attribute::YesNo(element, "modal", false)) {}

}  // namespace vuk::gui::component
