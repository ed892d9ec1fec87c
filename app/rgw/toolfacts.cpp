#include "app/rgw/toolfacts.h"

#include <sstream>

#include "app/rgw/bindingwords.h"
#include "app/rgw/wording.h"
#include "core/configadaptor/elements.h"
#include "sdk/cinterface.h"

namespace vuk::app {

namespace {

namespace element = rgw::core::configadaptor::element;

std::string Number(double value) {
  std::ostringstream text;
  text << value;
  return text.str();
}

std::string Range(double minimum, double maximum, double step, bool whole) {
  return std::string(whole ? "whole numbers " : "") + "from " + Number(minimum) + " to " + Number(maximum) +
         ", step " + Number(step);
}

// "0 Soft, 1 Tight": the numbers `rgw set` takes for the choices.
std::string Choices(const std::vector<std::string>& items) {
  std::vector<std::string> numbered;
  for (std::size_t i = 0; i < items.size(); ++i) numbered.push_back(std::to_string(i) + " " + items[i]);
  return Listed(numbered);
}

// The value and range of a page item as the page shows them.
SettingFacts Setting(rgw::core::configadaptor::Node& node, int depth) {
  SettingFacts setting{depth, false, node.label, node.tooltip, "", ""};
  if (const auto* spinner = dynamic_cast<const element::Spinner*>(&node)) {
    setting.value = Number(*spinner->variable);
    setting.range = Range(spinner->minimum, spinner->maximum, spinner->step, false);
  } else if (const auto* whole = dynamic_cast<const element::Spinner_Int*>(&node)) {
    setting.value = Number(*whole->variable);
    setting.range = Range(whole->minimum, whole->maximum, whole->step, true);
  } else if (const auto* check = dynamic_cast<const element::CheckBox*>(&node)) {
    setting.value = *check->variable ? "on" : "off";
    setting.range = "1 on or 0 off";
  } else if (const auto* combo = dynamic_cast<const element::ComboBox*>(&node)) {
    const std::size_t chosen = static_cast<std::size_t>(*combo->variable);
    setting.value = chosen < combo->items.size() ? combo->items[chosen] : Number(*combo->variable);
    setting.range = Choices(combo->items);
  } else if (const auto* text = dynamic_cast<const element::TextBox*>(&node)) {
    setting.value = "\"" + *text->variable + "\"";
    setting.range = "text";
  } else if (dynamic_cast<const element::Button*>(&node)) {
    setting.range = "a button, acting at once";
  } else {
    setting.group = dynamic_cast<const element::Group*>(&node) != nullptr;
  }
  return setting;
}

void GatherSettings(rgw::core::configadaptor::Node& parent, int depth, std::vector<SettingFacts>& settings) {
  for (std::size_t i = 0; i < parent.GetChildCount(); ++i) {
    rgw::core::configadaptor::Node& node = *parent.GetChild(i);
    settings.push_back(Setting(node, depth));
    GatherSettings(node, depth + 1, settings);
  }
}

}  // namespace

std::string ControlKinds(std::int32_t typeMask) {
  static const std::pair<std::int32_t, const char*> kinds[] = {
      {rgw::input::kButton, "button"}, {rgw::input::kHat, "hat"}, {rgw::input::kAxis, "axis"}, {rgw::input::kGauge, "gauge"}};
  std::vector<std::string> names;
  for (const auto& kind : kinds) {
    if (typeMask & kind.first) names.push_back(kind.second);
  }
  std::string text;
  for (std::size_t i = 0; i < names.size(); ++i) {
    text += (i == 0 ? "" : i + 1 == names.size() ? " or " : ", ") + names[i];
  }
  return text.empty() ? "any control" : text;
}

std::string BindingOf(const unidevice::Property& channel) {
  const std::string words = BindingWords(channel.config);
  return words.empty() ? "unbound" : words;
}

bool GatherTool(Session& session, rgw::core::Plugin& tool, ToolFacts& facts, std::string& error) {
  rgw::core::InstanceReference* item = session.tools.Create(tool.ToolName());
  if (!item) {
    error = "the tool \"" + tool.ToolName() + "\" could not be made";
    return false;
  }
  const rgw::core::Instance& instance = *item->instance;
  rgw::CCameraPlugin& plugin = *tool.plugin;
  facts = {tool.ToolName(), plugin.GetTitle(), Listed(tool.GetCategories()), plugin.GetDescription(),
           plugin.GetCredits(), tool.GetHelpFileName(), instance.NodeNames(), {}, {},
           tool.ConfigProfiles().Names(), tool.InputProfiles().Names()};
  const std::vector<rgw::core::Instance::Channel> channels = instance.Channels();
  for (std::size_t i = 0; i < channels.size(); ++i) {
    facts.channels.push_back(
        {channels[i].name, ControlKinds(channels[i].typeMask), BindingOf(*instance.Inputs().Get(i))});
  }
  if (instance.GetPage()) GatherSettings(*instance.GetPage(), 0, facts.settings);
  return true;
}

}  // namespace vuk::app
