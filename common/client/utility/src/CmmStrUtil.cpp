#include "common/client/utility/src/CmmStrUtil.h"

#include <string>

#include "common/client/utility/src/CmmStringCrt.h"
#include "common/client/utility/src/CmmStringSystem.h"

namespace {

using Cmm::crt::ToLower;

template <typename T>
const T* EndOf(const T* str, const T* end) {
  while (str != end && *str)
    ++str;
  return str;
}

template <typename T>
size_t BoundedLength(const T* s, size_t max) {
  size_t n = 0;
  while (n < max && s[n])
    ++n;
  return n;
}

template <typename T>
const T* FindUnitIgnoringCase(const T* str, const T* end, T c) {
  if (!str) return nullptr;
  const T wanted = ToLower(c);
  for (; str != end && *str; ++str) {
    if (ToLower(*str) == wanted) return str;
  }
  return nullptr;
}

template <typename T>
const T* FindLastUnitIgnoringCase(const T* str, const T* end, T c) {
  const T* last = nullptr;
  while (const T* found = FindUnitIgnoringCase(str, end, c)) {
    last = found;
    str = found + 1;
  }
  return last;
}

template <typename T>
const T* FindTextIgnoringCase(const T* str, const T* end, const T* needle) {
  if (!str || !needle) return nullptr;
  if (!*needle) return str;
  while (const T* found = FindUnitIgnoringCase(str, end, *needle)) {
    const T* s = found + 1;
    const T* n = needle + 1;
    while (*n && s != end && *s && ToLower(*s) == ToLower(*n))
      ++s, ++n;
    if (!*n) return found;
    str = found + 1;
  }
  return nullptr;
}

template <typename T>
const T* FindLastTextIgnoringCase(const T* str, const T* end, const T* needle) {
  if (!str || !needle) return nullptr;
  const size_t length = static_cast<size_t>(EndOf(str, end) - str);
  const size_t wanted = std::char_traits<T>::length(needle);
  if (wanted > length) return nullptr;
  for (const T* s = str + (length - wanted);; --s) {
    const int units = static_cast<int>(wanted);
    if (wanted == 0 || Cmm::CompareIgnoringCase(s, units, needle, units) == Cmm::kCompareEqual) return s;
    if (s == str) return nullptr;
  }
}

constexpr int kCaseDistance = 'a' - 'A';

template <typename T>
void MakeAsciiUpper(T* str, const T* end) {
  if (!str) return;
  for (; str != end && *str; ++str) {
    if (*str >= 'a' && *str <= 'z') *str = static_cast<T>(*str - kCaseDistance);
  }
}

template <typename T>
void MakeAsciiLower(T* str, const T* end) {
  if (!str) return;
  for (; str != end && *str; ++str) {
    if (*str >= 'A' && *str <= 'Z') *str = static_cast<T>(*str + kCaseDistance);
  }
}

template <typename T>
size_t Copy(T* dst, size_t size, const T* src, size_t max) {
  if (!dst || size == 0) return 0;
  const size_t n = src ? BoundedLength(src, size - 1 < max ? size - 1 : max) : 0;
  std::char_traits<T>::move(dst, src, n);
  dst[n] = T();
  return n;
}

template <typename T>
size_t Append(T* dst, size_t size, const T* src, size_t max) {
  if (!dst || size == 0) return 0;
  const size_t used = BoundedLength(dst, size - 1);
  return used + Copy(dst + used, size - used, src, max);
}

template <typename T>
bool MatchesAlternative(const T* s, const T* p, T sep) {
  for (;; ++s, ++p) {
    const bool patternEnds = !*p || *p == sep;
    if (!*s && patternEnds) return true;
    if (*p == '*') {
      for (;; ++s) {
        if (MatchesAlternative(s, p + 1, sep)) return true;
        if (!*s) return false;
      }
    }
    if (!*s || patternEnds) return false;
    if (*s != *p && *p != '?') return false;
  }
}

template <typename T>
bool MatchesAny(const T* str, const T* patterns, T sep) {
  for (;; ++patterns) {
    if (MatchesAlternative(str, patterns, sep)) return true;
    while (*patterns && *patterns != sep)
      ++patterns;
    if (!*patterns) return false;
  }
}

template <typename T>
void LowerInto(T* dst, const T* src) {
  do {
    *dst++ = ToLower(*src);
  } while (*src++);
}

template <typename T>
int Match(const T* str, const T* patterns, T sep, int caseSensitive) {
  if (!str || !patterns) return 0;
  if (caseSensitive) return MatchesAny(str, patterns, sep);
  const auto lowered = [](const T* text) { return (std::char_traits<T>::length(text) + 1) * sizeof(T); };
  T* lowerStr = static_cast<T*>(__builtin_alloca(lowered(str)));
  T* lowerPatterns = static_cast<T*>(__builtin_alloca(lowered(patterns)));
  LowerInto(lowerStr, str);
  LowerInto(lowerPatterns, patterns);
  return MatchesAny(lowerStr, lowerPatterns, sep);
}

}  // namespace

const char* cmm_astr_chri(const char* str, const char* end, char c) {
  return FindUnitIgnoringCase(str, end, c);
}

const wchar_t* cmm_wstr_chri(const wchar_t* str, const wchar_t* end, wchar_t c) {
  return FindUnitIgnoringCase(str, end, c);
}

const char* cmm_astr_rchri(const char* str, const char* end, char c) {
  return FindLastUnitIgnoringCase(str, end, c);
}

const wchar_t* cmm_wstr_rchri(const wchar_t* str, const wchar_t* end, wchar_t c) {
  return FindLastUnitIgnoringCase(str, end, c);
}

const char* cmm_astr_stri(const char* str, const char* end, const char* needle) {
  return FindTextIgnoringCase(str, end, needle);
}

const wchar_t* cmm_wstr_stri(const wchar_t* str, const wchar_t* end, const wchar_t* needle) {
  return FindTextIgnoringCase(str, end, needle);
}

const char* cmm_astr_rstri(const char* str, const char* end, const char* needle) {
  return FindLastTextIgnoringCase(str, end, needle);
}

const wchar_t* cmm_wstr_rstri(const wchar_t* str, const wchar_t* end, const wchar_t* needle) {
  return FindLastTextIgnoringCase(str, end, needle);
}

void cmm_astr_upr(char* str, const char* end) {
  MakeAsciiUpper(str, end);
}

void cmm_wstr_upr(wchar_t* str, const wchar_t* end) {
  MakeAsciiUpper(str, end);
}

void cmm_astr_lwr(char* str, const char* end) {
  MakeAsciiLower(str, end);
}

void cmm_wstr_lwr(wchar_t* str, const wchar_t* end) {
  MakeAsciiLower(str, end);
}

size_t cmm_astr_ncpy(char* dst, size_t size, const char* src, size_t max) {
  return Copy(dst, size, src, max);
}

size_t cmm_wstr_ncpy(wchar_t* dst, size_t size, const wchar_t* src, size_t max) {
  return Copy(dst, size, src, max);
}

size_t cmm_astr_ncat(char* dst, size_t size, const char* src, size_t max) {
  return Append(dst, size, src, max);
}

size_t cmm_wstr_ncat(wchar_t* dst, size_t size, const wchar_t* src, size_t max) {
  return Append(dst, size, src, max);
}

int cmm_astr_match(const char* str, const char* patterns, char sep, int caseSensitive) {
  return Match(str, patterns, sep, caseSensitive);
}

int cmm_wstr_match(const wchar_t* str, const wchar_t* patterns, wchar_t sep, int caseSensitive) {
  return Match(str, patterns, sep, caseSensitive);
}
