#pragma once

// Text between code pages and UTF-16. Code page 0 is the system's ANSI code page, 65001 UTF-8. Lengths
// and capacities are counted in units of their buffer, and never include a terminator.

#include <cstddef>
#include <string>

#include "common/client/utility/src/CmmDefine.h"
#include "common/client/utility/src/CmmString.h"

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

namespace Cmm {

// Keep the first `offset` units of `target` and put the `len` units at `src` behind them, converted through
// the ANSI code page when the widths differ. All ones for `len` means that `src` ends at its NUL; a null or
// empty source leaves `target` as it is. `src` must not be part of `target`.
// The room for narrow text is counted in the UTF-16 units that it would make, so narrow text with
// double-byte characters does not fit into a narrow target: nothing is put behind the `offset` units.
CMM_EXPORT void _cstring_set(CStringT<char>& target, size_t offset, const char* src, size_t len);
CMM_EXPORT void _cstring_set(CStringT<char>& target, size_t offset, const wchar_t* src, size_t len);
CMM_EXPORT void _cstring_set(CStringT<wchar_t>& target, size_t offset, const char* src, size_t len);
CMM_EXPORT void _cstring_set(CStringT<wchar_t>& target, size_t offset, const wchar_t* src, size_t len);

// The body of CStringT::Assign(const VARIANT&, int).
CMM_EXPORT void _cstring_assign(CStringT<char>& target, const VARIANT& v, int change);
CMM_EXPORT void _cstring_assign(CStringT<wchar_t>& target, const VARIANT& v, int change);

// A string that takes text of the other width on construction, in code page CP on the narrow side. Null,
// empty and unconvertible text give the empty string; a NUL at the very end of the text is left out.
// Copies, moves and the destructor are declared because implicit ones would not be exported.
template <int CP, typename From, typename To>
class A2BT : public CStringT<To> {
 public:
  A2BT(const From* s);
  A2BT(const std::basic_string<From>& s);
  A2BT(const From* s, size_t n);
  A2BT(const A2BT&);
  A2BT(A2BT&&) noexcept;
  A2BT& operator=(const A2BT&);
  A2BT& operator=(A2BT&&) noexcept;
  ~A2BT() override;
};

extern template class CMM_EXPORT A2BT<65001, wchar_t, char>;  // UTF-16 to UTF-8
extern template class CMM_EXPORT A2BT<65001, char, wchar_t>;  // UTF-8 to UTF-16

// The same from one narrow code page into another.
template <int FromCP, int ToCP>
class A2Cmm : public CStringT<char> {
 public:
  A2Cmm(const char* s);
  A2Cmm(const std::string& s);
  A2Cmm(const char* s, size_t n);
  A2Cmm(const A2Cmm&);
  A2Cmm(A2Cmm&&) noexcept;
  A2Cmm& operator=(const A2Cmm&);
  A2Cmm& operator=(A2Cmm&&) noexcept;
  ~A2Cmm() override;
};

extern template class CMM_EXPORT A2Cmm<65001, 0>;  // UTF-8 to ANSI

}  // namespace Cmm
