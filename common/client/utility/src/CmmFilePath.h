#pragma once

// A path as a value, with the rules of Windows: backslash or slash between components, an optional drive
// letter before them.
//
//   Text ........................ value, utf8Value, empty, clear, the conversions with std::wstring
//   Comparison .................. operators, CompareIgnoreCase and its kin
//   Components .................. GetComponents, DirName, BaseName, IsParent, AppendRelativePath
//   Extension ................... Extension, RemoveExtension, InsertBeforeExtension, ReplaceExtension
//   Building .................... Append, StripTrailingSeparators, NormalizeWindowsPathSeparators

#include <string>
#include <vector>

#include "common/client/utility/src/CmmDefine.h"
#include "common/client/utility/src/CmmString.h"
#include "common/client/utility/src/CmmStringPiece.h"

namespace Cmm {

// The text may be anything: nothing is refused, looked up or made canonical. No operation fails; one that
// cannot be done gives an empty path. Those that return a path leave this one as it is. No lock.
//
// A drive letter is `A` to `Z` or `a` to `z` with a `:` behind it, at the very start. An extension begins at
// the last dot; "." and ".." have none. Text in the ASCII forms goes through the system's ANSI code page, and
// is not tested to be ASCII.
class CMM_EXPORT FilePath {
 public:
  static const wchar_t kSeparators[];        // backslash, which this class writes, and slash
  static const wchar_t kCurrentDirectory[];  // "."
  static const wchar_t kParentDirectory[];   // ".."
  static const wchar_t kExtensionSeparator;  // '.'

  FilePath();
  explicit FilePath(const CStringT<wchar_t>& path);
  explicit FilePath(const CStringT<char>& utf8);
  FilePath(const FilePath&);
  FilePath(FilePath&&) noexcept;
  FilePath& operator=(const FilePath&);
  FilePath& operator=(FilePath&&) noexcept;
  ~FilePath();

  // ---- Text -------------------------------------------------------------------------------------------

  const CStringT<wchar_t>& value() const;
  CStringT<char> utf8Value() const;
  bool empty() const;
  void clear();

  static FilePath FromWStringHack(const std::wstring& path);
  std::wstring ToWStringHack() const;

  static bool IsSeparator(wchar_t c);

  // ---- Comparison -------------------------------------------------------------------------------------

  // Unit by unit, except that two drive letters are compared ignoring case: `C:\a` equals `c:\a`, and not
  // `C:\A`.
  bool operator==(const FilePath& other) const;
  bool operator!=(const FilePath& other) const;
  // The order of the texts by their units, the empty path first.
  bool operator<(const FilePath& other) const;

  // -1, 0 or 1 by the units in upper case, each by itself as the system makes it; what ends first is less.
  static int CompareIgnoreCase(const CStringT<wchar_t>& a, const CStringT<wchar_t>& b);
  static bool CompareEqualIgnoreCase(const CStringT<wchar_t>& a, const CStringT<wchar_t>& b);
  static bool CompareLessIgnoreCase(const CStringT<wchar_t>& a, const CStringT<wchar_t>& b);

  // ---- Components -------------------------------------------------------------------------------------

  // Replaces what `*out` holds with the components from the root down: the drive ("C:"), a leading separator,
  // the names. A null `out` does nothing.
  void GetComponents(std::vector<CStringT<wchar_t>>* out) const;

  // The directory part without separators at its end, "." when there is none; a root is its own directory.
  FilePath DirName() const;
  // The last component; for a root the separator itself, for a drive alone nothing.
  FilePath BaseName() const;

  // Whether the components of this path, one at least, are the first of those of `child`, which has more.
  // They are compared exactly, drive letters ignoring case.
  bool IsParent(const FilePath& child) const;
  // If so, appends the remaining components of `child` to `*path`, unless `path` is null.
  bool AppendRelativePath(const FilePath& child, FilePath* path) const;

  bool IsAbsolute() const;        // `C:\...`, `\\...`; a single leading separator is not absolute
  bool ReferencesParent() const;  // whether a component is ".."

  // ---- Extension --------------------------------------------------------------------------------------

  // The extension of the base name with its dot, or nothing: ".gz" of `a.tar.gz`, "." of `a.`, all of
  // `.profile`.
  CStringT<wchar_t> Extension() const;
  FilePath RemoveExtension() const;
  // `a.b` with "-1" gives `a-1.b`. An empty path when the base name is empty, "." or ".."; an empty suffix
  // changes nothing.
  FilePath InsertBeforeExtension(const CStringT<wchar_t>& suffix) const;
  FilePath InsertBeforeExtensionASCII(StringPiece suffix) const;
  // `ext` with or without its dot; empty or "." only removes the extension. An empty path as above.
  FilePath ReplaceExtension(const CStringT<wchar_t>& ext) const;
  // Whether the extension is `ext`, which carries its dot, ignoring case.
  bool MatchesExtension(const CStringT<wchar_t>& ext) const;

  // ---- Building ---------------------------------------------------------------------------------------

  // This path without separators at its end, a backslash where one is needed, and `component` as it stands,
  // be it absolute. "." gives `component` alone; `C:` takes no backslash: `C:x`.
  FilePath Append(const CStringT<wchar_t>& component) const;
  FilePath Append(const FilePath& component) const;
  FilePath AppendASCII(StringPiece component) const;

  // Without separators at the end, but the one that makes a root. Two that begin a path stay, three or more
  // become one where nothing else follows.
  FilePath StripTrailingSeparators() const;
  FilePath NormalizeWindowsPathSeparators() const;  // every slash turned into a backslash

 private:
  void StripSeparators();
  bool HasNameToExtend() const;

  CStringT<wchar_t> m_path;
};

}  // namespace Cmm
