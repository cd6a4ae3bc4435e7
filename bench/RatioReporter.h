#pragma once

// The reporter of the benches: the usual table, and behind it how many times its floor each benchmark
// costs. The floor of NAME is the benchmark NAME/floor of the same run.

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "benchmark/benchmark.h"

namespace velm_bench {

inline constexpr char kFloorSuffix[] = "/floor";

class RatioReporter : public benchmark::ConsoleReporter {
 public:
  RatioReporter() : ConsoleReporter(OO_Tabular) {}

  void ReportRuns(const std::vector<Run>& runs) override {
    ConsoleReporter::ReportRuns(runs);
    for (const Run& run : runs) {
      if (run.run_type == Run::RT_Iteration)
        m_times[run.run_name.function_name].push_back(run.GetAdjustedRealTime());
    }
  }

  void Finalize() override {
    for (const auto& [name, times] : m_times) {
      const auto floor = m_times.find(name + kFloorSuffix);
      if (floor == m_times.end()) continue;
      std::printf("%-24s %9.1f ns, floor %9.1f ns: %.2f times its floor\n", name.c_str(), Median(times),
                  Median(floor->second), Median(times) / Median(floor->second));
    }
  }

 private:
  // The median of the repetitions: the machine's other work disturbs some of them.
  static double Median(std::vector<double> times) {
    const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
    std::nth_element(times.begin(), middle, times.end());
    return *middle;
  }

  std::map<std::string, std::vector<double>> m_times;
};

template <typename Function, typename... Arguments>
void Register(const std::string& name, Function function, Arguments&&... arguments) {
  benchmark::RegisterBenchmark(name.c_str(), function, std::forward<Arguments>(arguments)...)
      ->Repetitions(9)
      ->MinTime(0.05);
}

// Runs what was registered; the result of main. The repetitions of a benchmark and of its floor are
// interleaved, so that what else the machine does meets both alike.
inline int RunBenchmarks(int argc, char** argv) {
  static char interleaved[] = "--benchmark_enable_random_interleaving=true";
  std::vector<char*> arguments(argv, argv + argc);
  arguments.insert(arguments.begin() + 1, interleaved);
  arguments.push_back(nullptr);
  argc = static_cast<int>(arguments.size()) - 1;
  argv = arguments.data();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  RatioReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  return 0;
}

}  // namespace velm_bench
