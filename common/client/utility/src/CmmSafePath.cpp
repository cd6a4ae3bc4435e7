#include "common/client/utility/src/CmmSafePath.h"

#include <windows.h>

#include <algorithm>

#include "common/client/utility/src/CmmPathUnits.h"

namespace Cmm {

bool IsSafePathText(std::wstring_view path) {
  if (path.empty() || path.find(L'*') != std::wstring_view::npos) return false;
  for (size_t start = 0; start <= path.size();) {
    const size_t end = std::min(path.find_first_of(kPathSeparators, start), path.size());
    if (path.substr(start, end - start) == L"..") return false;
    start = end + 1;
  }
  return true;
}

}  // namespace Cmm

int cmm_safe_path(const wchar_t* path) {
  if (!path || !Cmm::IsSafePathText(path)) return 0;
  const DWORD attributes = GetFileAttributesW(path);
  return attributes != INVALID_FILE_ATTRIBUTES && !(attributes & FILE_ATTRIBUTE_DIRECTORY);
}
