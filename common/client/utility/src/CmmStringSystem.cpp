#include "common/client/utility/src/CmmStringSystem.h"

#include <windows.h>

#include "common/client/utility/src/UniqueHandle.h"

namespace Cmm {

static_assert(kCompareEqual == CSTR_EQUAL);

namespace {
constexpr DWORD kFormatFlags = FORMAT_MESSAGE_FROM_STRING | FORMAT_MESSAGE_ALLOCATE_BUFFER;
}  // namespace

int CompareIgnoringCase(const char* a, int aLength, const char* b, int bLength) {
  return CompareStringA(LOCALE_USER_DEFAULT, NORM_IGNORECASE, a, aLength, b, bLength);
}

int CompareIgnoringCase(const wchar_t* a, int aLength, const wchar_t* b, int bLength) {
  return CompareStringW(LOCALE_USER_DEFAULT, NORM_IGNORECASE, a, aLength, b, bLength);
}

unsigned FormatSystemMessage(const char* format, va_list* args, std::string& text) {
  char* allocated = nullptr;
  // With ALLOCATE_BUFFER the buffer argument is the address of the pointer that receives it.
  const DWORD count =
      FormatMessageA(kFormatFlags, format, 0, 0, reinterpret_cast<char*>(&allocated), 0, args);
  const UniqueLocalMemory owner(allocated);
  if (count != 0) text.assign(allocated, count);
  return count;
}

unsigned FormatSystemMessage(const wchar_t* format, va_list* args, std::wstring& text) {
  wchar_t* allocated = nullptr;
  const DWORD count =
      FormatMessageW(kFormatFlags, format, 0, 0, reinterpret_cast<wchar_t*>(&allocated), 0, args);
  const UniqueLocalMemory owner(allocated);
  if (count != 0) text.assign(allocated, count);
  return count;
}

int LoadResourceString(HINSTANCE__* instance, unsigned id, char* buffer, int size) {
  return LoadStringA(instance, id, buffer, size);
}

int LoadResourceString(HINSTANCE__* instance, unsigned id, wchar_t* buffer, int size) {
  return LoadStringW(instance, id, buffer, size);
}

}  // namespace Cmm
