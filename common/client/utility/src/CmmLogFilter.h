#pragma once

#include <cstdint>
#include <vector>

#include "common/client/utility/src/CmmDefine.h"
#include "common/client/utility/src/CmmString.h"

namespace logging {

// A rule of the directory cleaner: which files it is for, and how much of them may stay.
struct CMM_EXPORT LogFilterItem_s {
  Cmm::CStringT<wchar_t> file_prefix;  // of the name, case included
  Cmm::CStringT<wchar_t> file_suffix;  // may be empty; a match makes the rule a better fit
  int64_t max_total_bytes = 0;
  uint64_t max_file_count = 0;

  LogFilterItem_s();
  LogFilterItem_s(const LogFilterItem_s& other);
  LogFilterItem_s(LogFilterItem_s&& other) noexcept;
  LogFilterItem_s& operator=(const LogFilterItem_s& other);
  LogFilterItem_s& operator=(LogFilterItem_s&& other) noexcept;
  ~LogFilterItem_s();

  bool IsValid() const;  // the prefix is not empty and both limits are above 0
  void Reset();          // empty strings, limits of 0
};

// Deletes the oldest files of a directory until what is left keeps within the limits, rule by rule; each
// file belongs to the rule that fits it best, the first among equals, or else to `default_filter`. Empty
// files are deleted in any case. Rules that are not valid are passed over, but `default_filter` is taken as
// it stands: with limits of 0 nothing stays that no rule is for.
// `dir` must end in a path separator. Nothing happens when it is null, does not exist or is a link.
// Directories in it are left alone.
CMM_EXPORT void CleanLogsWithFilters(const wchar_t* dir, const std::vector<LogFilterItem_s>& filters,
                                     const LogFilterItem_s& default_filter);

}  // namespace logging
