#pragma once

// Text between code pages and UTF-16. Code page 0 is the system's ANSI code page, 65001 UTF-8. Lengths
// and capacities are counted in units of their buffer, and never include a terminator.

#include <cstddef>

#include "common/client/utility/src/CmmDefine.h"

// The three forms convert the `srcLen` units at `src` into `dst`, which holds `cap` units, and return the
// number of units written; a NUL that would be the last of them is not counted. They add no terminator.
// What does not fit is left out: then, and where a code page refuses the system's best-fit flag, the
// rest of `dst` is NUL and the result is the length up to the first NUL. Failure, an empty source among
// it, is 0. A `srcLen` of all ones means that `src` ends at its NUL; else at most 0x7FFFFFFF units are read.
CMM_EXPORT size_t cmm_str_convert(int cp, wchar_t* dst, size_t cap, const char* src, size_t srcLen);
CMM_EXPORT size_t cmm_str_convert(int cp, char* dst, size_t cap, const wchar_t* src, size_t srcLen);
CMM_EXPORT size_t cmm_str_convert(int dstCp, char* dst, size_t cap, int srcCp, const char* src,
                                  size_t srcLen);

// The system's WideCharToMultiByte with best-fit mapping on: where the code page lacks a character, a
// similar one stands in. Arguments and result are the system call's own.
CMM_EXPORT int WideCharToMultiByteBestFit(int cp, const wchar_t* src, int srcLen, char* dst, int cap,
                                          const char* defaultChar, int* usedDefault);
