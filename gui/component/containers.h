#pragma once
// The kinds that arrange others: windows, box lists, frames, titled groups,
// scroll areas, and the separating line.

#include <string>

#include "gui/componentinterface.h"
#include "gui/stdcomponent.h"
#include "gui/tagfactory.h"

namespace vuk::gui::component {

class Dialog : public StdComponent, public componentinterface::Dialog {
 public:
  using Factory = TagFactory<Dialog>;
  explicit Dialog(const util::xml::Element& element);
  std::string GetTitle() const override { return label; }
  void SetTitle(const std::string& title) override {
    label = title;
    ModelChanged();
  }

  std::string icon;
  bool closeButton, maximizeButton, minimizeButton, titleBar, topmost, modal;
};

class List : public StdComponent {
 public:
  using Factory = TagFactory<List>;
  // Only "horizontal" lays out sideways: any other value, misspellings and
  // capitals included, is a vertical list, as shipped layouts expect.
  explicit List(const util::xml::Element& element)
      : StdComponent(element), horizontal(element.GetAttribute("type") == "horizontal") {}
  bool horizontal;
};

class Border : public StdComponent {
 public:
  using Factory = TagFactory<Border>;
  explicit Border(const util::xml::Element& element) : StdComponent(element), style(element.GetAttribute("style")) {}
  std::string style;  // "none", "thin", "sunken", "raised", "normal"
};

class Group : public StdComponent {
 public:
  using Factory = TagFactory<Group>;
  using StdComponent::StdComponent;
};

class Scroll : public StdComponent {
 public:
  using Factory = TagFactory<Scroll>;
  using StdComponent::StdComponent;
};

class Separator : public StdComponent {
 public:
  using Factory = TagFactory<Separator>;
  using StdComponent::StdComponent;
};

}  // namespace vuk::gui::component
