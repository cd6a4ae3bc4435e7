#pragma once

// CStringT: formatting, resources and numbers.

#include <cstring>
#include <memory>

#include "common/client/utility/src/CmmMemory.h"
#include "common/client/utility/src/CmmNumber.h"
#include "common/client/utility/src/CmmString.h"
#include "common/client/utility/src/CmmStringCrt.h"
#include "common/client/utility/src/CmmStringSystem.h"

namespace Cmm {

namespace format {

constexpr size_t kFirstFormatSize = 1024;   // units, doubled until the text fits
constexpr size_t kFirstResourceSize = 512;  // units, doubled while the text fills it

struct HeapDeleter {
  void operator()(void* block) const { cmm_mem_free(block); }
};

}  // namespace format

template <typename T>
void CStringT<T>::Format(const T* fmt, ...) {
  va_list args;
  va_start(args, fmt);
  FormatV(fmt, args);
  va_end(args);
}

template <typename T>
void CStringT<T>::FormatV(const T* fmt, va_list args) {
  fmt = crt::OrEmpty(fmt);
  std::unique_ptr<T, format::HeapDeleter> copy;
  if (fmt == m_str.data()) {
    const size_t bytes = (m_str.size() + 1) * sizeof(T);
    copy.reset(static_cast<T*>(cmm_mem_alloc(bytes)));
    if (!copy) return;
    std::memcpy(copy.get(), fmt, bytes);
    fmt = copy.get();
  }
  for (size_t size = format::kFirstFormatSize;; size *= 2) {
    m_str.resize(size);
    va_list attempt;
    va_copy(attempt, args);
    const int printed = crt::Print(m_str.data(), size - 1, fmt, attempt);
    va_end(attempt);
    if (printed >= 0) {
      m_str.resize(static_cast<size_t>(printed));
      return;
    }
  }
}

template <typename T>
unsigned CStringT<T>::FormatMessageW(const T* fmt, ...) {
  if (!fmt) return 0;
  va_list args;
  va_start(args, fmt);
  const unsigned count = FormatSystemMessage(fmt, &args, m_str);
  va_end(args);
  return count;
}

template <typename T>
int CStringT<T>::LoadStringW(HINSTANCE__* instance, unsigned id) {
  for (size_t size = format::kFirstResourceSize;; size *= 2) {
    const int loaded = _LoadString(instance, id, GetBuffer(size), static_cast<int>(size));
    const size_t length = loaded > 0 ? static_cast<size_t>(loaded) : 0;
    if (length + 1 < size) {
      SetLength(length);
      return loaded;
    }
  }
}

template <typename T>
int CStringT<T>::_LoadString(HINSTANCE__* instance, unsigned id, char* buffer, int size) {
  return LoadResourceString(instance, id, buffer, size);
}

template <typename T>
int CStringT<T>::_LoadString(HINSTANCE__* instance, unsigned id, wchar_t* buffer, int size) {
  return LoadResourceString(instance, id, buffer, size);
}

template <typename T>
long CStringT<T>::ToLong(long fallback, int base) const {
  long value = fallback;
  cmm_str_tol(m_str.data(), m_str.data() + m_str.size(), value, base);
  return value;
}

template <typename T>
long CStringT<T>::ToULong(long fallback, int base) const {
  return ToLong(fallback, base);
}

template <typename T>
double CStringT<T>::ToDouble(double fallback) const {
  double value = fallback;
  cmm_str_tod(m_str.data(), m_str.data() + m_str.size(), value);
  return value;
}

}  // namespace Cmm
