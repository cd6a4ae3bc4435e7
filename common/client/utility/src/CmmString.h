#pragma once

// The string of the whole system: one std::basic_string behind a virtual destructor, with two
// vocabularies on one object, the capitalised operations and the lower-case ones of the standard string.
//
//   Construction and assignment ..... sources, Assign, AssignOther
//   Access .......................... GetLength, GetAt, c_str, GetBuffer, the inner standard string
//   Comparison ...................... Compare, CompareNoCase, MatchWith, Match, operators
//   Search and parts ................ Pos, Find, Left, Mid, Right, SpanIncluding, SplitString
//   Change .......................... MakeUpper, Trim, Delete, Remove, Replace, XMLEncode, operator+=
//   Formatting and numbers .......... Format, FormatMessageW, LoadStringW, ToLong, ToDouble
//   The standard vocabulary ......... size, find, compare, append, insert, erase, substr, begin

#include <cstdarg>
#include <cstddef>
#include <initializer_list>
#include <iterator>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "common/client/utility/src/CmmDefine.h"
#include "common/client/utility/src/CmmRange.h"

struct HINSTANCE__;
struct tagVARIANT;
typedef struct tagVARIANT VARIANT;

namespace Cmm {

// T is `char` or `wchar_t`; both instantiations live in the library. What holds throughout:
//
// - Lengths, positions and counts are in units of T. A position is unchecked only where it says so.
// - The stored text may hold NUL units, but what works "up to the first NUL" sees only the text before it.
//   A null `const T*` reads as an empty text, except where a comparison tells the two apart, and in the
//   standard vocabulary, which takes no null.
// - "Whitespace" is tab, line feed, carriage return and space, and nothing else.
// - "Ignoring case" is the system's comparison under the user's locale, or tolower/towlower, as stated.
// - Ranges and pointers into the text are invalid after any change. A source may be a part of the string
//   that takes it, except among the arguments of Format behind the format.
// - The standard string's exceptions (std::out_of_range, std::bad_alloc, std::length_error) pass through;
//   nothing else is raised.
// - No lock: concurrent reading is safe, a write needs the caller's synchronisation.
template <typename T>
class CStringT {
 public:
  using StdString = std::basic_string<T>;
  using OtherChar = std::conditional_t<std::is_same_v<T, char>, wchar_t, char>;
  using Range = CRangeT<const T*>;

  using value_type = T;
  using size_type = size_t;
  using difference_type = typename StdString::difference_type;
  using reference = typename StdString::reference;
  using const_reference = typename StdString::const_reference;
  using iterator = typename StdString::iterator;
  using const_iterator = typename StdString::const_iterator;
  using reverse_iterator = typename StdString::reverse_iterator;
  using const_reverse_iterator = typename StdString::const_reverse_iterator;

  static constexpr size_t npos = StdString::npos;  // "not found", "up to the end"

  // Tags that select an overload of Find, as in `s.Find(L'x', CString::reverse, 0)`.
  enum type_reverse { reverse };
  enum type_nocase { nocase };
  enum type_reverse_nocase { reverse_nocase };

  // ---- Construction and assignment ------------------------------------------------------------------

  CMM_EXPORT_INLINE CStringT() noexcept {}
  CMM_EXPORT_INLINE CStringT(const CStringT& other) : m_str(other.m_str) {}
  CMM_EXPORT_INLINE CStringT(CStringT&& other) noexcept : m_str(std::move(other.m_str)) {}
  CMM_EXPORT_INLINE CStringT(const T* s) : m_str(s, s ? std::char_traits<T>::length(s) : 0) {}
  CMM_EXPORT_INLINE CStringT(const T* s, size_t n) : m_str(s, n) {}
  // The FIRST `n` units of `other`. Unchecked: `n` must not exceed the length of `other`.
  CMM_EXPORT_INLINE CStringT(const CStringT& other, size_t n) : m_str(other.m_str.data(), n) {}
  CMM_EXPORT_INLINE CStringT(const StdString& other) : m_str(other) {}
  CMM_EXPORT_INLINE CStringT(Range range) : m_str(range.begin, range.GetLength()) {}
  CMM_EXPORT_INLINE virtual ~CStringT() {}

