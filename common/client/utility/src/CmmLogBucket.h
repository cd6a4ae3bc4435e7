#pragma once

// The decisions of the log directory's cleaner.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "common/client/utility/src/CmmLogFilter.h"

namespace logging::internal {

// How well a rule fits a file of this name: 0 not at all, 2 by its prefix, 3 by its suffix as well.
int ScoreLogFile(const LogFilterItem_s& rule, std::wstring_view name);

// The time of a file that counts as the newest of all.
inline constexpr uint64_t kNewestOfAll = ~uint64_t{0};

struct LogFileEntry {
  std::wstring path;
  uint64_t time;  // any count that grows
  int64_t size;
};

// The files of one rule.
class LogBucket {
 public:
  explicit LogBucket(const LogFilterItem_s& rule) : m_rule(rule) {}

  const LogFilterItem_s& Rule() const { return m_rule; }
  void Add(LogFileEntry file);

  // The files that must go to bring the rest within the rule's limits, the oldest first.
  std::vector<LogFileEntry> Excess() const;

 private:
  bool IsWithinLimits(uint64_t count, int64_t total) const;

  LogFilterItem_s m_rule;
  std::vector<LogFileEntry> m_files;
  int64_t m_total = 0;
};

// The first of the buckets whose rule fits the name best; null when none fits.
LogBucket* ChooseLogBucket(std::vector<LogBucket>& buckets, std::wstring_view name);

}  // namespace logging::internal
