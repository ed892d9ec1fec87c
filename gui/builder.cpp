#include "gui/builder.h"

#include "gui/component/choices.h"
#include "gui/component/containers.h"
#include "gui/component/controls.h"
#include "gui/component/tree.h"
#include "util/abstractfactory.h"

namespace vuk::gui {

namespace {

const util::AbstractFactory<Component>& Factories() {
  auto& factories = util::AbstractFactory<Component>::Instance();
  if (factories.Count() == 0) {
    using namespace component;
    factories.Add(new Dialog::Factory("dialog"));
    factories.Add(new List::Factory("list"));
    factories.Add(new Border::Factory("border"));
    factories.Add(new Group::Factory("group"));
    factories.Add(new Label::Factory("label"));
    factories.Add(new Button::Factory("button"));
    factories.Add(new FlmButton::Factory("flmbutton"));
    factories.Add(new CheckBox::Factory("checkbox"));
    factories.Add(new Spinner::Factory("spinner"));
    factories.Add(new TextBox::Factory("textbox"));
    factories.Add(new ComboBox::Factory("combobox"));
    factories.Add(new ListBox::Factory("listbox"));
    factories.Add(new Tree::Factory("tree"));
    factories.Add(new Scroll::Factory("scroll"));
    factories.Add(new Menu::Factory("menubar"));
    factories.Add(new Menu::Factory("menu"));
    factories.Add(new Menu::Factory("popup"));
    factories.Add(new ProgressBar::Factory("progressbar"));
    factories.Add(new Graph::Factory("graph"));
    factories.Add(new Separator::Factory("separator"));
  }
  return factories;
}

std::string& DataRootSlot() {
  static std::string root = ":/rigworks/data";
  return root;
}

void Replace(std::string& text, const Placeholders& texts) {
  for (const auto& [placeholder, filled] : texts) {
    if (placeholder.empty()) continue;
    for (std::size_t at = text.find(placeholder); at != std::string::npos;
         at = text.find(placeholder, at + filled.size())) {
      text.replace(at, placeholder.size(), filled);
    }
  }
}

std::unique_ptr<Component> Build(const util::xml::Element& element) {
  std::unique_ptr<Component> component(Factories().Create(element));
  if (!component) return nullptr;
  for (const auto& child : element.children) {
    if (child->kind != util::xml::Element::kTag) continue;
    if (Factories().Find(*child)) {
      component->Adopt(Build(*child).release());
    } else {
      component->Consume(*child);
    }
  }
  return component;
}

}  // namespace

void FillPlaceholders(util::xml::Element& element, const Placeholders& texts) {
  // Without recursion: a layout is filled before its depth is weighed.
  std::vector<util::xml::Element*> pending{&element};
  while (!pending.empty()) {
    util::xml::Element& at = *pending.back();
    pending.pop_back();
    // A text element keeps its text in its name.
    if (at.kind == util::xml::Element::kText) Replace(at.name, texts);
    for (auto& attribute : at.attributes) Replace(attribute.second, texts);
    for (auto& child : at.children) pending.push_back(child.get());
  }
}

std::string DataRoot() { return DataRootSlot(); }

void SetDataRoot(const std::string& root) { DataRootSlot() = root; }

std::unique_ptr<Component> BuildComponent(const util::xml::Element& element, std::string* error) {
  if (const std::size_t depth = element.Depth(); depth > kMaxLayoutDepth) {
    if (error) {
      *error = "elements are nested " + std::to_string(depth) + " levels deep; a layout holds at most " +
               std::to_string(kMaxLayoutDepth);
    }
    return nullptr;
  }
  std::unique_ptr<Component> component = Build(element);
  if (!component && error) *error = "\"" + element.name + "\" is not a component";
  return component;
}

std::unique_ptr<Component> LoadLayout(const std::string& path, std::string* error, const Placeholders& texts) {
  util::xml::Element element;
  const util::xml::ParseResult result = element.Parse(path);
  if (result != util::xml::kParsed) {
    if (error) *error = path + ": the layout can't be read (parse result " + std::to_string(result) + ")";
    return nullptr;
  }
  FillPlaceholders(element, texts);
  std::string problem;
  std::unique_ptr<Component> root = BuildComponent(element, &problem);
  if (!root) {
    if (error) *error = path + ": " + problem;
    return nullptr;
  }
  root->SetAlias("[coreimages]", DataRoot() + "/core/images");
  return root;
}

}  // namespace vuk::gui
