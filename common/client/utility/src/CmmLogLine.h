#pragma once

// What stands in front of the text of a log line.

#include <cstdint>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include "common/client/utility/src/CmmTimeValue.h"

namespace logging::internal {

// The name of a severity in the line: "VERBOSE" and its value without the sign for a negative one, the
// value alone for one above LOG_FATAL.
std::string SeverityName(int severity);

// What follows the last backslash of `file`, or else the last slash. With neither, the first character is
// lost.
std::string_view SourceFileName(std::string_view file);

// The items of a prefix; those that a line leaves out are not set.
struct LogPrefix {
  std::optional<uint32_t> processId;
  std::optional<uint32_t> threadId;
  std::optional<Cmm::Time::Exploded> localTime;
  std::optional<uint32_t> tickCount;
  int severity = 0;
  std::string_view file;  // with its path
  int line = 0;
};

// "[1234:5678:03-07/09:05:01.042:INFO:channel.cc(77)] ". With a time, the stream's fill character is '0'
// from then on.
void StreamLogPrefix(std::ostream& stream, const LogPrefix& prefix);

}  // namespace logging::internal
