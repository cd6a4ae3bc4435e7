#pragma once

#include <vector>

#include "common/client/utility/src/CmmDefine.h"
#include "common/client/utility/src/CmmLogFilter.h"

namespace logging {

// Deletes the oldest files of a directory until what is left keeps within the limits, rule by rule; each
// file belongs to the rule that fits it best, the first among equals, or else to `default_filter`. Empty
// files are deleted in any case. Rules that are not valid are passed over, but `default_filter` is taken as
// it stands: with limits of 0 nothing stays that no rule is for.
// `dir` must end in a path separator. Nothing happens when it is null, does not exist or is a link.
// Directories in it are left alone.
CMM_EXPORT void CleanLogsWithFilters(const wchar_t* dir, const std::vector<LogFilterItem_s>& filters,
                                     const LogFilterItem_s& default_filter);

}  // namespace logging
