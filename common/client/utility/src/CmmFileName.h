#pragma once

#include "common/client/utility/src/CmmDefine.h"
#include "common/client/utility/src/CmmString.h"

struct HINSTANCE__;

namespace Cmm {

// A part of a CFileName: `end` exclusive, invalid after any change of the string.
template <typename T>
struct CFnRangeT {
  const T* begin = nullptr;
  const T* end = nullptr;

  size_t GetLength() const { return static_cast<size_t>(end - begin); }
};

// A path or file name as a string that knows its parts; no unit of it is ever checked. Backslash and slash
// both separate components. "The last component" is what stands behind the last separator, be it nothing.
// No lock.
class CMM_EXPORT CFileName : public CStringT<wchar_t> {
 public:
  CFileName();
  CFileName(const wchar_t* path);  // null: empty
  CFileName(const CStringT<wchar_t>& path);
  CFileName(const CFileName&);
  CFileName(CFileName&&) noexcept;
  CFileName& operator=(const CFileName&);
  CFileName& operator=(CFileName&&) noexcept;
  using CStringT<wchar_t>::operator=;
  ~CFileName() override;

  // ---- Parts: pointers and ranges into this string ----------------------------------------------------

  // The extension of the last component: from its last dot, or from behind it without `withDot`. The end of
  // the string when that component has no dot.
  const wchar_t* GetExt(int withDot) const;
  const wchar_t* GetName() const;  // the last component

  // From the start up to the last separator, with it if `withSlash`; empty when there is none.
  CFnRangeT<wchar_t> GetPath(int withSlash) const;
  // From the start up to the last dot of the last component, with it if `withDot`; the whole string when
  // that component has no dot.
  CFnRangeT<wchar_t> GetPathBody(int withDot) const;
  // The last component up to its FIRST dot: `a` of `a.b.c`.
  CFnRangeT<wchar_t> GetBody() const;

  void MakeSlash();  // appends a backslash unless the string is empty or ends in a separator

  // ---- From the system: non-zero, or 0 and this string empty -------------------------------------------
  // A path that does not fit into 260 units with its terminator is a failure, never a cut path. `module`
  // null stands for the program. What the string held before is replaced.

  int GetCurrentDirectoryW();
  int GetModuleFileNameW(HINSTANCE__* module);
  int GetModuleFilePath(HINSTANCE__* module);  // its directory, without a separator at the end
  // The path of `name`, which may be null for none, in the module's directory.
  int GetSiblingModuleFileName(const wchar_t* name, HINSTANCE__* module);
  int GetFullPathNameW(const wchar_t* path);  // the absolute form of `path`
  int GetAppPubCertPath();                    // GetModuleFilePath of the program

  // Makes this string the current directory of the process. Non-zero on success.
  int SetCurrentDirectoryW() const;

 private:
  size_t NameStart() const;
  size_t LastDot() const;
};

}  // namespace Cmm
