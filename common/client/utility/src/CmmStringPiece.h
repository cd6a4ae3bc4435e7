#pragma once

// A view of bytes that somebody else owns: a pointer and a length, not NUL-terminated.

#include <cstddef>
#include <iterator>
#include <string>

#include "common/client/utility/src/CmmDefine.h"

namespace Cmm {

// The bytes must outlive the piece and stay unchanged. Lengths and positions are in bytes; `npos` stands
// for "not found" and "up to the end". Copying a piece copies the pointer. No lock.
class CMM_EXPORT StringPiece {
 public:
  using value_type = char;
  using size_type = size_t;
  using difference_type = ptrdiff_t;
  using const_pointer = const char*;
  using const_reference = const char&;
  using const_iterator = const char*;
  using const_reverse_iterator = std::reverse_iterator<const_iterator>;

  static constexpr size_t npos = static_cast<size_t>(-1);

  // ---- Construction ---------------------------------------------------------------------------------

  StringPiece() = default;
  StringPiece(const char* s) { set(s); }  // a null `s` gives a null piece of length 0
  StringPiece(const std::string& s) : m_data(s.data()), m_length(s.size()) {}
  StringPiece(const char* data, size_t length) : m_data(data), m_length(length) {}

  void set(const char* data, size_t length);
  void set(const char* s);  // up to the NUL; null as in the constructor
  void set(const void* data, size_t length);
  void clear() { *this = StringPiece(); }

  // ---- Access ---------------------------------------------------------------------------------------

  const char* data() const { return m_data; }
  size_t size() const { return m_length; }
  size_t length() const { return m_length; }
  size_t max_size() const { return m_length; }
  size_t capacity() const { return m_length; }
  bool empty() const { return m_length == 0; }
  char operator[](size_t i) const { return m_data[i]; }  // unchecked

  const_iterator begin() const { return m_data; }
  const_iterator end() const { return m_data + m_length; }
  const_reverse_iterator rbegin() const { return const_reverse_iterator(end()); }
  const_reverse_iterator rend() const { return const_reverse_iterator(begin()); }

  void remove_prefix(size_t n) {  // unchecked
    m_data += n;
    m_length -= n;
  }
  void remove_suffix(size_t n) { m_length -= n; }  // unchecked

  // ---- Comparison -----------------------------------------------------------------------------------

  // memcmp as -1, 0 or 1. Compares only where both pointers are set and `n` is 1 to 104857600; everywhere
  // else the answer is 0, "equal", and the three operations below inherit that.
  static int wordmemcmp(const char* a, const char* b, size_t n);

  int compare(const StringPiece& other) const;  // by unsigned bytes, then by length: -1, 0 or 1
  bool starts_with(const StringPiece& other) const;
  bool ends_with(const StringPiece& other) const;

  // ---- Search ---------------------------------------------------------------------------------------
  // As std::string, except that with an empty set find_first_not_of answers 0 whatever `pos` is.

  size_t find(const StringPiece& s, size_t pos = 0) const;
  size_t find(char c, size_t pos = 0) const;
  size_t rfind(const StringPiece& s, size_t pos = npos) const;
  size_t rfind(char c, size_t pos = npos) const;
  size_t find_first_of(const StringPiece& set, size_t pos = 0) const;
  size_t find_first_of(char c, size_t pos = 0) const;
  size_t find_first_not_of(const StringPiece& set, size_t pos = 0) const;
  size_t find_first_not_of(char c, size_t pos = 0) const;
  size_t find_last_of(const StringPiece& set, size_t pos = npos) const;
  size_t find_last_of(char c, size_t pos = npos) const;
  size_t find_last_not_of(const StringPiece& set, size_t pos = npos) const;
  size_t find_last_not_of(char c, size_t pos = npos) const;

  // ---- Copies and parts -----------------------------------------------------------------------------

  StringPiece substr(size_t pos, size_t n = npos) const;  // both clamped to the piece
  std::string as_string() const;
  void CopyToString(std::string* target) const;
  void AppendToString(std::string* target) const;
  // At most `n` bytes from `pos` on; adds no NUL, returns how many were copied, 0 past the end.
  size_t copy(char* buffer, size_t n, size_t pos = 0) const;

 private:
  const char* m_data = nullptr;
  size_t m_length = 0;
};

}  // namespace Cmm
