#include "common/client/utility/src/CmmConvert.h"

#include <windows.h>

#include <oleauto.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <type_traits>

#include "common/client/utility/src/CmmConvertDetail.h"

namespace {

using Cmm::CStringT;
using Cmm::detail::CallResult;
using Cmm::detail::kUtf8CodePage;

static_assert(kUtf8CodePage == CP_UTF8);
static_assert(Cmm::detail::kNoBestFitChars == WC_NO_BEST_FIT_CHARS);
static_assert(Cmm::detail::kInsufficientBuffer == ERROR_INSUFFICIENT_BUFFER);
static_assert(Cmm::detail::kInvalidFlags == ERROR_INVALID_FLAGS);

constexpr int kAnsiCodePage = CP_ACP;
constexpr size_t kAllOnes = std::numeric_limits<size_t>::max();

// The system counts a source in `int`, with -1 for "up to its NUL".
int SystemLength(size_t length) {
  constexpr size_t kMaxSourceLength = 0x7FFFFFFF;
  return length == kAllOnes ? -1 : static_cast<int>(std::min(length, kMaxSourceLength));
}

CallResult ResultOf(int written) {
  return {written, written > 0 ? ERROR_SUCCESS : GetLastError()};
}

template <typename T>
bool IsAscii(const T* text, size_t length) {
  std::make_unsigned_t<T> bits = 0;
  for (size_t i = 0; i < length; ++i)
    bits |= static_cast<std::make_unsigned_t<T>>(text[i]);
  return bits < 0x80;
}

// UTF-8 and UTF-16 agree on ASCII, so ASCII that fits needs no system call. Answers whether it was done.
template <typename To, typename From>
bool CopyAscii(To* dst, size_t cap, const From* src, size_t length) {
  if (dst == nullptr || src == nullptr || length == 0 || length > cap || !IsAscii(src, length)) return false;
  std::copy_n(src, length, dst);
  return true;
}

}  // namespace

size_t cmm_str_convert(int cp, wchar_t* dst, size_t cap, const char* src, size_t srcLen) {
  using namespace Cmm::detail;
  if (cp == kUtf8CodePage && CopyAscii(dst, std::min(cap, kMaxWideCapacity), src, srcLen)) {
    return LengthWithoutFinalNul(dst, srcLen);
  }
  return ConvertToWide(dst, cap, [=](wchar_t* to, int size) {
    return ResultOf(MultiByteToWideChar(static_cast<UINT>(cp), 0, src, SystemLength(srcLen), to, size));
  });
}

size_t cmm_str_convert(int cp, char* dst, size_t cap, const wchar_t* src, size_t srcLen) {
  using namespace Cmm::detail;
  if (cp == kUtf8CodePage && CopyAscii(dst, std::min(cap, kMaxMultiByteCapacity), src, srcLen)) {
    return LengthWithoutFinalNul(dst, srcLen);
  }
  return ConvertToMultiByte(cp, dst, cap, [=](DWORD flags, char* to, int size) {
    return ResultOf(WideCharToMultiByte(static_cast<UINT>(cp), flags, src, SystemLength(srcLen), to, size,
                                        nullptr, nullptr));
  });
}

size_t cmm_str_convert(int dstCp, char* dst, size_t cap, int srcCp, const char* src, size_t srcLen) {
  if (srcLen == kAllOnes) srcLen = src != nullptr ? std::strlen(src) : 0;
  CStringT<wchar_t> wide;
  wchar_t* const buffer = wide.GetBuffer(srcLen);
  const size_t wideLen = cmm_str_convert(srcCp, buffer, srcLen, src, srcLen);
  return cmm_str_convert(dstCp, dst, cap, buffer, wideLen);
}

int WideCharToMultiByteBestFit(int cp, const wchar_t* src, int srcLen, char* dst, int cap,
                               const char* defaultChar, int* usedDefault) {
  return WideCharToMultiByte(static_cast<UINT>(cp), 0, src, srcLen, dst, cap, defaultChar, usedDefault);
}

namespace Cmm {
namespace {

// How many units the text takes on the other side of the ANSI code page.
size_t EstimateSize(const char* src, size_t len) {
  const int units = MultiByteToWideChar(CP_ACP, 0, src, SystemLength(len), nullptr, 0);
  return units > 0 ? static_cast<size_t>(units) : len;
}

size_t EstimateSize(const wchar_t* src, size_t len) {
  const int bytes =
      WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, src, SystemLength(len), nullptr, 0, nullptr, nullptr);
  if (bytes > 0) return static_cast<size_t>(bytes);
  return len > kAllOnes / 4 ? kAllOnes : len * 4;
}

template <typename T>
size_t Put(T* dst, size_t cap, const T* src, size_t len) {
  return detail::CheckedCopy(dst, cap, src, len);
}

template <typename To, typename From>
size_t Put(To* dst, size_t cap, const From* src, size_t len) {
  return cmm_str_convert(kAnsiCodePage, dst, cap, src, len);
}

template <typename To, typename From>
void Set(CStringT<To>& target, size_t offset, const From* src, size_t len) {
  if (src == nullptr) return;
  if (len == kAllOnes) len = std::char_traits<From>::length(src);
  if (len == 0) return;
  // The room is estimated in the other width's units even where the width stays, so a copy may be refused:
  // all four forms share this shape.
  detail::PutBehind(target, offset, EstimateSize(src, len),
                    [=](To* dst, size_t cap) { return Put(dst, cap, src, len); });
}

class ScopedVariant {
 public:
  ScopedVariant() { VariantInit(&m_value); }
  ScopedVariant(const ScopedVariant&) = delete;
  ScopedVariant& operator=(const ScopedVariant&) = delete;
  ~ScopedVariant() { VariantClear(&m_value); }

