#include "common/client/utility/src/CmmLogFile.h"

#include <utility>

#include "common/client/utility/src/CmmFileData.h"
#include "common/client/utility/src/CmmLogPath.h"
#include "common/client/utility/src/CmmTimeValue.h"
#include "host/PrivilegeReduction.h"

namespace logging::internal {
namespace {

// The result of `operation`, which runs under the reduced token of `processId` unless that is 0. A default
// result when the thread cannot be put under that token.
template <typename Operation>
auto RunAs(uint32_t processId, Operation operation) -> decltype(operation()) {
  if (processId == 0) return operation();
  const Cmm::MediumPrivilegeScope scope(processId);
  if (!scope.IsImpersonating()) return {};
  return operation();
}

Cmm::UniqueHandle OpenForWriting(const wchar_t* path, uint32_t processId) {
  return RunAs(processId, [path] {
    const HANDLE file = CreateFileW(path, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                    OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    return Cmm::UniqueHandle(file == INVALID_HANDLE_VALUE ? nullptr : file);
  });
}

void SeekToEnd(HANDLE file) {
  SetFilePointerEx(file, LARGE_INTEGER{}, nullptr, FILE_END);
}

std::optional<LogDate> DateInName(LogFileSuffixPolicy policy) {
  if (policy != LOG_FILE_WITH_DATE) return std::nullopt;
  Cmm::Time::Exploded now{};
  Cmm::Time::Now().LocalExplode(&now);
  return LogDate{now.year, now.month, now.day_of_month};
}

}  // namespace

bool OpenLogFile(LogSettings& settings) {
  if (settings.log_handle) return true;
  if (!settings.log_path) settings.log_path = DefaultLogPath();
  settings.log_handle = OpenForWriting(settings.log_path->c_str(), settings.impersonate_pid);
  if (!settings.log_handle) settings.log_handle = OpenForWriting(L".\\debug.log", settings.impersonate_pid);
  if (!settings.log_handle) return false;
  SeekToEnd(settings.log_handle.get());
  if (const std::string waiting = settings.memory.Take(); !waiting.empty())
    AppendToLogFile(settings, waiting);
  return true;
}

void AppendToLogFile(LogSettings& settings, std::string_view text) {
  if (!settings.log_handle) return;
  SeekToEnd(settings.log_handle.get());  // another process may have written
  const DWORD length = static_cast<DWORD>(text.size());
  DWORD written = 0;
  WriteFile(settings.log_handle.get(), text.data(), length, &written, nullptr);
  settings.current_size += length;
}

void DeleteOldLogFile(const LogSettings& settings) {
  const std::wstring path = settings.log_path.value_or(std::wstring());
  if (RunAs(settings.impersonate_pid, [&path] { return DeleteFileW(path.c_str()) != 0; })) return;
  OutputDebugStringW(L"DeleteFilePath failed for file:");
  OutputDebugStringW(path.c_str());
}

std::optional<std::wstring> MakeLogFilePath(const LogSettings& settings) {
  if (!settings.log_dir || !settings.log_base) return std::nullopt;
  return LogFilePath(*settings.log_dir, *settings.log_base, DateInName(settings.suffix_policy),
                     settings.file_index);
}

uint64_t LogFileSize(const std::wstring& path) {
  WIN32_FILE_ATTRIBUTE_DATA data{};
  if (!GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data)) return 0;
  return uint64_t{data.nFileSizeHigh} << 32 | data.nFileSizeLow;
}

void ReadLogIndex(LogSettings& settings) {
  const std::wstring path = LogIndexFilePath(*settings.log_dir, *settings.log_base);
  // Shared in every way: another process may be about to write it.
  const Cmm::UniqueFileHandle file(CreateFileW(path.c_str(), GENERIC_READ,
                                               FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                               nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
  char content[kIndexFileLimit];
  DWORD length = 0;
  if (!file || !ReadFile(file.get(), content, sizeof content, &length, nullptr) || length == 0) return;
  settings.file_index = ParseLogIndex({content, length});
}

void WriteLogIndex(const LogSettings& settings) {
  const std::wstring path = LogIndexFilePath(*settings.log_dir, *settings.log_base);
  const std::string content = std::to_string(settings.file_index);
  RunAs(settings.impersonate_pid,
        [&path, &content] { return cmm_fs_write(path.c_str(), content.data(), content.size(), true); });
}

}  // namespace logging::internal
