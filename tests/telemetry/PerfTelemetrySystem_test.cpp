#include "telemetry/PerfTelemetrySystem.h"

#include <windows.h>

#include "common/client/utility/src/CmmTimeValue.h"
#include "gtest/gtest.h"
#include "telemetry/PerfTelemetry.h"
#include "tests/telemetry/PerfTelemetryFixture.h"

namespace Cmm::internal {
namespace {

using cmm_perf_telemetry_testing::FakeSystem;
using cmm_perf_telemetry_testing::PerfTelemetryTest;

TEST(PerfTelemetrySystem, TheClocksAreTheSystems) {
  const DWORD before = GetTickCount();
  const uint64_t ticks = PerfTicks();
  EXPECT_LE(static_cast<DWORD>(ticks) - before, 60000u);
  const int64_t now = g_perfTelemetrySystem.now();
  EXPECT_LT((Time::Now() - Time::FromInternalValue(now)).InSeconds(), 60);
}

TEST(PerfTelemetrySystem, PhysicalMemoryIsThatOfTheMachine) {
  const PhysicalMemory memory = g_perfTelemetrySystem.physicalMemory();
  MEMORYSTATUSEX status = {};
  status.dwLength = sizeof(status);
  ASSERT_TRUE(GlobalMemoryStatusEx(&status));
  EXPECT_EQ(memory.totalBytes, status.ullTotalPhys);
  EXPECT_LE(memory.loadPercent, 100u);
}

TEST(PerfTelemetrySystem, PsapiTellsTheWorkingSet) {
  void* const psapi = LoadPsapi();
  ASSERT_NE(psapi, nullptr);
  const std::optional<uint64_t> workingSet = WorkingSet(FindGetProcessMemoryInfo(psapi));
  ASSERT_TRUE(workingSet.has_value());
  EXPECT_GT(*workingSet, 100000u);
  FreePsapi(psapi);
}

TEST(PerfTelemetrySystem, WithoutPsapiThereIsNoWorkingSet) {
  EXPECT_EQ(FindGetProcessMemoryInfo(nullptr), nullptr);
  EXPECT_EQ(WorkingSet(nullptr), std::nullopt);
  FreePsapi(nullptr);
}

BOOL WINAPI RefuseToTell(HANDLE, void*, DWORD) {
  return FALSE;
}

TEST(PerfTelemetrySystem, AFailedCallTellsNoWorkingSet) {
  EXPECT_EQ(WorkingSet(reinterpret_cast<void*>(RefuseToTell)), std::nullopt);
}

using GetMemoryUsage = PerfTelemetryTest;

TEST_F(GetMemoryUsage, IsThePercentageAndTheMegabytesOfTheProcess) {
  int loadPercent = -1;
  int processMB = -1;
  EXPECT_EQ(CCmmPerfTelemetry::GetMemoryUsage(loadPercent, processMB), 1);
  EXPECT_EQ(loadPercent, 42);
  EXPECT_GT(processMB, 0);
  EXPECT_LT(processMB, 100000);
}

TEST_F(GetMemoryUsage, HasNoMegabytesOnAMachineWithoutMemory) {
  FakeSystem::SetPhysicalMemory({42, 99});
  int loadPercent = -1;
  int processMB = -1;
  EXPECT_EQ(CCmmPerfTelemetry::GetMemoryUsage(loadPercent, processMB), 1);
  EXPECT_EQ(loadPercent, 42);
  EXPECT_EQ(processMB, 0);
}

TEST(GetMemoryUsageOutsideOfTheLifecycle, HasNoMegabytes) {
  int loadPercent = -1;
  int processMB = -1;
  EXPECT_EQ(CCmmPerfTelemetry::GetMemoryUsage(loadPercent, processMB), 1);
  EXPECT_GE(loadPercent, 0);
  EXPECT_LE(loadPercent, 100);
  EXPECT_EQ(processMB, 0);
}

}  // namespace
}  // namespace Cmm::internal
