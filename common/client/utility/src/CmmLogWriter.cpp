#include "common/client/utility/src/CmmLogWriter.h"

#include <optional>

#include "common/client/utility/src/CmmLogFile.h"
#include "common/client/utility/src/CmmLogSettings.h"

namespace logging::internal {
namespace {

void RotateIfFull(LogSettings& settings, size_t length) {
  if (!settings.log_handle ||
      !LineOverflowsFile(settings.current_size, static_cast<uint32_t>(length), settings.max_file_size))
    return;
  settings.current_size = 0;
  settings.file_index = NextLogIndex(settings.file_index, settings.max_file_count);
  const std::optional<std::wstring> path = MakeLogFilePath(settings);
  if (!path) return;
  if (BaseInitLoggingImpl_built_with_NDEBUG(path->c_str(), settings.destination, settings.lock.Mode(),
                                            DELETE_OLD_LOG_FILE, settings.encrypt_policy,
                                            settings.impersonate_pid))
    WriteLogIndex(settings);
}

}  // namespace

void WriteLogLine(const std::string& line) {
  LogSettings& settings = Settings();
  settings.lock.Init(LOCK_BY_NAMED_MUTEX, nullptr);
  const LoggingDestination destination = settings.destination;
  if (GoesToFile(destination)) {
    const LogLock::Scope scope(settings.lock);
    RotateIfFull(settings, line.size());
    OpenLogFile(settings);
    AppendToLogFile(settings, line);
  }
  if (destination == LOG_TO_MEMORY) settings.memory.Append(line);
}

}  // namespace logging::internal
