#pragma once

#include <cstddef>
#include <cstdint>

namespace Cmm::internal {

// The length of "2021-07-04T12:00:00": no shorter text is a timestamp.
inline constexpr size_t kTimestampLength = 19;

// The seconds since 1970-01-01 UTC that `text` names, as Time::FromStringT describes it. Fields that are
// missing or no numbers are 0. A date that does not exist is -1, to which the offset is applied all the same.
int64_t ParseTimestamp(const char* text);

}  // namespace Cmm::internal
