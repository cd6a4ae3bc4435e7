#include "common/client/utility/src/CmmLogRotation.h"

#include <algorithm>
#include <limits>

namespace logging::internal {
namespace {

std::wstring Padded(int number, size_t digits) {
  std::wstring text = std::to_wstring(number);
  if (text.size() < digits) text.insert(0, digits - text.size(), L'0');
  return text;
}

}  // namespace

int EffectiveFileCount(int maxCount) {
  return maxCount < 1 ? kDefaultFileCount : maxCount;
}

int EffectiveFileSize(int maxSize) {
  return std::max(maxSize, kSmallestFileSize);
}

std::wstring LogFilePath(const std::wstring& dir, const std::wstring& base,
                         const std::optional<LogDate>& date, int index) {
  std::wstring path = dir + L'\\' + base + L'_';
  if (date) path += Padded(date->year, 4) + Padded(date->month, 2) + Padded(date->day, 2) + L'_';
  return path + std::to_wstring(index) + L".log";
}

std::wstring LogIndexFilePath(const std::wstring& dir, const std::wstring& base) {
  return dir + L'\\' + base + L"_last_log_file_id.txt";
}

int ParseLogIndex(std::string_view content) {
  constexpr std::string_view kSpace = " \t\n\v\f\r";
  content.remove_prefix(std::min(content.find_first_not_of(kSpace), content.size()));
  const bool negative = content.starts_with('-');
  if (negative || content.starts_with('+')) content.remove_prefix(1);

  constexpr int64_t kLargest = std::numeric_limits<int>::max();
  int64_t number = 0;
  for (const char c : content) {
    if (c < '0' || c > '9') break;
    number = std::min(number * 10 + (c - '0'), kLargest + 1);
  }
  return static_cast<int>(negative ? -number : std::min(number, kLargest));
}

int NextLogIndex(int index, int fileCount) {
  return index + 1 >= fileCount ? 0 : index + 1;
}

bool LineOverflowsFile(uint32_t currentSize, uint32_t length, int maxSize) {
  if (currentSize == kUnknownSize || static_cast<uint32_t>(maxSize) == kUnknownSize) return false;
  return static_cast<int32_t>(currentSize + length) > maxSize;
}

}  // namespace logging::internal
