#include "common/client/utility/src/CmmStringPiece.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

#include "common/client/utility/src/CmmMemory.h"

namespace Cmm {

namespace {

std::string_view View(const StringPiece& piece) {
  return {piece.data(), piece.size()};
}

// Which of the 256 byte values are in a set.
class ByteSet {
 public:
  explicit ByteSet(const StringPiece& set) {
    for (char c : set)
      m_member[static_cast<unsigned char>(c)] = true;
  }
  bool Has(char c) const { return m_member[static_cast<unsigned char>(c)]; }

 private:
  std::array<bool, 256> m_member{};
};

template <typename Predicate>
size_t FirstThat(const StringPiece& piece, size_t pos, Predicate wanted) {
  for (size_t i = pos; i < piece.size(); ++i) {
    if (wanted(piece[i])) return i;
  }
  return StringPiece::npos;
}

template <typename Predicate>
size_t LastThat(const StringPiece& piece, size_t pos, Predicate wanted) {
  for (size_t i = pos < piece.size() ? pos + 1 : piece.size(); i > 0; --i) {
    if (wanted(piece[i - 1])) return i - 1;
  }
  return StringPiece::npos;
}

}  // namespace

void StringPiece::set(const char* data, size_t length) {
  m_data = data;
  m_length = length;
}

void StringPiece::set(const char* s) {
  set(s, s ? std::strlen(s) : 0);
}

void StringPiece::set(const void* data, size_t length) {
  set(static_cast<const char*>(data), length);
}

int StringPiece::wordmemcmp(const char* a, const char* b, size_t n) {
  int result = 0;
  cmm_memcmp_s(a, n, b, n, &result);  // leaves the result alone when it refuses
  return result;
}

int StringPiece::compare(const StringPiece& other) const {
  const int order = wordmemcmp(m_data, other.m_data, std::min(m_length, other.m_length));
  if (order != 0) return order;
  return (m_length > other.m_length) - (m_length < other.m_length);
}

bool StringPiece::starts_with(const StringPiece& other) const {
  return m_length >= other.m_length && wordmemcmp(m_data, other.m_data, other.m_length) == 0;
}

bool StringPiece::ends_with(const StringPiece& other) const {
  return m_length >= other.m_length &&
         wordmemcmp(m_data + (m_length - other.m_length), other.m_data, other.m_length) == 0;
}

size_t StringPiece::find(const StringPiece& s, size_t pos) const {
  return View(*this).find(View(s), pos);
}

size_t StringPiece::find(char c, size_t pos) const {
  return View(*this).find(c, pos);
}

size_t StringPiece::rfind(const StringPiece& s, size_t pos) const {
  return View(*this).rfind(View(s), pos);
}

size_t StringPiece::rfind(char c, size_t pos) const {
  return View(*this).rfind(c, pos);
}

size_t StringPiece::find_first_of(const StringPiece& set, size_t pos) const {
  if (empty() || set.empty()) return npos;
  if (set.size() == 1) return find_first_of(set[0], pos);
  const ByteSet bytes(set);
  return FirstThat(*this, pos, [&](char c) { return bytes.Has(c); });
}

size_t StringPiece::find_first_of(char c, size_t pos) const {
  return find(c, pos);
}

size_t StringPiece::find_first_not_of(const StringPiece& set, size_t pos) const {
  if (empty()) return npos;
  if (set.empty()) return 0;  // without regard to `pos`, by contract
  if (set.size() == 1) return find_first_not_of(set[0], pos);
  const ByteSet bytes(set);
  return FirstThat(*this, pos, [&](char c) { return !bytes.Has(c); });
}

size_t StringPiece::find_first_not_of(char c, size_t pos) const {
  return FirstThat(*this, pos, [c](char other) { return other != c; });
}

size_t StringPiece::find_last_of(const StringPiece& set, size_t pos) const {
  if (empty() || set.empty()) return npos;
  if (set.size() == 1) return find_last_of(set[0], pos);
  const ByteSet bytes(set);
  return LastThat(*this, pos, [&](char c) { return bytes.Has(c); });
}

size_t StringPiece::find_last_of(char c, size_t pos) const {
  return rfind(c, pos);
}

size_t StringPiece::find_last_not_of(const StringPiece& set, size_t pos) const {
  if (set.size() == 1) return find_last_not_of(set[0], pos);
  const ByteSet bytes(set);
  return LastThat(*this, pos, [&](char c) { return !bytes.Has(c); });
}

size_t StringPiece::find_last_not_of(char c, size_t pos) const {
  return LastThat(*this, pos, [c](char other) { return other != c; });
}

StringPiece StringPiece::substr(size_t pos, size_t n) const {
  const size_t start = std::min(pos, m_length);
  return StringPiece(m_data + start, std::min(n, m_length - start));
}

std::string StringPiece::as_string() const {
  return empty() ? std::string() : std::string(m_data, m_length);
}

void StringPiece::CopyToString(std::string* target) const {
  if (empty()) {
    target->clear();
  } else {
    target->assign(m_data, m_length);
  }
}

void StringPiece::AppendToString(std::string* target) const {
  if (!empty()) target->append(m_data, m_length);
}

size_t StringPiece::copy(char* buffer, size_t n, size_t pos) const {
  const StringPiece part = substr(pos, n);
  if (!part.empty()) std::memcpy(buffer, part.data(), part.size());
  return part.size();
}

}  // namespace Cmm
