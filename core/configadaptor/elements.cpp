#include "core/configadaptor/elements.h"

#include <cstring>
#include <locale>
#include <sstream>

#include "gui/component/choices.h"
#include "gui/component/controls.h"
#include "util/base64.h"
#include "util/bytes.h"
#include "util/xml/tag.h"

namespace vuk::rgw::core::configadaptor::element {

using util::xml::Element;
using util::xml::Tag;

namespace {

std::string Number(double value) {
  std::ostringstream out;
  out.imbue(std::locale::classic());
  out << value;
  return out.str();
}

// The "item" of that id anywhere in a profile, or null.
const Element* FindItem(const Element& profile, std::int32_t id) {
  const std::string wanted = std::to_string(id);
  for (const auto& child : profile.children) {
    if (child->name == "item" && child->GetAttribute("id") == wanted) return child.get();
    if (child->name == "group") {
      if (const Element* found = FindItem(*child, id)) return found;
    }
  }
  return nullptr;
}

Element Item(const Node& node, const std::string& type, const std::string& text) {
  Tag item("item");
  item.SetAttribute("id") = std::to_string(node.id);
  item.SetAttribute("label") = node.label;
  if (!type.empty()) item.SetAttribute("type") = type;
  item.AddChild(util::xml::Text(text));
  return std::move(item);
}

// A double travels as the Base64 of its eight bytes, so no digit is lost.
std::string Blob(double value) {
  util::Bytes bytes;
  util::ByteWriter(bytes).Put(value);
  return util::Base64::Encode(bytes);
}

bool ReadNumber(const Element& item, double& value) {
  if (item.GetAttribute("type") == "blob") {
    util::Bytes bytes;
    if (!util::Base64::Decode(item.GetText(), bytes) || bytes.size() != 8) return false;
    util::ByteReader(bytes).Get(value);
    return true;
  }
  std::istringstream in(item.GetText());
  in.imbue(std::locale::classic());
  return static_cast<bool>(in >> value);
}

// A whole number from a profile: a value outside the 32-bit range, or no
// number at all, is refused rather than converted.
bool ReadWhole(const Element& item, std::int32_t& value) {
  double number = 0;
  if (!ReadNumber(item, number) || !(number >= -2147483648.0 && number <= 2147483647.0)) return false;
  value = static_cast<std::int32_t>(number);
  return true;
}

Element Control(const char* kind, const Node& node) {
  Tag control(kind);
  control.SetAttribute("id") = std::to_string(node.id);
  control.SetAttribute("fixed") = "no";
  control.SetAttribute("minheight") = "20";
  control.SetAttribute("minwidth") = "20";
  control.SetAttribute("tooltip") = node.tooltip;
  return std::move(control);
}

Element SpinnerControl(const Node& node, double min, double max, double step, std::int32_t trigger, double value) {
  Element spinner = Control("spinner", node);
  spinner.SetAttribute("min") = Number(min);
  spinner.SetAttribute("max") = Number(max);
  spinner.SetAttribute("step") = Number(step);
  spinner.SetAttribute("triggerlength") = std::to_string(trigger);
  spinner.SetAttribute("defaultvalue") = Number(value);
  return spinner;
}

// Old profiles, rebuilt into the present form.
void ConvertItems(const Element& old, Element& into) {
  for (const auto& child : old.children) {
    if (child->kind != Element::kTag) continue;
    if (child->name == "group") {
      Tag group("group");
      group.SetAttribute("id") = "-1";
      group.SetAttribute("label") = child->GetAttribute("label");
      ConvertItems(*child, group);
      into.AddChild(group);
      continue;
    }
    const bool generic = child->name == "spinner" || child->name == "check" || child->name == "combo";
    if (!generic && child->name != "string" && child->name != "item") continue;
    Tag item("item");
    item.SetAttribute("id") = child->GetAttribute("id");
    item.SetAttribute("label") = child->GetAttribute("label");
    item.SetAttribute("type") = child->name == "item" ? child->GetAttribute("type") : generic ? "generic" : "text";
    item.AddChild(util::xml::Text(child->GetText()));
    into.AddChild(item);
  }
}

}  // namespace

Element Root::BuildLayout() {
  Tag scroll("scroll");
  Tag list("list");
  list.SetAttribute("type") = "vertical";
  for (std::size_t i = 0; i < GetChildCount(); ++i) list.AddChild(GetChild(i)->BuildLayout());
  scroll.AddChild(list);
  return std::move(scroll);
}

Element Root::WriteNamedProfile(const std::string& name) {
  Tag profile("configprofile");
  profile.SetAttribute("version") = "2.0";
  profile.SetAttribute("name") = name;
  WriteProfile(profile);
  return std::move(profile);
}

bool Root::ReadAnyProfile(const Element& given) {
  const Element* profile = &given;
  if (profile->name == "configprofile" && profile->GetChild(0).name == "configprofile") profile = &profile->GetChild(0);
  if (profile->name == "configprofile" && profile->GetAttribute("version") == "2.0") {
    ReadProfile(*profile);
    return !profile->GetAttribute("converted").empty();
  }
  Tag converted("configprofile");
  converted.SetAttribute("version") = "2.0";
  converted.SetAttribute("name") = profile->GetAttribute("name");
  converted.SetAttribute("converted") = "yes";
  ConvertItems(*profile, converted);
  ReadProfile(converted);
  return true;
}

void Group::WriteProfile(Element& profile) {
  Tag group("group");
  group.SetAttribute("id") = "-1";
  group.SetAttribute("label") = label;
  Node::WriteProfile(group);
  profile.AddChild(group);
}

Element Group::BuildLayout() {
  Element group;
  group.ParseText("<group><list><label/><border><list id=\"1\"/></border></list></group>");
  Element& outer = *group.children[0];
  outer.SetAttribute("valign") = "top";
  outer.SetAttribute("padding") = "5 0 0 0";
  outer.SetAttribute("desiredwidth") = "500";
  outer.SetAttribute("type") = "vertical";
  Element& text = *outer.children[0];
  text.SetAttribute("label") = label;
  text.SetAttribute("enabled") = "no";
  text.SetAttribute("minheight") = "30";
  text.SetAttribute("minwidth") = "30";
  Element& border = *outer.children[1];
  border.SetAttribute("style") = "none";
  border.SetAttribute("padding") = "0 15 0 0";
  Element& inner = *border.children[0];
  for (std::size_t i = 0; i < GetChildCount(); ++i) inner.AddChild(GetChild(i)->BuildLayout());
  return group;
}

void Spinner::WriteProfile(Element& profile) { profile.AddChild(Item(*this, "blob", Blob(*variable))); }

void Spinner::ReadProfile(const Element& profile) {
  double value = 0;
  if (const Element* item = FindItem(profile, id); item && ReadNumber(*item, value)) *variable = value;
}

Element Spinner::BuildLayout() { return Row(SpinnerControl(*this, minimum, maximum, step, triggerLength, *variable)); }

bool Spinner::TakeFromControl(gui::Component& control) {
  auto* spinner = dynamic_cast<gui::componentinterface::Spinner*>(&control);
  if (spinner) *variable = spinner->GetValue();
  return spinner != nullptr;
}

void Spinner::SendToControl(gui::Component& control) {
  if (auto* spinner = dynamic_cast<gui::componentinterface::Spinner*>(&control)) spinner->SetValue(*variable);
}

void Spinner_Int::WriteProfile(Element& profile) { profile.AddChild(Item(*this, "", std::to_string(*variable))); }

void Spinner_Int::ReadProfile(const Element& profile) {
  if (const Element* item = FindItem(profile, id)) ReadWhole(*item, *variable);
}

Element Spinner_Int::BuildLayout() {
  Element spinner = SpinnerControl(*this, minimum, maximum, step, triggerLength, *variable);
  spinner.SetAttribute("decimals") = "0";
  return Row(spinner);
}

bool Spinner_Int::TakeFromControl(gui::Component& control) {
  auto* spinner = dynamic_cast<gui::componentinterface::Spinner*>(&control);
  if (spinner) *variable = static_cast<std::int32_t>(spinner->GetValue());
  return spinner != nullptr;
}

void Spinner_Int::SendToControl(gui::Component& control) {
  if (auto* spinner = dynamic_cast<gui::componentinterface::Spinner*>(&control)) spinner->SetValue(*variable);
}

void CheckBox::WriteProfile(Element& profile) { profile.AddChild(Item(*this, "", *variable ? "1" : "0")); }

void CheckBox::ReadProfile(const Element& profile) {
  double value = 0;
  if (const Element* item = FindItem(profile, id); item && ReadNumber(*item, value)) *variable = value != 0;
}

Element CheckBox::BuildLayout() {
  Element box = Control("checkbox", *this);
  box.SetAttribute("defaultstate") = *variable ? "true" : "false";
  return Row(box);
}

bool CheckBox::TakeFromControl(gui::Component& control) {
  auto* box = dynamic_cast<gui::componentinterface::CheckBox*>(&control);
  if (box) *variable = box->GetState() == gui::componentinterface::CheckBox::kOn;
  return box != nullptr;
}

void CheckBox::SendToControl(gui::Component& control) {
  if (auto* box = dynamic_cast<gui::componentinterface::CheckBox*>(&control)) {
    box->SetState(*variable ? gui::componentinterface::CheckBox::kOn : gui::componentinterface::CheckBox::kOff);
  }
}

void TextBox::WriteProfile(Element& profile) { profile.AddChild(Item(*this, "text", *variable)); }

void TextBox::ReadProfile(const Element& profile) {
  if (const Element* item = FindItem(profile, id)) *variable = item->GetText();
}

Element TextBox::BuildLayout() {
  Element box = Control("textbox", *this);
  box.SetAttribute("defaulttext") = *variable;
  return Row(box);
}

bool TextBox::TakeFromControl(gui::Component& control) {
  auto* box = dynamic_cast<gui::componentinterface::TextBox*>(&control);
  if (box) *variable = box->GetText();
  return box != nullptr;
}

void TextBox::SendToControl(gui::Component& control) {
  if (auto* box = dynamic_cast<gui::componentinterface::TextBox*>(&control)) box->SetText(*variable);
}

void ComboBox::WriteProfile(Element& profile) { profile.AddChild(Item(*this, "", std::to_string(*variable))); }

void ComboBox::ReadProfile(const Element& profile) {
  if (const Element* item = FindItem(profile, id)) ReadWhole(*item, *variable);
}

Element ComboBox::BuildLayout() {
  Element box = Control("combobox", *this);
  for (std::size_t i = 0; i < items.size(); ++i) {
    Tag item("item");
    item.SetAttribute("id") = std::to_string(i);
    item.SetAttribute("label") = items[i];
    box.AddChild(item);
  }
  return Row(box);
}

void ComboBox::SetItems(std::vector<std::string> choices) {
  items = std::move(choices);
  for (gui::Component* view : views) {
    if (auto* box = dynamic_cast<gui::componentinterface::ComboBox*>(FindControl(*view))) {
      box->SetItems(items);
      box->SetSelected(*variable);
    }
  }
}

bool ComboBox::TakeFromControl(gui::Component& control) {
  auto* box = dynamic_cast<gui::componentinterface::ComboBox*>(&control);
  if (box) *variable = box->GetSelected();
  return box != nullptr;
}

void ComboBox::SendToControl(gui::Component& control) {
  if (auto* box = dynamic_cast<gui::componentinterface::ComboBox*>(&control)) box->SetSelected(*variable);
}

Element Button::BuildLayout() {
  Element button = Control("button", *this);
  button.SetAttribute("label") = label;
  return button;
}

Element Label::BuildLayout() {
  Tag text("label");
  text.SetAttribute("id") = std::to_string(id);
  text.SetAttribute("minheight") = "20";
  text.SetAttribute("label") = label;
  return std::move(text);
}

}  // namespace vuk::rgw::core::configadaptor::element
