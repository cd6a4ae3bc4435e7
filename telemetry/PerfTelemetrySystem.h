#pragma once

// What the collector asks the system for, in a table that a test can replace while no thread uses it.

#include <cstdint>
#include <optional>

namespace Cmm::internal {

struct PhysicalMemory {
  uint32_t loadPercent = 0;
  uint64_t totalBytes = 0;
};

struct PerfTelemetrySystem {
  uint32_t (*tickCount)();                     // milliseconds; wraps around
  int64_t (*now)();                            // the internal value of a Time
  uint32_t (*wait)(void* event, uint32_t ms);  // the work thread's wait; the result is not read
  PhysicalMemory (*physicalMemory)();          // zeros when the system does not tell
};

// The table in force; the system's own calls until a test changes it.
extern PerfTelemetrySystem g_perfTelemetrySystem;

// GetTickCount in the width that the collector computes with: a wrap makes one absurd cost and no harm.
inline uint64_t PerfTicks() {
  return g_perfTelemetrySystem.tickCount();
}

// psapi.dll, from the system's directory alone where the loader can do that, and its GetProcessMemoryInfo.
// Null when there is none. FreePsapi accepts null.
void* LoadPsapi();
void* FindGetProcessMemoryInfo(void* psapi);
void FreePsapi(void* psapi);

// This process's working set in bytes by `getProcessMemoryInfo`, which may be null; nothing on failure.
std::optional<uint64_t> WorkingSet(void* getProcessMemoryInfo);

void WriteDebugText(const char* text);  // to an attached debugger

}  // namespace Cmm::internal
