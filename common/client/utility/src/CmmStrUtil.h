#pragma once

// Helpers on NUL-terminated text, each as a pair: cmm_astr_* for `char`, cmm_wstr_* for `wchar_t`.
//
// `end` bounds the text where it is not null; a NUL ends it in any case. A null text holds nothing: it is
// searched in vain and copied as an empty one. Counts and lengths are in units, without the terminator.

#include <cstddef>

#include "common/client/utility/src/CmmDefine.h"

extern "C" {

// ---- Search ignoring case: a pointer into `str`, or null ----------------------------------------------

// The first, and the last, unit equal to `c` under tolower or towlower.
CMM_EXPORT const char* cmm_astr_chri(const char* str, const char* end, char c);
CMM_EXPORT const wchar_t* cmm_wstr_chri(const wchar_t* str, const wchar_t* end, wchar_t c);
CMM_EXPORT const char* cmm_astr_rchri(const char* str, const char* end, char c);
CMM_EXPORT const wchar_t* cmm_wstr_rchri(const wchar_t* str, const wchar_t* end, wchar_t c);

// The first occurrence under tolower or towlower; an empty needle is found at `str`.
CMM_EXPORT const char* cmm_astr_stri(const char* str, const char* end, const char* needle);
CMM_EXPORT const wchar_t* cmm_wstr_stri(const wchar_t* str, const wchar_t* end, const wchar_t* needle);

// The last occurrence, compared by the system under the user's default locale instead; an empty needle is
// found at the end of the text.
CMM_EXPORT const char* cmm_astr_rstri(const char* str, const char* end, const char* needle);
CMM_EXPORT const wchar_t* cmm_wstr_rstri(const wchar_t* str, const wchar_t* end, const wchar_t* needle);

// ---- Case in place, ASCII letters only ------------------------------------------------------------------

CMM_EXPORT void cmm_astr_upr(char* str, const char* end);
CMM_EXPORT void cmm_wstr_upr(wchar_t* str, const wchar_t* end);
CMM_EXPORT void cmm_astr_lwr(char* str, const char* end);
CMM_EXPORT void cmm_wstr_lwr(wchar_t* str, const wchar_t* end);

// ---- Bounded copies: `dst` holds `size` units and always ends terminated, unless `size` is 0 ------------

// Copies at most min(size - 1, max) units of `src`; returns how many.
CMM_EXPORT size_t cmm_astr_ncpy(char* dst, size_t size, const char* src, size_t max);
CMM_EXPORT size_t cmm_wstr_ncpy(wchar_t* dst, size_t size, const wchar_t* src, size_t max);

// Appends at most `max` units of `src` to the text in `dst`, as far as they fit; returns the total length.
CMM_EXPORT size_t cmm_astr_ncat(char* dst, size_t size, const char* src, size_t max);
CMM_EXPORT size_t cmm_wstr_ncat(wchar_t* dst, size_t size, const wchar_t* src, size_t max);

// ---- Wildcards ------------------------------------------------------------------------------------------

// 1 when the whole of `str` matches one of the alternatives in `patterns`, which `sep` separates; else 0.
// `*` stands for any units, `?` for exactly one. With `caseSensitive` 0 both texts are lowered into
// buffers on the stack, so they must fit there; `sep` itself is not lowered. The time grows with the
// length of `str` to the power of the number of `*` in an alternative.
CMM_EXPORT int cmm_astr_match(const char* str, const char* patterns, char sep, int caseSensitive);
CMM_EXPORT int cmm_wstr_match(const wchar_t* str, const wchar_t* patterns, wchar_t sep, int caseSensitive);

}  // extern "C"
