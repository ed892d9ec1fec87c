#include "gui/component/choices.h"

namespace vuk::gui::component {

namespace {

std::vector<Item> ItemsOf(const std::vector<std::string>& labels) {
  std::vector<Item> items;
  for (std::size_t i = 0; i < labels.size(); ++i) items.push_back({static_cast<std::int32_t>(i), labels[i], false});
  return items;
}

}  // namespace

Item Item::Read(const util::xml::Element& element) {
  return {attribute::Int(element, "id", -1), element.GetAttribute("label"),
          attribute::YesNo(element, "grayed", false)};
}

ComboBox::ComboBox(const util::xml::Element& element)
    : StdComponent(element), editable(attribute::YesNo(element, "editable", false)) {}

void ComboBox::Consume(const util::xml::Element& child) {
  if (child.name == "item") items.push_back(Item::Read(child));
  StdComponent::Consume(child);
}

void ComboBox::SetItems(const std::vector<std::string>& labels) {
  items = ItemsOf(labels);
  ModelChanged();
}

void ComboBox::ChangeSelected(std::int32_t index) {
  selected = index;
  Notify(kValueChanged, id);
}

ListBox::ListBox(const util::xml::Element& element)
    : StdComponent(element),
      editable(attribute::YesNo(element, "editable", false)),
      selectable(attribute::YesNo(element, "selectable", true)) {}

void ListBox::Consume(const util::xml::Element& child) {
  if (child.name == "item") items.push_back(Item::Read(child));
  StdComponent::Consume(child);
}

void ListBox::SetItems(const std::vector<std::string>& labels) {
  items = ItemsOf(labels);
  ModelChanged();
}

void ListBox::ChangeSelected(std::int32_t index) {
  selected = index;
  Notify(kValueChanged, id);
}

Menu::Menu(const util::xml::Element& element) : StdComponent(element), bar(element.name == "menubar") {
  // Nested menus and separators are components and arrive as children; the
  // entries keep their place among the items.
  std::size_t componentIndex = 0;
  for (const auto& child : element.children) {
    if (child->name == "item") {
      entries.push_back({true, Item::Read(*child), 0});
    } else if (child->name == "menu" || child->name == "separator") {
      entries.push_back({false, Item(), componentIndex++});
    }
  }
}

void Menu::Choose(std::int32_t itemId) {
  Menu* top = this;
  while (auto* up = dynamic_cast<Menu*>(top->GetParentComponent())) top = up;
  top->Notify(kButtonPressed, itemId);
}

}  // namespace vuk::gui::component
