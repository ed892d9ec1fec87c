#include "unidevice/driver/virtualkeys.h"

#include <iterator>

namespace vuk::unidevice::driver {

namespace {

struct Mapping {
  int qtKey;
  int virtualKey;
};

constexpr Mapping kKeypad[] = {
    {Qt::Key_0, 0x60},        {Qt::Key_1, 0x61},     {Qt::Key_2, 0x62},     {Qt::Key_3, 0x63},
    {Qt::Key_4, 0x64},        {Qt::Key_5, 0x65},     {Qt::Key_6, 0x66},     {Qt::Key_7, 0x67},
    {Qt::Key_8, 0x68},        {Qt::Key_9, 0x69},     {Qt::Key_Asterisk, 0x6A}, {Qt::Key_Plus, 0x6B},
    {Qt::Key_Minus, 0x6D},    {Qt::Key_Period, 0x6E}, {Qt::Key_Slash, 0x6F}, {Qt::Key_Enter, 0x0D},
    {Qt::Key_Insert, 0x60},   {Qt::Key_Delete, 0x6E}, {Qt::Key_End, 0x61},   {Qt::Key_Down, 0x62},
    {Qt::Key_PageDown, 0x63}, {Qt::Key_Left, 0x64},  {Qt::Key_Clear, 0x65}, {Qt::Key_Right, 0x66},
    {Qt::Key_Home, 0x67},     {Qt::Key_Up, 0x68},    {Qt::Key_PageUp, 0x69},
};

constexpr Mapping kKeys[] = {
    {Qt::Key_Backspace, 0x08}, {Qt::Key_Tab, 0x09},       {Qt::Key_Backtab, 0x09},   {Qt::Key_Return, 0x0D},
    {Qt::Key_Enter, 0x0D},     {Qt::Key_Shift, 0x10},     {Qt::Key_Control, 0x11},   {Qt::Key_Alt, 0x12},
    {Qt::Key_AltGr, 0x12},     {Qt::Key_Pause, 0x13},     {Qt::Key_CapsLock, 0x14},  {Qt::Key_Escape, 0x1B},
    {Qt::Key_Space, 0x20},     {Qt::Key_PageUp, 0x21},    {Qt::Key_PageDown, 0x22},  {Qt::Key_End, 0x23},
    {Qt::Key_Home, 0x24},      {Qt::Key_Left, 0x25},      {Qt::Key_Up, 0x26},        {Qt::Key_Right, 0x27},
    {Qt::Key_Down, 0x28},      {Qt::Key_Print, 0x2C},     {Qt::Key_Insert, 0x2D},    {Qt::Key_Delete, 0x2E},
    {Qt::Key_Meta, 0x5B},      {Qt::Key_Super_L, 0x5B},   {Qt::Key_Super_R, 0x5C},   {Qt::Key_Menu, 0x5D},
    {Qt::Key_NumLock, 0x90},   {Qt::Key_ScrollLock, 0x91},
    // Punctuation, shifted or not, by its place on a US keyboard.
    {Qt::Key_Semicolon, 0xBA}, {Qt::Key_Colon, 0xBA},     {Qt::Key_Equal, 0xBB},     {Qt::Key_Plus, 0xBB},
    {Qt::Key_Comma, 0xBC},     {Qt::Key_Less, 0xBC},      {Qt::Key_Minus, 0xBD},     {Qt::Key_Underscore, 0xBD},
    {Qt::Key_Period, 0xBE},    {Qt::Key_Greater, 0xBE},   {Qt::Key_Slash, 0xBF},     {Qt::Key_Question, 0xBF},
    {Qt::Key_QuoteLeft, 0xC0}, {Qt::Key_AsciiTilde, 0xC0}, {Qt::Key_BracketLeft, 0xDB}, {Qt::Key_BraceLeft, 0xDB},
    {Qt::Key_Backslash, 0xDC}, {Qt::Key_Bar, 0xDC},       {Qt::Key_BracketRight, 0xDD}, {Qt::Key_BraceRight, 0xDD},
    {Qt::Key_Apostrophe, 0xDE}, {Qt::Key_QuoteDbl, 0xDE},
    // Shifted digits are their digit keys.
    {Qt::Key_Exclam, '1'},     {Qt::Key_At, '2'},         {Qt::Key_NumberSign, '3'}, {Qt::Key_Dollar, '4'},
    {Qt::Key_Percent, '5'},    {Qt::Key_AsciiCircum, '6'}, {Qt::Key_Ampersand, '7'}, {Qt::Key_Asterisk, '8'},
    {Qt::Key_ParenLeft, '9'},  {Qt::Key_ParenRight, '0'},
};

int Find(const Mapping* begin, const Mapping* end, int qtKey) {
  for (const Mapping* m = begin; m != end; ++m) {
    if (m->qtKey == qtKey) return m->virtualKey;
  }
  return -1;
}

}  // namespace

int VirtualKeyFromQt(int qtKey, Qt::KeyboardModifiers modifiers) {
  if (modifiers & Qt::KeypadModifier) {
    const int keypad = Find(std::begin(kKeypad), std::end(kKeypad), qtKey);
    if (keypad >= 0) return keypad;
  }
  if ((qtKey >= Qt::Key_0 && qtKey <= Qt::Key_9) || (qtKey >= Qt::Key_A && qtKey <= Qt::Key_Z)) return qtKey;
  if (qtKey >= Qt::Key_F1 && qtKey <= Qt::Key_F24) return 0x70 + (qtKey - Qt::Key_F1);
  return Find(std::begin(kKeys), std::end(kKeys), qtKey);
}

}  // namespace vuk::unidevice::driver
