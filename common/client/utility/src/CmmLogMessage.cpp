#include "common/client/utility/src/CmmLogMessage.h"

#include <windows.h>

#include <cstdio>
#include <utility>

#include "common/client/utility/src/CmmLogDialog.h"
#include "common/client/utility/src/CmmLogLine.h"
#include "common/client/utility/src/CmmLogSettings.h"
#include "common/client/utility/src/CmmLogWriter.h"

namespace logging {

using internal::LogSettings;

CheckOpString::CheckOpString(std::string* str) : str_(str) {}

const std::string* CheckOpString::str() const {
  return str_;
}

LogMessage::SaveLastError::SaveLastError() : last_error_(GetLastError()) {}

LogMessage::SaveLastError::~SaveLastError() {
  SetLastError(last_error_);
}

unsigned long LogMessage::SaveLastError::get_error() const {
  return last_error_;
}

LogMessage::LogMessage(const char* file, int line) : LogMessage(file, line, LOG_INFO) {}

LogMessage::LogMessage(const char* file, int line, int severity)
    : severity_(severity), file_(file ? file : "UNKNOWN-FILE"), line_(line) {
  Init();
}

LogMessage::LogMessage(const char* file, int line, int severity, int) : LogMessage(file, line, severity) {}

LogMessage::LogMessage(const char* file, int line, const CheckOpString& result)
    : LogMessage(file, line, LOG_FATAL, result) {}

LogMessage::LogMessage(const char* file, int line, int severity, const CheckOpString& result)
    : LogMessage(file, line, severity) {
  stream_ << "Check failed: ";
  if (result.str()) stream_ << *result.str();
}

LogMessage::~LogMessage() {
  stream_ << '\n';
  const std::string text = std::move(stream_).str();
  const LogSettings& settings = internal::Settings();
  if (settings.message_handler && settings.message_handler(severity_, file_, line_, message_start_, text))
    return;

  const bool toDebugOutput = internal::GoesToDebugOutput(settings.destination);
  if (toDebugOutput) OutputDebugStringA(text.c_str());
  if (toDebugOutput || severity_ >= LOG_ERROR) {
    std::fwrite(text.data(), 1, text.size(), stderr);
    std::fflush(stderr);
  }
  internal::WriteLogLine(text);

  if (severity_ != LOG_ERROR_REPORT) return;
  if (settings.report_handler)
    settings.report_handler(text);
  else
    internal::ShowErrorDialog(text);
}

std::ostream& LogMessage::stream() {
  return stream_;
}

void LogMessage::Init() {
  const LogSettings& settings = internal::Settings();
  internal::LogPrefix prefix;
  if (settings.log_process_id) prefix.processId = GetCurrentProcessId();
  if (settings.log_thread_id) prefix.threadId = GetCurrentThreadId();
  if (settings.log_timestamp) Cmm::Time::Now().LocalExplode(&prefix.localTime.emplace());
  if (settings.log_tickcount) prefix.tickCount = GetTickCount();
  prefix.severity = severity_;
  prefix.file = file_;
  prefix.line = line_;
  stream_ << std::boolalpha;
  internal::StreamLogPrefix(stream_, prefix);
  message_start_ = stream_.view().size();
}

}  // namespace logging
