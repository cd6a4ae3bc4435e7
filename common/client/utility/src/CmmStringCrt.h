#pragma once

// The routines on NUL-terminated text under one name for both widths; private to the string's sources.

#include <cctype>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <cwctype>

#include "common/client/utility/src/CmmStrUtil.h"

namespace Cmm::crt {

template <typename T>
const T* OrEmpty(const T* s) {
  static constexpr T kEmpty[1] = {};
  return s ? s : kEmpty;
}

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
  if (!*needle) return s;  // not every runtime finds it in an empty text
  return std::wcsstr(s, needle);
}

inline char ToLower(char c) {
  return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
}
inline wchar_t ToLower(wchar_t c) {
  return static_cast<wchar_t>(std::towlower(c));
}

// Below 0 when the text does not fit into `max` units and when the format is refused. The C++ library's
// own vswprintf would take %s as narrow text.
inline int Print(char* buffer, size_t max, const char* format, va_list args) {
  return _vsnprintf(buffer, max, format, args);
}
inline int Print(wchar_t* buffer, size_t max, const wchar_t* format, va_list args) {
  return _vsnwprintf(buffer, max, format, args);
}

inline const char* FindUnitIgnoringCase(const char* s, char c) {
  return cmm_astr_chri(s, nullptr, c);
}
inline const wchar_t* FindUnitIgnoringCase(const wchar_t* s, wchar_t c) {
  return cmm_wstr_chri(s, nullptr, c);
}

inline const char* FindTextIgnoringCase(const char* s, const char* needle) {
  return cmm_astr_stri(s, nullptr, needle);
}
inline const wchar_t* FindTextIgnoringCase(const wchar_t* s, const wchar_t* needle) {
  return cmm_wstr_stri(s, nullptr, needle);
}

inline const char* FindLastTextIgnoringCase(const char* s, const char* needle) {
  return cmm_astr_rstri(s, nullptr, needle);
}
inline const wchar_t* FindLastTextIgnoringCase(const wchar_t* s, const wchar_t* needle) {
  return cmm_wstr_rstri(s, nullptr, needle);
}

inline void MakeUpper(char* s) {
  cmm_astr_upr(s, nullptr);
}
inline void MakeUpper(wchar_t* s) {
  cmm_wstr_upr(s, nullptr);
}

inline void MakeLower(char* s) {
  cmm_astr_lwr(s, nullptr);
}
inline void MakeLower(wchar_t* s) {
  cmm_wstr_lwr(s, nullptr);
}

inline int Match(const char* s, const char* patterns, char sep, int caseSensitive) {
  return cmm_astr_match(s, patterns, sep, caseSensitive);
}
inline int Match(const wchar_t* s, const wchar_t* patterns, wchar_t sep, int caseSensitive) {
  return cmm_wstr_match(s, patterns, sep, caseSensitive);
}

}  // namespace Cmm::crt
