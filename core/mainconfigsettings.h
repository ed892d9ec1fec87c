#pragma once
// The program's preferences: the element "RGTConfig" of "settings.xml", one
// child "element" per setting with its id as attribute and the value as text.

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "core/additionalsetting.h"

namespace vuk::rgw::core {

// Ids of the core's own settings.
namespace setting {
constexpr std::int32_t kCountdownSeconds = 100;
constexpr std::int32_t kSilentMode = 102;
constexpr std::int32_t kAlwaysOnTop = 103;
constexpr std::int32_t kCheckForUpdates = 122;
}  // namespace setting

class MainConfigSettings {
 public:
  // Registers the core's built-in settings with their defaults.
  MainConfigSettings();

  // A missing file keeps the defaults and is no error. A file that can't be
  // parsed keeps them too, and `error` says which file and why.
  bool Load(const std::string& path, std::string* error = nullptr);
  // Written beside the file first and then moved over it, so that a failed
  // write never leaves half a file.
  bool Save(const std::string& path, std::string* error = nullptr) const;

  // Each sets the value, making the entry when missing.
  void SetInt(std::int32_t id, std::int32_t value) { Set(id, value); }
  void SetDouble(std::int32_t id, double value) { Set(id, value); }
  void SetString(std::int32_t id, const std::string& value) { Set(id, value); }
  void SetBool(std::int32_t id, bool value) { Set(id, value); }

  // Null for an id nobody set or read.
  Setting* GetSetting(std::int32_t id) const;
  // The value read as the asked type, or the fallback.
  std::int32_t GetInt(std::int32_t id, std::int32_t fallback = 0) const { return Get(id, fallback); }
  double GetDouble(std::int32_t id, double fallback = 0.0) const { return Get(id, fallback); }
  std::string GetString(std::int32_t id, const std::string& fallback = std::string()) const { return Get(id, fallback); }
  bool GetBool(std::int32_t id, bool fallback = false) const { return Get(id, fallback); }

 private:
  template <typename T>
  void Set(std::int32_t id, const T& value) {
    // A value read from a file before its setting was declared is kept as
    // text; declaring it with a type replaces the text entry.
    auto* typed = dynamic_cast<AdditionalSetting<T>*>(GetSetting(id));
    if (!typed) {
      auto made = std::make_unique<AdditionalSetting<T>>(id, value);
      typed = made.get();
      settings_[id] = std::move(made);
    }
    typed->value = value;
  }

  template <typename T>
  T Get(std::int32_t id, const T& fallback) const {
    const Setting* found = GetSetting(id);
    if (!found) return fallback;
    if (const auto* typed = dynamic_cast<const AdditionalSetting<T>*>(found)) return typed->value;
    T value = fallback;
    return setting_text::Read(found->WriteText(), value) ? value : fallback;
  }

  std::map<std::int32_t, std::unique_ptr<Setting>> settings_;
};

}  // namespace vuk::rgw::core