  CStringT& operator=(const CStringT& other);
  CStringT& operator=(CStringT&& other) noexcept;
  CStringT& operator=(const StdString& other);
  CStringT& operator=(const T* s);
  CStringT& operator=(T c);
  CStringT& operator=(Range range);

  CStringT& Assign(const CStringT& other);
  CStringT& Assign(CStringT&& other) noexcept;
  CStringT& Assign(const StdString& other);
  CStringT& Assign(const T* s);
  CStringT& Assign(const T* s, size_t n);
  CStringT& Assign(T c);
  CStringT& Assign(Range range);
  // Takes the text of a BSTR variant (a null BSTR clears). Any other type leaves the string empty,
  // whether or not `change` asks for a conversion.
  CStringT& Assign(const VARIANT& v, int change);

  // From the other width, through the system ANSI code page. Empty sources leave the string as it was.
  CStringT& AssignOther(const CStringT<OtherChar>& other);
  CStringT& AssignOther(const std::basic_string<OtherChar>& other);
  CStringT& AssignOther(const OtherChar* s);

  // Exchange with a standard string, never with a CStringT.
  void Swap(StdString& other) noexcept;
  void swap(StdString& other) noexcept;

  // ---- Access ---------------------------------------------------------------------------------------

  CMM_EXPORT_INLINE size_t GetLength() const { return m_str.size(); }
  CMM_EXPORT_INLINE int IsEmpty() const { return m_str.empty() ? 1 : 0; }
  CMM_EXPORT_INLINE T GetAt(size_t i) const { return m_str.data()[i]; }       // unchecked
  CMM_EXPORT_INLINE T operator[](size_t i) const { return m_str.data()[i]; }  // unchecked, by value
  void SetAt(size_t i, T c);  // out of range: std::out_of_range

  CMM_EXPORT_INLINE const T* c_str() const { return m_str.c_str(); }
  CMM_EXPORT_INLINE const T* c_str(size_t off) const { return m_str.c_str() + off; }  // unchecked

  StdString& GetData();
  const StdString& GetCData() const;
  CMM_EXPORT_INLINE operator const StdString&() const { return m_str; }

  // Resize to exactly `n` units, which SHORTENS a longer string, and fill with NUL units.
  void SetLength(size_t n);
  // As SetLength; the buffer of `n` units, null when `n` is 0.
  T* GetBuffer(size_t n);
  T* GetBufferSetLength(size_t n);
  T* GetBuffer();        // null when empty
  void ReleaseBuffer();  // cuts the string at its first NUL

  // ---- Comparison -----------------------------------------------------------------------------------

  // Below, at or above 0, up to the first NUL. An empty string against a non-empty one: -1; a non-empty
  // one against null: 1.
  int Compare(const T* other) const;
  int Compare(const CStringT& other) const;
  // -1, 0 or 1 under the user's locale, up to the first NUL. The empties answer the opposite of Compare:
  // an empty string against a non-empty one: 1; a non-empty one against null: -1.
  int CompareNoCase(const T* other) const;
  int CompareNoCase(const CStringT& other) const;

  // Whether the string begins (`atStart`) or ends with `other`; an empty `other` always matches.
  // With `caseSensitive` compared up to the first NUL, otherwise as CompareNoCase does.
  bool MatchWith(const CStringT& other, bool caseSensitive, bool atStart) const;
  bool StartsWith(const CStringT& other, bool caseSensitive) const;
  bool EndsWith(const CStringT& other, bool caseSensitive) const;

  // 1 when the text matches one of the wildcard patterns (`*`, `?`) in `pattern`, which `sep` separates;
  // 0 when not, and when the string or the pattern is empty. See cmm_astr_match.
  int Match(const T* pattern, T sep, int caseSensitive) const;

  // Equality with a string compares the whole stored text; with a `const T*` up to the first NUL, and
  // null equals an empty string.
  bool operator==(const CStringT& other) const;
  bool operator==(const StdString& other) const;
  bool operator==(const T* other) const;
  bool operator!=(const CStringT& other) const;
  bool operator!=(const StdString& other) const;
  bool operator!=(const T* other) const;
  // Order up to the first NUL; an empty string comes before any other.
  bool operator<(const CStringT& other) const;
  bool operator>(const CStringT& other) const;

