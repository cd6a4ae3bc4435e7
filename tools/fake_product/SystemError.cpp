#include "tools/fake_product/SystemError.h"

#include <windows.h>

#include "common/client/utility/src/UniqueHandle.h"

namespace velm_tools {
namespace {

std::wstring Widen(UINT codePage, std::string_view text) {
  const int length = static_cast<int>(text.size());
  std::wstring wide(static_cast<size_t>(MultiByteToWideChar(codePage, 0, text.data(), length, nullptr, 0)),
                    L'\0');
  MultiByteToWideChar(codePage, 0, text.data(), length, wide.data(), static_cast<int>(wide.size()));
  return wide;
}

std::wstring SystemText(uint32_t error) {
  wchar_t* text = nullptr;
  DWORD length = FormatMessageW(
      FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
      error, 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
  const Cmm::UniqueLocalMemory owner(text);
  while (length > 0 && text[length - 1] <= L' ')
    --length;  // the line end
  return {text, length};
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

void ThrowSystemError(std::string_view doing, std::wstring_view what, uint32_t error) {
  std::wstring text = FromUtf8(doing) + L' ';
  text += what;
  text += L": " + SystemText(error) + L" (error " + std::to_wstring(error) + L")";
  throw FakeProductError(ToUtf8(text));
}

}  // namespace velm_tools
