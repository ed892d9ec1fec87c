#pragma once
// Shows a component tree as Qt widgets. Widgets follow the components: a
// change that code makes to a component reaches its widget, and what the
// user does in a widget reaches the component, which tells its listeners.

#include <QMenu>
#include <QWidget>

#include "gui/component.h"

namespace vuk::gui::component {
class Menu;
}

namespace vuk::gui::component::qt {

// The widget of a component and, inside it, those of its children. Null for
// kinds that have no widget of their own where they stand (a popup menu).
// The components must outlive the widgets.
QWidget* Realize(Component& component, QWidget* parent = nullptr);

// A "popup" (or "menu") as a menu to open where code wants it; choosing an
// entry sends the entry's id. The caller owns the menu.
QMenu* MakePopup(Menu& menu, QWidget* parent = nullptr);

}  // namespace vuk::gui::component::qt
