#pragma once

// What the log does with its files. All of it is called under the log lock.

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "common/client/utility/src/CmmLogSettings.h"

namespace logging::internal {

// True when the file is open, be it since before. Lines that wait in memory are written to a file that it
// opens. With no path set, the default becomes the path; a path that cannot be opened is kept, and
// ".\debug.log" is opened in its place.
bool OpenLogFile(LogSettings& settings);

// Writes behind the end of the file, if it is open. A failure of the system goes unnoticed.
void AppendToLogFile(LogSettings& settings, std::string_view text);

// Deletes the file that `log_path` names; the debugger is told when that fails, as for a file that is not
// there.
void DeleteOldLogFile(const LogSettings& settings);

// The path of the file `file_index` of the rotating set. None while the set has no directory or base name.
std::optional<std::wstring> MakeLogFilePath(const LogSettings& settings);

// The size of a file, 0 if there is none.
uint64_t LogFileSize(const std::wstring& path);

// The index file of the rotating set. Reading leaves `file_index` alone when the file is empty or cannot be
// read.
void ReadLogIndex(LogSettings& settings);
void WriteLogIndex(const LogSettings& settings);

}  // namespace logging::internal
