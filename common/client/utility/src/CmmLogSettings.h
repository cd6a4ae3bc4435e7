#pragma once

#include <atomic>
#include <optional>
#include <string>

#include "common/client/utility/src/CmmLogLock.h"
#include "common/client/utility/src/CmmLogMemory.h"
#include "common/client/utility/src/CmmLogRotation.h"
#include "common/client/utility/src/CmmLogging.h"
#include "common/client/utility/src/UniqueHandle.h"

namespace logging::internal {

// The state of the log. What is not said to be guarded is set at start-up.
struct LogSettings {
  int min_log_level = 0;
  LoggingDestination destination = LOG_TO_MEMORY;

  // Guarded by `lock`.
  std::optional<std::wstring> log_path;
  std::optional<std::wstring> log_dir;
  std::optional<std::wstring> log_base;
  int max_file_count = -1;
  int max_file_size = -1;
  int file_index = -1;
  uint32_t current_size = kUnknownSize;
  Cmm::UniqueHandle log_handle;

  LogEncryptPolicy encrypt_policy = LOG_NOT_ENCRYPTED;
  LogFileSuffixPolicy suffix_policy = LOG_FILE_WITHOUT_DATE;
  uint32_t impersonate_pid = 0;

  bool log_process_id = true;
  bool log_thread_id = true;
  bool log_timestamp = true;
  bool log_tickcount = false;

  bool show_error_dialogs = false;
  bool use_log_service = false;
  bool is_log_service_process = false;

  LogAssertHandlerFunction assert_handler = nullptr;
  LogReportHandlerFunction report_handler = nullptr;
  LogMessageHandlerFunction message_handler = nullptr;

  LogMemory memory;  // has a lock of its own, which is taken under `lock` and never the other way round
  LogLock lock;
};

// The settings of this process. They outlive every static object, so that any destructor may log. The file is
// closed when the library is unloaded; lines that come later go to the debugger.
LogSettings& Settings();

inline bool GoesToFile(LoggingDestination destination) {
  return destination == LOG_TO_FILE || destination == LOG_TO_FILE_AND_DEBUG_OUTPUT;
}

inline bool GoesToDebugOutput(LoggingDestination destination) {
  return destination == LOG_TO_DEBUG_OUTPUT || destination == LOG_TO_FILE_AND_DEBUG_OUTPUT;
}

}  // namespace logging::internal
