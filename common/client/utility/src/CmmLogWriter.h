#pragma once

#include <string>

namespace logging::internal {

// Takes a finished line to where the destination says, but for the debugger and stderr: to the file, after
// rotation and opening as they are needed, or to memory. Any thread.
void WriteLogLine(const std::string& line);

}  // namespace logging::internal
