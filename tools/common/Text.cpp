#include "tools/common/Text.h"

#include <windows.h>

namespace velm_tools {
namespace {

std::wstring Widen(UINT codePage, std::string_view text) {
  const int length = static_cast<int>(text.size());
  std::wstring wide(static_cast<size_t>(MultiByteToWideChar(codePage, 0, text.data(), length, nullptr, 0)),
                    L'\0');
  MultiByteToWideChar(codePage, 0, text.data(), length, wide.data(), static_cast<int>(wide.size()));
  return wide;
}

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

}  // namespace

std::string ToUtf8(std::wstring_view text) {
  const int length = static_cast<int>(text.size());
  std::string narrow(
      static_cast<size_t>(WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr)),
      '\0');
  WideCharToMultiByte(CP_UTF8, 0, text.data(), length, narrow.data(), static_cast<int>(narrow.size()),
                      nullptr, nullptr);
  return narrow;
}

std::wstring FromUtf8(std::string_view text) {
  return Widen(CP_UTF8, text);
}

std::wstring FromAnsi(std::string_view text) {
  return Widen(CP_ACP, text);
}

bool IsUtf8(std::string_view bytes) {
  return bytes.empty() || MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, bytes.data(),
                                              static_cast<int>(bytes.size()), nullptr, 0) > 0;
}

std::string ToHex(std::string_view bytes) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  text.reserve(bytes.size() * 2);
  for (const unsigned char byte : bytes) {
    text += kDigits[byte >> 4];
    text += kDigits[byte & 0xF];
  }
  return text;
}

std::optional<std::string> FromHex(std::string_view text) {
  std::string bytes;
  for (size_t at = 0; at < text.size();) {
    if (text[at] == ' ') {
      ++at;
      continue;
    }
    if (at + 1 == text.size()) return std::nullopt;
    const int high = HexDigit(text[at]);
    const int low = HexDigit(text[at + 1]);
    if (high < 0 || low < 0) return std::nullopt;
    bytes += static_cast<char>(high << 4 | low);
    at += 2;
  }
  return bytes;
}

}  // namespace velm_tools