  // ---- Search and parts -----------------------------------------------------------------------------

  // Index of the first `needle`, up to the first NUL. -1 when absent and when this string is empty.
  int Pos(const T* needle) const;
  int Pos(const CStringT& needle) const;

  // A pointer into the text, not an index, up to the first NUL behind `pos`. Null when absent, when this
  // string is empty and when `pos` is beyond the length. nocase: see cmm_astr_chri, cmm_astr_stri and
  // cmm_astr_rstri.
  const T* Find(T c, size_t pos = 0) const;
  const T* Find(T c, type_reverse, size_t pos = 0) const;
  const T* Find(T c, type_nocase, size_t pos = 0) const;
  const T* Find(const T* s, size_t pos = 0) const;
  const T* Find(const T* s, type_nocase, size_t pos = 0) const;
  const T* Find(const T* s, type_reverse_nocase, size_t pos = 0) const;

  // Index of the first unit at or behind `pos` that is in `set`, -1 when there is none.
  int FindOneOf(const T* set, size_t pos = 0) const;

  // Parts of this string, never copies. The null range where there is nothing to give.
  Range Left(size_t n) const;
  Range Mid(size_t pos) const;
  Range Mid(size_t pos, size_t n) const;
  Range Right(size_t n) const;              // `n` counts as a 32-bit signed value
  Range SpanIncluding(const T* set) const;  // the leading units that are in `set`
  Range SpanExcluding(const T* set) const;  // the leading units that are not in `set`

  // The pieces between separators, empty ones kept; an empty source gives one empty piece. `mode` 0 takes
  // `sep` as one string, which must not be empty (the split would not end); else as a set of units.
  std::vector<CStringT> SplitString(const CStringT& sep, int mode) const;

  // ---- Change ---------------------------------------------------------------------------------------

  void MakeUpper();    // ASCII letters only, up to the first NUL
  void MakeLower();    // ASCII letters only, up to the first NUL
  void MakeReverse();  // by units

  void Trim();  // whitespace
  void TrimLeft();
  void TrimRight();
  void Trim(const T* set);
  void TrimLeft(const T* set);  // leaves a string alone that consists of units of `set` only
  void TrimRight(const T* set);

  int Delete(size_t pos, size_t n);  // the new length minus the old one; 0 when `pos` is past the end
  int Remove(T c);                   // how many were removed
  int RemoveBlanks();                // removes whitespace anywhere; how many units were removed

  // Every occurrence, left to right; what was put in is not searched again. An empty `from` does nothing,
  // a null `to` deletes.
  void Replace(const T* from, const T* to);
  void Replace(const CStringT& from, const CStringT& to);
  void Replace(T from, T to);

  // The five named character references of XML. The wide class also turns four brackets (U+2329, U+232A,
  // U+300A, U+300B) into numeric references and back. Decoding undoes the ampersand before them.
  void XMLEncode();
  void XMLDecode();

  CStringT operator+(const T* s) const;
  CStringT operator+(const CStringT& other) const;
  CStringT operator+(T c) const;
  CStringT operator+(Range range) const;
  CStringT& operator+=(const T* s);
  CStringT& operator+=(const CStringT& other);
  CStringT& operator+=(const StdString& other);
  CStringT& operator+=(T c);
  CStringT& operator+=(Range range);

  // ---- Formatting and numbers -----------------------------------------------------------------------

  // printf of the Microsoft C runtime: `%s` takes text of this class's width. `fmt` may be this string's
  // own buffer. A format that the runtime refuses ends as an allocation failure.
  void Format(const T* fmt, ...);
  void FormatV(const T* fmt, va_list args);

  // The system's message formatter (inserts are %1, %2, ...). Returns its count of units; 0 leaves the
  // string unchanged.
  unsigned FormatMessageW(const T* fmt, ...);

  // The string resource `id` of `instance`, of any length. Returns the length; without such a resource 0,
  // and the string is empty.
  int LoadStringW(HINSTANCE__* instance, unsigned id);
  // The system call alone: writes at most `size` units with the terminator, returns the length.
  static int _LoadString(HINSTANCE__* instance, unsigned id, char* buffer, int size);
  static int _LoadString(HINSTANCE__* instance, unsigned id, wchar_t* buffer, int size);

