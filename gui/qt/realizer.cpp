#include "gui/qt/realizer.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFrame>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QPointer>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QToolButton>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>

#include "gui/component/choices.h"
#include "gui/component/containers.h"
#include "gui/component/controls.h"
#include "gui/component/tree.h"
#include "gui/qt/boxlayout.h"
#include "gui/qt/widgets.h"

namespace vuk::gui::component::qt {

namespace {

QString Text(const std::string& text) { return QString::fromStdString(text); }

QPixmap Image(const Component& component, const std::string& path) {
  return path.empty() ? QPixmap() : QPixmap(Text(component.ResolvePath(path)));
}

// Code's changes to the component reach the widget while it lives.
template <typename W, typename Update>
void Follow(Component& component, W* widget, Update update) {
  QPointer<W> guarded(widget);
  component.onModelChanged = [guarded, update] {
    if (!guarded) return;
    const QSignalBlocker quiet(guarded.data());
    update(guarded.data());
  };
  component.ModelChanged();
}

Qt::Alignment AlignmentOf(const StdComponent& component) {
  Qt::Alignment alignment;
  if (component.halign == HAlign::kLeft) alignment |= Qt::AlignLeft;
  if (component.halign == HAlign::kCenter) alignment |= Qt::AlignHCenter;
  if (component.halign == HAlign::kRight) alignment |= Qt::AlignRight;
  if (component.valign == VAlign::kTop) alignment |= Qt::AlignTop;
  if (component.valign == VAlign::kCenter) alignment |= Qt::AlignVCenter;
  if (component.valign == VAlign::kBottom) alignment |= Qt::AlignBottom;
  return alignment;
}

// Text on a dark ground is drawn light, so that it stays readable.
bool IsDark(const QColor& color) {
  return 0.299 * color.redF() + 0.587 * color.greenF() + 0.114 * color.blueF() < 0.5;
}

void ApplyBackground(const StdComponent& component, QWidget* widget) {
  if (!component.background) return;
  QBrush brush;
  QColor main;
  if (const auto* color = dynamic_cast<const Color*>(component.background.get())) {
    main = QColor(color->color.r, color->color.g, color->color.b, color->color.a);
    brush = main;
  } else if (const auto* gradient = dynamic_cast<const Gradient_Linear*>(component.background.get())) {
    QLinearGradient linear(gradient->startX, gradient->startY, gradient->endX, gradient->endY);
    linear.setCoordinateMode(gradient->absolute ? QGradient::LogicalMode : QGradient::ObjectBoundingMode);
    if (gradient->spread == "mirror") linear.setSpread(QGradient::ReflectSpread);
    if (gradient->spread == "repeat") linear.setSpread(QGradient::RepeatSpread);
    for (const auto& stop : gradient->stops) {
      linear.setColorAt(stop.position, QColor(stop.color.r, stop.color.g, stop.color.b, stop.color.a));
    }
    if (!gradient->stops.empty()) {
      const Rgba& first = gradient->stops.front().color;
      main = QColor(first.r, first.g, first.b, first.a);
    }
    brush = linear;
  }
  QPalette palette = widget->palette();
  palette.setBrush(QPalette::Window, brush);
  if (main.isValid() && IsDark(main)) {
    palette.setColor(QPalette::WindowText, QColor(235, 238, 242));
    // Tool buttons and labels below take their ink from the style sheet.
    widget->setStyleSheet("QToolButton, QLabel, QCheckBox { color: #ebeef2; }");
  }
  widget->setPalette(palette);
  widget->setAutoFillBackground(true);
}

// Sizes, fixed directions, tool tip, state: what all kinds share.
void ApplyCommon(const StdComponent& component, QWidget* widget) {
  widget->setToolTip(Text(component.tooltip));
  widget->setEnabled(component.enabled);
  // A box takes its minimum from its rows and its wishes.
  if (!dynamic_cast<BoxLayout*>(widget->layout())) {
    widget->setMinimumSize(std::max(component.minWidth, component.desiredWidth > 0 ? component.desiredWidth : 0),
                           std::max(component.minHeight, component.desiredHeight > 0 ? component.desiredHeight : 0));
  }
  widget->setMaximumSize(component.maxWidth, component.maxHeight);
  if (component.width > 0) widget->setFixedWidth(component.width);
  if (component.height > 0) widget->setFixedHeight(component.height);
  QSizePolicy policy = widget->sizePolicy();
  const bool fixedWidth = component.fixed == Fixed::kBoth || component.fixed == Fixed::kHorizontal;
  const bool fixedHeight = component.fixed == Fixed::kBoth || component.fixed == Fixed::kVertical;
  if (fixedWidth) policy.setHorizontalPolicy(QSizePolicy::Fixed);
  if (fixedHeight) policy.setVerticalPolicy(QSizePolicy::Fixed);
  widget->setSizePolicy(policy);
  if (!component.focusMarkerColor.empty() || !component.tabStop) {
    widget->setFocusPolicy(component.tabStop ? widget->focusPolicy() : Qt::NoFocus);
  }
  if (!component.visible) widget->setVisible(false);
}

QMargins MarginsOf(const Box& box) { return {box.left, box.top, box.right, box.bottom}; }

// Lays the children of a component out in a box.
void AddChildren(Component& component, QWidget* holder, QBoxLayout* layout) {
  for (std::size_t i = 0; i < component.GetChildCount(); ++i) {
    Component* child = component.GetChild(i);
    QWidget* widget = Realize(*child, holder);
    if (auto* bar = qobject_cast<QMenuBar*>(widget)) {
      layout->setMenuBar(bar);
      continue;
    }
    if (!widget) continue;
    const auto* standard = dynamic_cast<const StdComponent*>(child);
    layout->addWidget(widget, 0, standard ? AlignmentOf(*standard) : Qt::Alignment());
  }
}

// The sizes that the file wishes for a container; a fixed size is its least.
BoxLayout::Wishes WishesOf(const StdComponent& component) {
  return {QSize(std::max(component.minWidth, component.width), std::max(component.minHeight, component.height)),
          QSize(component.desiredWidth, component.desiredHeight)};
}

QWidget* BoxOf(StdComponent& component, QWidget* widget, bool horizontal, const BoxLayout::Wishes& wishes) {
  // The ground first, so that the children are made with its colours.
  ApplyBackground(component, widget);
  auto* layout = new BoxLayout(horizontal ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom, widget, wishes);
  layout->setContentsMargins(MarginsOf(component.padding));
  layout->setSpacing(4);
  AddChildren(component, widget, layout);
  return widget;
}

void FillMenu(Menu& menu, QMenu* target);

QMenu* MakeMenu(Menu& menu, QWidget* parent) {
  auto* widget = new QMenu(Text(menu.label), parent);
  FillMenu(menu, widget);
  return widget;
}

void FillMenu(Menu& menu, QMenu* target) {
  for (const Menu::Entry& entry : menu.entries) {
    if (entry.isItem) {
      QAction* action = target->addAction(Text(entry.item.label));
      action->setEnabled(!entry.item.grayed);
      const std::int32_t itemId = entry.item.id;
      QObject::connect(action, &QAction::triggered, [&menu, itemId] { menu.Choose(itemId); });
      continue;
    }
    Component* child = menu.GetChild(entry.childIndex);
    if (auto* submenu = dynamic_cast<Menu*>(child)) {
      target->addMenu(MakeMenu(*submenu, target));
    } else {
      target->addSeparator();
    }
  }
}

QWidget* MakeMenuBar(Menu& menu, QWidget* parent) {
  auto* bar = new QMenuBar(parent);
  for (const Menu::Entry& entry : menu.entries) {
    if (auto* submenu = entry.isItem ? nullptr : dynamic_cast<Menu*>(menu.GetChild(entry.childIndex))) {
      bar->addMenu(MakeMenu(*submenu, bar));
    } else if (entry.isItem) {
      const std::int32_t itemId = entry.item.id;
      QObject::connect(bar->addAction(Text(entry.item.label)), &QAction::triggered,
                       [&menu, itemId] { menu.Choose(itemId); });
    }
  }
  return bar;
}

QWidget* MakeButton(Button& button, QWidget* parent) {
  QAbstractButton* widget = nullptr;
  if (button.images.Any()) {
    widget = new ImageButton({Image(button, button.images.normal), Image(button, button.images.hover),
                              Image(button, button.images.pressed), Image(button, button.images.disabled),
                              Image(button, button.images.toggledNormal), Image(button, button.images.toggledHover),
                              Image(button, button.images.toggledPressed)},
                             parent);
  } else {
    auto* push = new QPushButton(Text(button.label), parent);
    push->setFlat(button.flat);
    if (button.flat && !button.flatColorDefault.empty()) {
      const std::string ink = IsDark(QColor(Text(button.flatColorDefault))) ? "white" : "black";
      push->setStyleSheet(Text("QPushButton{background:" + button.flatColorDefault + ";color:" + ink +
                               ";border:none;border-radius:3px;padding:4px 10px;font-weight:bold;}"
                               "QPushButton:hover{background:" +
                               (button.flatColorHover.empty() ? button.flatColorDefault : button.flatColorHover) +
                               ";}QPushButton:pressed{background:" +
                               (button.flatColorPressed.empty() ? button.flatColorDefault : button.flatColorPressed) +
                               ";}"));
    }
    widget = push;
  }
  widget->setCheckable(button.toggle);
  widget->setAutoRepeat(button.repeat);
  if (button.delay > 0) widget->setAutoRepeatDelay(button.delay);
  QObject::connect(widget, &QAbstractButton::clicked, [&button] { button.Press(); });
  Follow(button, widget, [&button](QAbstractButton* w) { w->setChecked(button.toggled); });
  return widget;
}

QWidget* MakeFlmButton(FlmButton& button, QWidget* parent) {
  auto* widget = new QToolButton(parent);
  widget->setText(Text(button.label));
  const QPixmap icon = Image(button, button.images.normal);
  if (!icon.isNull()) {
    widget->setIcon(icon);
    widget->setIconSize(icon.size());
    widget->setToolButtonStyle(Qt::ToolButtonTextUnderIcon);
  }
  widget->setAutoRaise(true);
  auto* menu = new QMenu(widget);
  for (const FlmButton::Entry& entry : button.entries) {
    const std::int32_t entryId = entry.id;
    QObject::connect(menu->addAction(Text(entry.label)), &QAction::triggered,
                     [&button, entryId] { button.Choose(entryId); });
  }
  widget->setMenu(menu);
  widget->setPopupMode(QToolButton::DelayedPopup);
  QObject::connect(widget, &QToolButton::clicked, [&button] { button.Notify(kButtonPressed, button.id); });
  return widget;
}

QWidget* MakeCheckBox(CheckBox& box, QWidget* parent) {
  auto* widget = new QCheckBox(Text(box.label), parent);
  widget->setTristate(box.tristate);
  QObject::connect(widget, &QCheckBox::stateChanged, [&box](int state) {
    box.ChangeState(state == Qt::Checked ? CheckBox::kOn : state == Qt::PartiallyChecked ? CheckBox::kMixed
                                                                                          : CheckBox::kOff);
  });
  Follow(box, widget, [&box](QCheckBox* w) {
    w->setCheckState(box.state == CheckBox::kOn      ? Qt::Checked
                     : box.state == CheckBox::kMixed ? Qt::PartiallyChecked
                                                     : Qt::Unchecked);
  });
  return widget;
}

QWidget* MakeSpinner(Spinner& spinner, QWidget* parent) {
  auto* widget = new QDoubleSpinBox(parent);
  widget->setDecimals(spinner.decimals);
  widget->setRange(spinner.minimum, spinner.maximum);
  widget->setSingleStep(spinner.step);
  widget->setKeyboardTracking(false);
  widget->setAlignment(Qt::AlignRight);
  QObject::connect(widget, qOverload<double>(&QDoubleSpinBox::valueChanged),
                   [&spinner](double value) { spinner.ChangeValue(value); });
  Follow(spinner, widget, [&spinner](QDoubleSpinBox* w) { w->setValue(spinner.value); });
  return widget;
}

QWidget* MakeTextBox(TextBox& box, QWidget* parent) {
  if (box.wrap) {
    auto* widget = new QPlainTextEdit(parent);
    widget->setReadOnly(!box.editable);
    QObject::connect(widget, &QPlainTextEdit::textChanged,
                     [&box, widget] { box.ChangeText(widget->toPlainText().toStdString()); });
    Follow(box, widget, [&box](QPlainTextEdit* w) { w->setPlainText(Text(box.text)); });
    return widget;
  }
  auto* widget = new QLineEdit(parent);
  widget->setReadOnly(!box.editable);
  QObject::connect(widget, &QLineEdit::editingFinished, [&box, widget] { box.ChangeText(widget->text().toStdString()); });
  Follow(box, widget, [&box](QLineEdit* w) { w->setText(Text(box.text)); });
  return widget;
}

QWidget* MakeComboBox(ComboBox& box, QWidget* parent) {
  auto* widget = new QComboBox(parent);
  widget->setEditable(box.editable);
  QObject::connect(widget, qOverload<int>(&QComboBox::currentIndexChanged),
                   [&box](int index) { box.ChangeSelected(index); });
  Follow(box, widget, [&box](QComboBox* w) {
    w->clear();
    for (const Item& item : box.items) w->addItem(Text(item.label));
    w->setCurrentIndex(box.selected);
  });
  return widget;
}

QWidget* MakeListBox(ListBox& box, QWidget* parent) {
  auto* widget = new QListWidget(parent);
  widget->setSelectionMode(box.selectable ? QAbstractItemView::SingleSelection : QAbstractItemView::NoSelection);
  QObject::connect(widget, &QListWidget::currentRowChanged, [&box](int row) { box.ChangeSelected(row); });
  Follow(box, widget, [&box](QListWidget* w) {
    w->clear();
    for (const Item& item : box.items) w->addItem(Text(item.label));
    w->setCurrentRow(box.selected);
  });
  return widget;
}

using TreeNode = componentinterface::Tree::Node;

// A flag column with icons shows the icon of its state and turns on and off
// by a click; one without shows a check box.
bool HasIcons(const Tree::Flag& flag) { return !flag.trueIcon.empty(); }

void ShowFlag(const Tree& tree, QTreeWidgetItem* item, std::size_t f, std::int32_t state) {
  const Tree::Flag& flag = tree.flags[f];
  const int column = static_cast<int>(f) + 1;
  if (!HasIcons(flag)) {
    item->setCheckState(column, state == 1 ? Qt::Checked : state == 2 ? Qt::PartiallyChecked : Qt::Unchecked);
    return;
  }
  const std::string& path = state == 1 ? flag.trueIcon
                            : state == 2 && !flag.undeterminedIcon.empty() ? flag.undeterminedIcon
                                                                           : flag.falseIcon;
  item->setIcon(column, QIcon(Image(tree, path)));
}

void AddTreeItems(QTreeWidgetItem* parentItem, QTreeWidget* widget, const Tree& tree, TreeNode* node) {
  for (std::size_t i = 0; node && i < node->GetNodeCount(); ++i) {
    TreeNode* child = node->GetNode(i);
    auto* item = parentItem ? new QTreeWidgetItem(parentItem) : new QTreeWidgetItem(widget);
    item->setText(0, Text(child->GetLabel()));
    item->setData(0, Qt::UserRole, QVariant::fromValue(reinterpret_cast<quintptr>(child)));
    for (std::size_t f = 0; f < tree.flags.size(); ++f) ShowFlag(tree, item, f, child->GetFlag(f));
    item->setExpanded(true);
    AddTreeItems(item, widget, tree, child);
  }
}

TreeNode* NodeOf(QTreeWidgetItem* item) {
  return item ? reinterpret_cast<TreeNode*>(item->data(0, Qt::UserRole).value<quintptr>()) : nullptr;
}

QWidget* MakeTree(Tree& tree, QWidget* parent) {
  auto* widget = new DropTreeWidget(parent);
  widget->setColumnCount(static_cast<int>(tree.flags.size()) + 1);
  widget->setHeaderHidden(true);
  if (tree.dragDrop) {
    widget->setDragDropMode(QAbstractItemView::InternalMove);
    widget->onDrop = [&tree](QTreeWidgetItem* dragged, QTreeWidgetItem* target) {
      tree.Drop(NodeOf(dragged), NodeOf(target));
    };
  }
  widget->header()->setStretchLastSection(false);
  widget->header()->setSectionResizeMode(0, QHeaderView::Stretch);
  for (int f = 1; f <= static_cast<int>(tree.flags.size()); ++f) {
    widget->header()->setSectionResizeMode(f, QHeaderView::ResizeToContents);
  }
  QObject::connect(widget, &QTreeWidget::currentItemChanged,
                   [&tree](QTreeWidgetItem* item) { tree.ChangeSelected(NodeOf(item)); });
  QObject::connect(widget, &QTreeWidget::itemClicked, [&tree](QTreeWidgetItem* item, int column) {
    const auto f = static_cast<std::size_t>(column - 1);
    TreeNode* node = NodeOf(item);
    if (column < 1 || f >= tree.flags.size() || !HasIcons(tree.flags[f]) || !node) return;
    const std::int32_t state = node->GetFlag(f) == 1 ? 0 : 1;
    tree.ChangeFlag(node, f, state);
    ShowFlag(tree, item, f, state);
  });
  QObject::connect(widget, &QTreeWidget::itemChanged, [&tree](QTreeWidgetItem* item, int column) {
    if (column < 1 || HasIcons(tree.flags[static_cast<std::size_t>(column - 1)])) return;
    const Qt::CheckState state = item->checkState(column);
    tree.ChangeFlag(NodeOf(item), static_cast<std::size_t>(column - 1),
                    state == Qt::Checked ? 1 : state == Qt::PartiallyChecked ? 2 : 0);
  });
  Follow(tree, widget, [&tree](DropTreeWidget* w) {
    w->clear();
    AddTreeItems(nullptr, w, tree, tree.root);
    // The selection that code kept or set stays shown.
    for (QTreeWidgetItemIterator it(w); *it; ++it) {
      if (tree.selected && NodeOf(*it) == tree.selected) w->setCurrentItem(*it);
    }
  });
  return widget;
}

QWidget* MakeLabel(Label& label, QWidget* parent) {
  auto* widget = new QLabel(parent);
  // A label never takes input, so being disabled, as a section title is,
  // leaves it in the window's ink rather than greyed out.
  QPalette palette = widget->palette();
  palette.setColor(QPalette::Disabled, QPalette::WindowText, palette.color(QPalette::Active, QPalette::WindowText));
  widget->setPalette(palette);
  widget->setWordWrap(label.wrap);
  widget->setOpenExternalLinks(label.hyperlinks);
  widget->setTextFormat(label.hyperlinks ? Qt::RichText : Qt::PlainText);
  Follow(label, widget, [&label](QLabel* w) {
    const QPixmap image = Image(label, label.imagePath);
    if (!image.isNull()) {
      w->setPixmap(image);
    } else {
      w->setText(Text(label.label));
    }
  });
  return widget;
}

QWidget* MakeContainer(StdComponent& component, QWidget* parent) {
  if (auto* dialog = dynamic_cast<Dialog*>(&component)) {
    auto* widget = new QWidget(parent, parent ? Qt::Widget : Qt::Window);
    Qt::WindowFlags flags = Qt::Window | Qt::WindowTitleHint | Qt::CustomizeWindowHint;
    if (dialog->closeButton) flags |= Qt::WindowCloseButtonHint;
    if (dialog->minimizeButton) flags |= Qt::WindowMinimizeButtonHint;
    if (dialog->maximizeButton) flags |= Qt::WindowMaximizeButtonHint;
    if (dialog->topmost) flags |= Qt::WindowStaysOnTopHint;
    if (!parent) widget->setWindowFlags(flags);
    widget->setWindowModality(dialog->modal ? Qt::ApplicationModal : Qt::NonModal);
    const QPixmap icon = Image(*dialog, dialog->icon);
    if (!icon.isNull()) widget->setWindowIcon(icon);
    if (dialog->left || dialog->top) widget->move(dialog->left, dialog->top);
    Follow(*dialog, widget, [dialog](QWidget* w) { w->setWindowTitle(Text(dialog->label)); });
    BoxOf(component, widget, false, WishesOf(component));
    // A window opens at the size it wishes for, or larger where its rows
    // need more; a text that wraps sets its height by its width.
    if (!parent) {
      // Laid out now, so that the window has its minimum before it is shown.
      widget->layout()->activate();
      widget->resize(widget->sizeHint().expandedTo(QSize(dialog->desiredWidth, dialog->desiredHeight)));
    }
    return widget;
  }
  if (auto* list = dynamic_cast<List*>(&component)) {
    return BoxOf(component, new QWidget(parent), list->horizontal, WishesOf(component));
  }
  if (auto* border = dynamic_cast<Border*>(&component)) {
    auto* frame = new QFrame(parent);
    if (border->style == "thin" || border->style == "normal") frame->setFrameStyle(QFrame::Box | QFrame::Plain);
    if (border->style == "sunken") frame->setFrameStyle(QFrame::Panel | QFrame::Sunken);
    if (border->style == "raised") frame->setFrameStyle(QFrame::Panel | QFrame::Raised);
    BoxOf(component, frame, false, WishesOf(component));
    frame->layout()->setContentsMargins(MarginsOf(component.padding) + MarginsOf(component.margin));
    return frame;
  }
  if (auto* group = dynamic_cast<Group*>(&component)) {
    auto* box = new QGroupBox(parent);
    Follow(*group, box, [group](QGroupBox* w) { w->setTitle(Text(group->label)); });
    return BoxOf(component, box, false, WishesOf(component));
  }
  if (dynamic_cast<Scroll*>(&component)) {
    auto* area = new QScrollArea(parent);
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    // The sizes are the area's: what it holds may be larger and scrolls.
    area->setWidget(BoxOf(component, new QWidget(area), false, {}));
    return area;
  }
  if (dynamic_cast<Separator*>(&component)) {
    auto* line = new QFrame(parent);
    const auto* list = dynamic_cast<const List*>(component.GetParentComponent());
    line->setFrameShape(list && list->horizontal ? QFrame::VLine : QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);
    return line;
  }
  return nullptr;
}

QWidget* MakeWidget(StdComponent& component, QWidget* parent) {
  if (auto* button = dynamic_cast<Button*>(&component)) return MakeButton(*button, parent);
  if (auto* flm = dynamic_cast<FlmButton*>(&component)) return MakeFlmButton(*flm, parent);
  if (auto* check = dynamic_cast<CheckBox*>(&component)) return MakeCheckBox(*check, parent);
  if (auto* spinner = dynamic_cast<Spinner*>(&component)) return MakeSpinner(*spinner, parent);
  if (auto* text = dynamic_cast<TextBox*>(&component)) return MakeTextBox(*text, parent);
  if (auto* combo = dynamic_cast<ComboBox*>(&component)) return MakeComboBox(*combo, parent);
  if (auto* list = dynamic_cast<ListBox*>(&component)) return MakeListBox(*list, parent);
  if (auto* tree = dynamic_cast<Tree*>(&component)) return MakeTree(*tree, parent);
  if (auto* label = dynamic_cast<Label*>(&component)) return MakeLabel(*label, parent);
  if (auto* menu = dynamic_cast<Menu*>(&component)) {
    // A popup has no place in the layout: code opens it where it is wanted.
    return menu->bar ? MakeMenuBar(*menu, parent) : nullptr;
  }
  if (auto* progress = dynamic_cast<ProgressBar*>(&component)) {
    auto* widget = new QProgressBar(parent);
    widget->setRange(0, 100);
    Follow(*progress, widget, [progress](QProgressBar* w) { w->setValue(progress->progress); });
    return widget;
  }
  if (auto* graph = dynamic_cast<Graph*>(&component)) {
    auto* widget = new GraphWidget(parent, graph->boundaryLeft, graph->boundaryRight, graph->boundaryTop,
                                   graph->boundaryBottom);
    Follow(*graph, widget, [graph](GraphWidget* w) { w->SetPoints(graph->points); });
    return widget;
  }
  return MakeContainer(component, parent);
}

}  // namespace

QMenu* MakePopup(Menu& menu, QWidget* parent) { return MakeMenu(menu, parent); }

QWidget* Realize(Component& component, QWidget* parent) {
  auto* standard = dynamic_cast<StdComponent*>(&component);
  if (!standard) return nullptr;
  QWidget* widget = MakeWidget(*standard, parent);
  if (widget && !qobject_cast<QMenuBar*>(widget)) ApplyCommon(*standard, widget);
  return widget;
}

}  // namespace vuk::gui::component::qt
