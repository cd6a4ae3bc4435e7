#pragma once

// UTF-8 into UTF-16 and back, for names and values of the archive. The result is that of the system's
// conversion; ASCII, which nearly all of this text is, does not go through the system.

#include <cstddef>
#include <memory>

#include "common/client/utility/src/CmmString.h"

namespace Cmm::Archive {

// Converts the `size` bytes at `text` into `out`, which has room for `size` units. Returns the number of
// units; no terminator is written.
size_t WideFromUtf8(const char* text, size_t size, wchar_t* out);
CStringT<wchar_t> WideFromUtf8(const char* text);  // null gives the empty string

// The most bytes that one unit of UTF-16 makes.
constexpr size_t kUtf8BytesPerUnit = 3;

// Converts the `length` units at `text` into `out`, which has room for kUtf8BytesPerUnit times as many
// bytes. Returns the number of bytes; no terminator is written.
size_t Utf8FromWide(const wchar_t* text, size_t length, char* out);
void Utf8FromWide(const wchar_t* text, size_t length, CStringT<char>& out);

// UTF-8 text for the length of a call, off the heap unless it is long.
class Utf8Text {
 public:
  Utf8Text(const wchar_t* text, size_t length);

  const char* c_str() const { return m_long ? m_long.get() : m_short; }

 private:
  static constexpr size_t kShortUnits = 170;

  std::unique_ptr<char[]> m_long;
  char m_short[kShortUnits * kUtf8BytesPerUnit + 1];
};

// The one empty name that lookups without a result return.
const CStringT<wchar_t>& EmptyName();

}  // namespace Cmm::Archive
