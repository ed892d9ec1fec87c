#include "core/configadaptor/mainconfig.h"

#include <cstdlib>

#include "gui/builder.h"
#include "gui/componentinterface.h"
#include "util/xml/tag.h"

namespace vuk::rgw::core::configadaptor::element {

namespace {

bool IsBool(const Setting* setting) { return dynamic_cast<const AdditionalSetting<bool>*>(setting) != nullptr; }

}  // namespace

util::xml::Element MainConfig::BuildLayout() {
  util::xml::Tag list("list");
  list.SetAttribute("type") = "vertical";
  util::xml::Element page;
  if (page.Parse(gui::DataRoot() + "/core/layout/rgw_mainconfig.xml") == util::xml::kParsed) list.AddChild(page);
  if (adaptor_) adaptor_->GetConfigLayout(list);
  return std::move(list);
}

void MainConfig::AttachControls(gui::Component& component) {
  if (component.id >= 0 && core_->GetSetting(component.id)) {
    Connect(&component);
    ShowSetting(component);
  }
  for (std::size_t i = 0; i < component.GetChildCount(); ++i) AttachControls(*component.GetChild(i));
}

void MainConfig::AttachView(gui::Component* view) {
  views.push_back(view);
  AttachControls(*view);
}

void MainConfig::UpdateViews() {
  for (gui::Component* view : views) ShowAllSettings(*view);
}

void MainConfig::ShowAllSettings(gui::Component& component) {
  if (component.id >= 0) ShowSetting(component);
  for (std::size_t i = 0; i < component.GetChildCount(); ++i) ShowAllSettings(*component.GetChild(i));
}

void MainConfig::ShowSetting(gui::Component& control) {
  const Setting* setting = core_->GetSetting(control.id);
  if (!setting) return;
  const std::string text = setting->WriteText();
  if (auto* box = dynamic_cast<gui::componentinterface::CheckBox*>(&control)) {
    box->SetState(text == "1" ? gui::componentinterface::CheckBox::kOn : gui::componentinterface::CheckBox::kOff);
  } else if (auto* spinner = dynamic_cast<gui::componentinterface::Spinner*>(&control)) {
    spinner->SetValue(std::atof(text.c_str()));
  } else if (auto* field = dynamic_cast<gui::componentinterface::TextBox*>(&control)) {
    field->SetText(text);
  }
}

void MainConfig::Receive(util::Message& message, bool fromBroadcast) {
  util::MessageNode::Receive(message, fromBroadcast);
  auto* control = dynamic_cast<gui::Component*>(message.sender);
  if (message.id != gui::kValueChanged || !control) return;
  const Setting* setting = core_->GetSetting(control->id);
  if (!setting) return;
  if (auto* box = dynamic_cast<gui::componentinterface::CheckBox*>(control)) {
    core_->SetBool(control->id, box->GetState() == gui::componentinterface::CheckBox::kOn);
  } else if (auto* spinner = dynamic_cast<gui::componentinterface::Spinner*>(control)) {
    if (IsBool(setting)) return;
    if (dynamic_cast<const AdditionalSetting<double>*>(setting)) {
      core_->SetDouble(control->id, spinner->GetValue());
    } else {
      core_->SetInt(control->id, static_cast<std::int32_t>(spinner->GetValue()));
    }
  } else if (auto* field = dynamic_cast<gui::componentinterface::TextBox*>(control)) {
    core_->SetString(control->id, field->GetText());
  }
}

}  // namespace vuk::rgw::core::configadaptor::element
