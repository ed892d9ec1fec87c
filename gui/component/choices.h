#pragma once
// The kinds that offer a list to choose from: drop lists, item lists, menus.

#include <string>
#include <vector>

#include "gui/componentinterface.h"
#include "gui/stdcomponent.h"
#include "gui/tagfactory.h"

namespace vuk::gui::component {

// An "item" child: a choice with an id and a label.
struct Item {
  std::int32_t id = -1;
  std::string label;
  bool grayed = false;
  static Item Read(const util::xml::Element& element);
};

class ComboBox : public StdComponent, public componentinterface::ComboBox {
 public:
  using Factory = TagFactory<ComboBox>;
  explicit ComboBox(const util::xml::Element& element);
  void Consume(const util::xml::Element& child) override;
  std::int32_t GetSelected() const override { return selected; }
  void SetSelected(std::int32_t index) override {
    selected = index;
    ModelChanged();
  }
  void SetItems(const std::vector<std::string>& labels) override;
  void ChangeSelected(std::int32_t index);

  std::vector<Item> items;
  std::int32_t selected = 0;
  bool editable;
};

class ListBox : public StdComponent, public componentinterface::ListBox {
 public:
  using Factory = TagFactory<ListBox>;
  explicit ListBox(const util::xml::Element& element);
  void Consume(const util::xml::Element& child) override;
  std::int32_t GetSelected() const override { return selected; }
  void SetSelected(std::int32_t index) override {
    selected = index;
    ModelChanged();
  }
  void SetItems(const std::vector<std::string>& labels) override;
  void ChangeSelected(std::int32_t index);

  std::vector<Item> items;
  std::int32_t selected = -1;
  bool editable;
  bool selectable;
};

// "menubar", "menu" and "popup": items, separators (as children) and menus
// within menus. Choosing an item sends its id.
class Menu : public StdComponent {
 public:
  using Factory = TagFactory<Menu>;
  explicit Menu(const util::xml::Element& element);
  // The outermost menu tells: code listens to the bar or the popup, not to
  // each menu within it.
  void Choose(std::int32_t itemId);

  // Entries in the order of the layout: an item, or the index of a child
  // component (a nested menu or a separator).
  struct Entry {
    bool isItem;
    Item item;
    std::size_t childIndex = 0;
  };
  std::vector<Entry> entries;
  bool bar;
};

}  // namespace vuk::gui::component