  VARIANT* put() { return &m_value; }

 private:
  VARIANT m_value;
};

}  // namespace

void _cstring_set(CStringT<char>& target, size_t offset, const char* src, size_t len) {
  Set(target, offset, src, len);
}

void _cstring_set(CStringT<char>& target, size_t offset, const wchar_t* src, size_t len) {
  Set(target, offset, src, len);
}

void _cstring_set(CStringT<wchar_t>& target, size_t offset, const char* src, size_t len) {
  Set(target, offset, src, len);
}

void _cstring_set(CStringT<wchar_t>& target, size_t offset, const wchar_t* src, size_t len) {
  Set(target, offset, src, len);
}

void _cstring_assign(CStringT<char>& target, const VARIANT& v, int change) {
  CStringT<wchar_t> wide;
  _cstring_assign(wide, v, change);
  target.clear();
  _cstring_set(target, 0, wide.c_str(), wide.GetLength());
}

void _cstring_assign(CStringT<wchar_t>& target, const VARIANT& v, int change) {
  if (change != 0) {
    // What the conversion gives is dropped: the type that counts is the source's, as it always was.
    ScopedVariant converted;
    VariantChangeType(converted.put(), const_cast<VARIANT*>(&v), 0, VT_BSTR);  // only read
  }
  target.clear();
  if (v.vt == VT_BSTR) target.assign(v.bstrVal, SysStringLen(v.bstrVal));
}

namespace {

// Fills the empty `target` with what `convert(dst, cap)` writes into a room of `cap` units; it answers the
// number written. A short text goes over the stack, so that the string allocates no more than it keeps and
// is not filled with NUL first.
template <typename To, typename Convert>
void Fill(CStringT<To>& target, size_t cap, Convert convert) {
  To onStack[1024];
  if (cap <= std::size(onStack)) {
    target.GetData() = std::basic_string<To>(onStack, convert(onStack, cap));
  } else {
    To* const buffer = target.GetBuffer(cap + 1);
    target.SetLength(convert(buffer, cap));
  }
}

}  // namespace

template <int CP, typename From, typename To>
A2BT<CP, From, To>::A2BT(const From* s) : A2BT(s, s != nullptr ? std::char_traits<From>::length(s) : 0) {}

template <int CP, typename From, typename To>
A2BT<CP, From, To>::A2BT(const std::basic_string<From>& s) : A2BT(s.data(), s.size()) {}

template <int CP, typename From, typename To>
A2BT<CP, From, To>::A2BT(const From* s, size_t n) {
  // More than the three bytes that a UTF-16 unit can make; a byte makes one unit at most.
  constexpr size_t kRoomPerUnit = std::is_same_v<To, char> ? 4 : 1;
  Fill(*this, kRoomPerUnit * n, [=](To* dst, size_t cap) { return cmm_str_convert(CP, dst, cap, s, n); });
}

template <int CP, typename From, typename To>
A2BT<CP, From, To>::A2BT(const A2BT&) = default;
template <int CP, typename From, typename To>
A2BT<CP, From, To>::A2BT(A2BT&&) noexcept = default;
template <int CP, typename From, typename To>
A2BT<CP, From, To>& A2BT<CP, From, To>::operator=(const A2BT&) = default;
template <int CP, typename From, typename To>
A2BT<CP, From, To>& A2BT<CP, From, To>::operator=(A2BT&&) noexcept = default;
template <int CP, typename From, typename To>
A2BT<CP, From, To>::~A2BT() = default;

template class A2BT<65001, wchar_t, char>;
template class A2BT<65001, char, wchar_t>;

template <int FromCP, int ToCP>
A2Cmm<FromCP, ToCP>::A2Cmm(const char* s) : A2Cmm(s, s != nullptr ? std::strlen(s) : 0) {}

template <int FromCP, int ToCP>
A2Cmm<FromCP, ToCP>::A2Cmm(const std::string& s) : A2Cmm(s.data(), s.size()) {}

template <int FromCP, int ToCP>
A2Cmm<FromCP, ToCP>::A2Cmm(const char* s, size_t n) {
  Fill(*this, 4 * n, [=](char* dst, size_t cap) { return cmm_str_convert(ToCP, dst, cap, FromCP, s, n); });
}

template <int FromCP, int ToCP>
A2Cmm<FromCP, ToCP>::A2Cmm(const A2Cmm&) = default;
template <int FromCP, int ToCP>
A2Cmm<FromCP, ToCP>::A2Cmm(A2Cmm&&) noexcept = default;
template <int FromCP, int ToCP>
A2Cmm<FromCP, ToCP>& A2Cmm<FromCP, ToCP>::operator=(const A2Cmm&) = default;
template <int FromCP, int ToCP>
A2Cmm<FromCP, ToCP>& A2Cmm<FromCP, ToCP>::operator=(A2Cmm&&) noexcept = default;
template <int FromCP, int ToCP>
A2Cmm<FromCP, ToCP>::~A2Cmm() = default;

template class A2Cmm<65001, 0>;

}  // namespace Cmm
