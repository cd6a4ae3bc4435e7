#pragma once

#include <windows.h>

#include <string>

namespace velm_test {

// What narrow text means in the system's ANSI code page, by the system itself.
inline std::wstring FromAnsi(const std::string& text) {
  std::wstring wide(text.size(), L'\0');
  wide.resize(static_cast<size_t>(MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()),
                                                      wide.data(), static_cast<int>(wide.size()))));
  return wide;
}

// Wide text in that code page; what it has no character for becomes another.
inline std::string ToAnsi(const std::wstring& text) {
  constexpr size_t kLongestCharacter = 4;
  std::string narrow(text.size() * kLongestCharacter, '\0');
  narrow.resize(static_cast<size_t>(WideCharToMultiByte(CP_ACP, 0, text.data(), static_cast<int>(text.size()),
                                                        narrow.data(), static_cast<int>(narrow.size()),
                                                        nullptr, nullptr)));
  return narrow;
}

}  // namespace velm_test
