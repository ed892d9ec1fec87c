#pragma once
// One preference of the program: an id, a default, and its text form in
// "settings.xml".

#include <cstdint>
#include <sstream>
#include <string>

#include "util/dynamiccreator.h"
#include "util/dynamicobject.h"

namespace vuk::rgw::core {

class Setting : public util::DynamicObject {
 public:
  std::int32_t id = 0;

  // Takes the value from its text; false leaves the value as it was.
  virtual bool ReadText(const std::string& text) = 0;
  virtual std::string WriteText() const = 0;
  virtual void ResetToDefault() = 0;
};

namespace setting_text {
bool Read(const std::string& text, std::int32_t& value);
bool Read(const std::string& text, double& value);
bool Read(const std::string& text, bool& value);
bool Read(const std::string& text, std::string& value);
std::string Write(std::int32_t value);
// With every digit a double needs to read back the same.
std::string Write(double value);
std::string Write(bool value);
std::string Write(const std::string& value);
template <typename T> const char* TypeName();
}  // namespace setting_text

template <typename T>
class AdditionalSetting : public Setting, public util::DynamicCreator<AdditionalSetting<T>> {
 public:
  AdditionalSetting() = default;
  AdditionalSetting(std::int32_t settingId, T initial) : value(initial), defaultValue(initial) { id = settingId; }

  std::string GetTypeName() const override { return setting_text::TypeName<T>(); }
  bool ReadText(const std::string& text) override { return setting_text::Read(text, value); }
  std::string WriteText() const override { return setting_text::Write(value); }
  void ResetToDefault() override { value = defaultValue; }

  T value{};
  T defaultValue{};
};

}  // namespace vuk::rgw::core
