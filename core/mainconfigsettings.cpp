#include "core/mainconfigsettings.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <limits>

#include "util/atomicfile.h"
#include "util/numbertext.h"
#include "util/xml/element.h"
#include "util/xml/tag.h"

namespace vuk::rgw::core {

namespace setting_text {

bool Read(const std::string& text, std::int32_t& value) {
  const char* begin = text.c_str();
  char* end = nullptr;
  errno = 0;
  const long long parsed = std::strtoll(begin, &end, 10);
  if (end == begin || errno == ERANGE || parsed < std::numeric_limits<std::int32_t>::min() ||
      parsed > std::numeric_limits<std::int32_t>::max()) {
    return false;
  }
  value = static_cast<std::int32_t>(parsed);
  return true;
}

bool Read(const std::string& text, double& value) {
  std::istringstream in(text);
  in.imbue(std::locale::classic());
  double parsed = 0;
  if (!(in >> parsed)) return false;
  value = parsed;
  return true;
}

bool Read(const std::string& text, bool& value) {
  if (text == "1" || text == "true") {
    value = true;
    return true;
  }
  if (text == "0" || text == "false") {
    value = false;
    return true;
  }
  return false;
}

bool Read(const std::string& text, std::string& value) {
  value = text;
  return true;
}

std::string Write(std::int32_t value) { return std::to_string(value); }

std::string Write(double value) { return util::FormatDouble(value); }

std::string Write(bool value) { return value ? "1" : "0"; }

std::string Write(const std::string& value) { return value; }

template <> const char* TypeName<std::int32_t>() { return "AdditionalSetting<int>"; }
template <> const char* TypeName<double>() { return "AdditionalSetting<double>"; }
template <> const char* TypeName<bool>() { return "AdditionalSetting<bool>"; }
template <> const char* TypeName<std::string>() { return "AdditionalSetting<string>"; }

}  // namespace setting_text

MainConfigSettings::MainConfigSettings() {
  SetInt(setting::kCountdownSeconds, 3);
  SetBool(setting::kSilentMode, false);
  SetBool(setting::kAlwaysOnTop, false);
  SetBool(setting::kCheckForUpdates, true);
}

Setting* MainConfigSettings::GetSetting(std::int32_t id) const {
  const auto found = settings_.find(id);
  return found == settings_.end() ? nullptr : found->second.get();
}

bool MainConfigSettings::Load(const std::string& path, std::string* error) {
  std::error_code ignored;
  if (!std::filesystem::exists(path, ignored)) return true;
  util::xml::Element root;
  const util::xml::ParseResult result = root.Parse(path);
  if (result != util::xml::kParsed || root.name != "RGTConfig") {
    if (error) {
      *error = path + ": not a settings file (" +
               (result != util::xml::kParsed ? "parse result " + std::to_string(result) : "root is not RGTConfig") +
               "); the defaults stay in effect";
    }
    return false;
  }
  for (std::size_t i = 0, count = root.CountChildren("element"); i < count; ++i) {
    const util::xml::Element& entry = root.GetChild("element", i);
    std::int32_t id = 0;
    if (!setting_text::Read(entry.GetAttribute("id"), id)) continue;
    const std::string text = entry.GetText();
    if (Setting* known = GetSetting(id)) {
      known->ReadText(text);
    } else {
      // Kept as text until someone asks for it with a type.
      settings_[id] = std::make_unique<AdditionalSetting<std::string>>(id, text);
    }
  }
  return true;
}

bool MainConfigSettings::Save(const std::string& path, std::string* error) const {
  util::xml::Tag root("RGTConfig");
  for (const auto& [id, entry] : settings_) {
    util::xml::Tag element("element");
    element.SetAttribute("id") = std::to_string(id);
    element.AddChild(util::xml::Text(entry->WriteText()));
    root.AddChild(element);
  }
  return util::AtomicFile::Replace(path, root.Write(), error);
}

}  // namespace vuk::rgw::core
