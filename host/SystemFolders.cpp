#include "host/SystemFolders.h"

#include <shlobj.h>
#include <windows.h>

namespace Cmm {
namespace {

constexpr BOOL kCreateMissing = TRUE;

bool SpecialFolder(int csidl, char* path) {
  return SHGetSpecialFolderPathA(nullptr, path, csidl, kCreateMissing) != FALSE;
}

bool SpecialFolderWide(int csidl, wchar_t* path) {
  return SHGetSpecialFolderPathW(nullptr, path, csidl, kCreateMissing) != FALSE;
}

bool TempDirectory(char* path) {
  constexpr DWORD kLimit = SystemFolders::kPathLimit - 1;
  const DWORD length = GetTempPathA(kLimit, path);
  return length > 0 && length <= kLimit;  // above the limit it is the size that would be needed
}

bool Executable(char* path) {
  const DWORD length = GetModuleFileNameA(nullptr, path, SystemFolders::kPathLimit);
  return length > 0 && length < SystemFolders::kPathLimit;  // the limit itself says that it was cut
}

}  // namespace

const SystemFolders& SystemFolders::OfThisSystem() {
  static constexpr SystemFolders kFolders{SpecialFolder, SpecialFolderWide, TempDirectory, Executable};
  return kFolders;
}

}  // namespace Cmm
