#pragma once

// The list of names by which a node of an archive tree is addressed.

#include <cstddef>
#include <vector>

#include "common/client/utility/src/CmmDefine.h"
#include "common/client/utility/src/CmmString.h"

namespace Cmm {

// The first name is the one nearest the root. Not locked.
class CMM_EXPORT CCmmArchivePath {
 public:
  // A path of that one name, whatever characters it holds: nothing is split. An empty name gives a path of
  // depth 0.
  CCmmArchivePath(const CStringT<wchar_t>& name);
  CCmmArchivePath(const CCmmArchivePath&);
  CCmmArchivePath& operator=(const CCmmArchivePath&);
  ~CCmmArchivePath();

  void AppendName(const CStringT<wchar_t>& name);  // an empty name is appended too
  void PopName();                                  // does nothing on an empty path

  // Where there is no such name: an empty string that the library owns.
  const CStringT<wchar_t>& LastName() const;
  const CStringT<wchar_t>& NameAt(unsigned index) const;
  size_t Depth() const;

  // Appends each name to `out` with the separator behind it, behind the last one too.
  void ToString(const CStringT<wchar_t>& separator, CStringT<wchar_t>& out) const;

 private:
  std::vector<CStringT<wchar_t>> m_names;
};

}  // namespace Cmm
