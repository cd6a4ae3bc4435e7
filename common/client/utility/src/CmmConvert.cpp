#include "common/client/utility/src/CmmConvert.h"

#include <windows.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "common/client/utility/src/CmmConvertDetail.h"

namespace {

using Cmm::detail::CallResult;

static_assert(Cmm::detail::kUtf8CodePage == CP_UTF8);
static_assert(Cmm::detail::kNoBestFitChars == WC_NO_BEST_FIT_CHARS);
static_assert(Cmm::detail::kInsufficientBuffer == ERROR_INSUFFICIENT_BUFFER);
static_assert(Cmm::detail::kInvalidFlags == ERROR_INVALID_FLAGS);

constexpr size_t kUpToNul = static_cast<size_t>(-1);

// The system counts a source in `int`, with -1 for "up to its NUL".
int SystemLength(size_t length) {
  constexpr size_t kMaxSourceLength = 0x7FFFFFFF;
  return length == kUpToNul ? -1 : static_cast<int>(std::min(length, kMaxSourceLength));
}

CallResult ResultOf(int written) {
  return {written, written > 0 ? ERROR_SUCCESS : GetLastError()};
}

}  // namespace

size_t cmm_str_convert(int cp, wchar_t* dst, size_t cap, const char* src, size_t srcLen) {
  return Cmm::detail::ConvertToWide(dst, cap, [=](wchar_t* to, int size) {
    return ResultOf(MultiByteToWideChar(static_cast<UINT>(cp), 0, src, SystemLength(srcLen), to, size));
  });
}

size_t cmm_str_convert(int cp, char* dst, size_t cap, const wchar_t* src, size_t srcLen) {
  return Cmm::detail::ConvertToMultiByte(cp, dst, cap, [=](DWORD flags, char* to, int size) {
    return ResultOf(WideCharToMultiByte(static_cast<UINT>(cp), flags, src, SystemLength(srcLen), to, size,
                                        nullptr, nullptr));
  });
}

size_t cmm_str_convert(int dstCp, char* dst, size_t cap, int srcCp, const char* src, size_t srcLen) {
  if (srcLen == kUpToNul) srcLen = src != nullptr ? std::strlen(src) : 0;
  std::wstring wide(srcLen, L'\0');
  const size_t wideLen = cmm_str_convert(srcCp, wide.data(), wide.size(), src, srcLen);
  return cmm_str_convert(dstCp, dst, cap, wide.data(), wideLen);
}

int WideCharToMultiByteBestFit(int cp, const wchar_t* src, int srcLen, char* dst, int cap,
                               const char* defaultChar, int* usedDefault) {
  return WideCharToMultiByte(static_cast<UINT>(cp), 0, src, srcLen, dst, cap, defaultChar, usedDefault);
}
