// The clocks, each beside its floor in the same run: GetTickCount, the cheapest clock of the system. What
// they stand on is measured, too: the system's multimedia clock and its wall clock, which Time::Now spares.

#include <windows.h>
// behind windows.h
#include <mmsystem.h>

#include <string>

#include "bench/RatioReporter.h"
#include "common/client/utility/src/CmmTimeValue.h"

namespace {

template <typename Read>
void Clock(benchmark::State& state, Read read) {
  for (auto _ : state)
    benchmark::DoNotOptimize(read());
}

template <typename Read>
void RegisterClock(const std::string& name, Read read) {
  velm_bench::Register(name, Clock<Read>, read);
  const auto floor = [] { return GetTickCount(); };
  velm_bench::Register(name + velm_bench::kFloorSuffix, Clock<decltype(floor)>, floor);
}

}  // namespace

int main(int argc, char** argv) {
  RegisterClock("time_now", [] { return Cmm::Time::Now().ToInternalValue(); });
  RegisterClock("time_ticks_now", [] { return Cmm::TimeTicks::Now().ToInternalValue(); });
  RegisterClock("system_time", [] {
    FILETIME now;
    GetSystemTimeAsFileTime(&now);
    return now.dwLowDateTime;
  });
  RegisterClock("multimedia_time", [] { return timeGetTime(); });
  return velm_bench::RunBenchmarks(argc, argv);
}