  // The number at the front of the text, `fallback` when there is none (see cmm_str_tol, cmm_str_tod).
  // ToULong is ToLong under another name: its result is signed.
  long ToLong(long fallback, int base) const;
  long ToULong(long fallback, int base) const;
  double ToDouble(double fallback) const;

  // ---- The standard vocabulary ----------------------------------------------------------------------
  // As std::basic_string. What changes the text returns the inner standard string, not this object. Where
  // only a standard string is named, a CStringT converts to it without a copy.

  CMM_EXPORT_INLINE size_t size() const noexcept { return m_str.size(); }
  CMM_EXPORT_INLINE size_t length() const noexcept { return m_str.size(); }
  CMM_EXPORT_INLINE bool empty() const noexcept { return m_str.empty(); }
  size_t capacity() const noexcept;
  void reserve(size_t n);
  void resize(size_t n);
  void resize(size_t n, T c);
  void clear() noexcept;
  reference at(size_t i);
  const_reference at(size_t i) const;
  CMM_EXPORT_INLINE T* data() noexcept { return m_str.data(); }
  CMM_EXPORT_INLINE const T* data() const noexcept { return m_str.data(); }
  StdString substr(size_t pos = 0, size_t n = npos) const;

  CMM_EXPORT_INLINE iterator begin() noexcept { return m_str.begin(); }
  CMM_EXPORT_INLINE iterator end() noexcept { return m_str.end(); }
  CMM_EXPORT_INLINE const_iterator begin() const noexcept { return m_str.begin(); }
  CMM_EXPORT_INLINE const_iterator end() const noexcept { return m_str.end(); }
  reverse_iterator rbegin() noexcept;
  reverse_iterator rend() noexcept;
  const_reverse_iterator rbegin() const noexcept;
  const_reverse_iterator rend() const noexcept;
  const_iterator cbegin() const noexcept;
  const_iterator cend() const noexcept;
  const_reverse_iterator crbegin() const noexcept;
  const_reverse_iterator crend() const noexcept;

  CMM_EXPORT_INLINE void push_back(T c) { m_str.push_back(c); }

  StdString& append(const CStringT& s);
  StdString& append(const StdString& s);
  StdString& append(const StdString& s, size_t pos, size_t n = npos);
  StdString& append(const T* s);
  StdString& append(const T* s, size_t n);
  StdString& append(size_t n, T c);
  StdString& append(std::initializer_list<T> units);
  template <std::input_iterator It>
  StdString& append(It first, It last) {
    return m_str.append(first, last);
  }

  StdString& assign(const CStringT& s);
  StdString& assign(const StdString& s);
  StdString& assign(const StdString& s, size_t pos, size_t n = npos);
  StdString& assign(const T* s);
  StdString& assign(const T* s, size_t n);
  StdString& assign(size_t n, T c);
  StdString& assign(std::initializer_list<T> units);
  template <std::input_iterator It>
  StdString& assign(It first, It last) {
    return m_str.assign(first, last);
  }

  StdString& insert(size_t pos, const CStringT& s);
  StdString& insert(size_t pos, const StdString& s);
  StdString& insert(size_t pos, const StdString& s, size_t pos2, size_t n = npos);
  StdString& insert(size_t pos, const T* s);
  StdString& insert(size_t pos, const T* s, size_t n);
  StdString& insert(size_t pos, size_t n, T c);
  iterator insert(const_iterator where, T c);
  iterator insert(const_iterator where, size_t n, T c);
  iterator insert(const_iterator where, std::initializer_list<T> units);
  template <std::input_iterator It>
  iterator insert(const_iterator where, It first, It last) {
    return m_str.insert(where, first, last);
  }

  StdString& erase(size_t pos = 0, size_t n = npos);
  iterator erase(const_iterator where);
  iterator erase(const_iterator first, const_iterator last);

