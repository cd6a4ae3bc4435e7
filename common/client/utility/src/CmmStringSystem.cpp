#include "common/client/utility/src/CmmStringSystem.h"

#include <windows.h>

namespace Cmm {

static_assert(kCompareEqual == CSTR_EQUAL);

int CompareIgnoringCase(const char* a, int aLength, const char* b, int bLength) {
  return CompareStringA(LOCALE_USER_DEFAULT, NORM_IGNORECASE, a, aLength, b, bLength);
}

int CompareIgnoringCase(const wchar_t* a, int aLength, const wchar_t* b, int bLength) {
  return CompareStringW(LOCALE_USER_DEFAULT, NORM_IGNORECASE, a, aLength, b, bLength);
}

int LoadResourceString(HINSTANCE__* instance, unsigned id, char* buffer, int size) {
  return LoadStringA(instance, id, buffer, size);
}

int LoadResourceString(HINSTANCE__* instance, unsigned id, wchar_t* buffer, int size) {
  return LoadStringW(instance, id, buffer, size);
}

}  // namespace Cmm
