#pragma once

// The library's process-wide log: where lines go, and what stands in front of them. The lines themselves
// are made by LogMessage (CmmLogMessage.h). There is one log per process; before it is initialised, its
// lines wait in memory.
//
// Initialisation and setters are meant for start-up, and take no lock. Nothing here ends the process.

#include <cstddef>
#include <string>

#include "common/client/utility/src/CmmDefine.h"

namespace logging {

// Below LOG_DEBUG lies verbose output: the further below, the more of it.
enum LogSeverity : int {
  LOG_DEBUG = 0,
  LOG_INFO = 1,
  LOG_WARNING = 2,
  LOG_ERROR = 3,
  LOG_ERROR_REPORT = 4,  // the one that is also reported: SetLogReportHandler, SetShowErrorDialogs
  LOG_FATAL = 5,         // does not end the process
};

enum LoggingDestination : int {
  LOG_TO_MEMORY = 0,  // up to 1024 lines, until a file is opened
  LOG_TO_FILE = 1,
  LOG_TO_DEBUG_OUTPUT = 2,
  LOG_TO_FILE_AND_DEBUG_OUTPUT = 3,
};

// What guards the file.
enum LogLockingState : int {
  LOCK_BY_NAMED_MUTEX = 0,  // lines of all processes that log to the same path
  LOCK_BY_CRITICAL_SECTION = 1,
};

enum OldFileDeletionState : int { DELETE_OLD_LOG_FILE = 0, APPEND_TO_OLD_LOG_FILE = 1 };

enum LogFileSuffixPolicy : int { LOG_FILE_WITHOUT_DATE = 0, LOG_FILE_WITH_DATE = 1 };

enum LogEncryptPolicy : int { LOG_NOT_ENCRYPTED = 0 };  // carried along; no policy encrypts anything

// `str` is the whole line with its line feed; the caller's text begins at `message_start`. True: the line
// has been dealt with and goes nowhere else.
using LogMessageHandlerFunction = bool (*)(int severity, const char* file, int line, size_t message_start,
                                           const std::string& str);
using LogAssertHandlerFunction = void (*)(const std::string& str);
using LogReportHandlerFunction = void (*)(const std::string& str);

// Logs to one file. `log_file` is copied; null stands for "debug.log" beside the process's executable. With
// a `pid` other than 0 every file operation runs under the reduced token of that process, and is left out
// where that is not possible. The first initialisation, or the first line before it, decides for good how
// the file is guarded. False when a destination with a file has none that can be opened, not even
// ".\debug.log".
CMM_EXPORT bool BaseInitLoggingImpl_built_with_NDEBUG(const wchar_t* log_file, LoggingDestination dest,
                                                      LogLockingState lock, OldFileDeletionState old_file,
                                                      LogEncryptPolicy enc, unsigned long pid);

// Logs to a ring of files `dir`\`base`_INDEX.log, or `base`_YYYYMMDD_INDEX.log with a date, each of which is
// emptied as it is reached. A line that would exceed `max_size` bytes goes first into the next file.
// `max_count` below 1 counts as 2, `max_size` below 256 KiB as that. False when `dir` or `base` is null, and
// where the other form gives it.
// The set is for one process: others that use it at the same time count their own bytes only.
CMM_EXPORT bool BaseInitLoggingImpl_built_with_NDEBUG(const wchar_t* dir, const wchar_t* base, int max_count,
                                                      int max_size, LoggingDestination dest,
                                                      LogEncryptPolicy enc, LogFileSuffixPolicy suffix,
                                                      LogLockingState lock, unsigned long pid);

// The path that the log was last told to write to, also while ".\debug.log" stands in for it; empty if none.
CMM_EXPORT std::wstring GetLogFilePath();

// Closes the file; the next line opens it again.
CMM_EXPORT void CloseLogFile();

// A threshold for call sites: lines below it are written all the same. At most 4 is stored.
CMM_EXPORT void SetMinLogLevel(int level);
CMM_EXPORT int GetMinLogLevel();

// 1 less the threshold, but at least -1; the arguments of the second form are not read.
CMM_EXPORT int GetVlogVerbosity();
CMM_EXPORT int GetVlogLevelHelper(const char* file, size_t n);

// Which items a line begins with; at first all but the tick count.
CMM_EXPORT void SetLogItems(bool process_id, bool thread_id, bool timestamp, bool tickcount);

// Whether a line of LOG_ERROR_REPORT is shown in a dialog when there is no report handler; at first not.
CMM_EXPORT void SetShowErrorDialogs(bool show);

CMM_EXPORT void SetLogDestination(LoggingDestination dest);  // opens and closes nothing

// Handlers run on the logging thread, outside the log's locks; null for none.
CMM_EXPORT void SetLogMessageHandler(LogMessageHandlerFunction handler);  // sees each line first
CMM_EXPORT LogMessageHandlerFunction GetLogMessageHandler();
CMM_EXPORT void SetLogAssertHandler(LogAssertHandlerFunction handler);  // stored, never called
CMM_EXPORT void SetLogReportHandler(LogReportHandlerFunction handler);  // gets lines of LOG_ERROR_REPORT

// Stored for a log service in another process, which this library does not contain.
CMM_EXPORT void SetUseLogService(bool use);
CMM_EXPORT void SetIsLogServiceProcess(bool is);

CMM_EXPORT int CurrentThreadId();

}  // namespace logging
