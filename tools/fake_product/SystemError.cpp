#include "tools/fake_product/SystemError.h"

#include <windows.h>

#include <string>

#include "common/client/utility/src/UniqueHandle.h"
#include "tools/common/Text.h"

namespace velm_tools {
namespace {

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

void ThrowSystemError(std::string_view doing, std::wstring_view what, uint32_t error) {
  std::wstring text = FromUtf8(doing) + L' ';
  text += what;
  text += L": " + SystemText(error) + L" (error " + std::to_wstring(error) + L")";
  throw FakeProductError(ToUtf8(text));
}

}  // namespace velm_tools
