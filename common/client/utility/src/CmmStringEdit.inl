#pragma once

// CStringT: change in place and concatenation.

#include <algorithm>
#include <string>
#include <string_view>

#include "common/client/utility/src/CmmString.h"
#include "common/client/utility/src/CmmStringCrt.h"

namespace Cmm {

namespace edit {

template <typename T>
constexpr T kWhitespace[] = {'\t', '\n', '\r', ' ', 0};

// One pass into a fresh string, so `from` and `to` may be parts of `text`.
template <typename T>
void ReplaceAll(std::basic_string<T>& text, std::basic_string_view<T> from, std::basic_string_view<T> to) {
  size_t found = from.empty() ? std::basic_string<T>::npos : text.find(from);
  if (found == std::basic_string<T>::npos) return;
  std::basic_string<T> result;
  size_t done = 0;
  for (; found != std::basic_string<T>::npos; found = text.find(from, done)) {
    result.append(text, done, found - done).append(to);
    done = found + from.size();
  }
  result.append(text, done);
  text = std::move(result);
}

struct NamedEscape {
  char unit;
  std::string_view escape;
};

// The ampersand first when encoding and last when decoding, so that neither reads its own output.
constexpr NamedEscape kEncodings[] = {
    {'&', "&amp;"}, {'"', "&quot;"}, {'\'', "&apos;"}, {'<', "&lt;"}, {'>', "&gt;"}};
constexpr NamedEscape kDecodings[] = {
    {'<', "&lt;"}, {'>', "&gt;"}, {'"', "&quot;"}, {'\'', "&apos;"}, {'&', "&amp;"}};

struct BracketEscape {
  wchar_t unit;
  std::wstring_view escape;
};

constexpr BracketEscape kBrackets[] = {
    {L'\u2329', L"&#x2329;"}, {L'\u232A', L"&#x232a;"}, {L'\u300A', L"&#x300a;"}, {L'\u300B', L"&#x300b;"}};

}  // namespace edit

template <typename T>
void CStringT<T>::MakeUpper() {
  crt::MakeUpper(m_str.data());
}

template <typename T>
void CStringT<T>::MakeLower() {
  crt::MakeLower(m_str.data());
}

template <typename T>
void CStringT<T>::MakeReverse() {
  std::reverse(m_str.begin(), m_str.end());
}

template <typename T>
void CStringT<T>::Trim() {
  TrimRight();
  TrimLeft();
}

template <typename T>
void CStringT<T>::TrimLeft() {
  m_str.erase(0, m_str.find_first_not_of(edit::kWhitespace<T>));
}

template <typename T>
void CStringT<T>::TrimRight() {
  m_str.erase(m_str.find_last_not_of(edit::kWhitespace<T>) + 1);
}

template <typename T>
void CStringT<T>::Trim(const T* set) {
  TrimLeft(set);
  TrimRight(set);
}

template <typename T>
void CStringT<T>::TrimLeft(const T* set) {
  // "Not found" is -1 here and trims nothing: callers rely on a string of nothing but `set` surviving.
  const int first = static_cast<int>(m_str.find_first_not_of(crt::OrEmpty(set)));
  if (first > 0) m_str.erase(0, static_cast<size_t>(first));
}

template <typename T>
void CStringT<T>::TrimRight(const T* set) {
  m_str.erase(m_str.find_last_not_of(crt::OrEmpty(set)) + 1);
}

template <typename T>
int CStringT<T>::Delete(size_t pos, size_t n) {
  const size_t before = m_str.size();
  if (pos >= before) return 0;
  m_str.erase(pos, n);
  return static_cast<int>(m_str.size() - before);
}

template <typename T>
int CStringT<T>::Remove(T c) {
  return static_cast<int>(std::erase(m_str, c));
}

template <typename T>
int CStringT<T>::RemoveBlanks() {
  return static_cast<int>(
      std::erase_if(m_str, [](T c) { return c == '\t' || c == '\n' || c == '\r' || c == ' '; }));
}

template <typename T>
void CStringT<T>::Replace(const T* from, const T* to) {
  edit::ReplaceAll<T>(m_str, crt::OrEmpty(from), crt::OrEmpty(to));
}

template <typename T>
void CStringT<T>::Replace(const CStringT& from, const CStringT& to) {
  edit::ReplaceAll<T>(m_str, from.m_str, to.m_str);
}

template <typename T>
void CStringT<T>::Replace(T from, T to) {
  std::replace(m_str.begin(), m_str.end(), from, to);
}

template <typename T>
void CStringT<T>::XMLEncode() {
  for (const auto& [unit, escape] : edit::kEncodings) {
    const T plain = static_cast<T>(unit);
    edit::ReplaceAll<T>(m_str, {&plain, 1}, StdString(escape.begin(), escape.end()));
  }
  if constexpr (std::is_same_v<T, wchar_t>) {
    for (const auto& [unit, escape] : edit::kBrackets)
      edit::ReplaceAll<T>(m_str, {&unit, 1}, escape);
  }
}

template <typename T>
void CStringT<T>::XMLDecode() {
  for (const auto& [unit, escape] : edit::kDecodings) {
    const T plain = static_cast<T>(unit);
    edit::ReplaceAll<T>(m_str, StdString(escape.begin(), escape.end()), {&plain, 1});
  }
  // Behind the ampersand by contract, although this lets an escaped numeric reference decode twice.
  if constexpr (std::is_same_v<T, wchar_t>) {
    for (const auto& [unit, escape] : edit::kBrackets)
      edit::ReplaceAll<T>(m_str, escape, {&unit, 1});
  }
}

template <typename T>
CStringT<T> CStringT<T>::operator+(const T* s) const {
  return CStringT(*this) += s;
}

template <typename T>
CStringT<T> CStringT<T>::operator+(const CStringT& other) const {
  return CStringT(*this) += other;
}

template <typename T>
CStringT<T> CStringT<T>::operator+(T c) const {
  return CStringT(*this) += c;
}

template <typename T>
CStringT<T> CStringT<T>::operator+(Range range) const {
  return CStringT(*this) += range;
}

template <typename T>
CStringT<T>& CStringT<T>::operator+=(const T* s) {
  if (s && *s) m_str += s;
  return *this;
}

template <typename T>
CStringT<T>& CStringT<T>::operator+=(const CStringT& other) {
  m_str += other.m_str;
  return *this;
}

template <typename T>
CStringT<T>& CStringT<T>::operator+=(const StdString& other) {
  m_str += other;
  return *this;
}

template <typename T>
CStringT<T>& CStringT<T>::operator+=(T c) {
  m_str += c;
  return *this;
}

template <typename T>
CStringT<T>& CStringT<T>::operator+=(Range range) {
  m_str.append(range.begin, range.GetLength());
  return *this;
}

}  // namespace Cmm
