#pragma once

// What all path code agrees on; private to the library's sources.

#include <cstddef>
#include <string_view>

namespace Cmm {

constexpr size_t kPathLimit = 260;  // units of a buffer for a path, its terminator among them

constexpr std::wstring_view kPathSeparators = L"\\/";

constexpr bool IsPathSeparator(wchar_t c) {
  return c == L'\\' || c == L'/';
}

}  // namespace Cmm
