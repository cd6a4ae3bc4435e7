#pragma once

// The C routines on NUL-terminated text under one name for both widths; private to the string's sources.

#include <cctype>
#include <cstring>
#include <cwchar>
#include <cwctype>

namespace Cmm::crt {

inline int Compare(const char* a, const char* b) {
  return std::strcmp(a, b);
}
inline int Compare(const wchar_t* a, const wchar_t* b) {
  return std::wcscmp(a, b);
}

inline const char* FindUnit(const char* s, char c) {
  return std::strchr(s, c);
}
inline const wchar_t* FindUnit(const wchar_t* s, wchar_t c) {
  return std::wcschr(s, c);
}

inline const char* FindLastUnit(const char* s, char c) {
  return std::strrchr(s, c);
}
inline const wchar_t* FindLastUnit(const wchar_t* s, wchar_t c) {
  return std::wcsrchr(s, c);
}

inline const char* FindText(const char* s, const char* needle) {
  return std::strstr(s, needle);
}
inline const wchar_t* FindText(const wchar_t* s, const wchar_t* needle) {
  return std::wcsstr(s, needle);
}

inline char ToLower(char c) {
  return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
}
inline wchar_t ToLower(wchar_t c) {
  return static_cast<wchar_t>(std::towlower(c));
}

}  // namespace Cmm::crt
