#include "common/client/utility/src/CmmLogFilter.h"

namespace logging {

LogFilterItem_s::LogFilterItem_s() = default;
LogFilterItem_s::LogFilterItem_s(const LogFilterItem_s& other) = default;
LogFilterItem_s::LogFilterItem_s(LogFilterItem_s&& other) noexcept = default;
LogFilterItem_s& LogFilterItem_s::operator=(const LogFilterItem_s& other) = default;
LogFilterItem_s& LogFilterItem_s::operator=(LogFilterItem_s&& other) noexcept = default;
LogFilterItem_s::~LogFilterItem_s() = default;

bool LogFilterItem_s::IsValid() const {
  return !file_prefix.empty() && max_total_bytes > 0 && max_file_count > 0;
}

void LogFilterItem_s::Reset() {
  *this = LogFilterItem_s();
}

}  // namespace logging
