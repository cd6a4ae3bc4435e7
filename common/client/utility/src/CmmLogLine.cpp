#include "common/client/utility/src/CmmLogLine.h"

#include <iomanip>
#include <iterator>

namespace logging::internal {

std::string SeverityName(int severity) {
  static constexpr const char* kNames[] = {"DEBUG", "INFO", "WARNING", "ERROR", "ERROR_REPORT", "FATAL"};
  if (severity < 0) return "VERBOSE" + std::to_string(-static_cast<int64_t>(severity));
  if (severity >= static_cast<int>(std::size(kNames))) return std::to_string(severity);
  return kNames[severity];
}

std::string_view SourceFileName(std::string_view file) {
  size_t separator = file.rfind('\\');
  if (separator == std::string_view::npos) separator = file.rfind('/');
  // Where there is no separator the name begins behind the first character all the same: call sites pass
  // full paths.
  const size_t start = separator == std::string_view::npos ? 1 : separator + 1;
  return file.substr(std::min(start, file.size()));
}

void StreamLogPrefix(std::ostream& stream, const LogPrefix& prefix) {
  stream << '[';
  if (prefix.processId) stream << *prefix.processId << ':';
  if (prefix.threadId) stream << *prefix.threadId << ':';
  if (prefix.localTime) {
    const Cmm::Time::Exploded& time = *prefix.localTime;
    stream << std::setfill('0') << std::setw(2) << time.month << '-' << std::setw(2) << time.day_of_month
           << '/' << std::setw(2) << time.hour << ':' << std::setw(2) << time.minute << ':' << std::setw(2)
           << time.second << '.' << std::setw(3) << time.millisecond << ':';
  }
  if (prefix.tickCount) stream << *prefix.tickCount << ':';
  stream << SeverityName(prefix.severity) << ':' << SourceFileName(prefix.file) << '(' << prefix.line
         << ")] ";
}

}  // namespace logging::internal
