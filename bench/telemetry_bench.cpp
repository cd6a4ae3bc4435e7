// What the collector costs the thread that reports, and how fast its queues are worked off. The floor of a
// scope are the parts that it cannot do without: two ticks, the lock of each of its two entries, and the
// copies of the identity and the tags that the scope and its first entry hold.

#include <windows.h>
// behind windows.h
#include <psapi.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <mutex>
#include <thread>
#include <vector>

#include "bench/RatioReporter.h"
#include "common/client/utility/src/CmmLock.h"
#include "telemetry/PerfTelemetry.h"
#include "telemetry/PerfTelemetryScopes.h"
#include "telemetry/PerfTelemetrySystem.h"

namespace {

using Cmm::CCmmPerfTelemetry;
using Cmm::PerfTelemetryIntTags;
using Cmm::PerfTelemetryStrTags;
using Events = VelmPTPAAP::PerfMetricsEvents_s;
using Clock = std::chrono::steady_clock;

constexpr int kQueue = 10000;
constexpr int kBatch = 120;  // 240 entries, which do not wake the work thread

struct Tags {
  PerfTelemetryStrTags strTags;
  PerfTelemetryIntTags intTags;
};
const Tags kNoTags;
const Tags kOneOfEach = {{{e_chat_perfmetrics_Perfmetrics_event_tag_str::str_1, "text"}},
                         {{e_chat_perfmetrics_Perfmetrics_event_tag_int::tag_1, 1}}};

Events AnEvent() {
  Events events;
  events.platform_event = e_chat_perfmetrics_Perfmetrics_platform_event::notify_handler;
  return events;
}

// The benches drain the queues themselves, one thread at a time: the work thread does nothing until the end.
std::mutex g_drain;
std::atomic<bool> g_ended = false;

uint32_t WaitForTheEnd(void*, uint32_t) {
  while (!g_ended)
    Sleep(10);
  return 0;
}

void Drain() {
  std::lock_guard guard(g_drain);
  CCmmPerfTelemetry::DoConsumeEvents();
}

// The reporter divides by the threads; what is wanted is the time on one of them.
void SetBatchTime(benchmark::State& state, Clock::time_point start) {
  state.SetIterationTime(std::chrono::duration<double>(Clock::now() - start).count() * state.threads());
}

void Scopes(benchmark::State& state, const Tags& tags) {
  const Events events = AnEvent();
  while (state.KeepRunningBatch(kBatch)) {
    const auto start = Clock::now();
    for (int i = 0; i < kBatch; ++i)
      const CCmmPerfTelemetryEventWOStack scope(events, tags.strTags, tags.intTags);
    SetBatchTime(state, start);
    Drain();
  }
}

void PartsOfAScope(benchmark::State& state, const Tags& tags) {
  const Events events = AnEvent();
  Cmm::CCritical lock;
  while (state.KeepRunningBatch(kBatch)) {
    const auto start = Clock::now();
    for (int i = 0; i < kBatch; ++i) {
      benchmark::DoNotOptimize(GetTickCount());
      Events identities[] = {events, events};
      Tags copies[] = {tags, tags};
      benchmark::DoNotOptimize(identities);
      benchmark::DoNotOptimize(copies);
      for (int entry = 0; entry < 2; ++entry)
        Cmm::CAutoLock<Cmm::CCritical> guard(lock);
      benchmark::DoNotOptimize(GetTickCount());
    }
    SetBatchTime(state, start);
  }
}

void ScopesThatAreOff(benchmark::State& state) {
  const Events events = AnEvent();
  CCmmPerfTelemetry::EnablePerformanceMetrics(0, nullptr);
  for (auto _ : state)
    const CCmmPerfTelemetryEventWOStack scope(events, kOneOfEach.strTags, kOneOfEach.intTags);
  CCmmPerfTelemetry::EnablePerformanceMetrics(1, nullptr);
}

void FillQueue(const Tags& tags) {
  const Events events = AnEvent();
  for (int i = 0; i < kQueue / 2; ++i) {
    CCmmPerfTelemetry::AddPerfTelemetryStart(events, tags.strTags, tags.intTags, 1000);
    CCmmPerfTelemetry::AddPerfTelemetryEnd(events, tags.strTags, tags.intTags, 1000, 0);
  }
}

// By the entry.
void DrainFullQueue(benchmark::State& state, const Tags& tags) {
  while (state.KeepRunningBatch(kQueue)) {
    FillQueue(tags);
    const auto start = Clock::now();
    Drain();
    SetBatchTime(state, start);
  }
}

template <typename Function, typename... Arguments>
benchmark::internal::Benchmark* RegisterTimed(const std::string& name, Function function,
                                              Arguments&&... arguments) {
  return benchmark::RegisterBenchmark(name.c_str(), function, std::forward<Arguments>(arguments)...)
      ->UseManualTime()
      ->Repetitions(9)
      ->MinTime(0.02);
}

void RegisterScope(const std::string& name, const Tags& tags, int threads) {
  RegisterTimed(name, Scopes, tags)->Threads(threads);
  RegisterTimed(name + velm_bench::kFloorSuffix, PartsOfAScope, tags)->Threads(threads);
}

double WorkingSetMegabytes() {
  PROCESS_MEMORY_COUNTERS counters = {};
  GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof(counters));
  return static_cast<double>(counters.WorkingSetSize) / (1 << 20);
}

void PrintMemoryOfFullQueues(const char* name, const Tags& tags) {
  constexpr int kThreads = 8;
  const double before = WorkingSetMegabytes();
  for (int i = 0; i < kThreads; ++i)
    std::thread(FillQueue, tags).join();
  std::printf("%-24s %9.1f MB a thread\n", name, (WorkingSetMegabytes() - before) / kThreads);
}

}  // namespace

int main(int argc, char** argv) {
  Cmm::internal::g_perfTelemetrySystem.wait = WaitForTheEnd;
  CCmmPerfTelemetry::PerfTelemetryInit(GetTickCount(), "bench");
  PrintMemoryOfFullQueues("full_queue", kNoTags);
  PrintMemoryOfFullQueues("full_queue_tags", kOneOfEach);
  CCmmPerfTelemetry::EnablePerformanceMetrics(1, nullptr);

  RegisterScope("scope", kNoTags, 1);
  RegisterScope("scope_tags", kOneOfEach, 1);
  RegisterScope("scope_4_threads", kNoTags, 4);
  RegisterScope("scope_tags_4_threads", kOneOfEach, 4);
  velm_bench::Register("scope_off", ScopesThatAreOff);
  RegisterTimed("drain", DrainFullQueue, kNoTags);
  RegisterTimed("drain_tags", DrainFullQueue, kOneOfEach);
  const int result = velm_bench::RunBenchmarks(argc, argv);

  g_ended = true;
  CCmmPerfTelemetry::PerfTelemetryTerm();
  return result;
}
