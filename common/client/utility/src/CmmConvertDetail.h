#pragma once

// How the conversions deal with what the system calls answer, with the calls themselves left open, so that
// each of their answers can be shown.

#include <algorithm>
#include <cstddef>

#include "common/client/utility/src/CmmMemory.h"
#include "common/client/utility/src/CmmString.h"

namespace Cmm::detail {

constexpr int kUtf8CodePage = 65001;
constexpr unsigned long kNoBestFitChars = 0x400;      // WC_NO_BEST_FIT_CHARS
constexpr unsigned long kInsufficientBuffer = 122;    // ERROR_INSUFFICIENT_BUFFER
constexpr unsigned long kInvalidFlags = 1004;         // ERROR_INVALID_FLAGS
constexpr size_t kMaxWideCapacity = 0x3FFFFFFF;       // in units
constexpr size_t kMaxMultiByteCapacity = 0x7FFFFFFF;  // in bytes

// What a system call answered: the units it wrote, and the error when it wrote none.
struct CallResult {
  int written;
  unsigned long error;
};

template <typename T>
size_t LengthWithoutFinalNul(const T* text, size_t length) {
  return text[length - 1] == T() ? length - 1 : length;
}

template <typename T>
size_t LengthUpToNul(const T* text, size_t capacity) {
  return static_cast<size_t>(std::find(text, text + capacity, T()) - text);
}

// Clears piece by piece, because cmm_memset_s refuses more than kMaxCheckedMemory at once.
template <typename T>
void Clear(T* text, size_t capacity) {
  constexpr size_t kPiece = kMaxCheckedMemory / sizeof(T);
  for (size_t done = 0; done < capacity; done += kPiece) {
    const size_t bytes = std::min(kPiece, capacity - done) * sizeof(T);
    cmm_memset_s(text + done, bytes, 0, bytes);
  }
}

// Asks for the whole conversion; with too small a buffer, asks once more for as much as fits.
// `call(dst, cap)` is the system's conversion to UTF-16.
template <typename Call>
size_t ConvertToWide(wchar_t* dst, size_t cap, Call call) {
  if (cap == 0) return 0;
  cap = std::min(cap, kMaxWideCapacity);
  const CallResult result = call(dst, static_cast<int>(cap));
  if (result.written > 0) return LengthWithoutFinalNul(dst, static_cast<size_t>(result.written));
  if (result.error != kInsufficientBuffer) return 0;

  Clear(dst, cap);
  call(dst, static_cast<int>(cap));
  return LengthUpToNul(dst, cap);
}

// The same for `call(flags, dst, cap)`, the system's conversion to code page `cp`. Some code pages accept
// no flag at all: they pay a failed call.
template <typename Call>
size_t ConvertToMultiByte(int cp, char* dst, size_t cap, Call call) {
  if (cap == 0) return 0;
  cap = std::min(cap, kMaxMultiByteCapacity);
  unsigned long flags = cp == kUtf8CodePage ? 0 : kNoBestFitChars;
  const CallResult result = call(flags, dst, static_cast<int>(cap));
  if (result.written > 0) return LengthWithoutFinalNul(dst, static_cast<size_t>(result.written));
  if (result.error != kInvalidFlags && result.error != kInsufficientBuffer) return 0;

  if (result.error == kInvalidFlags) flags = 0;
  Clear(dst, cap);
  call(flags, dst, static_cast<int>(cap));
  return LengthUpToNul(dst, cap);
}

// Copies all or nothing; the answer is the number of units written. What does not fit clears `dst`.
template <typename T>
size_t CheckedCopy(T* dst, size_t cap, const T* src, size_t len) {
  if (len > cap) {
    Clear(dst, cap);
    return 0;
  }
  std::copy_n(src, len, dst);
  return len;
}

// Keeps the first `offset` units of `target`, and puts behind them what `put(dst, cap)` writes into a
// room of `estimate` units; it answers the number written.
template <typename T, typename Put>
void PutBehind(CStringT<T>& target, size_t offset, size_t estimate, Put put) {
  const size_t size = offset + 1 + estimate;
  const bool overflow = size <= offset;  // then the string raises std::length_error
  T* const buffer = target.GetBuffer(overflow ? CStringT<T>::npos : size);
  target.SetLength(offset + put(buffer + offset, estimate));
}

}  // namespace Cmm::detail
