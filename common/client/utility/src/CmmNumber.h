#pragma once

// Numbers and truth values out of text, and back into text.

#include <cstdint>

#include "common/client/utility/src/CmmDefine.h"

// The parsers below read the text from `s` up to `end`; a null `end` means that a NUL ends the text.
// They skip leading tabs, line feeds, carriage returns and spaces, and write `out` only on success.

// Parses a whole number in `base`, 2 to 36, or 0 for the C rule: "0x" means 16, a leading "0" 8, else
// 10. A "0x" is stepped over in every base. The value wraps silently at 32 bits.
// Returns the first position not consumed, or `s` when nothing could be parsed.
CMM_EXPORT char* cmm_str_tol(const char* s, const char* end, long& out, int base);
CMM_EXPORT wchar_t* cmm_str_tol(const wchar_t* s, const wchar_t* end, long& out, int base);

// Parses a decimal number with at most one point and an optional exponent. It rounds at every step, so
// the result may be some units in the last place off. A decimal exponent outside -1021 to 1024, counted
// after the point has been moved behind the last digit, gives positive infinity.
// Returns the first position not consumed; when there is no digit, the position where one was missed;
// null for a null `s`.
CMM_EXPORT char* cmm_str_tod(const char* s, const char* end, double& out);
CMM_EXPORT wchar_t* cmm_str_tod(const wchar_t* s, const wchar_t* end, double& out);
