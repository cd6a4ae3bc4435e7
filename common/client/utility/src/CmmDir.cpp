#include "common/client/utility/src/CmmDir.h"

#include <string>
#include <string_view>

#include "common/client/utility/src/CmmFileName.h"
#include "common/client/utility/src/UniqueHandle.h"

namespace Cmm {

namespace {

class CurrentDirectoryKeeper {
 public:
  CurrentDirectoryKeeper() { m_directory.GetCurrentDirectoryW(); }
  CurrentDirectoryKeeper(const CurrentDirectoryKeeper&) = delete;
  CurrentDirectoryKeeper& operator=(const CurrentDirectoryKeeper&) = delete;
  ~CurrentDirectoryKeeper() { m_directory.SetCurrentDirectoryW(); }

 private:
  CFileName m_directory;
};

bool IsDirectoryToEnter(const WIN32_FIND_DATAW& item) {
  const std::wstring_view name = item.cFileName;
  return (item.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) && name != L"." && name != L"..";
}

void SearchLevel(const wchar_t* path, int depth, int* stop, FsSearchCallback callback, void* context) {
  const CurrentDirectoryKeeper keeper;
  if (!SetCurrentDirectoryW(path)) return;

  CmmDir dir;
  cmm_fs_find_first(&dir, L".");
  const UniqueFindHandle closed(dir.handle);
  while (dir.item.cFileName[0] != L'\0') {
    callback(&dir, depth, stop, context);
    if (*stop) return;
    if (IsDirectoryToEnter(dir.item)) {
      SearchLevel(dir.item.cFileName, depth + 1, stop, callback, context);
      if (*stop) return;
    }
    if (!FindNextFileW(dir.handle, &dir.item)) dir.item.cFileName[0] = L'\0';
  }
}

}  // namespace

}  // namespace Cmm

int cmm_fs_find_first(Cmm::CmmDir* dir, const wchar_t* path) {
  if (!dir || !path || !*path) return 0;
  std::wstring pattern = path;
  // Only a backslash counts as the end of a directory here: behind a slash one more separator follows.
  pattern += pattern.back() == L'\\' ? L"*" : L"\\*";
  dir->handle = FindFirstFileW(pattern.c_str(), &dir->item);
  if (dir->handle != INVALID_HANDLE_VALUE) return 1;
  dir->item.cFileName[0] = L'\0';
  return 0;
}

void cmm_fs_search(const wchar_t* path, Cmm::FsSearchCallback callback, void* context) {
  int stop = 0;
  Cmm::SearchLevel(path, 0, &stop, callback, context);
}
