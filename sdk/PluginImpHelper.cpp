#include "sdk/PluginImpHelper.h"

#include <windows.h>

#include <optional>
#include <string>

#include "common/client/utility/src/UniqueHandle.h"
#include "sdk/ConsoleLog.h"

namespace Velm3rdSDK {
namespace {

void ReportFailure(const std::wstring& text) {
  OutputDebugStringW(text.c_str());
  SDK_LOG(kLogError) << text.c_str();
}

std::optional<Cmm::FileVersion> ReadVersion(const char* path) {
  DWORD ignored = 0;
  const DWORD size = GetFileVersionInfoSizeA(path, &ignored);
  if (size == 0) {
    const DWORD error = GetLastError();
    OutputDebugStringW(L"File size is 0");
    ReportFailure(L"GetFileVersionInfoSizeA error " + std::to_wstring(static_cast<int>(error)));
    return std::nullopt;
  }
  const HANDLE heap = GetProcessHeap();
  if (!heap) {
    ReportFailure(L"CPluginImpHelper::GetFileVersion GetProcessHeap failed");
    return std::nullopt;
  }
  const Cmm::UniqueHeapBlock block(HeapAlloc(heap, 0, size));
  void* fixed = nullptr;
  UINT fixedSize = 0;
  if (!block || !GetFileVersionInfoA(path, 0, size, block.get()) ||
      !VerQueryValueA(block.get(), "\\", &fixed, &fixedSize) || fixedSize < sizeof(VS_FIXEDFILEINFO))
    return std::nullopt;
  const auto* version = static_cast<const VS_FIXEDFILEINFO*>(fixed);
  return Cmm::FileVersionFromWords(version->dwFileVersionMS, version->dwFileVersionLS);
}

}  // namespace

void CPluginImpHelper::GetFileVersion(const char* path, uint16_t* major, uint16_t* minor, uint16_t* third,
                                      uint16_t* fourth) {
  if (!path || !major || !minor || !third || !fourth) return;
  const std::optional<Cmm::FileVersion> read = ReadVersion(path);
  if (!read) return;
  const Cmm::FileVersion version = FromThreePartScheme(*read);
  *major = version.major;
  *minor = version.minor;
  *third = version.third;
  *fourth = version.fourth;
}

}  // namespace Velm3rdSDK
