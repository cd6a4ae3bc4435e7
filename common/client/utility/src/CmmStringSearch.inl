#pragma once

// CStringT: search, parts and splitting.

#include <cstdint>
#include <cstring>
#include <cwchar>

#include "common/client/utility/src/CmmString.h"
#include "common/client/utility/src/CmmStringCrt.h"

namespace Cmm {

template <typename T>
int CStringT<T>::Pos(const T* needle) const {
  if (m_str.empty() || !needle) return -1;
  const T* found = crt::FindText(m_str.c_str(), needle);
  return found ? static_cast<int>(found - m_str.c_str()) : -1;
}

template <typename T>
int CStringT<T>::Pos(const CStringT& needle) const {
  return Pos(needle.m_str.c_str());
}

template <typename T>
const T* CStringT<T>::Find(T c, size_t pos) const {
  return CanFindFrom(pos) ? crt::FindUnit(m_str.c_str() + pos, c) : nullptr;
}

template <typename T>
const T* CStringT<T>::Find(T c, type_reverse, size_t pos) const {
  return CanFindFrom(pos) ? crt::FindLastUnit(m_str.c_str() + pos, c) : nullptr;
}

template <typename T>
const T* CStringT<T>::Find(T c, type_nocase, size_t pos) const {
  return CanFindFrom(pos) ? crt::FindUnitIgnoringCase(m_str.c_str() + pos, c) : nullptr;
}

template <typename T>
const T* CStringT<T>::Find(const T* s, size_t pos) const {
  return CanFindFrom(pos) && s ? crt::FindText(m_str.c_str() + pos, s) : nullptr;
}

template <typename T>
const T* CStringT<T>::Find(const T* s, type_nocase, size_t pos) const {
  return CanFindFrom(pos) ? crt::FindTextIgnoringCase(m_str.c_str() + pos, s) : nullptr;
}

template <typename T>
const T* CStringT<T>::Find(const T* s, type_reverse_nocase, size_t pos) const {
  return CanFindFrom(pos) ? crt::FindLastTextIgnoringCase(m_str.c_str() + pos, s) : nullptr;
}

template <typename T>
bool CStringT<T>::CanFindFrom(size_t pos) const {
  return !m_str.empty() && pos <= m_str.size();
}

template <typename T>
int CStringT<T>::FindOneOf(const T* set, size_t pos) const {
  return static_cast<int>(m_str.find_first_of(crt::OrEmpty(set), pos));
}

template <typename T>
typename CStringT<T>::Range CStringT<T>::Left(size_t n) const {
  if (m_str.empty() || n == 0) return {};
  const T* begin = m_str.data();
  return {begin, begin + (n < m_str.size() ? n : m_str.size())};
}

template <typename T>
typename CStringT<T>::Range CStringT<T>::Mid(size_t pos) const {
  return Mid(pos, npos);
}

template <typename T>
typename CStringT<T>::Range CStringT<T>::Mid(size_t pos, size_t n) const {
  if (pos >= m_str.size() || n == 0) return {};
  const size_t rest = m_str.size() - pos;
  const T* begin = m_str.data() + pos;
  return {begin, begin + (n < rest ? n : rest)};
}

template <typename T>
typename CStringT<T>::Range CStringT<T>::Right(size_t n) const {
  if (n == 0) return {};
  // 32-bit signed by contract: a count of 2^32 - 1 counts as -1 and gives the null range.
  const int32_t difference =
      static_cast<int32_t>(static_cast<uint32_t>(m_str.size()) - static_cast<uint32_t>(n));
  const size_t start = difference > 0 ? static_cast<size_t>(difference) : 0;
  if (start >= m_str.size()) return {};
  return {m_str.data() + start, m_str.data() + m_str.size()};
}

template <typename T>
typename CStringT<T>::Range CStringT<T>::SpanIncluding(const T* set) const {
  return Left(DoSpan(m_str.c_str(), crt::OrEmpty(set)));
}

template <typename T>
typename CStringT<T>::Range CStringT<T>::SpanExcluding(const T* set) const {
  return Left(DoCSpan(m_str.c_str(), crt::OrEmpty(set)));
}

template <typename T>
size_t CStringT<T>::DoSpan(const char* s, const char* set) {
  return std::strspn(s, set);
}

template <typename T>
size_t CStringT<T>::DoSpan(const wchar_t* s, const wchar_t* set) {
  return std::wcsspn(s, set);
}

template <typename T>
size_t CStringT<T>::DoCSpan(const char* s, const char* set) {
  return std::strcspn(s, set);
}

template <typename T>
size_t CStringT<T>::DoCSpan(const wchar_t* s, const wchar_t* set) {
  return std::wcscspn(s, set);
}

template <typename T>
std::vector<CStringT<T>> CStringT<T>::SplitString(const CStringT& sep, int mode) const {
  std::vector<CStringT> pieces;
  const size_t step = mode == 0 ? sep.m_str.size() : 1;
  for (size_t offset = 0;;) {
    const size_t found = mode == 0 ? m_str.find(sep.m_str, offset) : m_str.find_first_of(sep.m_str, offset);
    if (found == npos) {
      pieces.emplace_back(m_str.data() + offset, m_str.size() - offset);
      return pieces;
    }
    pieces.emplace_back(m_str.data() + offset, found - offset);
    offset = found + step;
  }
}

}  // namespace Cmm
