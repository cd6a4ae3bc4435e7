#include "common/client/utility/src/CmmLogBucket.h"

#include <algorithm>
#include <utility>

namespace logging::internal {

int ScoreLogFile(const LogFilterItem_s& rule, std::wstring_view name) {
  const std::wstring_view prefix(rule.file_prefix.data(), rule.file_prefix.size());
  const std::wstring_view suffix(rule.file_suffix.data(), rule.file_suffix.size());
  if (!name.starts_with(prefix)) return 0;
  return !suffix.empty() && name.size() > suffix.size() && name.ends_with(suffix) ? 3 : 2;
}

void LogBucket::Add(LogFileEntry file) {
  m_total += file.size;
  m_files.push_back(std::move(file));
}

std::vector<LogFileEntry> LogBucket::Excess() const {
  if (IsWithinLimits(m_files.size(), m_total)) return {};
  std::vector<LogFileEntry> files = m_files;
  std::stable_sort(files.begin(), files.end(),
                   [](const LogFileEntry& a, const LogFileEntry& b) { return a.time < b.time; });
  uint64_t count = files.size();
  int64_t total = m_total;
  auto kept = files.begin();
  for (; kept != files.end() && !IsWithinLimits(count, total); ++kept) {
    --count;
    total -= kept->size;
  }
  files.erase(kept, files.end());
  return files;
}

bool LogBucket::IsWithinLimits(uint64_t count, int64_t total) const {
  return count <= m_rule.max_file_count && total <= m_rule.max_total_bytes;
}

LogBucket* ChooseLogBucket(std::vector<LogBucket>& buckets, std::wstring_view name) {
  LogBucket* best = nullptr;
  int bestScore = 0;
  for (LogBucket& bucket : buckets) {
    const int score = ScoreLogFile(bucket.Rule(), name);
    if (score <= bestScore) continue;
    best = &bucket;
    bestScore = score;
  }
  return best;
}

}  // namespace logging::internal
