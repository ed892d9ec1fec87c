#pragma once
// A tool's page as a table over its settings record: the page is built from
// the table in its order, which gives each control its id in the profiles,
// and the settings, read-outs aside, are saved and read in the same order:
// numbers as doubles, whole numbers as 32-bit integers, switches as bytes.

#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

#include "plugins/common/hideswitch.h"
#include "sdk/cinterface.h"
#include "util/bytes.h"

namespace vuk::rgw::addon {

template <typename Settings>
struct PageEntry {
  enum class Kind { kGroup, kEndGroup, kNumber, kReadOut, kWhole, kCheck, kHelpers, kButton };

  static PageEntry Group(const char* label) { return {Kind::kGroup, label}; }
  static PageEntry EndGroup() { return {Kind::kEndGroup, ""}; }
  static PageEntry Number(const char* label, const char* help, double Settings::*value, double minimum,
                          double maximum, double step) {
    PageEntry entry{Kind::kNumber, label, help};
    entry.number = value;
    entry.minimum = minimum;
    entry.maximum = maximum;
    entry.step = step;
    return entry;
  }
  // A number the tool shows and writes itself: on the page, never saved.
  static PageEntry ReadOut(const char* label, double Settings::*value, double minimum, double maximum, double step) {
    PageEntry entry = Number(label, label, value, minimum, maximum, step);
    entry.kind = Kind::kReadOut;
    return entry;
  }
  static PageEntry Whole(const char* label, const char* help, std::int32_t Settings::*value, std::int32_t minimum,
                         std::int32_t maximum) {
    PageEntry entry{Kind::kWhole, label, help};
    entry.whole = value;
    entry.minimum = minimum;
    entry.maximum = maximum;
    return entry;
  }
  static PageEntry Check(const char* label, const char* help, bool Settings::*value) {
    PageEntry entry{Kind::kCheck, label, help};
    entry.check = value;
    return entry;
  }
  // "Hide Helpers" and "Hide Helpers During Recording".
  static PageEntry Helpers(HelperSwitches Settings::*value) {
    PageEntry entry{Kind::kHelpers, ""};
    entry.helpers = value;
    return entry;
  }
  static PageEntry Button(const char* label, const char* help) { return {Kind::kButton, label, help}; }

  Kind kind;
  const char* label;
  const char* help = "";
  double Settings::*number = nullptr;
  std::int32_t Settings::*whole = nullptr;
  bool Settings::*check = nullptr;
  HelperSwitches Settings::*helpers = nullptr;
  double minimum = 0;
  double maximum = 0;
  double step = 0;
};

template <typename Settings>
using PageTable = std::vector<PageEntry<Settings>>;

// The whole page, from BeginConfig to EndConfig. Every control reports to
// `tool`; spinners become input channels of their own when `spinnersAreInputs`.
template <typename Settings>
void BuildPage(CInterface* iface, CInterface::Callback* tool, Settings& settings, const PageTable<Settings>& table,
               bool spinnersAreInputs) {
  using Kind = typename PageEntry<Settings>::Kind;
  iface->BeginConfig();
  for (const PageEntry<Settings>& entry : table) {
    switch (entry.kind) {
      case Kind::kGroup: iface->BeginGroup(entry.label, ""); break;
      case Kind::kEndGroup: iface->EndGroup(); break;
      case Kind::kNumber:
      case Kind::kReadOut:
        iface->AddSpinner(entry.label, entry.help, &(settings.*entry.number), entry.minimum, entry.maximum,
                          entry.step, 1, spinnersAreInputs, 0, tool);
        break;
      case Kind::kWhole:
        iface->AddIntSpinner(entry.label, entry.help, &(settings.*entry.whole),
                             static_cast<std::int32_t>(entry.minimum), static_cast<std::int32_t>(entry.maximum), 1,
                             1, spinnersAreInputs, 0, tool);
        break;
      case Kind::kCheck: iface->AddCheckBox(entry.label, entry.help, &(settings.*entry.check), tool); break;
      case Kind::kHelpers: (settings.*entry.helpers).AddTo(iface, tool); break;
      case Kind::kButton: iface->AddButton(entry.label, entry.help, tool); break;
    }
  }
  iface->EndConfig();
}

// Calls visit(value) for each saved value of the table, in its order.
template <typename Settings, typename Visit>
void ForEachSetting(const PageTable<Settings>& table, Settings& settings, Visit visit) {
  using Kind = typename PageEntry<Settings>::Kind;
  for (const PageEntry<Settings>& entry : table) {
    if (entry.kind == Kind::kNumber) visit(settings.*entry.number);
    if (entry.kind == Kind::kWhole) visit(settings.*entry.whole);
    if (entry.kind == Kind::kCheck) visit(settings.*entry.check);
    if (entry.kind == Kind::kHelpers) {
      visit((settings.*entry.helpers).hide);
      visit((settings.*entry.helpers).hideDuringRecording);
    }
  }
}

template <typename Settings>
util::Bytes SaveSettings(const PageTable<Settings>& table, Settings settings) {
  util::Bytes bytes;
  util::ByteWriter out(bytes);
  ForEachSetting(table, settings, [&out](auto& value) {
    if constexpr (std::is_same_v<std::decay_t<decltype(value)>, bool>) {
      out.Put(static_cast<std::uint8_t>(value));
    } else {
      out.Put(value);
    }
  });
  return bytes;
}

// False, and `settings` unchanged, unless the bytes are exactly what
// SaveSettings writes for the table.
template <typename Settings>
bool ReadSettings(const PageTable<Settings>& table, const util::Bytes& bytes, Settings& settings) {
  Settings read = settings;
  util::ByteReader in(bytes);
  bool complete = true;
  ForEachSetting(table, read, [&](auto& value) {
    if constexpr (std::is_same_v<std::decay_t<decltype(value)>, bool>) {
      std::uint8_t flag = 0;
      complete = complete && in.Get(flag) && flag <= 1;
      value = flag != 0;
    } else {
      complete = complete && in.Get(value);
    }
  });
  if (!complete || in.Remaining() != 0) return false;
  settings = read;
  return true;
}

}  // namespace vuk::rgw::addon
