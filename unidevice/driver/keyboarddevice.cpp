#include "unidevice/driver/keyboarddevice.h"

namespace vuk::unidevice::driver {

namespace {

struct KeyNameEntry {
  int code;
  const char* name;
};

// Names of the keys people bind; letters and digits are their own names.
constexpr KeyNameEntry kKeyNames[] = {
    {0x08, "Backspace"}, {0x09, "Tab"},         {0x0D, "Enter"},        {0x10, "Shift"},
    {0x11, "Ctrl"},      {0x12, "Alt"},         {0x13, "Pause"},        {0x14, "Caps Lock"},
    {0x1B, "Esc"},       {0x20, "Space"},       {0x21, "Page Up"},      {0x22, "Page Down"},
    {0x23, "End"},       {0x24, "Home"},        {0x25, "Left"},         {0x26, "Up"},
    {0x27, "Right"},     {0x28, "Down"},        {0x2C, "Print Screen"}, {0x2D, "Insert"},
    {0x2E, "Delete"},    {0x5B, "Left Windows"}, {0x5C, "Right Windows"}, {0x5D, "Applications"},
    {0x60, "Num 0"},     {0x61, "Num 1"},       {0x62, "Num 2"},        {0x63, "Num 3"},
    {0x64, "Num 4"},     {0x65, "Num 5"},       {0x66, "Num 6"},        {0x67, "Num 7"},
    {0x68, "Num 8"},     {0x69, "Num 9"},       {0x6A, "Num *"},        {0x6B, "Num +"},
    {0x6D, "Num -"},     {0x6E, "Num ."},       {0x6F, "Num /"},        {0x90, "Num Lock"},
    {0x91, "Scroll Lock"}, {0xBA, ";"},         {0xBB, "="},            {0xBC, ","},
    {0xBD, "-"},         {0xBE, "."},           {0xBF, "/"},            {0xC0, "`"},
    {0xDB, "["},         {0xDC, "\\"},          {0xDD, "]"},            {0xDE, "'"},
};

}  // namespace

std::string KeyboardDevice::KeyName(int virtualKey) {
  if ((virtualKey >= '0' && virtualKey <= '9') || (virtualKey >= 'A' && virtualKey <= 'Z')) {
    return std::string(1, static_cast<char>(virtualKey));
  }
  if (virtualKey >= 0x70 && virtualKey <= 0x87) return "F" + std::to_string(virtualKey - 0x70 + 1);
  for (const KeyNameEntry& entry : kKeyNames) {
    if (entry.code == virtualKey) return entry.name;
  }
  return "Key_" + std::to_string(virtualKey);
}

KeyboardDevice::KeyboardDevice() {
  name = kName;
  for (int code = 0; code < kKeyCount; ++code) {
    Control& key = keys_[static_cast<std::size_t>(code)];
    key.device = this;
    key.index = code;
    key.saveIndex = code;
    key.type = "Key";
    key.description = KeyName(code);
    key.changeThreshold = 0.5;
  }
}

KeyboardDevice::~KeyboardDevice() = default;

Control* KeyboardDevice::GetControl(std::int32_t index) {
  return index >= 0 && index < kKeyCount ? &keys_[static_cast<std::size_t>(index)] : nullptr;
}

bool KeyboardDevice::Activate(DeviceContext) {
  ResetControls();
  return true;
}

void KeyboardDevice::KeyDown(int virtualKey) {
  if (Control* key = GetControl(virtualKey)) key->Update(1.0);
}

void KeyboardDevice::KeyUp(int virtualKey) {
  if (Control* key = GetControl(virtualKey)) key->Update(0.0);
}

}  // namespace vuk::unidevice::driver
