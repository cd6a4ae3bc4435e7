#pragma once

// CStringT: storage, construction and assignment, access.

#include <utility>

#include "common/client/utility/src/CmmString.h"

namespace Cmm {

template <typename T>
CStringT<T>& CStringT<T>::operator=(const CStringT& other) {
  m_str = other.m_str;
  return *this;
}

template <typename T>
CStringT<T>& CStringT<T>::operator=(CStringT&& other) noexcept {
  m_str = std::move(other.m_str);
  return *this;
}

template <typename T>
CStringT<T>& CStringT<T>::operator=(const StdString& other) {
  m_str = other;
  return *this;
}

template <typename T>
CStringT<T>& CStringT<T>::operator=(const T* s) {
  if (s) {
    m_str = s;
  } else {
    m_str.clear();
  }
  return *this;
}

template <typename T>
CStringT<T>& CStringT<T>::operator=(T c) {
  m_str = c;
  return *this;
}

template <typename T>
CStringT<T>& CStringT<T>::operator=(Range range) {
  m_str.assign(range.begin, range.GetLength());
  return *this;
}

template <typename T>
CStringT<T>& CStringT<T>::Assign(const CStringT& other) {
  return *this = other;
}

template <typename T>
CStringT<T>& CStringT<T>::Assign(CStringT&& other) noexcept {
  return *this = std::move(other);
}

template <typename T>
CStringT<T>& CStringT<T>::Assign(const StdString& other) {
  return *this = other;
}

template <typename T>
CStringT<T>& CStringT<T>::Assign(const T* s) {
  return *this = s;
}

template <typename T>
CStringT<T>& CStringT<T>::Assign(const T* s, size_t n) {
  m_str.assign(s, n);
  return *this;
}

template <typename T>
CStringT<T>& CStringT<T>::Assign(T c) {
  return *this = c;
}

template <typename T>
CStringT<T>& CStringT<T>::Assign(Range range) {
  return *this = range;
}

template <typename T>
void CStringT<T>::Swap(StdString& other) noexcept {
  m_str.swap(other);
}

template <typename T>
void CStringT<T>::swap(StdString& other) noexcept {
  m_str.swap(other);
}

template <typename T>
void CStringT<T>::SetAt(size_t i, T c) {
  m_str.at(i) = c;
}

template <typename T>
std::basic_string<T>& CStringT<T>::GetData() {
  return m_str;
}

template <typename T>
const std::basic_string<T>& CStringT<T>::GetCData() const {
  return m_str;
}

template <typename T>
void CStringT<T>::SetLength(size_t n) {
  m_str.resize(n);
}

template <typename T>
T* CStringT<T>::GetBuffer(size_t n) {
  m_str.resize(n);
  return GetBuffer();
}

template <typename T>
T* CStringT<T>::GetBufferSetLength(size_t n) {
  return GetBuffer(n);
}

template <typename T>
T* CStringT<T>::GetBuffer() {
  return m_str.empty() ? nullptr : m_str.data();
}

template <typename T>
void CStringT<T>::ReleaseBuffer() {
  m_str.resize(std::char_traits<T>::length(m_str.c_str()));
}

}  // namespace Cmm
