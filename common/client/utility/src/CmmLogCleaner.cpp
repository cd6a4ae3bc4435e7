#include "common/client/utility/src/CmmLogCleaner.h"

#include <windows.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "common/client/utility/src/CmmDir.h"
#include "common/client/utility/src/CmmLogBucket.h"
#include "common/client/utility/src/CmmSafePath.h"
#include "common/client/utility/src/UniqueHandle.h"

namespace logging {
namespace {

using internal::LogBucket;
using internal::LogFileEntry;

int64_t SizeOf(const std::wstring& path) {
  WIN32_FIND_DATAW data{};
  const HANDLE search = FindFirstFileW(path.c_str(), &data);
  if (search == INVALID_HANDLE_VALUE) return 0;
  FindClose(search);
  return static_cast<int64_t>(uint64_t{data.nFileSizeHigh} << 32 | data.nFileSizeLow);
}

// None for a file that cannot be opened, which somebody writes to for instance, or that has no time.
std::optional<uint64_t> LastWriteTimeOf(const std::wstring& path) {
  const Cmm::UniqueFileHandle file(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                               OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  FILETIME time{};
  if (!file || !GetFileTime(file.get(), nullptr, nullptr, &time)) return std::nullopt;
  const uint64_t count = uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime;
  return count != 0 ? std::optional(count) : std::nullopt;
}

void DeleteIfSafe(const std::wstring& path) {
  if (cmm_safe_path(path.c_str())) DeleteFileW(path.c_str());
}

// Without the separator at its end, at which the system would follow the link. A directory that is not there
// has every attribute, that of a link among them. The root of a drive needs its separator.
bool IsLink(std::wstring_view dir) {
  while (dir.size() > 1 && (dir.back() == L'\\' || dir.back() == L'/') && dir[dir.size() - 2] != L':')
    dir.remove_suffix(1);
  return (GetFileAttributesW(std::wstring(dir).c_str()) & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
}

// The names of the files in `dir`.
std::vector<std::wstring> ListFiles(const wchar_t* dir) {
  std::vector<std::wstring> names;
  Cmm::CmmDir search{};
  if (!cmm_fs_find_first(&search, dir)) return names;
  do {
    if (!(search.item.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY)) names.emplace_back(search.item.cFileName);
  } while (FindNextFileW(search.handle, &search.item));
  FindClose(search.handle);
  return names;
}

void DeleteExcess(const LogBucket& bucket) {
  for (const LogFileEntry& file : bucket.Excess())
    DeleteIfSafe(file.path);
}

}  // namespace

void CleanLogsWithFilters(const wchar_t* dir, const std::vector<LogFilterItem_s>& filters,
                          const LogFilterItem_s& default_filter) {
  if (!dir || IsLink(dir)) return;

  std::vector<LogBucket> buckets;
  for (const LogFilterItem_s& filter : filters)
    if (filter.IsValid()) buckets.emplace_back(filter);
  LogBucket others(default_filter);

  for (const std::wstring& name : ListFiles(dir)) {
    const std::wstring path = dir + name;
    const int64_t size = SizeOf(path);
    const std::optional<uint64_t> time = LastWriteTimeOf(path);
    if (time && size == 0) {
      DeleteIfSafe(path);
      continue;
    }
    LogBucket* fitting = ChooseLogBucket(buckets, name);
    (fitting ? *fitting : others).Add({path, time.value_or(internal::kNewestOfAll), size});
  }

  DeleteExcess(others);
  for (const LogBucket& bucket : buckets)
    DeleteExcess(bucket);
}

}  // namespace logging
