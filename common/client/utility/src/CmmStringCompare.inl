#pragma once

// CStringT: comparison.

#include "common/client/utility/src/CmmString.h"
#include "common/client/utility/src/CmmStringCrt.h"
#include "common/client/utility/src/CmmStringSystem.h"

namespace Cmm {

template <typename T>
int CStringT<T>::Compare(const T* other) const {
  if (m_str.empty()) return !other || !*other ? 0 : -1;
  if (!other) return 1;
  return crt::Compare(m_str.c_str(), other);
}

template <typename T>
int CStringT<T>::Compare(const CStringT& other) const {
  if (m_str.empty()) return other.m_str.empty() ? 0 : -1;
  return crt::Compare(m_str.c_str(), other.m_str.c_str());
}

// The empties answer with the sign opposite to Compare's; callers sort by it.
template <typename T>
int CStringT<T>::CompareNoCase(const T* other) const {
  if (m_str.empty()) return !other || !*other ? 0 : 1;
  if (!other) return -1;
  return CompareIgnoringCase(m_str.c_str(), -1, other, -1) - kCompareEqual;
}

template <typename T>
int CStringT<T>::CompareNoCase(const CStringT& other) const {
  if (m_str.empty()) return other.m_str.empty() ? 0 : 1;
  return CompareIgnoringCase(m_str.c_str(), -1, other.m_str.c_str(), -1) - kCompareEqual;
}

template <typename T>
bool CStringT<T>::MatchWith(const CStringT& other, bool caseSensitive, bool atStart) const {
  const size_t n = other.m_str.size();
  if (n == 0) return true;
  if (n > m_str.size()) return false;
  const CStringT part(m_str.data() + (atStart ? 0 : m_str.size() - n), n);
  return (caseSensitive ? crt::Compare(other.c_str(), part.c_str()) : other.CompareNoCase(part)) == 0;
}

template <typename T>
bool CStringT<T>::StartsWith(const CStringT& other, bool caseSensitive) const {
  return MatchWith(other, caseSensitive, true);
}

template <typename T>
bool CStringT<T>::EndsWith(const CStringT& other, bool caseSensitive) const {
  return MatchWith(other, caseSensitive, false);
}

template <typename T>
int CStringT<T>::Match(const T* pattern, T sep, int caseSensitive) const {
  if (m_str.empty() || !pattern || !*pattern) return 0;
  return crt::Match(m_str.c_str(), pattern, sep, caseSensitive);
}

template <typename T>
bool CStringT<T>::operator==(const CStringT& other) const {
  return m_str == other.m_str;
}

template <typename T>
bool CStringT<T>::operator==(const StdString& other) const {
  return m_str == other;
}

template <typename T>
bool CStringT<T>::operator==(const T* other) const {
  if (m_str.empty()) return !other || !*other;
  return other && crt::Compare(m_str.c_str(), other) == 0;
}

template <typename T>
bool CStringT<T>::operator!=(const CStringT& other) const {
  return !(*this == other);
}

template <typename T>
bool CStringT<T>::operator!=(const StdString& other) const {
  return !(*this == other);
}

template <typename T>
bool CStringT<T>::operator!=(const T* other) const {
  return !(*this == other);
}

template <typename T>
bool CStringT<T>::operator<(const CStringT& other) const {
  if (m_str.empty()) return !other.m_str.empty();
  if (other.m_str.empty()) return false;
  return crt::Compare(m_str.c_str(), other.m_str.c_str()) < 0;
}

template <typename T>
bool CStringT<T>::operator>(const CStringT& other) const {
  return other < *this;
}

}  // namespace Cmm
