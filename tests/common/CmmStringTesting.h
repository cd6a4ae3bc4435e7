#pragma once

// Literals and readable results for tests that run over both widths of the string.

#include <string>

#include "common/client/utility/src/CmmString.h"
#include "gmock/gmock.h"

namespace cmm_string_testing {

using Widths = testing::Types<char, wchar_t>;

struct WidthNames {
  template <typename T>
  static std::string GetName(int) {
    return std::is_same_v<T, char> ? "Narrow" : "Wide";
  }
};

template <typename T>
const T* Pick(const char* narrow, const wchar_t* wide) {
  if constexpr (std::is_same_v<T, char>) {
    return narrow;
  } else {
    return wide;
  }
}

// What a string holds, embedded NULs included.
template <typename T>
std::basic_string<T> Text(const Cmm::CStringT<T>& s) {
  return s.GetCData();
}

inline std::string Text(Cmm::CRangeT<const char*> range) {
  return std::string(range.begin, range.end);
}
inline std::wstring Text(Cmm::CRangeT<const wchar_t*> range) {
  return std::wstring(range.begin, range.end);
}

}  // namespace cmm_string_testing

// A literal in the width of the running typed test: as a pointer, and as a standard string that keeps
// embedded NULs.
#define TX(literal) cmm_string_testing::Pick<TypeParam>(literal, L##literal)
#define TXS(literal) std::basic_string<TypeParam>(TX(literal), sizeof(literal) - 1)
#define TC(literal) static_cast<TypeParam>(literal)
