#pragma once

// Paths and names that follow from where the program is.

#include <string>
#include <string_view>

namespace logging::internal {

// `path` up to its last backslash, which is included; empty without one.
std::wstring DirectoryOf(std::wstring_view path);

// The directory of the process's executable with the backslash at its end. A path of 260 units or more
// counts as far as the first 259.
std::wstring ProgramDirectory();

// "debug.log" beside the process's executable.
std::wstring DefaultLogPath();

// The name of the mutex that all processes share that log to `path`: "Global\" and the path with slashes
// for backslashes.
std::wstring LogMutexName(std::wstring_view path);

}  // namespace logging::internal
