#pragma once

// Text cut into lines. A line ends with CR, LF or the pair CR LF.

#include <cstddef>

#include "common/client/utility/src/CmmDefine.h"
#include "common/client/utility/src/CmmRange.h"

// Gives the line of `text` that begins at index `pos`, without its end, and returns the index behind that
// end. The last line needs none. A NUL at the beginning of a line is an empty line, with `pos` as the
// result: callers must stop there; a NUL further on is data.
// `pos` at or beyond the end: 0, and `line` is left alone.
CMM_EXPORT size_t cmm_range_spliteline(Cmm::CStrRangeT<char> text, size_t pos, Cmm::CStrRangeT<char>& line);
CMM_EXPORT size_t cmm_range_spliteline(Cmm::CStrRangeT<wchar_t> text, size_t pos,
                                       Cmm::CStrRangeT<wchar_t>& line);

// Returns the index behind the end of the line that begins at `range.begin`; neither index is negative. A
// NUL ends the line as well, and its own index is the result. `line` becomes `range`, whole: the result
// alone tells where the line ended.
// An empty range, a null `text` or a NUL at its beginning: 0, and `line` is left alone.
CMM_EXPORT size_t cmm_range_spliteline(const char* text, Cmm::RANGE range, Cmm::RANGE& line);
CMM_EXPORT size_t cmm_range_spliteline(const wchar_t* text, Cmm::RANGE range, Cmm::RANGE& line);
