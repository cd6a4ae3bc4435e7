#pragma once

// CStringT: the vocabulary of the standard string, which forwards to the inner one.

#include "common/client/utility/src/CmmString.h"

namespace Cmm {

template <typename T>
size_t CStringT<T>::capacity() const noexcept {
  return m_str.capacity();
}

template <typename T>
void CStringT<T>::reserve(size_t n) {
  m_str.reserve(n);
}

template <typename T>
void CStringT<T>::resize(size_t n) {
  m_str.resize(n);
}

template <typename T>
void CStringT<T>::resize(size_t n, T c) {
  m_str.resize(n, c);
}

template <typename T>
void CStringT<T>::clear() noexcept {
  m_str.clear();
}

template <typename T>
typename CStringT<T>::reference CStringT<T>::at(size_t i) {
  return m_str.at(i);
}

template <typename T>
typename CStringT<T>::const_reference CStringT<T>::at(size_t i) const {
  return m_str.at(i);
}

template <typename T>
std::basic_string<T> CStringT<T>::substr(size_t pos, size_t n) const {
  return m_str.substr(pos, n);
}

template <typename T>
typename CStringT<T>::reverse_iterator CStringT<T>::rbegin() noexcept {
  return m_str.rbegin();
}

template <typename T>
typename CStringT<T>::reverse_iterator CStringT<T>::rend() noexcept {
  return m_str.rend();
}

template <typename T>
typename CStringT<T>::const_reverse_iterator CStringT<T>::rbegin() const noexcept {
  return m_str.rbegin();
}

template <typename T>
typename CStringT<T>::const_reverse_iterator CStringT<T>::rend() const noexcept {
  return m_str.rend();
}

template <typename T>
typename CStringT<T>::const_iterator CStringT<T>::cbegin() const noexcept {
  return m_str.cbegin();
}

template <typename T>
typename CStringT<T>::const_iterator CStringT<T>::cend() const noexcept {
  return m_str.cend();
}

template <typename T>
typename CStringT<T>::const_reverse_iterator CStringT<T>::crbegin() const noexcept {
  return m_str.crbegin();
}

template <typename T>
typename CStringT<T>::const_reverse_iterator CStringT<T>::crend() const noexcept {
  return m_str.crend();
}

template <typename T>
std::basic_string<T>& CStringT<T>::append(const CStringT& s) {
  return m_str.append(s.m_str);
}

template <typename T>
std::basic_string<T>& CStringT<T>::append(const StdString& s) {
  return m_str.append(s);
}

template <typename T>
std::basic_string<T>& CStringT<T>::append(const StdString& s, size_t pos, size_t n) {
  return m_str.append(s, pos, n);
}

template <typename T>
std::basic_string<T>& CStringT<T>::append(const T* s) {
  return m_str.append(s);
}

template <typename T>
std::basic_string<T>& CStringT<T>::append(const T* s, size_t n) {
  return m_str.append(s, n);
}

template <typename T>
std::basic_string<T>& CStringT<T>::append(size_t n, T c) {
  return m_str.append(n, c);
}

template <typename T>
std::basic_string<T>& CStringT<T>::append(std::initializer_list<T> units) {
  return m_str.append(units);
}

template <typename T>
std::basic_string<T>& CStringT<T>::assign(const CStringT& s) {
  return m_str.assign(s.m_str);
}

template <typename T>
std::basic_string<T>& CStringT<T>::assign(const StdString& s) {
  return m_str.assign(s);
}

template <typename T>
std::basic_string<T>& CStringT<T>::assign(const StdString& s, size_t pos, size_t n) {
  return m_str.assign(s, pos, n);
}

template <typename T>
std::basic_string<T>& CStringT<T>::assign(const T* s) {
  return m_str.assign(s);
}

template <typename T>
std::basic_string<T>& CStringT<T>::assign(const T* s, size_t n) {
  return m_str.assign(s, n);
}

template <typename T>
std::basic_string<T>& CStringT<T>::assign(size_t n, T c) {
  return m_str.assign(n, c);
}

template <typename T>
std::basic_string<T>& CStringT<T>::assign(std::initializer_list<T> units) {
  return m_str.assign(units);
}

template <typename T>
std::basic_string<T>& CStringT<T>::insert(size_t pos, const CStringT& s) {
  return m_str.insert(pos, s.m_str);
}

template <typename T>
std::basic_string<T>& CStringT<T>::insert(size_t pos, const StdString& s) {
  return m_str.insert(pos, s);
}

template <typename T>
std::basic_string<T>& CStringT<T>::insert(size_t pos, const StdString& s, size_t pos2, size_t n) {
  return m_str.insert(pos, s, pos2, n);
}

template <typename T>
std::basic_string<T>& CStringT<T>::insert(size_t pos, const T* s) {
  return m_str.insert(pos, s);
}

template <typename T>
std::basic_string<T>& CStringT<T>::insert(size_t pos, const T* s, size_t n) {
  return m_str.insert(pos, s, n);
}

template <typename T>
std::basic_string<T>& CStringT<T>::insert(size_t pos, size_t n, T c) {
  return m_str.insert(pos, n, c);
}

template <typename T>
typename CStringT<T>::iterator CStringT<T>::insert(const_iterator where, T c) {
  return m_str.insert(where, c);
}

template <typename T>
typename CStringT<T>::iterator CStringT<T>::insert(const_iterator where, size_t n, T c) {
  return m_str.insert(where, n, c);
}

template <typename T>
typename CStringT<T>::iterator CStringT<T>::insert(const_iterator where, std::initializer_list<T> units) {
  return m_str.insert(where, units);
}

template <typename T>
std::basic_string<T>& CStringT<T>::erase(size_t pos, size_t n) {
  return m_str.erase(pos, n);
}

template <typename T>
typename CStringT<T>::iterator CStringT<T>::erase(const_iterator where) {
  return m_str.erase(where);
}

template <typename T>
typename CStringT<T>::iterator CStringT<T>::erase(const_iterator first, const_iterator last) {
  return m_str.erase(first, last);
}

template <typename T>
std::basic_string<T>& CStringT<T>::replace(size_t pos, size_t n, const CStringT& s) {
  return m_str.replace(pos, n, s.m_str);
}

template <typename T>
std::basic_string<T>& CStringT<T>::replace(size_t pos, size_t n, const StdString& s) {
  return m_str.replace(pos, n, s);
}

template <typename T>
std::basic_string<T>& CStringT<T>::replace(size_t pos, size_t n, const StdString& s, size_t pos2, size_t n2) {
  return m_str.replace(pos, n, s, pos2, n2);
}

template <typename T>
std::basic_string<T>& CStringT<T>::replace(size_t pos, size_t n, const T* s) {
  return m_str.replace(pos, n, s);
}

template <typename T>
std::basic_string<T>& CStringT<T>::replace(size_t pos, size_t n, const T* s, size_t n2) {
  return m_str.replace(pos, n, s, n2);
}

template <typename T>
std::basic_string<T>& CStringT<T>::replace(size_t pos, size_t n, size_t n2, T c) {
  return m_str.replace(pos, n, n2, c);
}

template <typename T>
std::basic_string<T>& CStringT<T>::replace(const_iterator first, const_iterator last, const CStringT& s) {
  return m_str.replace(first, last, s.m_str);
}

template <typename T>
std::basic_string<T>& CStringT<T>::replace(const_iterator first, const_iterator last, const StdString& s) {
  return m_str.replace(first, last, s);
}

template <typename T>
std::basic_string<T>& CStringT<T>::replace(const_iterator first, const_iterator last, const T* s) {
  return m_str.replace(first, last, s);
}

template <typename T>
std::basic_string<T>& CStringT<T>::replace(const_iterator first, const_iterator last, const T* s, size_t n) {
  return m_str.replace(first, last, s, n);
}

template <typename T>
std::basic_string<T>& CStringT<T>::replace(const_iterator first, const_iterator last, size_t n, T c) {
  return m_str.replace(first, last, n, c);
}

template <typename T>
int CStringT<T>::compare(const CStringT& s) const {
  return m_str.compare(s.m_str);
}

template <typename T>
int CStringT<T>::compare(size_t pos, size_t n, const CStringT& s) const {
  return m_str.compare(pos, n, s.m_str);
}

template <typename T>
int CStringT<T>::compare(size_t pos, size_t n, const CStringT& s, size_t pos2, size_t n2) const {
  return m_str.compare(pos, n, s.m_str, pos2, n2);
}

template <typename T>
int CStringT<T>::compare(const StdString& s) const {
  return m_str.compare(s);
}

template <typename T>
int CStringT<T>::compare(size_t pos, size_t n, const StdString& s) const {
  return m_str.compare(pos, n, s);
}

template <typename T>
int CStringT<T>::compare(size_t pos, size_t n, const StdString& s, size_t pos2, size_t n2) const {
  return m_str.compare(pos, n, s, pos2, n2);
}

template <typename T>
int CStringT<T>::compare(const T* s) const {
  return m_str.compare(s);
}

template <typename T>
int CStringT<T>::compare(size_t pos, size_t n, const T* s) const {
  return m_str.compare(pos, n, s);
}

template <typename T>
int CStringT<T>::compare(size_t pos, size_t n, const T* s, size_t n2) const {
  return m_str.compare(pos, n, s, n2);
}

template <typename T>
size_t CStringT<T>::find(const CStringT& s, size_t pos) const noexcept {
  return m_str.find(s.m_str, pos);
}

template <typename T>
size_t CStringT<T>::find(const StdString& s, size_t pos) const noexcept {
  return m_str.find(s, pos);
}

template <typename T>
size_t CStringT<T>::find(const T* s, size_t pos) const {
  return m_str.find(s, pos);
}

template <typename T>
size_t CStringT<T>::find(const T* s, size_t pos, size_t n) const {
  return m_str.find(s, pos, n);
}

template <typename T>
size_t CStringT<T>::find(T c, size_t pos) const noexcept {
  return m_str.find(c, pos);
}

template <typename T>
size_t CStringT<T>::rfind(const CStringT& s, size_t pos) const noexcept {
  return m_str.rfind(s.m_str, pos);
}

template <typename T>
size_t CStringT<T>::rfind(const StdString& s, size_t pos) const noexcept {
  return m_str.rfind(s, pos);
}

template <typename T>
size_t CStringT<T>::rfind(const T* s, size_t pos) const {
  return m_str.rfind(s, pos);
}

template <typename T>
size_t CStringT<T>::rfind(const T* s, size_t pos, size_t n) const {
  return m_str.rfind(s, pos, n);
}

template <typename T>
size_t CStringT<T>::rfind(T c, size_t pos) const noexcept {
  return m_str.rfind(c, pos);
}

template <typename T>
size_t CStringT<T>::find_first_of(const CStringT& set, size_t pos) const noexcept {
  return m_str.find_first_of(set.m_str, pos);
}

template <typename T>
size_t CStringT<T>::find_first_of(const StdString& set, size_t pos) const noexcept {
  return m_str.find_first_of(set, pos);
}

template <typename T>
size_t CStringT<T>::find_first_of(const T* set, size_t pos) const {
  return m_str.find_first_of(set, pos);
}

template <typename T>
size_t CStringT<T>::find_first_of(const T* set, size_t pos, size_t n) const {
  return m_str.find_first_of(set, pos, n);
}

template <typename T>
size_t CStringT<T>::find_first_of(T c, size_t pos) const noexcept {
  return m_str.find_first_of(c, pos);
}

template <typename T>
size_t CStringT<T>::find_last_of(const CStringT& set, size_t pos) const noexcept {
  return m_str.find_last_of(set.m_str, pos);
}

template <typename T>
size_t CStringT<T>::find_last_of(const StdString& set, size_t pos) const noexcept {
  return m_str.find_last_of(set, pos);
}

template <typename T>
size_t CStringT<T>::find_last_of(const T* set, size_t pos) const {
  return m_str.find_last_of(set, pos);
}

template <typename T>
size_t CStringT<T>::find_last_of(const T* set, size_t pos, size_t n) const {
  return m_str.find_last_of(set, pos, n);
}

template <typename T>
size_t CStringT<T>::find_last_of(T c, size_t pos) const noexcept {
  return m_str.find_last_of(c, pos);
}

template <typename T>
size_t CStringT<T>::find_first_not_of(const CStringT& set, size_t pos) const noexcept {
  return m_str.find_first_not_of(set.m_str, pos);
}

template <typename T>
size_t CStringT<T>::find_first_not_of(const StdString& set, size_t pos) const noexcept {
  return m_str.find_first_not_of(set, pos);
}

template <typename T>
size_t CStringT<T>::find_first_not_of(const T* set, size_t pos) const {
  return m_str.find_first_not_of(set, pos);
}

template <typename T>
size_t CStringT<T>::find_first_not_of(const T* set, size_t pos, size_t n) const {
  return m_str.find_first_not_of(set, pos, n);
}

template <typename T>
size_t CStringT<T>::find_first_not_of(T c, size_t pos) const noexcept {
  return m_str.find_first_not_of(c, pos);
}

template <typename T>
size_t CStringT<T>::find_last_not_of(const CStringT& set, size_t pos) const noexcept {
  return m_str.find_last_not_of(set.m_str, pos);
}

template <typename T>
size_t CStringT<T>::find_last_not_of(const StdString& set, size_t pos) const noexcept {
  return m_str.find_last_not_of(set, pos);
}

template <typename T>
size_t CStringT<T>::find_last_not_of(const T* set, size_t pos) const {
  return m_str.find_last_not_of(set, pos);
}

template <typename T>
size_t CStringT<T>::find_last_not_of(const T* set, size_t pos, size_t n) const {
  return m_str.find_last_not_of(set, pos, n);
}

template <typename T>
size_t CStringT<T>::find_last_not_of(T c, size_t pos) const noexcept {
  return m_str.find_last_not_of(c, pos);
}

}  // namespace Cmm
