#include "gui/builder.h"

#include "gui/component/choices.h"
#include "gui/component/containers.h"
#include "gui/component/controls.h"
#include "gui/component/tree.h"
#include "util/abstractfactory.h"

namespace vuk::gui {

namespace {

template <typename Kind>
class TagFactory : public util::Factory<Component> {
 public:
  explicit TagFactory(const char* tag) : tag_(tag) {}
  bool CanCreate(const util::xml::Element& element) const override {
    return element.kind == util::xml::Element::kTag && element.name == tag_;
  }
  Component* Create(const util::xml::Element& element) const override { return new Kind(element); }

 private:
  const char* tag_;
};

const util::AbstractFactory<Component>& Factories() {
  auto& factories = util::AbstractFactory<Component>::Instance();
  if (factories.Count() == 0) {
    using namespace component;
    factories.Add(new TagFactory<Dialog>("dialog"));
    factories.Add(new TagFactory<List>("list"));
    factories.Add(new TagFactory<Border>("border"));
    factories.Add(new TagFactory<Group>("group"));
    factories.Add(new TagFactory<Label>("label"));
    factories.Add(new TagFactory<Button>("button"));
    factories.Add(new TagFactory<FlmButton>("flmbutton"));
    factories.Add(new TagFactory<CheckBox>("checkbox"));
    factories.Add(new TagFactory<Spinner>("spinner"));
    factories.Add(new TagFactory<TextBox>("textbox"));
    factories.Add(new TagFactory<ComboBox>("combobox"));
    factories.Add(new TagFactory<ListBox>("listbox"));
    factories.Add(new TagFactory<Tree>("tree"));
    factories.Add(new TagFactory<Scroll>("scroll"));
    factories.Add(new TagFactory<Menu>("menubar"));
    factories.Add(new TagFactory<Menu>("menu"));
    factories.Add(new TagFactory<Menu>("popup"));
    factories.Add(new TagFactory<ProgressBar>("progressbar"));
    factories.Add(new TagFactory<Graph>("graph"));
    factories.Add(new TagFactory<Separator>("separator"));
  }
  return factories;
}

std::string& DataRootSlot() {
  static std::string root = ":/rigworks/data";
  return root;
}

}  // namespace

std::string DataRoot() { return DataRootSlot(); }

void SetDataRoot(const std::string& root) { DataRootSlot() = root; }

std::unique_ptr<Component> BuildComponent(const util::xml::Element& element) {
  std::unique_ptr<Component> component(Factories().Create(element));
  if (!component) return nullptr;
  for (const auto& child : element.children) {
    if (child->kind != util::xml::Element::kTag) continue;
    if (Factories().Find(*child)) {
      component->Adopt(BuildComponent(*child).release());
    } else {
      component->Consume(*child);
    }
  }
  return component;
}

std::unique_ptr<Component> LoadLayout(const std::string& path, std::string* error) {
  util::xml::Element element;
  const util::xml::ParseResult result = element.Parse(path);
  if (result != util::xml::kParsed) {
    if (error) *error = path + ": the layout can't be read (parse result " + std::to_string(result) + ")";
    return nullptr;
  }
  std::unique_ptr<Component> root = BuildComponent(element);
  if (!root) {
    if (error) *error = path + ": \"" + element.name + "\" is not a component";
    return nullptr;
  }
  root->SetAlias("[coreimages]", DataRoot() + "/core/images");
  return root;
}

}  // namespace vuk::gui
