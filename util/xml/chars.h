#pragma once
// Character classes of the "C" locale, fixed: a host application may switch the
// process locale, and saved text must not change with it.

namespace vuk::util::xml::chars {

inline bool IsDigit(char c) { return c >= '0' && c <= '9'; }
inline bool IsAlpha(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
inline bool IsAlnum(char c) { return IsDigit(c) || IsAlpha(c); }
inline bool IsHexDigit(char c) { return IsDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'); }
inline bool IsBlank(char c) { return c == ' ' || c == '\t'; }
inline bool IsSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
inline bool IsPunct(char c) { return (c >= '!' && c <= '~') && !IsAlnum(c); }

}  // namespace vuk::util::xml::chars
