#include "telemetry/PerfTelemetrySystem.h"

#include <windows.h>
// behind windows.h
#include <psapi.h>

#include "common/client/utility/src/CmmTimeValue.h"

namespace Cmm::internal {

namespace {

uint32_t TickCount() {
  return ::GetTickCount();
}

int64_t Now() {
  return Time::Now().ToInternalValue();
}

uint32_t Wait(void* event, uint32_t ms) {
  return WaitForSingleObject(event, ms);
}

PhysicalMemory AskPhysicalMemory() {
  MEMORYSTATUSEX status = {};
  status.dwLength = sizeof(status);
  if (!GlobalMemoryStatusEx(&status)) return {};
  return {status.dwMemoryLoad, status.ullTotalPhys};
}

bool ExportsLoadLibraryEx(const wchar_t* moduleName) {
  const HMODULE loaded = GetModuleHandleW(moduleName);
  return loaded != nullptr && GetProcAddress(loaded, "LoadLibraryExW") != nullptr;
}

}  // namespace

constinit PerfTelemetrySystem g_perfTelemetrySystem = {TickCount, Now, Wait, AskPhysicalMemory};

void* LoadPsapi() {
  constexpr wchar_t kName[] = L"psapi.dll";
  if (ExportsLoadLibraryEx(L"kernel32.dll") || ExportsLoadLibraryEx(L"Kernelbase.dll"))
    return LoadLibraryExW(kName, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
  return LoadLibraryW(kName);
}

void* FindGetProcessMemoryInfo(void* psapi) {
  if (psapi == nullptr) return nullptr;
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(psapi), "GetProcessMemoryInfo"));
}

void FreePsapi(void* psapi) {
  if (psapi != nullptr) FreeLibrary(static_cast<HMODULE>(psapi));
}

std::optional<uint64_t> WorkingSet(void* getProcessMemoryInfo) {
  if (getProcessMemoryInfo == nullptr) return std::nullopt;
  const auto call = reinterpret_cast<decltype(&::GetProcessMemoryInfo)>(getProcessMemoryInfo);
  PROCESS_MEMORY_COUNTERS counters = {};
  if (!call(GetCurrentProcess(), &counters, sizeof(counters))) return std::nullopt;
  return counters.WorkingSetSize;
}

void WriteDebugText(const char* text) {
  OutputDebugStringA(text);
}

}  // namespace Cmm::internal