  StdString& replace(size_t pos, size_t n, const CStringT& s);
  StdString& replace(size_t pos, size_t n, const StdString& s);
  StdString& replace(size_t pos, size_t n, const StdString& s, size_t pos2, size_t n2 = npos);
  StdString& replace(size_t pos, size_t n, const T* s);
  StdString& replace(size_t pos, size_t n, const T* s, size_t n2);
  StdString& replace(size_t pos, size_t n, size_t n2, T c);
  StdString& replace(const_iterator first, const_iterator last, const CStringT& s);
  StdString& replace(const_iterator first, const_iterator last, const StdString& s);
  StdString& replace(const_iterator first, const_iterator last, const T* s);
  StdString& replace(const_iterator first, const_iterator last, const T* s, size_t n);
  StdString& replace(const_iterator first, const_iterator last, size_t n, T c);

  int compare(const CStringT& s) const;
  int compare(size_t pos, size_t n, const CStringT& s) const;
  int compare(size_t pos, size_t n, const CStringT& s, size_t pos2, size_t n2 = npos) const;
  int compare(const StdString& s) const;
  int compare(size_t pos, size_t n, const StdString& s) const;
  int compare(size_t pos, size_t n, const StdString& s, size_t pos2, size_t n2 = npos) const;
  int compare(const T* s) const;
  int compare(size_t pos, size_t n, const T* s) const;
  int compare(size_t pos, size_t n, const T* s, size_t n2) const;

  size_t find(const CStringT& s, size_t pos = 0) const noexcept;
  size_t find(const StdString& s, size_t pos = 0) const noexcept;
  size_t find(const T* s, size_t pos = 0) const;
  size_t find(const T* s, size_t pos, size_t n) const;
  size_t find(T c, size_t pos = 0) const noexcept;

  size_t rfind(const CStringT& s, size_t pos = npos) const noexcept;
  size_t rfind(const StdString& s, size_t pos = npos) const noexcept;
  size_t rfind(const T* s, size_t pos = npos) const;
  size_t rfind(const T* s, size_t pos, size_t n) const;
  size_t rfind(T c, size_t pos = npos) const noexcept;

  size_t find_first_of(const CStringT& set, size_t pos = 0) const noexcept;
  size_t find_first_of(const StdString& set, size_t pos = 0) const noexcept;
  size_t find_first_of(const T* set, size_t pos = 0) const;
  size_t find_first_of(const T* set, size_t pos, size_t n) const;
  size_t find_first_of(T c, size_t pos = 0) const noexcept;

  size_t find_last_of(const CStringT& set, size_t pos = npos) const noexcept;
  size_t find_last_of(const StdString& set, size_t pos = npos) const noexcept;
  size_t find_last_of(const T* set, size_t pos = npos) const;
  size_t find_last_of(const T* set, size_t pos, size_t n) const;
  size_t find_last_of(T c, size_t pos = npos) const noexcept;

  size_t find_first_not_of(const CStringT& set, size_t pos = 0) const noexcept;
  size_t find_first_not_of(const StdString& set, size_t pos = 0) const noexcept;
  size_t find_first_not_of(const T* set, size_t pos = 0) const;
  size_t find_first_not_of(const T* set, size_t pos, size_t n) const;
  size_t find_first_not_of(T c, size_t pos = 0) const noexcept;

  size_t find_last_not_of(const CStringT& set, size_t pos = npos) const noexcept;
  size_t find_last_not_of(const StdString& set, size_t pos = npos) const noexcept;
  size_t find_last_not_of(const T* set, size_t pos = npos) const;
  size_t find_last_not_of(const T* set, size_t pos, size_t n) const;
  size_t find_last_not_of(T c, size_t pos = npos) const noexcept;

 private:
  bool CanFindFrom(size_t pos) const;
  static size_t DoSpan(const char* s, const char* set);
  static size_t DoSpan(const wchar_t* s, const wchar_t* set);
  static size_t DoCSpan(const char* s, const char* set);
  static size_t DoCSpan(const wchar_t* s, const wchar_t* set);

  StdString m_str;
};

extern template class CMM_EXPORT CStringT<char>;
extern template class CMM_EXPORT CStringT<wchar_t>;

using CStringA = CStringT<char>;
using CStringW = CStringT<wchar_t>;
using CString = CStringW;

// One pointer to the virtual table, then the standard string: callers that were built apart rely on it.
static_assert(sizeof(CStringA) == sizeof(void*) + sizeof(std::string));
static_assert(sizeof(CStringW) == sizeof(void*) + sizeof(std::wstring));

}  // namespace Cmm
