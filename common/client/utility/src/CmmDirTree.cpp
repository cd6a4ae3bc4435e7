#include "common/client/utility/src/CmmDirTree.h"

#include <windows.h>

#include <string>
#include <string_view>

#include "common/client/utility/src/CmmPathUnits.h"
#include "common/client/utility/src/UniqueHandle.h"

namespace Cmm {

namespace {

constexpr DWORD kTempNameUnits = 519;

bool IsDirectory(DWORD attributes) {
  return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool IsLink(DWORD attributes) {
  return (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
}

std::wstring Join(const std::wstring& directory, std::wstring_view name) {
  std::wstring path = directory;
  if (!IsPathSeparator(path.back())) path += L'\\';
  return path.append(name);
}

// The path of a file in the temporary directory that does not exist; empty when there is none to be had.
std::wstring UnusedTempFile() {
  wchar_t directory[kTempNameUnits];
  const DWORD length = GetTempPathW(kTempNameUnits, directory);
  if (length == 0 || length >= kTempNameUnits) return {};
  wchar_t file[kTempNameUnits];
  if (!GetTempFileNameW(directory, L"", 0, file)) return {};
  DeleteFileW(file);
  return file;
}

// Deletes the file now, from its place or from the temporary directory, or else at the system's next start.
void DeleteInAnyWay(const std::wstring& path) {
  if (DeleteFileW(path.c_str())) return;
  const std::wstring moved = UnusedTempFile();
  const bool isMoved = !moved.empty() && MoveFileW(path.c_str(), moved.c_str());
  if (isMoved && DeleteFileW(moved.c_str())) return;
  MoveFileExW(isMoved ? moved.c_str() : path.c_str(), nullptr, MOVEFILE_DELAY_UNTIL_REBOOT);
}

// What cannot be removed stays: the removal of the directory itself then fails and tells it.
void RemoveContents(const std::wstring& directory) {
  WIN32_FIND_DATAW item;
  const UniqueFindHandle search(FindFirstFileW(Join(directory, L"*").c_str(), &item));
  if (!search) return;
  do {
    const std::wstring_view name = item.cFileName;
    if (IsDirectory(item.dwFileAttributes) && (name == L"." || name == L"..")) continue;
    const std::wstring path = Join(directory, name);
    if (!IsDirectory(item.dwFileAttributes)) {
      DeleteInAnyWay(path);
      continue;
    }
    if (!IsLink(item.dwFileAttributes)) RemoveContents(path);
    RemoveDirectoryW(path.c_str());
  } while (FindNextFileW(search.get(), &item));
}

}  // namespace

}  // namespace Cmm

void cmm_fs_mkdirs(const wchar_t* path) {
  if (!path || !*path) return;
  std::wstring scratch = path;
  for (size_t i = 1; i <= scratch.size(); ++i) {
    const wchar_t unit = scratch[i];  // the terminator at last
    if (unit != L'\0' && !Cmm::IsPathSeparator(unit)) continue;
    scratch[i] = L'\0';
    CreateDirectoryW(scratch.c_str(), nullptr);
    scratch[i] = unit;
  }
}

int cmm_fs_rmdirs(const wchar_t* path) {
  if (!path || !*path) {
    SetLastError(ERROR_INVALID_PARAMETER);
    return 0;
  }
  const DWORD attributes = GetFileAttributesW(path);
  if (attributes == INVALID_FILE_ATTRIBUTES) return 1;
  if (!Cmm::IsDirectory(attributes) || !Cmm::IsLink(attributes)) Cmm::RemoveContents(path);
  return RemoveDirectoryW(path);
}
