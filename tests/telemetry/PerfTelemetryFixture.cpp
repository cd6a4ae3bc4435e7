#include "tests/telemetry/PerfTelemetryFixture.h"

#include <windows.h>

#include <atomic>

namespace cmm_perf_telemetry_testing {

namespace {

std::atomic<uint32_t> g_ticks;
std::atomic<int64_t> g_now;
std::atomic<uint32_t> g_loadPercent;
std::atomic<uint64_t> g_totalBytes;

std::atomic<void*> g_event;
std::atomic<uint32_t> g_waitLimit;
std::atomic<bool> g_held;
std::atomic<int> g_roundsAllowed;
std::atomic<int> g_waits;  // begun

// Ends for a round that the test allows, whatever the event says.
uint32_t HeldWait(void* event, uint32_t ms) {
  g_event = event;
  g_waitLimit = ms;
  ++g_waits;
  while (g_held) {
    int allowed = g_roundsAllowed;
    if (allowed > 0 && g_roundsAllowed.compare_exchange_strong(allowed, allowed - 1)) return WAIT_TIMEOUT;
    Sleep(1);
  }
  return WaitForSingleObject(event, ms);
}

}  // namespace

FakeSystem::FakeSystem() {
  g_ticks = 0;
  SetNow(Cmm::Time::FromTimeTInMS(1700000000123));
  SetPhysicalMemory({kLoadPercent, kTotalBytes});
  g_event = nullptr;
  g_held = true;
  g_roundsAllowed = 0;
  g_waits = 0;
  Cmm::internal::g_perfTelemetrySystem = {[] { return g_ticks.load(); }, [] { return g_now.load(); },
                                          HeldWait,
                                          [] {
                                            return Cmm::internal::PhysicalMemory{g_loadPercent, g_totalBytes};
                                          }};
}

FakeSystem::~FakeSystem() {
  Cmm::internal::g_perfTelemetrySystem = m_real;
}

void FakeSystem::SetTicks(uint32_t ms) {
  g_ticks = ms;
}

void FakeSystem::AdvanceTicks(uint32_t ms) {
  g_ticks += ms;
}

void FakeSystem::SetNow(Cmm::Time now) {
  g_now = now.ToInternalValue();
}

void FakeSystem::AdvanceNow(Cmm::TimeDelta span) {
  g_now += span.InMicroseconds();
}

void FakeSystem::SetPhysicalMemory(Cmm::internal::PhysicalMemory memory) {
  g_loadPercent = memory.loadPercent;
  g_totalBytes = memory.totalBytes;
}

bool FakeSystem::GoARound() {
  if (!WaitUntil([] { return g_waits > 0; })) return false;
  const int waits = g_waits;
  ++g_roundsAllowed;
  return WaitUntil([&] { return g_waits > waits; });
}

void FakeSystem::ReleaseWorkThread() {
  g_held = false;
}

bool FakeSystem::IsWoken() {
  return WaitUntil([] { return g_event != nullptr; }) && WaitForSingleObject(g_event, 0) == WAIT_OBJECT_0;
}

uint32_t FakeSystem::WaitLimit() {
  return g_waitLimit;
}

PerfTelemetryTest::PerfTelemetryTest() {
  CCmmPerfTelemetry::PerfTelemetryInit(kAppStartTicks, "pid-7");
  CCmmPerfTelemetry::EnablePerformanceMetrics(1, &m_helper);
  FakeSystem::SetTicks(kStartTicks);
  EXPECT_TRUE(FakeSystem::GoARound());  // takes back what woke the thread before this one
}

PerfTelemetryTest::~PerfTelemetryTest() {
  CCmmPerfTelemetry::EnablePerformanceMetrics(0, nullptr);
  FakeSystem::ReleaseWorkThread();
  CCmmPerfTelemetry::PerfTelemetryTerm();
}

void PerfTelemetryTest::Report(const Events& events, uint64_t cost, Cmm::PerfTelemetryStrTags strTags,
                               Cmm::PerfTelemetryIntTags intTags) {
  EXPECT_EQ(CCmmPerfTelemetry::AddPerfTelemetryStart(events, strTags, intTags, kStartTicks), 1);
  EXPECT_EQ(CCmmPerfTelemetry::AddPerfTelemetryEnd(events, {}, {}, kStartTicks + cost, 0), 1);
}

void PerfTelemetryTest::ReportWithStack(const Events& events, const Cmm::CStringT<wchar_t>& key,
                                        uint64_t cost) {
  EXPECT_EQ(CCmmPerfTelemetry::AddPerfTelemetryStartWStack(events, {}, {}, key, kStartTicks), 1);
  EXPECT_EQ(CCmmPerfTelemetry::AddPerfTelemetryEndWStack(events, {}, {}, key, kStartTicks + cost, 0), 1);
}

std::vector<Record> PerfTelemetryTest::Send() {
  CCmmPerfTelemetry::DoConsumeEvents();
  CCmmPerfTelemetry::DoSendEvents();
  return m_helper.Take();
}

Record PerfTelemetryTest::SendOne() {
  const std::vector<Record> records = Send();
  EXPECT_EQ(records.size(), 1u);
  return records.empty() ? Record() : records.front();
}

}  // namespace cmm_perf_telemetry_testing
