#pragma once

// Plain views into text that somebody else owns. None of them keeps its text alive; each is invalid
// after any change of the string it was taken from.

#include <cstddef>
#include <cstdint>

namespace Cmm {

// A pair of pointers, `end` exclusive; P is `const char*` or `const wchar_t*`.
// The null range, which is not the same as an empty one, has both pointers null.
template <typename P>
struct CRangeT {
  P begin = nullptr;
  P end = nullptr;

  size_t GetLength() const { return static_cast<size_t>(end - begin); }
  bool IsNull() const { return begin == nullptr; }
};

// The same pair, as the line splitter takes and gives it; T is `char` or `wchar_t`.
template <typename T>
struct CStrRangeT {
  const T* begin = nullptr;
  const T* end = nullptr;

  size_t GetLength() const { return static_cast<size_t>(end - begin); }
};

// A pair of indexes into a text, `end` exclusive.
struct RANGE {
  int32_t begin = 0;
  int32_t end = 0;
};

}  // namespace Cmm
