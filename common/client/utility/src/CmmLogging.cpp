#include "common/client/utility/src/CmmLogging.h"

#include <windows.h>

#include <algorithm>
#include <optional>

#include "common/client/utility/src/CmmLogFile.h"
#include "common/client/utility/src/CmmLogSettings.h"

namespace logging {

using internal::LogLock;
using internal::LogSettings;
using internal::Settings;

bool BaseInitLoggingImpl_built_with_NDEBUG(const wchar_t* log_file, LoggingDestination dest,
                                           LogLockingState lock, OldFileDeletionState old_file,
                                           LogEncryptPolicy enc, unsigned long pid) {
  LogSettings& settings = Settings();
  settings.encrypt_policy = enc;
  settings.lock.Init(lock, log_file);
  const LogLock::Scope scope(settings.lock);
  settings.log_handle.reset();
  settings.impersonate_pid = pid;
  settings.destination = dest;
  if (!internal::GoesToFile(dest)) return true;
  settings.log_path.reset();
  if (log_file) settings.log_path = log_file;
  if (old_file == DELETE_OLD_LOG_FILE) internal::DeleteOldLogFile(settings);
  return internal::OpenLogFile(settings);
}

bool BaseInitLoggingImpl_built_with_NDEBUG(const wchar_t* dir, const wchar_t* base, int max_count,
                                           int max_size, LoggingDestination dest, LogEncryptPolicy enc,
                                           LogFileSuffixPolicy suffix, LogLockingState lock,
                                           unsigned long pid) {
  LogSettings& settings = Settings();
  const LogLock::Scope scope(settings.lock);  // nobody logs yet, where there is no lock yet
  settings.destination = dest;
  settings.encrypt_policy = enc;
  settings.suffix_policy = suffix;
  settings.impersonate_pid = pid;
  if (!dir || !base) return false;

  settings.log_dir = dir;
  settings.log_base = base;
  settings.file_index = 0;
  settings.current_size = 0;
  settings.max_file_count = internal::EffectiveFileCount(max_count);
  settings.max_file_size = internal::EffectiveFileSize(max_size);
  internal::ReadLogIndex(settings);
  if (settings.file_index >= settings.max_file_count) {
    settings.file_index = 0;
    internal::WriteLogIndex(settings);
  }

  std::optional<std::wstring> path = internal::MakeLogFilePath(settings);
  if (!path) return false;
  const uint64_t size = internal::LogFileSize(*path);
  const bool advances = size >= static_cast<uint64_t>(settings.max_file_size);
  if (advances) {
    settings.file_index = internal::NextLogIndex(settings.file_index, settings.max_file_count);
    path = internal::MakeLogFilePath(settings);
    if (!path) return false;
  } else {
    settings.current_size = static_cast<uint32_t>(size);
  }
  const bool opened = BaseInitLoggingImpl_built_with_NDEBUG(
      path->c_str(), dest, lock, advances ? DELETE_OLD_LOG_FILE : APPEND_TO_OLD_LOG_FILE, enc, pid);
  if (advances && opened) internal::WriteLogIndex(settings);
  return opened;
}

std::wstring GetLogFilePath() {
  LogSettings& settings = Settings();
  const LogLock::Scope scope(settings.lock);
  return settings.log_path.value_or(std::wstring());
}

void CloseLogFile() {
  LogSettings& settings = Settings();
  const LogLock::Scope scope(settings.lock);
  settings.log_handle.reset();
}

void SetMinLogLevel(int level) {
  Settings().min_log_level = std::min<int>(level, LOG_ERROR_REPORT);
}

int GetMinLogLevel() {
  return Settings().min_log_level;
}

int GetVlogVerbosity() {
  constexpr int64_t kLeast = -1;
  return static_cast<int>(std::max(1 - int64_t{GetMinLogLevel()}, kLeast));
}

int GetVlogLevelHelper(const char*, size_t) {
  return GetVlogVerbosity();
}

void SetLogItems(bool process_id, bool thread_id, bool timestamp, bool tickcount) {
  LogSettings& settings = Settings();
  settings.log_process_id = process_id;
  settings.log_thread_id = thread_id;
  settings.log_timestamp = timestamp;
  settings.log_tickcount = tickcount;
}

void SetShowErrorDialogs(bool show) {
  Settings().show_error_dialogs = show;
}

void SetLogDestination(LoggingDestination dest) {
  Settings().destination = dest;
}

void SetLogMessageHandler(LogMessageHandlerFunction handler) {
  Settings().message_handler = handler;
}

LogMessageHandlerFunction GetLogMessageHandler() {
  return Settings().message_handler;
}

void SetLogAssertHandler(LogAssertHandlerFunction handler) {
  Settings().assert_handler = handler;
}

void SetLogReportHandler(LogReportHandlerFunction handler) {
  Settings().report_handler = handler;
}

void SetUseLogService(bool use) {
  Settings().use_log_service = use;
}

void SetIsLogServiceProcess(bool is) {
  Settings().is_log_service_process = is;
}

int CurrentThreadId() {
  return static_cast<int>(GetCurrentThreadId());
}

}  // namespace logging
