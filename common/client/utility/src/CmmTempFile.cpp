#include "common/client/utility/src/CmmTempFile.h"

#include <windows.h>

#include <atomic>
#include <ctime>
#include <string_view>

#include "common/client/utility/src/CmmPathUnits.h"
#include "common/client/utility/src/CmmStrUtil.h"
#include "common/client/utility/src/CmmString.h"
#include "common/client/utility/src/UniqueHandle.h"

namespace Cmm {

namespace {

constexpr int kCreateAttempts = 32;

struct TempPath {
  TempPath() {
    const DWORD length = GetTempPathW(kPathLimit, text);
    if (length >= kPathLimit) text[0] = L'\0';  // the text would not fit, and is undefined
  }

  wchar_t text[kPathLimit] = {};
};

// Two threads may see the same value: those who create the file then meet its refusal and go on.
std::atomic<unsigned long>& NameCounter() {
  static std::atomic<unsigned long> counter =
      static_cast<unsigned long>(std::time(nullptr) + std::clock()) & 0xFFFF;
  return counter;
}

// Writes the name to `out`, which holds kPathLimit units; returns its length.
int PutName(wchar_t* out, const wchar_t* dir, const wchar_t* prefix, unsigned long counter) {
  const std::wstring_view directory = dir;
  const bool joins = directory.empty() || IsPathSeparator(directory.back());
  CStringT<wchar_t> name;
  name.Format(L"%s%s%s%lx%lx.tmp", dir, joins ? L"" : L"\\", prefix, GetCurrentProcessId(), counter);
  return static_cast<int>(cmm_wstr_ncpy(out, kPathLimit, name.c_str(), name.size()));
}

bool CreateNewFile(const wchar_t* path) {
  const UniqueFileHandle file(
      CreateFileW(path, GENERIC_READ, FILE_SHARE_READ, nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
  return static_cast<bool>(file);
}

}  // namespace

}  // namespace Cmm

const wchar_t* cmm_fs_tmppath() {
  static const Cmm::TempPath path;
  return path.text;
}

int cmm_fs_tmpfile(wchar_t* out, const wchar_t* dir, const wchar_t* prefix, int create) {
  if (!out) return 0;
  if (!dir) dir = cmm_fs_tmppath();
  if (!prefix) prefix = L"";
  std::atomic<unsigned long>& counter = Cmm::NameCounter();
  if (!create) return Cmm::PutName(out, dir, prefix, ++counter);

  for (int attempt = 0; attempt < Cmm::kCreateAttempts; ++attempt) {
    const int length = Cmm::PutName(out, dir, prefix, counter);
    if (Cmm::CreateNewFile(out)) return length;  // the counter stays: the next call meets this file
    ++counter;
  }
  return 0;
}
