#include "common/client/utility/src/CmmLineSplit.h"

#include <algorithm>

namespace {

using Cmm::CStrRangeT;
using Cmm::RANGE;

template <typename T>
bool EndsLine(T unit) {
  return unit == '\r' || unit == '\n';
}

// Steps over the end of a line at `p`, if there is one.
template <typename T>
const T* BehindLineEnd(const T* p, const T* end) {
  if (p == end || !EndsLine(*p)) return p;
  const bool pair = *p == '\r' && p + 1 != end && p[1] == '\n';
  return p + (pair ? 2 : 1);
}

template <typename T>
size_t SplitRange(CStrRangeT<T> text, size_t pos, CStrRangeT<T>& line) {
  if (pos >= text.GetLength()) return 0;
  const T* const begin = text.begin + pos;
  // Only the first unit is tested for NUL, not as in the other form: the two stay as callers know them.
  if (*begin == T()) {
    line = {begin, begin};
    return pos;
  }
  const T* const lineEnd = std::find_if(begin, text.end, EndsLine<T>);
  line = {begin, lineEnd};
  return static_cast<size_t>(BehindLineEnd(lineEnd, text.end) - text.begin);
}

template <typename T>
size_t SplitIndexes(const T* text, RANGE range, RANGE& line) {
  if (text == nullptr || range.begin >= range.end || text[range.begin] == T()) return 0;
  const T* const end = text + range.end;
  const T* const lineEnd =
      std::find_if(text + range.begin, end, [](T unit) { return unit == T() || EndsLine(unit); });
  line = range;  // not narrowed to the line: the result alone tells its end
  return static_cast<size_t>(BehindLineEnd(lineEnd, end) - text);
}

}  // namespace

size_t cmm_range_spliteline(CStrRangeT<char> text, size_t pos, CStrRangeT<char>& line) {
  return SplitRange(text, pos, line);
}

size_t cmm_range_spliteline(CStrRangeT<wchar_t> text, size_t pos, CStrRangeT<wchar_t>& line) {
  return SplitRange(text, pos, line);
}

size_t cmm_range_spliteline(const char* text, RANGE range, RANGE& line) {
  return SplitIndexes(text, range, line);
}

size_t cmm_range_spliteline(const wchar_t* text, RANGE range, RANGE& line) {
  return SplitIndexes(text, range, line);
}
