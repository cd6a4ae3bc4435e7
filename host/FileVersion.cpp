#include "host/FileVersion.h"

#include <windows.h>

#include <optional>
#include <string>

#include "common/client/utility/src/UniqueHandle.h"
#include "host/SystemLibrary.h"

namespace Cmm {
namespace {

std::wstring Widen(const char* text, UINT codePage, DWORD flags) {
  const int size = MultiByteToWideChar(codePage, flags, text, -1, nullptr, 0);
  if (size <= 0) return {};
  std::wstring wide(static_cast<size_t>(size), L'\0');
  MultiByteToWideChar(codePage, flags, text, -1, wide.data(), size);
  wide.pop_back();  // the terminator
  return wide;
}

std::wstring WidenPath(const char* path) {
  std::wstring wide = Widen(path, CP_UTF8, MB_ERR_INVALID_CHARS);
  return wide.empty() ? Widen(path, CP_ACP, 0) : wide;
}

template <typename Function>
Function Find(const UniqueModule& library, const char* name) {
  return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library.get(), name)));
}

std::optional<FileVersion> ReadVersion(const wchar_t* path) {
  const UniqueModule library = LoadSystemLibrary(L"version.dll");
  if (!library) return std::nullopt;
  const auto infoSize = Find<decltype(&GetFileVersionInfoSizeW)>(library, "GetFileVersionInfoSizeW");
  const auto info = Find<decltype(&GetFileVersionInfoW)>(library, "GetFileVersionInfoW");
  const auto queryValue = Find<decltype(&VerQueryValueW)>(library, "VerQueryValueW");
  if (!infoSize || !info || !queryValue) return std::nullopt;

  DWORD ignored = 0;
  const DWORD size = infoSize(path, &ignored);
  if (size == 0) return std::nullopt;
  const UniqueGlobalMemory block(GlobalAlloc(GMEM_FIXED, size));
  if (!block || !info(path, 0, size, block.get())) return std::nullopt;
  void* fixed = nullptr;
  UINT fixedSize = 0;
  if (!queryValue(block.get(), L"\\", &fixed, &fixedSize) || fixedSize < sizeof(VS_FIXEDFILEINFO))
    return std::nullopt;
  const auto* version = static_cast<const VS_FIXEDFILEINFO*>(fixed);
  return FileVersionFromWords(version->dwFileVersionMS, version->dwFileVersionLS);
}

}  // namespace

bool GetFileVersionSafe(const char* utf8Path, uint16_t* major, uint16_t* minor, uint16_t* third,
                        uint16_t* fourth) {
  if (!utf8Path || !major || !minor || !third || !fourth) return false;
  const std::optional<FileVersion> version = ReadVersion(WidenPath(utf8Path).c_str());
  if (!version) return false;
  *major = version->major;
  *minor = version->minor;
  *third = version->third;
  *fourth = version->fourth;
  return true;
}

}  // namespace Cmm
