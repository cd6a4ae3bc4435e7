#include "host/FileSystemView.h"

#include <shlobj.h>
#include <windows.h>

namespace Cmm {
namespace {

static_assert(FileSystemView::kNoAttributes == INVALID_FILE_ATTRIBUTES);
static_assert(FileSystemView::kDirectoryAttribute == FILE_ATTRIBUTE_DIRECTORY);

constexpr BOOL kCreateMissing = TRUE;

bool SpecialFolder(int csidl, char* path) {
  return SHGetSpecialFolderPathA(nullptr, path, csidl, kCreateMissing) != FALSE;
}

bool SpecialFolderWide(int csidl, wchar_t* path) {
  return SHGetSpecialFolderPathW(nullptr, path, csidl, kCreateMissing) != FALSE;
}

bool TempDirectory(char* path) {
  constexpr DWORD kLimit = FileSystemView::kPathLimit - 1;
  const DWORD length = GetTempPathA(kLimit, path);
  return length > 0 && length <= kLimit;  // above the limit it is the size that would be needed
}

bool Executable(char* path) {
  const DWORD length = GetModuleFileNameA(nullptr, path, FileSystemView::kPathLimit);
  return length > 0 && length < FileSystemView::kPathLimit;  // the limit itself says that it was cut
}

uint32_t Attributes(const char* path) {
  return GetFileAttributesA(path);
}

}  // namespace

const FileSystemView& FileSystemView::OfThisSystem() {
  static constexpr FileSystemView kView{SpecialFolder, SpecialFolderWide, TempDirectory, Executable,
                                        Attributes};
  return kView;
}

}  // namespace Cmm
