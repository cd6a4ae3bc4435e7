#pragma once

#include <cstdint>

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

}  // namespace logging
