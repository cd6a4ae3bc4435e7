#pragma once

// Numbers and truth values out of text, and back into text.

#include <cstdint>

#include "common/client/utility/src/CmmDefine.h"
#include "common/client/utility/src/CmmString.h"

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

namespace Cmm {

// Text to number: 1 is success, 0 failure. Leading whitespace and one sign are accepted, what follows the
// digits is ignored. The text counts up to its first NUL.

// 0 with `out` 0 for an empty text; else 1, even where the text is no number, and `out` is 0 then.
CMM_EXPORT int StringToInt64(const CStringT<char>& s, int64_t& out);
CMM_EXPORT int StringToInt64(const CStringT<wchar_t>& s, int64_t& out);

// 0 without a digit or out of range, and `out` is left alone. A minus negates modulo 2^64.
CMM_EXPORT int StringToUInt64(const CStringT<char>& s, uint64_t& out);
CMM_EXPORT int StringToUInt64(const CStringT<wchar_t>& s, uint64_t& out);

// `out` is always written. A value of 0 is success only for the text "0": "00" fails as "abc" does.
CMM_EXPORT int StringToInt(const CStringT<char>& s, int& out);
CMM_EXPORT int StringToInt(const CStringT<wchar_t>& s, int& out);
CMM_EXPORT int StringToUInt(const CStringT<char>& s, unsigned& out);
CMM_EXPORT int StringToUInt(const CStringT<wchar_t>& s, unsigned& out);

// Exactly "true" or "false"; for all else 0, and `out` is left alone.
CMM_EXPORT int StringToBool(const CStringT<char>& s, int& out);
CMM_EXPORT int StringToBool(const CStringT<wchar_t>& s, int& out);

// Number to decimal text.
CMM_EXPORT int Int64ToString(int64_t v, CStringT<char>& out);  // always 1
CMM_EXPORT int Int64ToString(int64_t v, CStringT<wchar_t>& out);
CMM_EXPORT void UInt64ToString(uint64_t v, CStringT<char>& out);
CMM_EXPORT void UInt64ToString(uint64_t v, CStringT<wchar_t>& out);
CMM_EXPORT void IntToString(int v, CStringT<char>& out);
CMM_EXPORT void IntToString(int v, CStringT<wchar_t>& out);
CMM_EXPORT void UIntToString(unsigned v, CStringT<char>& out);
CMM_EXPORT void UIntToString(unsigned v, CStringT<wchar_t>& out);
CMM_EXPORT CStringT<char> CmmStringFromInt64(int64_t v);

// "true" for any value but 0.
CMM_EXPORT void BoolToString(int v, CStringT<char>& out);
CMM_EXPORT void BoolToString(int v, CStringT<wchar_t>& out);

}  // namespace Cmm
